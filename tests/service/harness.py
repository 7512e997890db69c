"""What a service test starts from: a web server with the plug-in, and the array simulator
as its API manager.

    class PingTest(harness.ServiceCase):
        def test_answers(self):
            reply = self.server.post(soap.PING)
            self.assertTrue(soap.answered(reply, "Ping"))
            (request,) = self.array.take_requests()

Server and simulator live for one class. When the class ends, any report of a sanitizer, any
leak and any crash of a child process fails it.
"""

import threading
import unittest

from arraySimulator import ArraySimulator
from webServer import WebServer


class ServiceCase(unittest.TestCase):
    """Class attributes say what is started; `server_options` go to WebServer, the others to the
    simulator. It is lenient, so that each operation can be called by itself."""
    mpm = "event"
    server_options = {}
    simulator_arguments = ["--lenient", "--show-keys"]
    simulator_files = {}

    @classmethod
    def setUpClass(cls):
        cls.array = ArraySimulator(*cls.simulator_arguments, **cls.simulator_files)
        cls.addClassCleanup(cls.array.stop)
        cls.server = WebServer(mpm=cls.mpm, api_manager_port=cls.array.port,
                               **cls.server_options)
        cls.addClassCleanup(cls.server.stop)
        cls.server.start()

    def new_log_lines(self):
        """A function that gives the texts that went to the system log since this call."""
        before = len(self.server.syslog())
        return lambda: [text for _, _, text in self.server.syslog()[before:]]
