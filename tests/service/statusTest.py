"""What the module knows about its calls: the limit of calls at once, the notes for the access log,
and the counters over all processes."""

import concurrent.futures
import contextlib
import os
import re
import signal
import socket
import tempfile
import time
import unittest

from arraySimulator import ArraySimulator
import harness
import soap
from soap import PING
import webServer
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
                    for path in PATH + "?wsdl", "/san-status", "/san-status/metrics":
                        self.assertEqual(server.request("GET", path).status, 200)
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
    FAULTS = [("refuse", "refused_by_array"), ("garbage", "no_answer_of_array"),
              ("badXml", "no_answer_of_array"), ("twoReturns", "no_answer_of_array")]

    def notes(self):
        """The notes of the last line of the access log; none before the first line."""
        log = (self.server.directory / "access.log").read_text()
        found = re.search(r'op=(\S+) outcome=(\S+) why=(\S+) array-us=(\S+) cluster="(.*)"\n\Z', log)
        if found is None:
            return None
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
                wait_until(lambda: self.notes() == expected)
                self.assertEqual(self.notes(), expected)


STATUS = """
LoadModule status_module /usr/lib/apache2/modules/mod_status.so
<Location /status>
    SetHandler gsoap-status
</Location>
<Location /server-status>
    SetHandler server-status
</Location>
<Location {path}>
    SOAPMaxCalls 2
    SOAPPing "{ping}" 1
</Location>
"""


def metrics(server):
    """The samples by name and labels, without the location's."""
    lines = server.request("GET", "/status/metrics").text.splitlines()
    samples = dict(line.rsplit(" ", 1) for line in lines if not line.startswith("#"))
    return {name.replace(f'location="{PATH}",', "").replace(f'{{location="{PATH}"}}', ""):
            float(value) for name, value in samples.items()}


class StatusTest(unittest.TestCase):
    def start(self, array):
        ping = self.enterContext(tempfile.NamedTemporaryFile("w", suffix=".xml"))
        ping.write(PING)
        ping.flush()
        return self.enterContext(WebServer(
            mpm="prefork", threads=4, api_manager_port=array.port,
            extra=STATUS.format(path=PATH, ping=ping.name)))

    def test_counts_of_all_processes_outlive_a_restart(self):
        with ArraySimulator("--lenient") as array:
            server = self.start(array)
            for _ in range(2):
                with concurrent.futures.ThreadPoolExecutor(2) as pool:
                    list(pool.map(server.post, [PING] * 10))
                server.process.send_signal(signal.SIGUSR1)
                wait_until(lambda: server.error_log().count("resuming normal operations") > 1)
            array.fail("refuse", command="RemoveHccFromSan")
            server.post(soap.envelope(REMOVE.format("c"), HEAD))
            array.fail("delay", command="RemoveHccFromSan", delayMs=30)
            server.post(soap.envelope(REMOVE.format("c"), HEAD))
            server.request("GET")
            seen = metrics(server)
            rows = [
                ('san_calls_total{operation="Ping",outcome="answered"}', 20),
                ('san_calls_total{operation="RemoveHccFromSan",outcome="answered"}', 1),
                ('san_calls_total{operation="RemoveHccFromSan",outcome="refused_by_array"}', 1),
                ('san_call_duration_seconds_count{operation="Ping"}', 20),
                ('san_call_duration_seconds_bucket{operation="Ping",le="+Inf"}', 20),
                ('san_array_duration_seconds_bucket{operation="RemoveHccFromSan",le="+Inf"}', 2),
                ('san_calls_refused_total{reason="method"}', 1),
                ('san_calls_in_progress{operation="Ping"}', 0),
                ("san_oldest_call_seconds", 0),
                ('san_oldest_call_of_operation_seconds{operation="Ping"}', 0),
                ("san_array_answers", 1),
            ]
            self.assertEqual([(name, seen.get(name)) for name, _ in rows], rows)
            self.assertEqual(sum(seen[f'san_contexts_total{{kind="{kind}"}}']
                                 for kind in ("made", "reused")), 22)
            self.assertLess(  # without the delayed one
                seen['san_array_duration_seconds_bucket{operation="RemoveHccFromSan",le="0.025"}'],
                2)
            self.assertGreaterEqual(
                seen['san_array_duration_seconds_sum{operation="RemoveHccFromSan"}'], 0.03)
            page = server.request("GET", "/status").text
            for word in ("Ping", "answered", "refused_by_array", "20"):
                self.assertIn(word, page)
            self.assertNotIn("<script", page)
            self.assertNotIn("not answer", page)
            self.assertIn("SoapCalls: 22\n", server.request("GET", "/server-status?auto").text)
            self.assertIn("SOAP service", server.request("GET", "/server-status").text)
            for path in ("/status/health", "/status/health?deep"):
                self.assertEqual(server.request("GET", path).status, 200)

    def test_more_operations_than_there_are_rows_count_without_a_name(self):
        server = self.enterContext(WebServer(
            plugin=webServer.ODD_PLUGIN, environment={"ODD_PLUGIN": "reports"},
            extra="<Location /status>\nSetHandler gsoap-status\n</Location>"))
        for _ in range(40):
            server.post(PING)
        seen = metrics(server)
        refused = {name: count for name, count in seen.items()
                   if re.match('san_calls_total.*refused_by_array', name)}
        self.assertEqual(len(refused), 32)
        self.assertEqual(refused.pop('san_calls_total{operation="none",outcome="refused_by_array"}'),
                         40 - 31)
        self.assertEqual(set(refused.values()), {1})
        self.assertEqual(seen["san_lost_log_lines_total"], 80)

    def test_a_silent_array_shows(self):
        with SilentArray() as array:
            server = self.start(array)
            self.assertEqual(server.request("GET", "/status/health").status, 200)
            # The first Ping waits on for ever; the next check of that process starts no other.
            for _ in range(3):
                self.assertEqual(server.request("GET", "/status/health?deep").status, 503)
            waiting = metrics(server)
            self.assertIn(waiting["san_calls_waiting_for_array"], (1, 2, 3, 4))
            self.assertEqual(waiting['san_calls_in_progress{operation="Ping"}'],
                             waiting["san_calls_waiting_for_array"])
            self.assertGreater(waiting["san_oldest_call_seconds"], 0)
            self.assertEqual(waiting['san_oldest_call_of_operation_seconds{operation="Ping"}'],
                             waiting["san_oldest_call_seconds"])
            wait_until(lambda: server.request("GET", "/status/health").status == 503)
            page = server.request("GET", "/status").text
            self.assertRegex(page, 'class="bad">The array does not answer: a call has waited')
            array.release()
            wait_until(lambda: metrics(server)["san_calls_waiting_for_array"] == 0)
            self.assertIn("gave no answer", server.request("GET", "/status/health").text)

    def test_killed_processes_leave_nothing_at_work(self):
        with SilentArray() as array:
            server = self.start(array)
            with concurrent.futures.ThreadPoolExecutor(2) as pool:
                calls = [pool.submit(server.post, PING) for _ in range(2)]
                wait_until(lambda: metrics(server)["san_calls_waiting_for_array"] == 2)
                for pid in server.children():
                    with contextlib.suppress(ProcessLookupError):
                        os.kill(pid, signal.SIGKILL)
                for call in calls:
                    self.assertIsInstance(call.exception(), OSError)

            def nothing_at_work():
                with contextlib.suppress(OSError):  # the one that accepted may be a killed one
                    return metrics(server)["san_oldest_call_seconds"] == 0
            self.assertTrue(wait_until(nothing_at_work))


if __name__ == "__main__":
    unittest.main()
