"""What a service test starts from: a web server with the plug-in, and the array simulator
as its API manager: `self.server` and `self.array`.

Both live for one class. When the class ends, any report of a sanitizer, any leak and any crash
of a child process fails it.
"""

import unittest

from arraySimulator import ArraySimulator
from webServer import WebServer


class ServiceCase(unittest.TestCase):
    """Class attributes say what is started: `server_options` go to WebServer, the others to
    the simulator."""
    server_options = {}
    simulator_arguments = []
    simulator_files = {}

    @classmethod
    def setUpClass(cls):
        cls.array = cls.enterClassContext(
            ArraySimulator(*cls.simulator_arguments, **cls.simulator_files))
        cls.server = cls.enterClassContext(
            WebServer(api_manager_port=cls.array.port, **cls.server_options))
