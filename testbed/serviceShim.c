/*
 * Preloaded into the web server by the service tests, so that they need no privileges and can run
 * beside each other:
 *
 *   SAN_TEST_APIMGR_PORT  the port that the service database has for "ostrel-apimgr";
 *                         empty for an entry that does not exist
 *   SAN_TEST_SYSLOG       the file that takes what goes to the system log, one line an entry:
 *                         identity, tab, priority, tab, text; a line feed within is a space.
 *                         Without it entries go to the system log.
 */
#include <arpa/inet.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <syslog.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

static int logFile = -1;
static const char* identity = "";

/* The C library's own. */
static void (*realOpenlog)(const char*, int, int);
static void (*realCloselog)(void);
static void (*realVsyslog)(int, const char*, va_list);
static int (*realGetservbyname)(const char*, const char*, struct servent*, char*, size_t,
                                struct servent**);

/* The file is opened before the server gives up its privileges, and inherited by its children. */
__attribute__((constructor)) static void prepare(void) {
    *(void**)&realOpenlog = dlsym(RTLD_NEXT, "openlog");
    *(void**)&realCloselog = dlsym(RTLD_NEXT, "closelog");
    *(void**)&realVsyslog = dlsym(RTLD_NEXT, "vsyslog");
    *(void**)&realGetservbyname = dlsym(RTLD_NEXT, "getservbyname_r");
    const char* path = getenv("SAN_TEST_SYSLOG");
    if (path) {
        logFile = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    }
}

EXPORT int getservbyname_r(const char* name, const char* proto, struct servent* entry, char* room,
                           size_t size, struct servent** result) {
    const char* port = getenv("SAN_TEST_APIMGR_PORT");
    if (!port || strcmp(name, "ostrel-apimgr") != 0) {
        return realGetservbyname(name, proto, entry, room, size, result);
    }
    *result = NULL;
    if (!*port) {
        return 0;
    }
    if (size < sizeof "tcp") {
        return ERANGE;
    }
    static char* noAliases[] = {NULL};
    *entry = (struct servent){.s_name = (char*)"ostrel-apimgr",
                              .s_aliases = noAliases,
                              .s_port = htons((uint16_t)atoi(port)),
                              .s_proto = memcpy(room, "tcp", sizeof "tcp")};
    *result = entry;
    return 0;
}

static void writeEntry(int priority, const char* format, va_list arguments) {
    char* text = NULL;
    if (logFile < 0) {
        realVsyslog(priority, format, arguments);
        return;
    }
    if (vasprintf(&text, format, arguments) < 0) {
        return;
    }
    size_t length = strlen(text);
    if (length > 0 && text[length - 1] == '\n') {
        text[--length] = '\0'; /* as the log daemon does */
    }
    for (char* feed = text; (feed = strchr(feed, '\n'));) {
        *feed = ' ';
    }
    char* line = NULL;
    int size = asprintf(&line, "%s\t%d\t%s\n", identity, priority, text);
    if (size > 0 && write(logFile, line, (size_t)size) != size) {
        perror("cannot write the log of the test");
    }
    free(line);
    free(text);
}

EXPORT void openlog(const char* ident, int option, int facility) {
    __atomic_store_n(&identity, ident, __ATOMIC_RELAXED);
    if (logFile < 0) {
        realOpenlog(ident, option, facility);
    }
}

EXPORT void closelog(void) {
    if (logFile < 0) {
        realCloselog();
    }
}

EXPORT void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    writeEntry(priority, format, arguments);
    va_end(arguments);
}

/* What the compiler calls in its place in a fortified build. */
// NOLINTNEXTLINE(bugprone-reserved-identifier)
EXPORT void __syslog_chk(int priority, int flag, const char* format, ...) {
    (void)flag;
    va_list arguments;
    va_start(arguments, format);
    writeEntry(priority, format, arguments);
    va_end(arguments);
}

/* Of ThreadSanitizer, where it runs. */
// NOLINTBEGIN(bugprone-reserved-identifier)
extern void __tsan_acquire(void* place) __attribute__((weak));
extern void __tsan_release(void* place) __attribute__((weak));
// NOLINTEND(bugprone-reserved-identifier)

/* The server's threads hand the memory of ended connections to each other through a list that this
 * function orders. No sanitizer instruments its own library, so it is told of the order here. */
EXPORT void* apr_atomic_casptr(void* volatile* place, void* with, const void* expected) {
    void* seen = (void*)expected;
    if (__tsan_release) {
        __tsan_release((void*)place);
    }
    __atomic_compare_exchange_n(place, &seen, with, 0, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    if (__tsan_acquire) {
        __tsan_acquire((void*)place);
    }
    return seen;
}
