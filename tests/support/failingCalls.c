/*
 * Preloaded into the web server: makes allocations fail while the service serves a request, which
 * is between its openlog and its closelog, and while the module makes a context for it. What fails
 * is in the file that SAN_TEST_FAILURES names, mapped as the struct below, and can be changed while
 * the server runs:
 *
 *   kind    0 nothing, 1 one allocation, 2 it and all that follow, 3 each read and write of a
 *           socket moves one byte
 *   nth     which allocation, counted from 1; with 0 they are counted only
 *   count   allocations so far; the test sets it to 0
 *   failed  how many of them failed; the test sets it to 0
 *   blocks  allocations of the process that are not freed
 */
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

enum kind { kNothing, kOneAllocation, kAllocationsFrom, kOneByte };

/* A context of the engine is larger than all else that is allocated in one piece. */
#define CONTEXT_SIZE (100 * 1024)

struct failures {
    int64_t kind;
    int64_t nth;
    int64_t count;
    int64_t failed;
    int64_t blocks;
};

static struct failures none;
static struct failures* failures = &none;
static __thread int serving;
static __thread void* context; /* that the module makes */

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

/* Whether this allocation fails. */
static int fails(void) {
    const int64_t kind = failures->kind;
    if ((!serving && !context) || (kind != kOneAllocation && kind != kAllocationsFrom)) {
        return 0;
    }
    const int64_t nth = failures->nth;
    const int64_t count = __atomic_add_fetch(&failures->count, 1, __ATOMIC_RELAXED);
    if (nth == 0 || count < nth || (count > nth && kind == kOneAllocation)) {
        return 0;
    }
    __atomic_add_fetch(&failures->failed, 1, __ATOMIC_RELAXED);
    errno = ENOMEM;
    return 1;
}

static void* counted(void* block) {
    if (block) {
        __atomic_add_fetch(&failures->blocks, 1, __ATOMIC_RELAXED);
    }
    return block;
}

EXPORT void* malloc(size_t size) {
    return fails() ? NULL : counted(__libc_malloc(size));
}

EXPORT void* calloc(size_t count, size_t size) {
    if (count != 1 || size < CONTEXT_SIZE || serving) {
        return fails() ? NULL : counted(__libc_calloc(count, size));
    }
    context = counted(__libc_calloc(count, size));
    if (!fails()) {
        return context;
    }
    free(context);
    return NULL;
}

EXPORT void* realloc(void* block, size_t size) {
    if (fails()) {
        return NULL;
    }
    return block ? __libc_realloc(block, size) : counted(__libc_malloc(size));
}

EXPORT int posix_memalign(void** result, size_t alignment, size_t size) {
    void* block = fails() ? NULL : counted(__libc_memalign(alignment, size));
    if (block) {
        *result = block;
    }
    return block ? 0 : ENOMEM;
}

EXPORT void* aligned_alloc(size_t alignment, size_t size) {
    return fails() ? NULL : counted(__libc_memalign(alignment, size));
}

EXPORT void free(void* block) {
    if (block == context) {
        context = NULL;
    }
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
    context = NULL;
}

EXPORT void closelog(void) {
    serving = 0;
    REAL(closelog)();
}

/* Of the web server's pools, which do not come from malloc. */
void* apr_allocator_alloc(void*, size_t);
EXPORT void* apr_allocator_alloc(void* allocator, size_t size) {
    return fails() ? NULL : REAL(apr_allocator_alloc)(allocator, size);
}

static size_t moved(size_t size) {
    return failures->kind == kOneByte && size > 1 ? 1 : size;
}

EXPORT ssize_t send(int fd, const void* data, size_t size, int flags) {
    return REAL(send)(fd, data, moved(size), flags);
}

EXPORT ssize_t recv(int fd, void* data, size_t size, int flags) {
    return REAL(recv)(fd, data, moved(size), flags);
}

/* The web server's own, of the client's connection. */
EXPORT ssize_t read(int fd, void* data, size_t size) {
    return REAL(read)(fd, data, moved(size));
}

EXPORT ssize_t writev(int fd, const struct iovec* pieces, int count) {
    const struct iovec first = {pieces->iov_base, moved(pieces->iov_len)};
    return failures->kind == kOneByte ? REAL(writev)(fd, &first, 1)
                                      : REAL(writev)(fd, pieces, count);
}
