"""Starts the simulator for a test and ends it by its process id."""

import os
import re
import signal
import subprocess
import tempfile
import threading


class Simulator:
    def __init__(self, *options):
        self.folder = tempfile.TemporaryDirectory()
        self.process = subprocess.Popen([os.environ["SANSIM"], "--port", "0", *options],
                                        stdout=subprocess.PIPE, text=True)
        first = self.process.stdout.readline()
        found = re.fullmatch(r"listening on 127\.0\.0\.1:(\d+)\n", first)
        if not found:
            self.stop()
            raise RuntimeError(f"the simulator did not start: {first!r}")
        self.port = int(found[1])
        self.lines = []
        # Read all the time, so that a full pipe never stops the simulator.
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.process.stdout))
        self.reader.start()

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
