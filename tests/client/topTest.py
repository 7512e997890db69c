"""What `sanctl top` makes of the counts, of canned ones and of those of the real handler."""

import json
import os
import pty
import signal
import subprocess
import termios
import unittest

import cannedServer
import harness
from programs import SANCTL, sanctl


def counts(answered, refused, *buckets, location="/a"):
    """The handler's answer; each bucket is (seconds, calls that took at most so long)."""
    labels = f'location="{location}",operation="Ping"'
    lines = [f'san_calls_total{{{labels},outcome="answered"}} {answered}',
             f'san_calls_total{{{labels},outcome="refused_by_array"}} {refused}',
             f'san_oldest_call_seconds{{location="{location}"}} 1.5', "# HELP other", "other 1", ""]
    lines += [f'san_call_duration_seconds_bucket{{{labels},le="{le}"}} {calls}'
              for le, calls in buckets]
    return 200, "\n".join(lines) + "\n"


class CannedTest(unittest.TestCase):
    def look(self, answers, status=0):
        left = [*answers]
        with cannedServer.serve(lambda _: left.pop(0)) as server:
            done = sanctl("top", "--once", "--json", "--interval", "0.1", "--status-url",
                          server.url)
        self.assertEqual(done.returncode, status, done)
        return json.loads(done.stdout)

    def test_rates_and_percentiles_are_those_of_the_interval(self):
        first = counts(8, 2, ("0.1", 5), ("0.5", 10), ("+Inf", 10))
        for second, calls, median, tail in [
                (counts(26, 4, ("0.1", 15), ("0.5", 28), ("+Inf", 30)), 20, 100, 500),
                (counts(26, 4, ("0.1", 7), ("0.5", 30), ("+Inf", 30)), 20, 277.8, 495.6),
                (first, 0, None, None),
                # The server was started anew.
                (counts(2, 2, ("0.1", 4), ("0.5", 4), ("+Inf", 4)), 4, 50, 99)]:
            with self.subTest(second):
                seen = self.look([first, second])
                service = seen["services"]["/a"]
                recent = service["operations"]["Ping"]["recent"]
                self.assertEqual(recent["calls"], calls)
                self.assertAlmostEqual(service["callsPerSecond"], calls / seen["seconds"])
                for name, value in ("p50", median), ("p99", tail):
                    self.assertEqual(value, recent[name + "Milliseconds"] and
                                     round(recent[name + "Milliseconds"], 1))
                self.assertEqual(service["oldestCallSeconds"], 1.5)

    def test_what_is_no_status_page_is_told(self):
        for answer, status in ((200, "hello"), 3), ((404, "where?"), 2), (cannedServer.NOTHING, 3):
            self.assertEqual(self.look([answer], status)["exitStatus"], status)
        quoted = counts(1, 0, ("+Inf", 1), location=r'/\"a\\b')
        self.assertIn('/"a\\b', self.look([quoted, quoted])["services"])


class ServiceTest(harness.ServiceCase):
    """Against the real handler, at the place where the packaged configuration has it."""

    def test_it_counts_what_was_called(self):
        self.array.fail("refuse", command="Ping")
        for _ in range(3):
            sanctl("ping", "--url", self.server.url)
        done = sanctl("top", "--once", "--json", "--interval", "0.1", "--url", self.server.url)
        service = json.loads(done.stdout)["services"]["/sanService"]
        ping = service["operations"]["Ping"]["sinceStart"]
        self.assertEqual((ping["calls"], ping["outcomes"]["answered"],
                          ping["outcomes"]["refused_by_array"]), (3, 2, 1))
        self.assertGreater(ping["p99Milliseconds"], 0)
        self.assertEqual((service["callsInProgress"], service["arrayAnswers"]), (0, True))

    def test_a_key_or_a_signal_ends_it_and_gives_the_terminal_back(self):
        for end in (lambda _, keys: os.write(keys, b"xq"),
                    lambda program, _: program.send_signal(signal.SIGINT)):
            keys, terminal = pty.openpty()
            before = termios.tcgetattr(terminal)
            with self.subTest(end), subprocess.Popen(
                    [SANCTL, "top", "--interval", "0.1", "--url", self.server.url],
                    stdin=terminal, stdout=terminal, stderr=terminal) as program:
                shown = b""
                while b"calls/s" not in shown:
                    shown += os.read(keys, 4096)
                end(program, keys)
                self.assertEqual(program.wait(60), 0)
                self.assertEqual(termios.tcgetattr(terminal), before)
            os.close(keys)
            os.close(terminal)
