#pragma once

#include <cstdint>

/// Keeps a log daemon that stops reading from stopping the process.
///
/// The C library's `syslog` waits without limit while the daemon's queue is full, and holds a lock
/// of the whole process meanwhile. Asking first whether there is room would cost a system call for
/// each line and still not be sure. So a thread of its own, which does nothing while all is well,
/// looks now and then whether a line hangs. If so it interrupts the wait by a signal, has further
/// lines dropped and counted, and asks the daemon once a second until there is room again.
///
///     if (const LogWatch::Line line; line.mayBeWritten()) {
///         syslog(...);
///     }
namespace LogWatch {

/// One line on its way. It calls the system only for a thread's first line.
class Line {
public:
    Line();
    /// Counts the line as lost when its wait had to be ended.
    ~Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    /// False, and the line is counted as lost, while the daemon does not read.
    bool mayBeWritten() const { return m_mayBeWritten; }

private:
    struct Slot* m_slot = nullptr;
    bool m_mayBeWritten;
};

/// Counts a line that was lost for another reason.
void countLost();

/// How many lines this process has lost.
std::uint64_t lostLines();

/// How many were lost since the last call, once the daemon reads again; otherwise 0.
std::uint64_t takeUnreported();

}  // namespace LogWatch
