"""Every allocation and every system call of a request fails in turn. After each the process lives,
the answer is a document or there is none, nothing leaks, and the next Ping is served.

By default every call of a warm process and a sample of those of a fresh one is tried; all are with
SAN_FAIL_ALL=1.
"""

import contextlib
import errno
import http.client
import mmap
import os
import struct
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import harness
import soap
from arraySimulator import ArraySimulator
from operations import OPERATIONS, VOLUME
from programs import BUILD, PRELOADED

LIBRARY = BUILD / "tests" / "support" / "libfailingCalls.so"
NOTHING, ALLOCATION, SYSTEM_CALL, ONE_BYTE = range(4)
LAYOUT = "iiqqq32s"
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

# What the manual pages name for a TCP socket, as far as the call can give it here.
ERRORS = {
    "socket": "EACCES EAFNOSUPPORT EINVAL EMFILE ENFILE ENOBUFS ENOMEM EPROTONOSUPPORT",
    "setsockopt": "EBADF EFAULT EINVAL ENOPROTOOPT ENOTSOCK",
    "connect": "EACCES EPERM EADDRINUSE EADDRNOTAVAIL EAFNOSUPPORT EAGAIN EALREADY EBADF "
               "ECONNREFUSED EFAULT EINPROGRESS EINTR EISCONN ENETUNREACH ENOTSOCK EPROTOTYPE "
               "ETIMEDOUT",
    "getsockname": "EBADF EFAULT EINVAL ENOBUFS ENOTSOCK",
    "getsockopt": "EBADF EFAULT EINVAL ENOPROTOOPT ENOTSOCK",
    "poll": "EFAULT EINTR EINVAL ENOMEM",
    "send": "EACCES EAGAIN EALREADY EBADF ECONNRESET EDESTADDRREQ EFAULT EINTR EINVAL EISCONN "
            "EMSGSIZE ENOBUFS ENOMEM ENOTCONN ENOTSOCK EOPNOTSUPP EPIPE",
    "recv": "EAGAIN EBADF ECONNREFUSED EFAULT EINTR EINVAL ENOMEM ENOTCONN ENOTSOCK",
    "close": "EBADF EINTR EIO ENOSPC EDQUOT",
    "getrandom": "EAGAIN EFAULT EINTR EINVAL ENOSYS",
}


class Failures:
    """What is to fail, shared with the server that is preloaded with the library."""

    def __init__(self):
        self._file = tempfile.NamedTemporaryFile()
        self._file.truncate(struct.calcsize(LAYOUT))
        os.chmod(self._file.name, 0o666)
        self._shared = mmap.mmap(self._file.fileno(), struct.calcsize(LAYOUT))
        self.environment = {"SAN_TEST_FAILURES": self._file.name,
                            "LD_PRELOAD": f"{LIBRARY}:{PRELOADED['LD_PRELOAD']}"}

    def _read(self):
        return struct.unpack(LAYOUT, self._shared[:])

    def set(self, kind, nth=0, error=0):
        self._shared[:] = struct.pack(LAYOUT, kind, error, nth, 0, self.blocks, b"")

    @property
    def count(self):
        return self._read()[3]

    @property
    def blocks(self):
        return self._read()[4]

    @property
    def failed(self):
        return self._read()[5].rstrip(b"\0").decode()

    def close(self):
        self._shared.close()
        self._file.close()


class FailingCallsTest(unittest.TestCase):
    def setUp(self):
        self.failures = Failures()
        self.addCleanup(self.failures.close)
        self.array = self.enterContext(
            ArraySimulator("--lenient", seed_file={"volumes": [VOLUME]}))

    def start(self, processes=1, **options):
        server = self.enterContext(harness.WebServer(
            mpm="prefork", threads=processes, api_manager_port=self.array.port,
            environment=self.failures.environment, **options))
        self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))
        self.array.take_requests()
        return server

    def send(self, server, request, kind, nth=0, error=0):
        """Gives whether a response came. What came is a document or nothing."""
        self.failures.set(kind, nth, error)
        reply = None
        with contextlib.suppress(http.client.HTTPException, ConnectionError):
            reply = server.post(request)
        if reply is not None and reply.body and "xml" in reply.headers.get("Content-Type", ""):
            ElementTree.fromstring(reply.body)
        return reply is not None and reply.status == 200

    def count(self, server, request, kind):
        self.send(server, request, kind)
        return self.failures.count

    def check(self, server, children=None):
        """The state after a failure."""
        self.assertLessEqual(len(self.array.take_requests()), 1)
        self.failures.set(NOTHING)
        self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))
        self.array.take_requests()
        if children:
            self.assertEqual(server.children(), children)
        self.assertNotIn("exit signal", server.error_log())

    def test_each_allocation_of_a_warm_process(self):
        server = self.start()
        children = server.children()
        for name, request in REQUESTS.items():
            for _ in range(3):  # what a process does once is the fresh one's
                total = self.count(server, request, ALLOCATION)
                self.check(server)
            self.assertGreater(total, 10)
            before = self.failures.blocks
            for nth in range(1, total + 1):
                with self.subTest(name, nth=nth):
                    self.send(server, request, ALLOCATION, nth)
                    self.assertTrue(self.failures.failed)
                    self.check(server, children)
            with self.subTest(name, what="leaks"):
                self.assertLessEqual(self.failures.blocks - before, 8)

    def test_allocations_of_a_fresh_process(self):
        server = self.start(processes=8, extra="MaxConnectionsPerChild 1")
        for name, request in REQUESTS.items():
            total = self.count(server, request, ALLOCATION)
            for nth in range(1, total + 1, 1 if ALL else max(1, total // FRESH_SAMPLE)):
                with self.subTest(name, nth=nth):
                    self.send(server, request, ALLOCATION, nth)
                    self.check(server)

    def test_each_system_call_with_each_error(self):
        server = self.start()
        children = server.children()
        request = REQUESTS["AddHccToSan"]
        total = self.count(server, request, SYSTEM_CALL)
        self.assertGreater(total, 4)
        self.check(server)
        for nth in range(1, total + 1):
            self.send(server, request, SYSTEM_CALL, nth, errno.EINTR)
            name = self.failures.failed
            self.check(server, children)
            for error in ERRORS[name].split():
                with self.subTest(name, nth=nth, error=error):
                    served = self.send(server, request, SYSTEM_CALL, nth, getattr(errno, error))
                    if error == "EINTR" and name != "connect":
                        self.assertTrue(served)
                    self.check(server, children)

    def test_one_byte_at_a_time(self):
        server = self.start()
        for name, request in REQUESTS.items():
            with self.subTest(name):
                served = self.send(server, request, ONE_BYTE)
                self.assertEqual(served, name != "a refused header")
                self.check(server)


if __name__ == "__main__":
    unittest.main()
