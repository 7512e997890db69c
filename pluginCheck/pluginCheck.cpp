#include "pluginCheck/pluginCheck.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <system_error>

#include "apiMgmt/common/text/safeText.h"
#include "pluginCheck/arrayPeer.h"
#include "pluginCheck/judge.h"
#include "pluginCheck/servicePort.h"

namespace {

using Verdict = CheckResult::Verdict;
using Clock = std::chrono::steady_clock;

// What the child writes, a line each: the question that it asks now, or a result as its verdict's
// digit, the question and the words, with tabs between.
constexpr char kAsks = '?';

void writeLine(int fd, const std::string& line) {
    const std::string whole = line + '\n';
    if (::write(fd, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) {
        ::_exit(1);  // Nobody reads any more.
    }
}

[[noreturn]] void runChild(const PluginCheckPlan& plan, int port, int fd) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    ::setrlimit(RLIMIT_CORE, &none);
    for (const int crash : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) {
        std::signal(crash, SIG_DFL);
    }
    offerServicePort(port);
    judgePlugin(plan.path,
                {.asks = [fd](const std::string& question) { writeLine(fd, kAsks + question); },
                 .found =
                     [fd](const CheckResult& result) {
                         writeLine(fd, std::to_string(static_cast<int>(result.verdict)) +
                                           result.question + '\t' + text::oneLine(result.words));
                     }});
    ::_exit(0);
}

// The side that watches the child and stands in for its array.
class Watch {
public:
    Watch(ArrayPeer& peer, pid_t child, int fd, int timeoutSeconds)
        : m_peer(peer), m_child(child), m_fd(fd), m_timeoutSeconds(timeoutSeconds) {}

    std::vector<CheckResult> run() {
        const bool hasEnded = follow();
        if (!hasEnded) {
            ::kill(m_child, SIGKILL);
        }
        int status = 0;
        while (::waitpid(m_child, &status, 0) < 0 && errno == EINTR) {
        }
        if (!m_question.empty()) {
            m_results.push_back(
                {m_question, hasEnded ? Verdict::Wrong : Verdict::Silent,
                 hasEnded ? endOf(status)
                          : "not done within " + std::to_string(m_timeoutSeconds) + " s"});
        }
        return std::move(m_results);
    }

private:
    // True when the child closed its end, false when it is late with the next line.
    bool follow() {
        auto limit = Clock::now() + std::chrono::seconds(m_timeoutSeconds);
        while (true) {
            pollfd watched[] = {{m_fd, POLLIN, 0}, {m_peer.listener(), POLLIN, 0}};
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(limit - Clock::now()).count();
            if (left <= 0) {
                return false;
            }
            if (::poll(watched, 2, static_cast<int>(left)) <= 0) {
                continue;
            }
            if (watched[1].revents != 0) {
                m_peer.answer(m_timeoutSeconds);
            } else {
                char piece[4096];
                const ssize_t size = ::read(m_fd, piece, sizeof(piece));
                if (size <= 0) {
                    return true;
                }
                m_unread.append(piece, static_cast<std::size_t>(size));
                takeLines();
                limit = Clock::now() + std::chrono::seconds(m_timeoutSeconds);
            }
        }
    }

    void takeLines() {
        std::size_t end = 0;
        while ((end = m_unread.find('\n')) != std::string::npos) {
            const std::string line = m_unread.substr(0, end);
            m_unread.erase(0, end + 1);
            const std::string said = line.substr(1);
            if (line.front() == kAsks) {
                m_question = said;
                continue;
            }
            const std::size_t tab = said.find('\t');
            CheckResult result{said.substr(0, tab), static_cast<Verdict>(line.front() - '0'),
                               said.substr(tab + 1)};
            if (result.question == kPingQuestion && result.verdict == Verdict::Usable &&
                m_peer.calls() == 0) {
                result = {result.question, Verdict::Odd, "answered without asking the array"};
            }
            m_results.push_back(result);
            m_question.clear();
        }
    }

    static std::string endOf(int status) {
        return WIFSIGNALED(status)
                   ? "it ends the process with signal " + std::to_string(WTERMSIG(status)) + " (" +
                         ::strsignal(WTERMSIG(status)) + ")"
                   : "it ends the process with status " + std::to_string(WEXITSTATUS(status));
    }

    ArrayPeer& m_peer;
    const pid_t m_child;
    const int m_fd;
    const int m_timeoutSeconds;
    std::string m_unread;
    std::string m_question;  // that has no result yet
    std::vector<CheckResult> m_results;
};

}  // namespace

std::vector<CheckResult> checkPlugin(const PluginCheckPlan& plan) {
    ArrayPeer peer;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pipe");
    }
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "no process");
    }
    if (child == 0) {
        ::close(ends[0]);
        runChild(plan, peer.port(), ends[1]);
    }
    ::close(ends[1]);
    std::vector<CheckResult> results = Watch(peer, child, ends[0], plan.timeoutSeconds).run();
    ::close(ends[0]);
    return results;
}
