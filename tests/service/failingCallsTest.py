"""Every allocation and every system call of a request fails, in turn. After each the process lives,
the answer is a document or there is none, nothing leaks, and the next Ping is served.

By default every call of a warm process and a sample of those of a fresh one is tried; all are with
SAN_FAIL_ALL=1, which prints how many that were.
"""

import contextlib
import http.client
import mmap
import os
import pathlib
import re
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import xml.etree.ElementTree as ElementTree

import harness
import soap
import webServer
from arraySimulator import ArraySimulator
from operations import OPERATIONS, VOLUME
from programs import BUILD, PRELOADED

LIBRARY = BUILD / "tests" / "support" / "libfailingCalls.so"
NOTHING, ONE_ALLOCATION, ALLOCATIONS_FROM, ONE_BYTE = range(4)
LAYOUT = "qqqq"  # and the count of blocks, which only the server writes
ALL = os.environ.get("SAN_FAIL_ALL") == "1"
FRESH_SAMPLE = 6  # of an operation

HEAD = soap.header(user="user:pass")
BODIES = {row.name: row.body for row in OPERATIONS}
REQUESTS = {
    "Ping": soap.PING,
    "a refused header": soap.envelope(BODIES["RemoveServer"], soap.header()),
    **{name: soap.envelope(BODIES[name], HEAD)
       for name in ("AddHccToSan", "AddServer", "HccAttachVolume")},
}

# What the manual pages name for a socket, as far as the call can give it here.
ERRORS = {
    "socket": "EACCES EAFNOSUPPORT EINVAL EMFILE ENFILE ENOBUFS ENOMEM EPROTONOSUPPORT",
    "setsockopt": "EBADF EFAULT EINVAL ENOPROTOOPT ENOTSOCK",
    "connect": "EACCES EPERM EADDRINUSE EADDRNOTAVAIL EAFNOSUPPORT EAGAIN EALREADY EBADF "
               "ECONNREFUSED EFAULT EINPROGRESS EINTR EISCONN ENETUNREACH ENOTSOCK EPROTOTYPE "
               "ETIMEDOUT ENOENT",
    "getsockname": "EBADF EFAULT EINVAL ENOBUFS ENOTSOCK",
    "getsockopt": "EBADF EFAULT EINVAL ENOPROTOOPT ENOTSOCK",
    "poll": "EFAULT EINTR EINVAL ENOMEM",
    "sendto": "EACCES EAGAIN EALREADY EBADF ECONNRESET EDESTADDRREQ EFAULT EINTR EINVAL EISCONN "
              "EMSGSIZE ENOBUFS ENOMEM ENOTCONN ENOTSOCK EOPNOTSUPP EPIPE",
    "recvfrom": "EAGAIN EBADF ECONNREFUSED EFAULT EINTR EINVAL ENOMEM ENOTCONN ENOTSOCK",
    "close": "EBADF EINTR EIO ENOSPC EDQUOT",
}

# Runs the rest of the command line where the socket of the log is the one in this folder.
WITH_LOG = ["unshare", "--mount", "sh", "-ec", """
    cd "$0"
    for device in null random urandom zero; do
        touch dev/$device
        mount --bind /dev/$device dev/$device
    done
    touch dev/log
    mount --bind log dev/log
    mount --rbind dev /dev
    exec "$@"
"""]


class Failures:
    """What is to fail, shared with the server that is preloaded with the library."""

    def __init__(self):
        self._file = tempfile.NamedTemporaryFile()
        self._file.truncate(struct.calcsize(LAYOUT + "q"))
        os.chmod(self._file.name, 0o666)
        self._shared = mmap.mmap(self._file.fileno(), 0)
        self.environment = {"SAN_TEST_FAILURES": self._file.name,
                            "LD_PRELOAD": f"{LIBRARY}:{PRELOADED['LD_PRELOAD']}"}

    def set(self, kind, nth=0):
        struct.pack_into(LAYOUT, self._shared, 0, kind, nth, 0, 0)

    @property
    def count(self):
        return struct.unpack_from(LAYOUT, self._shared)[2]

    @property
    def failed(self):
        return struct.unpack_from(LAYOUT, self._shared)[3]

    @property
    def blocks(self):
        return struct.unpack_from("q", self._shared, struct.calcsize(LAYOUT))[0]

    def close(self):
        self._shared.close()
        self._file.close()


