// A log daemon that does not read: its queue is a full socket pair, and `syslog` waits for it and
// tries twice, as the C library's does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "apiMgmt/common/utils/simpleLogger.h"
#include "tests/support/syslogCapture.h"

namespace {

std::array<int, 2> queue{};

void sendAsTheLibraryDoes(const std::string& text) {
    for (int tries = 0; tries < 2 && ::send(queue[0], text.data(), text.size(), 0) < 0; ++tries) {
        ASSERT_EQ(EINTR, errno);
    }
}

std::vector<std::string> readQueue() {
    std::vector<std::string> lines;
    std::array<char, 4096> room{};
    for (ssize_t size = 0; (size = ::recv(queue[1], room.data(), room.size(), MSG_DONTWAIT)) > 0;) {
        lines.emplace_back(room.data(), static_cast<std::size_t>(size));
    }
    return lines;
}

void log(const std::string& message) {
    SimpleLogger::DoLog(SimpleLogger::LOGWarning, "source", "function", 1, "c", message);
}

/// In a process that has not logged yet.
[[noreturn]] void logFromThreadsAtOnce() {
    SyslogCapture::instead = [](const std::string&) {};
    std::latch start(8);
    std::array<std::jthread, 8> threads;
    for (std::jthread& thread : threads) {
        thread = std::jthread([&start] {
            start.arrive_and_wait();
            const void* const others = ::pthread_getspecific(0);
            log("first");
            if (::pthread_getspecific(0) != others) {
                ::_exit(1);
            }
        });
    }
    threads = {};
    ::_exit(0);
}

// Stands first: it is about the first lines of a process. One that did not wait until the key for
// its thread's data is made would use the first one, which is somebody else's.
TEST(LogWatch, FirstLinesMayComeAtOnce) {
    pthread_key_t key = 0;
    ASSERT_EQ(0, ::pthread_key_create(&key, nullptr));
    for (int i = 0; i < 200; ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            logFromThreadsAtOnce();
        }
        int status = -1;
        ASSERT_EQ(child, ::waitpid(child, &status, 0));
        ASSERT_EQ(0, status);
    }
}

TEST(LogWatch, DaemonThatStopsReadingCostsLinesAndNothingElse) {
    SyslogCapture::instead = sendAsTheLibraryDoes;
    ASSERT_EQ(0, ::socketpair(AF_UNIX, SOCK_DGRAM, 0, queue.data()));
    while (::send(queue[0], "x", 1, MSG_DONTWAIT) == 1) {
    }
    std::array<std::jthread, 3> threads;
    for (std::jthread& thread : threads) {
        thread = std::jthread([] { log("lost"); });
    }
    threads = {};  // joined only when nobody waits any more
    log("lost");
    EXPECT_EQ(4U, SimpleLogger::lostLines());

    readQueue();
    std::vector<std::string> lines;
    while (lines.size() < 3) {  // some may still be dropped until the daemon was asked
        log("read again");
        const std::vector<std::string> more = readQueue();
        lines.insert(lines.end(), more.begin(), more.end());
    }
    const std::string note = "level(4) category(c) message(" +
                             std::to_string(SimpleLogger::lostLines()) +
                             " log lines were lost while the log daemon did not read)\n";
    EXPECT_THAT(lines, testing::Contains(note));
    EXPECT_THAT(lines, testing::Contains("level(4) category(c) message(read again)\n"));
}

}  // namespace
