"""What a service test starts from: a web server with the plug-in and a scripted API manager.

    class PingTest(harness.ServiceCase):
        def test_answers(self):
            reply = self.server.post(soap.PING)
            self.assertTrue(soap.answered(reply, "Ping"))
            (request,) = self.manager.take_requests()

Server and API manager live for one class. When the class ends, any report of a sanitizer, any
leak and any crash of a child process fails it.
"""

import contextlib
import subprocess
import threading
import unittest

from apiManager import ApiManager
from webServer import SIMULATOR, WebServer


class ServiceCase(unittest.TestCase):
    """Class attributes say what is started; `server_options` go to WebServer."""
    mpm = "event"
    server_options = {}

    @classmethod
    def setUpClass(cls):
        cls.manager = ApiManager()
        cls.addClassCleanup(lambda: cls.manager.stop())
        cls.server = WebServer(mpm=cls.mpm, api_manager_port=cls.manager.port,
                               **cls.server_options)
        cls.addClassCleanup(cls.server.stop)
        cls.server.start()

    def new_log_lines(self):
        """A function that gives the texts that went to the system log since this call."""
        before = len(self.server.syslog())
        return lambda: [text for _, _, text in self.server.syslog()[before:]]


@contextlib.contextmanager
def simulator(*arguments):
    """Runs the array simulator on a free port; gives (process, port)."""
    process = subprocess.Popen([SIMULATOR, "--port", "0", *arguments], text=True,
                               stdout=subprocess.PIPE)
    port = int(process.stdout.readline().rpartition(":")[2])
    # It prints a line for each call, and would stop at a full pipe.
    reader = threading.Thread(target=process.stdout.read)
    reader.start()
    try:
        yield process, port
    finally:
        process.terminate()
        process.wait(timeout=30)
        reader.join()
        process.stdout.close()