class FailingCallsTest(unittest.TestCase):
    def setUp(self):
        self.failures = Failures()
        self.addCleanup(self.failures.close)
        self.array = self.enterContext(
            ArraySimulator("--lenient", seed_file={"volumes": [VOLUME]}))
        self.tried = 0

    def tearDown(self):
        if ALL:
            print(self.tried, "tried", end=" ", file=sys.stderr)

    def start(self, processes=1, mpm="prefork", **options):
        server = self.enterContext(harness.WebServer(
            mpm=mpm, threads=processes, api_manager_port=self.array.port,
            environment=self.failures.environment, **options))
        self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))
        self.array.take_requests()
        return server

    def send(self, server, request):
        """Gives whether a reply came. What came is a document or nothing."""
        reply = None
        with contextlib.suppress(http.client.HTTPException, ConnectionError):
            reply = server.post(request)
        if reply is not None and reply.body and "xml" in reply.headers.get("Content-Type", ""):
            ElementTree.fromstring(reply.body)
        return reply is not None and reply.status == 200

    def send_failing(self, server, request, kind, nth=0):
        self.failures.set(kind, nth)
        self.tried += 1
        return self.send(server, request)

    def check(self, server, children=None):
        """The state after a failure."""
        self.assertLessEqual(len(self.array.take_requests()), 1)
        self.failures.set(NOTHING)
        self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))
        self.array.take_requests()
        if children:
            self.assertEqual(server.children(), children)
        self.assertIsNone(webServer.TROUBLE.search(server.error_log()))

    def count(self, server, request):
        """How many allocations a request makes. What a process does once is the fresh one's."""
        for _ in range(3):
            self.send_failing(server, request, ONE_ALLOCATION)
            total = self.failures.count
            self.check(server)
        self.assertGreater(total, 10)
        return total

    def test_each_allocation_of_a_warm_process(self):
        server = self.start()
        children = server.children()
        for name, request in REQUESTS.items():
            total = self.count(server, request)
            for kind in (ONE_ALLOCATION, ALLOCATIONS_FROM):
                before = self.failures.blocks
                for nth in range(1, total + 1):
                    with self.subTest(name, kind=kind, nth=nth):
                        self.send_failing(server, request, kind, nth)
                        # A line that the log's watch gives up on a busy machine is not made.
                        self.assertEqual(self.failures.failed > 0, self.failures.count >= nth)
                        self.check(server, children)
                with self.subTest(name, kind=kind, what="leaks"):
                    self.assertLessEqual(self.failures.blocks - before, 8)

    def test_allocations_of_a_fresh_process_or_thread(self):
        for mpm, size, extra in (("prefork", 8, "MaxConnectionsPerChild 1"), ("event", 64, "")):
            server = self.start(size, mpm=mpm, extra=extra)
            children = [] if extra else server.children()
            for name, request in REQUESTS.items():
                self.send_failing(server, request, ONE_ALLOCATION)
                total = self.failures.count
                for kind in (ONE_ALLOCATION, ALLOCATIONS_FROM):
                    for nth in range(1, total + 1, 1 if ALL else max(1, total // FRESH_SAMPLE)):
                        with self.subTest(name, mpm=mpm, kind=kind, nth=nth):
                            self.send_failing(server, request, kind, nth)
                            self.check(server, children)

    def traced(self, server, request, *options):
        """Gives a request's system calls as strace writes them, from the service's first to the web
        server's reply, and whether it was served. Those are seen too that the C library makes
        within `syslog`."""
        (child,) = server.children()
        with tempfile.NamedTemporaryFile("r") as trace:
            tracer = subprocess.Popen(
                ["strace", "-qq", "-o", trace.name, "-p", str(child),
                 "-e", "trace=writev," + ",".join(ERRORS), *options])
            status = pathlib.Path(f"/proc/{child}/status")
            while f"TracerPid:\t{tracer.pid}\n" not in status.read_text():
                self.assertIsNone(tracer.poll())
                time.sleep(0.001)
            served = self.send(server, request)
            tracer.terminate()
            tracer.wait()
            calls = re.search(r"(socket\(.*?)(writev|\Z)|\Z", trace.read(), re.DOTALL)[1]
        return (calls or "").splitlines(), served

    def fail_call(self, server, request, at, call, *options):
        """Gives whether the request was served of which this call failed."""
        for _ in range(100):  # the web server may still have been at the request before
            self.array.take_requests()
            calls, served = self.traced(server, request, *options)
            if call in (calls[at:] or [""])[0] and "(INJECTED)" in calls[at]:
                return served
        self.fail(f"{call} was not made to fail: {calls}")

    def start_with_log(self):
        """A server whose log lines go where the C library sends them. Only root can."""
        if os.getuid() != 0:
            return self.start()
        folder = self.enterContext(tempfile.TemporaryDirectory())
        os.chmod(folder, 0o755)
        os.mkdir(folder + "/dev")
        log = self.enterContext(socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM))
        log.bind(folder + "/log")
        os.chmod(folder + "/log", 0o666)
        reader = threading.Thread(target=lambda: all(iter(lambda: log.recv(1), b"")))
        self.addCleanup(reader.join)
        self.addCleanup(log.shutdown, socket.SHUT_RD)
        reader.start()
        return self.start(wrapper=[*WITH_LOG, folder], collect_syslog=False)

    def test_each_system_call_with_each_error(self):
        server = self.start_with_log()
        children = server.children()
        large = soap.envelope(BODIES["AddHccToSan"].replace("k1", "k" * 40000), HEAD)
        interrupted = ["-e", f"inject=connect:error=EINTR:when={1 + (os.getuid() == 0)}"]
        tried = set()
        for request, options in ((REQUESTS["AddHccToSan"], []), (large, []),
                                 (REQUESTS["Ping"], interrupted)):
            calls, served = self.traced(server, request, *options)
            self.assertEqual(served, not options)
            names = [re.match(r"\w+", call)[0] for call in calls]
            logs = re.search(r"socket\(AF_UNIX.* = (\d+)|$", calls[0])[1]
            for at, (name, call) in enumerate(zip(names, calls)):
                nth = names[:at + 1].count(name)
                harmless = (name in ("close", "getsockname", "setsockopt")
                            or call.startswith((f"{name}({logs},", "socket(AF_UNIX")))
                for error in ERRORS[name].split() if (name, nth) not in tried else []:
                    with self.subTest(call, error=error):
                        self.tried += 1
                        served = self.fail_call(server, request, at, name, *options, "-e",
                                                f"inject={name}:error={error}:when={nth}")
                        if harmless or (error == "EINTR" and name != "connect"):
                            self.assertEqual(served, not options)
                        self.check(server, children)
                tried.add((name, nth))
        self.assertEqual({name for name, _ in tried}, set(ERRORS))

    def test_one_byte_at_a_time(self):
        server = self.start()
        for name, request in REQUESTS.items():
            with self.subTest(name):
                served = self.send_failing(server, request, ONE_BYTE)
                self.assertEqual(served, name != "a refused header")
                self.check(server)


if __name__ == "__main__":
    unittest.main()
