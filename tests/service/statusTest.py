"""What the module knows about its calls: the limit of calls at once, the notes for the access log,
and the counters over all processes."""

import concurrent.futures
import os
import re
import signal
import socket
import time
import unittest

import harness
import soap
from soap import PING
from webServer import PATH, WebServer


def wait_until(holds, seconds=60):
    """Ends when it holds, at the latest after so long, and gives the last answer."""
    for _ in range(seconds * 10):
        if found := holds():
            return found
        time.sleep(0.1)
    return holds()


class SilentArray:
    """An API manager that takes requests and never answers, until it is released."""

    def __enter__(self):
        self.listener = socket.create_server(("127.0.0.1", 0), backlog=64)
        self.port = self.listener.getsockname()[1]
        return self

    def __exit__(self, *exception):
        self.release()

    def release(self):
        """Whoever waits is hung up on, and nobody listens any more."""
        self.listener.close()


class MaxCallsTest(unittest.TestCase):
    LIMIT = 2

    def start(self, mpm, array):
        return self.enterContext(WebServer(
            mpm=mpm, threads=8, api_manager_port=array.port,
            extra=f"<Location {PATH}>\nSOAPMaxCalls {self.LIMIT}\n</Location>"))

    def fill(self, server):
        """Calls that wait for the array, as many as may: their futures."""
        pool = self.enterContext(concurrent.futures.ThreadPoolExecutor(self.LIMIT))
        waiting = []
        for _ in range(self.LIMIT):
            before = len(server.syslog())
            waiting.append(pool.submit(server.post, PING))
            wait_until(lambda: len(server.syslog()) >= before + 2)
        return waiting

    def test_a_silent_array_leaves_the_rest_of_the_server_alone(self):
        for mpm in ("event", "prefork"):
            with self.subTest(mpm), SilentArray() as array:
                server = self.start(mpm, array)
                (server.directory / "documents" / "page").write_text("static")
                waiting = self.fill(server)
                for _ in range(3):
                    refused = server.post(PING)
                    self.assertEqual((refused.status, refused.headers["Retry-After"]), (503, "1"))
                    self.assertEqual(server.request("GET", "/page").text, "static")
                    self.assertEqual(server.request("GET", PATH + "?wsdl").status, 200)
                    # Refused on the word of its header, before the body comes.
                    self.assertIn(b" 503 ", server.send_raw(
                        b"POST %s HTTP/1.1\r\nHost: a\r\nContent-Length: 999\r\n\r\n"
                        % PATH.encode()))
                array.release()
                for call in waiting:
                    self.assertEqual(call.result().status, 500)
                self.assertEqual(server.post(PING).status, 500)  # the places are free again

    def test_a_process_that_dies_gives_its_places_back(self):
        with SilentArray() as array:
            server = self.start("prefork", array)
            waiting = self.fill(server)
            self.assertEqual(server.post(PING).status, 503)
            before = set(server.children())
            server.process.send_signal(signal.SIGUSR1)  # the counts outlive a restart

            def left():
                return before & set(server.children())
            wait_until(lambda: len(left()) == self.LIMIT and len(server.children()) > self.LIMIT)
            self.assertEqual(server.post(PING).status, 503)
            for pid in left():
                os.kill(pid, signal.SIGKILL)
            for call in waiting:
                self.assertIsInstance(call.exception(), ConnectionError)
            array.release()
            self.assertTrue(wait_until(lambda: server.post(PING).status == 500))


HEAD = soap.header(user="user:pass")
REMOVE = "<ns1:RemoveHccFromSan><sanId>s</sanId><hccId>{}</hccId></ns1:RemoveHccFromSan>"


class NotesTest(harness.ServiceCase):
    simulator_arguments = ["--lenient"]
    CALLS = [
        # request, its notes: operation, outcome, reason, whether the array was asked, cluster
        (PING, "Ping answered - yes -"),
        (soap.envelope("<ns1:Ping/>", ""), "- refused_by_service - no -"),
        (soap.envelope("<ns1:Unknown/>", HEAD), "- refused_by_service - no -"),
        (soap.envelope(REMOVE.format("c1"), HEAD), "RemoveHccFromSan answered - yes c1"),
        (soap.envelope(REMOVE.format("a&#10;b&quot; \u009b" + "é" * 40), HEAD),
         "RemoveHccFromSan answered - yes a?b? ??" + "é" * 28 + "?"),
        ("", "- refused_by_gate no_xml no -"),
        ("<!DOCTYPE a>", "- refused_by_gate hostile no -"),
        ("<a>" + "b" * 140000, "- refused_by_gate size no -"),
    ]
    FAULTS = [("refuse", "refused_by_array"), ("garbage", "no_answer_of_array")]

    def notes(self):
        """The notes of the last line of the access log."""
        line = (self.server.directory / "access.log").read_text().splitlines()[-1]
        found = re.search(r'op=(\S+) outcome=(\S+) why=(\S+) array-us=(\S+) cluster="(.*)"$', line)
        operation, outcome, reason, waited, cluster = found.groups()
        cluster = re.sub(r"\\x(..)", lambda m: chr(int(m[1], 16)), cluster)
        return " ".join((operation, outcome, reason, "yes" if waited.isdigit() else "no",
                         cluster.encode("latin-1").decode()))

    def test_the_access_log_says_what_came_of_each_request(self):
        calls = [(None, call, expected) for call, expected in self.CALLS]
        calls += [(fault, PING, f"Ping {outcome} - yes -") for fault, outcome in self.FAULTS]
        for fault, request, expected in calls:
            with self.subTest(expected):
                if fault:
                    self.array.fail(fault, command="Ping")
                self.server.post(request)
                self.assertTrue(wait_until(lambda: self.notes() == expected, 5), self.notes())


if __name__ == "__main__":
    unittest.main()
