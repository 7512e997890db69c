#pragma once

/// Stands in for the API manager: listens on a free loopback port and answers every call with a
/// success. It answers when it is told to, on the thread that tells.
class ArrayPeer {
public:
    /// Raises std::system_error when there is no port to be had.
    ArrayPeer();
    ~ArrayPeer();
    ArrayPeer(const ArrayPeer&) = delete;
    ArrayPeer& operator=(const ArrayPeer&) = delete;

    int port() const { return m_port; }
    /// Readable when a call waits.
    int listener() const { return m_listener; }
    /// How many calls came.
    unsigned calls() const { return m_calls; }

    /// Answers one call. A caller that stops in the middle is hung up on after `seconds`.
    void answer(int seconds);

private:
    int m_listener;
    int m_port = 0;
    unsigned m_calls = 0;
};
