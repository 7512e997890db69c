/*
 * Preloaded into the web server: makes one call fail while the service serves a request, which is
 * between its openlog and its closelog. What fails is in the file that SAN_TEST_FAILURES names,
 * mapped as the struct below, and can be changed while the server runs:
 *
 *   kind    0 nothing, 1 an allocation, 2 a system call, 3 each system call that reads or writes
 *           moves one byte
 *   nth     which call, counted from 1; with 0 calls are counted only
 *   error   errno of a system call that fails
 *   count   calls so far; the test sets it to 0
 *   blocks  allocations of the process that are not freed
 *   failed  name of the call that failed
 */
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <malloc.h>
#include <netdb.h>
#include <poll.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

enum kind { kNothing, kAllocation, kSystemCall, kOneByte };

struct failures {
    int32_t kind;
    int32_t error;
    int64_t nth;
    int64_t count;
    int64_t blocks;
    char failed[32];
};

static struct failures none;
static struct failures* failures = &none;
static __thread int serving;

/* The C library's own, under the names by which it offers them to such libraries. */
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);
// NOLINTEND(bugprone-reserved-identifier)

__attribute__((constructor)) static void mapFailures(void) {
    const char* path = getenv("SAN_TEST_FAILURES");
    int file = path ? open(path, O_RDWR | O_CLOEXEC) : -1;
    void* mapped = file < 0
                       ? MAP_FAILED
                       : mmap(NULL, sizeof *failures, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED) {
        failures = mapped;
    }
}

/* Whether this call is the one that fails. */
static int fails(enum kind kind, const char* name) {
    if (!serving || failures->kind != (int)kind ||
        __atomic_add_fetch(&failures->count, 1, __ATOMIC_RELAXED) != failures->nth) {
        return 0;
    }
    strncpy(failures->failed, name, sizeof failures->failed - 1);
    errno = kind == kAllocation ? ENOMEM : failures->error;
    return 1;
}

static void* counted(void* block) {
    if (block) {
        __atomic_add_fetch(&failures->blocks, 1, __ATOMIC_RELAXED);
    }
    return block;
}

EXPORT void* malloc(size_t size) {
    return fails(kAllocation, "malloc") ? NULL : counted(__libc_malloc(size));
}

EXPORT void* calloc(size_t count, size_t size) {
    return fails(kAllocation, "calloc") ? NULL : counted(__libc_calloc(count, size));
}

EXPORT void* realloc(void* block, size_t size) {
    if (fails(kAllocation, "realloc")) {
        return NULL;
    }
    return block ? __libc_realloc(block, size) : counted(__libc_malloc(size));
}

EXPORT int posix_memalign(void** result, size_t alignment, size_t size) {
    void* block =
        fails(kAllocation, "posix_memalign") ? NULL : counted(__libc_memalign(alignment, size));
    if (block) {
        *result = block;
    }
    return block ? 0 : ENOMEM;
}

EXPORT void* aligned_alloc(size_t alignment, size_t size) {
    return fails(kAllocation, "aligned_alloc") ? NULL : counted(__libc_memalign(alignment, size));
}

EXPORT void free(void* block) {
    if (block) {
        __atomic_sub_fetch(&failures->blocks, 1, __ATOMIC_RELAXED);
    }
    __libc_free(block);
}

/* The real function of this name, of the type of the one that stands in for it. */
#define REAL(name) (*(__typeof__(&name)*)&(void*){dlsym(RTLD_NEXT, #name)})

EXPORT void openlog(const char* identity, int option, int facility) {
    REAL(openlog)(identity, option, facility);
    serving = strcmp(identity, "SANService") == 0;
}

EXPORT void closelog(void) {
    serving = 0;
    REAL(closelog)();
}

EXPORT int socket(int domain, int type, int protocol) {
    return fails(kSystemCall, "socket") ? -1 : REAL(socket)(domain, type, protocol);
}

EXPORT int setsockopt(int fd, int level, int name, const void* value, socklen_t size) {
    return fails(kSystemCall, "setsockopt") ? -1 : REAL(setsockopt)(fd, level, name, value, size);
}

EXPORT int connect(int fd, __CONST_SOCKADDR_ARG address, socklen_t size) {
    return fails(kSystemCall, "connect") ? -1 : REAL(connect)(fd, address, size);
}

EXPORT int getsockname(int fd, __SOCKADDR_ARG address, socklen_t* size) {
    return fails(kSystemCall, "getsockname") ? -1 : REAL(getsockname)(fd, address, size);
}

EXPORT int getsockopt(int fd, int level, int name, void* value, socklen_t* size) {
    return fails(kSystemCall, "getsockopt") ? -1 : REAL(getsockopt)(fd, level, name, value, size);
}

EXPORT int poll(struct pollfd* polled, nfds_t count, int timeout) {
    return fails(kSystemCall, "poll") ? -1 : REAL(poll)(polled, count, timeout);
}

static size_t moved(size_t size) {
    return serving && failures->kind == kOneByte && size > 1 ? 1 : size;
}

EXPORT ssize_t send(int fd, const void* data, size_t size, int flags) {
    return fails(kSystemCall, "send") ? -1 : REAL(send)(fd, data, moved(size), flags);
}

EXPORT ssize_t recv(int fd, void* data, size_t size, int flags) {
    return fails(kSystemCall, "recv") ? -1 : REAL(recv)(fd, data, moved(size), flags);
}

EXPORT ssize_t getrandom(void* data, size_t size, unsigned flags) {
    return fails(kSystemCall, "getrandom") ? -1 : REAL(getrandom)(data, size, flags);
}

/* The descriptor is given back all the same, as the system does. */
EXPORT int close(int fd) {
    const int failed = fails(kSystemCall, "close");
    const int error = errno;
    const int result = REAL(close)(fd);
    if (failed) {
        errno = error;
    }
    return failed ? -1 : result;
}
