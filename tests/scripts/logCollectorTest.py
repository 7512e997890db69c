"""The collector of log lines, and what a probe says of who listens."""

import pathlib
import socket
import subprocess
import tempfile
import unittest

from programs import ROOT, run

COLLECTOR = ROOT / "scripts" / "logCollector.py"


class LogCollector(unittest.TestCase):
    def setUp(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.file, self.socket = folder / "syslog.log", folder / "log"

    def probe(self):
        done = run(COLLECTOR, "--probe", self.socket)
        return done.returncode, done.stdout

    def test_a_probe_tells_a_daemon_from_a_collector(self):
        self.assertEqual(self.probe(), (1, ""))
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as daemon:
            daemon.bind(str(self.socket))
            self.assertEqual(self.probe(), (0, ""))
        self.assertEqual(self.probe(), (1, ""), "what an ended daemon left behind")
        with subprocess.Popen([COLLECTOR, self.file, self.socket]) as collector:
            try:
                while self.probe()[0]:
                    self.assertIsNone(collector.poll())
                self.assertEqual(self.probe(), (0, str(self.file)))
                with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as sender:
                    sender.sendto(b"<12>Jan  1 00:00:00 SANService: one\ntwo", str(self.socket))
                while not self.file.read_bytes():
                    self.assertIsNone(collector.poll())
            finally:
                collector.terminate()
        self.assertRegex(self.file.read_text(), r"^\S+ SANService: one two\n$")
        self.assertFalse(self.socket.exists())
        self.socket.write_text("precious")
        done = run(COLLECTOR, self.file, self.socket)
        self.assertEqual((done.returncode, self.socket.read_text()), (1, "precious"))
