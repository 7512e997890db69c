#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <thread>

/// A peer of the IPC for tests: listens on a free loopback port and runs its script on each
/// connection in turn, in a thread of its own, until it is destroyed. It closes each connection
/// when the script returns.
///
///     ScriptedPeer peer([](int fd) { ScriptedPeer::receive(fd); ScriptedPeer::send(fd, reply); });
class ScriptedPeer {
public:
    using Script = std::function<void(int fd)>;

    explicit ScriptedPeer(Script script);
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    int port() const { return m_port; }

    /// The body of the next frame; empty when none comes.
    static std::string receive(int fd);
    /// Sends the bytes as they are; a client that is gone does no harm.
    static void send(int fd, std::string_view bytes);
    /// Makes the close that follows a reset instead of an orderly end.
    static void resetOnClose(int fd);

private:
    Script m_script;
    int m_port = 0;
    int m_listener;
    std::thread m_thread;

    void run();
};
