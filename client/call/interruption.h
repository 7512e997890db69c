#pragma once

namespace client {

/// SIGINT and SIGTERM become something to wait for. While one exists they interrupt nothing, in
/// no thread that is begun meanwhile; afterwards they end the program again.
class Interruption {
public:
    enum class Event { Signal, Finish, Input, Timeout };

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// For another thread: lets wait() give Finish from now on.
    void finish() const;

    /// Waits at most so long. With an `input`, also until that file can be read.
    Event wait(double seconds, int input = -1) const;

private:
    int m_signals;
    int m_finish;
};

}  // namespace client
