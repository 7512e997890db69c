#include "apiMgmt/common/utils/logWatch.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

namespace LogWatch {

/// One thread that writes lines. The count is odd while a line is under way.
struct Slot {
    std::atomic<pid_t> thread{0};  // 0: free
    std::atomic<std::uint32_t> count{0};
    std::atomic<std::uint32_t> interruptions{0};  // of the line that is under way
    std::uint32_t seen = 0;                       // the watcher's own
};

namespace {

using std::chrono::milliseconds;

// A line hangs when two looks in a row find it. Looks are rare while no lines are written.
constexpr milliseconds kFirstPause{250};
constexpr milliseconds kMaxPause{1000};
// While lines hang, each thread in turn has to be interrupted twice: the C library tries again.
constexpr milliseconds kPauseInTrouble{10};
constexpr milliseconds kProbePause{1000};
constexpr std::uint32_t kInterruptionsOfLostLine = 2;

// More threads than that write without being watched.
constexpr std::size_t kMaxThreads = 512;

std::array<Slot, kMaxThreads> slots;
std::atomic<std::size_t> slotsInUse{0};  // those behind were never taken
std::atomic<bool> stalled{false};
std::atomic<bool> watching{false};
std::atomic<std::uint64_t> lost{0};
std::atomic<std::uint64_t> unreported{0};
std::atomic<unsigned> process{0};  // changes in a child process, whose threads are others
std::atomic<int> wakeSignal{0};
pthread_key_t slotKey;

/// Interrupts the threads whose line was under way at the last look already; gives how many, and
/// whether any line was written since then.
std::size_t interruptHanging(bool& active) {
    std::size_t hanging = 0;
    const pid_t self = ::getpid();
    for (std::size_t i = 0; i < slotsInUse.load(std::memory_order_acquire); ++i) {
        Slot& slot = slots[i];
        const std::uint32_t count = slot.count.load(std::memory_order_acquire);
        if (count != slot.seen) {
            slot.seen = count;
            active = true;
        } else if (count % 2 == 1) {
            ++hanging;
            slot.interruptions.fetch_add(1, std::memory_order_relaxed);
            (void)::syscall(SYS_tgkill, self, slot.thread.load(std::memory_order_relaxed),
                            wakeSignal.load(std::memory_order_relaxed));
        }
    }
    return hanging;
}

/// Whether a line would be taken at once, or refused at once as where no daemon listens.
bool daemonAnswers() {
    const int fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0) {
        return false;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, _PATH_LOG, sizeof(address.sun_path) - 1);
    pollfd asked{fd, POLLOUT, 0};
    const bool answers =
        ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::poll(&asked, 1, 0) == 1;
    ::close(fd);
    return answers;
}

[[noreturn]] void* watch(void*) {
    milliseconds pause = kFirstPause;
    while (true) {
        std::this_thread::sleep_for(pause);
        bool active = false;
        if (interruptHanging(active) != 0) {
            stalled.store(true, std::memory_order_relaxed);
            pause = kPauseInTrouble;
        } else if (stalled.load(std::memory_order_relaxed)) {
            // Threads wait one behind the other, so one look without a line that hangs is not yet
            // the end of it.
            const bool over = !active && daemonAnswers();
            pause = over ? kFirstPause : active ? kPauseInTrouble : kProbePause;
            stalled.store(!over, std::memory_order_relaxed);
        } else {
            pause = active ? kFirstPause : std::min(2 * pause, kMaxPause);
        }
    }
}

/// When a thread ends. One that a child process inherited is forgotten already.
void freeSlot(void* slot) {
    static_cast<Slot*>(slot)->thread.store(0, std::memory_order_release);
}

/// A real-time signal that nobody in the process uses, with a handler that does nothing: it is
/// sent for its side effect, to end a system call. 0 when there is none.
int claimSignal() {
    for (int number = SIGRTMAX; number >= SIGRTMIN; --number) {
        struct sigaction action {};
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
            action = {};
            action.sa_handler = [](int) {};
            return ::sigaction(number, &action, nullptr) == 0 ? number : 0;
        }
    }
    return 0;
}

/// In a child process there is no watcher, and none of the threads that had slots.
void forgetThreads() {
    for (Slot& slot : slots) {
        slot.thread.store(0, std::memory_order_relaxed);
        slot.count.store(0, std::memory_order_relaxed);
        slot.seen = 0;
    }
    slotsInUse.store(0, std::memory_order_relaxed);
    stalled.store(false, std::memory_order_relaxed);
    watching.store(false, std::memory_order_relaxed);
    process.fetch_add(1, std::memory_order_relaxed);
}

