"""Whom the client trusts over TLS, and how it shows its own certificate."""

import pathlib
import ssl
import subprocess
import tempfile
import unittest

import cannedServer
from sanctlTest import sanctl


class TlsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.openssl("req -x509 -newkey rsa:2048 -nodes -days 2 -keyout ca.key -out ca.pem"
                    " -subj /CN=authority")
        for name, host in (("ip", "IP:127.0.0.1"), ("other", "DNS:other.example")):
            cls.openssl(f"req -newkey rsa:2048 -nodes -keyout {name}.key -out {name}.csr"
                        f" -subj /CN={name} -addext subjectAltName={host}")
            cls.openssl(f"x509 -req -in {name}.csr -CA ca.pem -CAkey ca.key -CAcreateserial"
                        f" -copy_extensions copy -days 2 -out {name}.crt")
        cls.openssl("rsa -aes256 -passout pass:opens -in other.key -out locked.key")
        for name, key in (("ip", "ip"), ("other", "other"), ("locked", "locked")):
            certificate = cls.path("other.crt" if name == "locked" else f"{name}.crt")
            text = pathlib.Path(certificate).read_text() + pathlib.Path(cls.path(f"{key}.key")
                                                                       ).read_text()
            pathlib.Path(cls.path(f"{name}.pem")).write_text(text)

    @classmethod
    def openssl(cls, arguments):
        subprocess.run(["openssl", *arguments.split()], cwd=cls.directory, check=True,
                       capture_output=True)

    @classmethod
    def path(cls, name):
        return str(cls.directory / name)

    def ping(self, context, *options, **environment):
        with cannedServer.serve(cannedServer.reply("Ping"), context) as server:
            done = sanctl("ping", "--url", server.url, *options, **environment)
        self.assertEqual(len(server.requests), 1 if done.returncode == 0 else 0)
        return done

    def test_a_server_is_trusted_by_authority_and_name(self):
        authority = ["--cacert", self.path("ca.pem")]
        rows = [("ip", authority, 0), ("ip", [], 3), ("other", authority, 3),
                ("other", ["--insecure"], 0), ("ip", ["--cacert", self.path("other.crt")], 3)]
        for certificate, options, status in rows:
            with self.subTest(certificate=certificate, options=options):
                context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
                context.load_cert_chain(self.path(f"{certificate}.pem"))
                done = self.ping(context, *options)
                self.assertEqual(done.returncode, status, done)
                self.assertEqual(done.stdout.count("\n"), 1, done.stdout)

    def test_the_client_shows_its_certificate(self):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(self.path("ip.pem"))
        context.load_verify_locations(self.path("ca.pem"))
        context.verify_mode = ssl.CERT_REQUIRED
        rows = [([], {}, 3), (["--cert", self.path("other.pem")], {}, 0),
                (["--cert", self.path("locked.pem")], {"SANCTL_CERT_PASSWORD": "opens"}, 0),
                (["--cert", self.path("locked.pem")], {"SANCTL_CERT_PASSWORD": "wrong"}, 64)]
        for options, environment, status in rows:
            with self.subTest(options, **environment):
                done = self.ping(context, "--cacert", self.path("ca.pem"), *options,
                                 **environment)
                self.assertEqual(done.returncode, status, done)


if __name__ == "__main__":
    unittest.main()
