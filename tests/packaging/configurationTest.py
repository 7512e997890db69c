"""The web server's configuration as it is installed."""

import socket
import unittest

import soap
from webServer import MODULES, PATH, WebServer

# Compresses every reply that is not exempt, and sees a .htaccess file if anybody looks for one.
OTHER_SITES = f"""
LoadModule filter_module {MODULES}/mod_filter.so
LoadModule deflate_module {MODULES}/mod_deflate.so
SetOutputFilter DEFLATE
<Directory "/">
    AllowOverride All
</Directory>
"""


class Configuration(unittest.TestCase):
    def test_serves_plainly_and_logs_each_request(self):
        server = self.enterContext(WebServer(extra=OTHER_SITES))
        (server.directory / "documents" / ".htaccess").write_text("Nonsense\n")
        replies = [server.request("GET", PATH + "?wsdl", headers={"Accept-Encoding": "gzip"}),
                   server.request("PUT", body=b"x"), server.post(soap.PING)]
        self.assertEqual([reply.status for reply in replies], [200, 405, 500])
        self.assertEqual([reply.headers["Content-Encoding"] for reply in replies], [None] * 3)
        server.request("GET", "/elsewhere")
        logged = (server.directory / "access.log").read_text().splitlines()
        self.assertEqual(len(logged), 3, logged)
        for line, expected in zip(logged, ('"GET /sanService HTTP/1.1" 200', '"PUT ', '"POST ')):
            self.assertIn(expected, line)

    def test_gives_up_clients_that_stop_talking(self):
        # By itself the server waits for 60 seconds. It sees no connection before its first byte.
        server = self.enterContext(WebServer(impatient=True))
        head = "POST %s HTTP/1.1\r\nHost: a\r\nContent-Type: text/xml\r\nContent-Length: 9\r\n\r\n"
        for said in "P", head % PATH:
            with socket.create_connection(("127.0.0.1", server.port), timeout=40) as client:
                client.sendall(said.encode())
                self.assertRegex(client.recv(100), rb"^(HTTP/1.1 408 |$)")
