"""Whom the client trusts over TLS, and how it shows its own certificate."""

import os
import ssl
import subprocess
import tempfile
import unittest

import cannedServer
from programs import sanctl


class TlsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = cls.enterClassContext(tempfile.TemporaryDirectory())
        for name, host, key in (("own", "IP:127.0.0.1", "-nodes"),
                                ("other", "DNS:other.example", "-nodes"),
                                ("locked", "DNS:other.example", "-passout pass:opens")):
            subprocess.run(
                f"openssl req -x509 -newkey rsa:2048 {key} -days 2 -subj /CN={name} "
                f"-addext subjectAltName={host} -keyout {name}.pem -out {name}.pem".split(),
                cwd=cls.directory, check=True, capture_output=True)

    def path(self, name):
        """A file with a key and its certificate, which is its own authority."""
        return os.path.join(self.directory, f"{name}.pem")

    def ping(self, status, context, certificate, *options, **environment):
        context.load_cert_chain(self.path(certificate))
        with self.subTest(certificate, options=options, **environment), \
                cannedServer.serve(cannedServer.reply("Ping"), context) as server:
            done = sanctl("ping", "--url", server.url, *options, **environment)
            self.assertEqual(done.returncode, status, done)
            self.assertEqual(len(server.requests), 1 if status == 0 else 0)

    def test_a_server_is_trusted_by_authority_and_name(self):
        own, other = ["--cacert", self.path("own")], ["--cacert", self.path("other")]
        for certificate, options, status in [("own", own, 0), ("own", [], 3), ("own", other, 3),
                                             ("other", other, 3), ("other", ["--insecure"], 0)]:
            self.ping(status, ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER), certificate, *options)

    def test_the_client_shows_its_certificate(self):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.verify_mode = ssl.CERT_REQUIRED
        for name in ("other", "locked"):
            context.load_verify_locations(self.path(name))
        for options, environment, status in [
                ([], {}, 3), (["--cert", self.path("other")], {}, 0),
                (["--cert", self.path("locked")], {"SANCTL_CERT_PASSWORD": "opens"}, 0),
                (["--cert", self.path("locked")], {"SANCTL_CERT_PASSWORD": "wrong"}, 64)]:
            self.ping(status, context, "own", "--cacert", self.path("own"), *options,
                      **environment)
