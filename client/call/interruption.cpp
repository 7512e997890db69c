#include "client/call/interruption.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace client {

namespace {

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

}  // namespace

Interruption::Interruption() {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_signals = signalfd(-1, &signals, SFD_CLOEXEC);
    m_finish = eventfd(0, EFD_CLOEXEC);
    if (m_signals < 0 || m_finish < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
}

Interruption::~Interruption() {
    close(m_signals);
    close(m_finish);
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void Interruption::finish() const {
    eventfd_write(m_finish, 1);
}

Interruption::Event Interruption::wait(double seconds, int input) const {
    constexpr double kMilliseconds = 1000;
    std::array<pollfd, 3> files = {pollfd{m_signals, POLLIN, 0}, pollfd{m_finish, POLLIN, 0},
                                   pollfd{input, POLLIN, 0}};
    const int timeout = static_cast<int>(std::max(seconds, 0.0) * kMilliseconds);
    if (poll(files.data(), files.size(), timeout) <= 0) {
        return Event::Timeout;
    }
    if (files[0].revents != 0) {
        signalfd_siginfo taken;
        return read(m_signals, &taken, sizeof(taken)) > 0 ? Event::Signal : Event::Timeout;
    }
    return files[1].revents != 0 ? Event::Finish : Event::Input;
}

}  // namespace client
