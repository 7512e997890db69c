"""Starts the simulator for a test, controls it, and ends it by its process id."""

import os
import re
import signal
import subprocess
import tempfile
import threading


class Simulator:
    """A running simulator with a port and a control socket of its own; "{folder}" in an option
    stands for a folder that goes away with it."""

    def __init__(self, *options):
        self.folder = tempfile.TemporaryDirectory()
        self.socket = os.path.join(self.folder.name, "control.sock")
        options = [option.replace("{folder}", self.folder.name) for option in options]
        self.process = subprocess.Popen(
            [os.environ["SANSIM"], "--port", "0", "--control", self.socket, *options],
            stdout=subprocess.PIPE, text=True)
        try:
            self.port = self.read_port(r"listening on 127\.0\.0\.1:(\d+)\n")
            self.web_port = "--web" in options and self.read_port(r"page at http://127\.0\.0\.1:(\d+)/\n")
        except RuntimeError:
            self.stop()
            raise
        self.lines = []
        # Read all the time, so that a full pipe never stops the simulator.
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.process.stdout))
        self.reader.start()

    def read_port(self, pattern):
        line = self.process.stdout.readline()
        found = re.fullmatch(pattern, line)
        if not found:
            raise RuntimeError(f"the simulator did not start: {line!r}")
        return int(found[1])

    @staticmethod
    def run(*options):
        """A start that is meant to fail; gives the ended process."""
        return subprocess.run([os.environ["SANSIM"], *options], timeout=60,
                              capture_output=True, text=True, check=False)

    def run_control(self, *arguments):
        return subprocess.run([os.environ["SIMCTL"], *arguments], timeout=60, check=False,
                              capture_output=True, text=True,
                              env={**os.environ, "SANSIM_CONTROL": self.control_path(arguments)})

    def control_path(self, arguments):
        return "/nonexistent/socket" if "--port" in arguments else self.socket

    def control(self, *arguments):
        """What the control command prints; it has to succeed."""
        ended = self.run_control(*arguments)
        if ended.returncode != 0:
            raise AssertionError(f"simctl {arguments}: {ended.stderr}")
        return ended.stdout

    def stop_reading(self):
        """Ends the simulator, so that `lines` holds all that it printed."""
        self.process.send_signal(signal.SIGTERM)
        self.reader.join()

    def stop(self):
        """Ends it as an administrator does; gives its exit status."""
        self.process.send_signal(signal.SIGTERM)
        status = self.process.wait(60)
        if hasattr(self, "reader"):
            self.reader.join()
        self.process.stdout.close()
        self.folder.cleanup()
        return status

    def __enter__(self):
        return self

    def __exit__(self, *_):
        status = self.stop()
        if status != 0:
            raise AssertionError(f"the simulator ended with status {status}")