bool startThread() {
    // The process's signals are not for the watcher: handlers of the web server end the process
    // on the thread that they run on.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread{};
    const bool started = ::pthread_create(&thread, nullptr, &watch, nullptr) == 0;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (started) {
        ::pthread_detach(thread);
    }
    return started;
}

/// Once, for a process and all that it forks. False where the system cannot do it, and lines are
/// written without a watcher. A thread that comes meanwhile waits: until the key is made, its value
/// is that of another library's.
bool prepareWatching() {
    static const bool isPrepared = [] {
        const bool hasKey = ::pthread_atfork(nullptr, nullptr, &forgetThreads) == 0 &&
                            ::pthread_key_create(&slotKey, &freeSlot) == 0;
        wakeSignal.store(hasKey ? claimSignal() : 0, std::memory_order_relaxed);
        return wakeSignal.load(std::memory_order_relaxed) != 0;
    }();
    return isPrepared;
}

/// Once for each process.
void startWatcher() {
    if (!watching.exchange(true, std::memory_order_relaxed) && !startThread()) {
        watching.store(false, std::memory_order_relaxed);
    }
}

Slot* takeSlot() {
    const auto thread = static_cast<pid_t>(::syscall(SYS_gettid));
    for (std::size_t i = 0; i < slots.size(); ++i) {
        pid_t free = 0;
        if (slots[i].thread.compare_exchange_strong(free, thread, std::memory_order_acquire)) {
            std::size_t used = slotsInUse.load(std::memory_order_relaxed);
            while (used <= i && !slotsInUse.compare_exchange_weak(used, i + 1)) {
            }
            return &slots[i];
        }
    }
    return nullptr;
}

/// A threaded web server blocks nearly all signals in the threads that serve.
void unblockSignal() {
    sigset_t wake;
    ::sigemptyset(&wake);
    ::sigaddset(&wake, wakeSignal.load(std::memory_order_relaxed));
    ::pthread_sigmask(SIG_UNBLOCK, &wake, nullptr);
}

/// A slot for this thread from now on; null when there is none.
Slot* enterSlot() {
    if (!prepareWatching()) {
        return nullptr;
    }
    startWatcher();
    unblockSignal();
    Slot* slot = takeSlot();
    // Not by a destructor: registering one ends the process where memory has run out.
    if (slot != nullptr && ::pthread_setspecific(slotKey, slot) != 0) {
        slot->thread.store(0, std::memory_order_release);
        return nullptr;
    }
    return slot;
}

/// Null for a thread that is not watched.
Slot* ownSlot() {
    constexpr unsigned kNone = ~0U;
    thread_local Slot* slot = nullptr;
    thread_local unsigned slotsProcess = kNone;
    const unsigned now = process.load(std::memory_order_relaxed);
    if (slotsProcess != now) {
        slotsProcess = now;
        slot = enterSlot();
    }
    return slot;
}

/// Only the thread itself counts in its slot.
void countLine(Slot& slot) {
    slot.count.store(slot.count.load(std::memory_order_relaxed) + 1, std::memory_order_release);
}

}  // namespace

void countLost() {
    lost.fetch_add(1, std::memory_order_relaxed);
    unreported.fetch_add(1, std::memory_order_relaxed);
}

Line::Line() : m_mayBeWritten(!stalled.load(std::memory_order_relaxed)) {
    if (!m_mayBeWritten) {
        countLost();
    } else if ((m_slot = ownSlot()) != nullptr) {
        countLine(*m_slot);
    }
}

Line::~Line() {
    if (m_slot == nullptr) {
        return;
    }
    countLine(*m_slot);
    if (m_slot->interruptions.load(std::memory_order_relaxed) != 0 &&
        m_slot->interruptions.exchange(0) >= kInterruptionsOfLostLine) {
        countLost();
    }
}

std::uint64_t lostLines() {
    return lost.load(std::memory_order_relaxed);
}

std::uint64_t takeUnreported() {
    if (unreported.load(std::memory_order_relaxed) == 0 ||
        stalled.load(std::memory_order_relaxed)) {
        return 0;
    }
    return unreported.exchange(0, std::memory_order_relaxed);
}

}  // namespace LogWatch
