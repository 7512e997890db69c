"""The command-line client as a user meets it, against a server that answers canned replies."""

import json
import re
import socket
import tempfile
import unittest

import cannedServer
import soap
from cannedServer import NOTHING, fault, reply
from programs import closed_port, sanctl

SECRETS = {"SANCTL_PASSWORD": "pass-word-1", "SANCTL_TOKEN": "token-1",
           "SANCTL_HCC_KEY": "key-1"}

# What the server answers to a Ping, the exit status, and what the user reads.
ANSWERS = [
    ("done", reply("Ping"), 0, "PING OK"),
    ("nil result", reply("Ping", '<return xsi:nil="true"/>'), 0, "PING OK"),
    ("server fault", fault("SOAP-ENV:Server", "Array is &lt;full>"), 1,
     "refused by the array: Array is <full>"),
    ("client fault", fault("SOAP-ENV:Client", "No header"), 2,
     "refused by the service: No header"),
    ("must understand", fault("SOAP-ENV:MustUnderstand", "What?"), 2, "refused by the service"),
    ("code without prefix", fault("Server", "Full"), 1, "refused by the array: Full"),
    ("subcode", fault("SOAP-ENV:Server.Busy", "Later"), 1, "refused by the array: Later"),
    ("no text", fault("SOAP-ENV:Server", ""), 1, "refused by the array: (no reason given)"),
    ("terminal control", fault("SOAP-ENV:Server", "a\u009b2J&#127;b"), 1, "\\x7fb"),
    ("body too large", (413, "<html>too large</html>"), 2, "refused by the service"),
    ("bad gateway", (502, "<html>bad gateway</html>"), 3, "no answer"),
    ("another reply", reply("Pong"), 3, "no answer: the answer is no SOAP"),
    ("no XML", (200, "hello"), 3, "no answer: the answer is no SOAP"),
    ("half an envelope", (200, reply("Ping")[1][:200]), 3, "the connection ended"),
    ("wrong type", reply("Ping", "<return><resultCode>x</resultCode></return>"), 3, "no answer"),
    ("empty body", (200, ""), 3, "no answer"),
    ("closed", NOTHING, 3, "the connection ended"),
]

# Command lines that are wrong, and a word of the complaint.
WRONG = [
    ([], "subcommand"),
    (["pign"], "pign"),
    (["--jsno"], "--jsno"),
    (["ping", "--timeout", "0"], "timeout"),
    (["ping", "--url", "ftp://host/"], "http"),
    (["ping", "--user", "admin"], "password"),
    (["ping", "--user", "admin", "--password-file", "/nonexistent"], "/nonexistent"),
    (["ping", "--password-file", __file__], "--user"),
    (["ping", "--user", "admin", "--password-file", "-", "--token-file", "-"], "only once"),
    (["ping", "--token", "a", "--token-file", "b"], "token"),
    (["ping", "--url", "https://127.0.0.1:1/", "--cacert", __file__], "TLS"),
    (["add-hcc-to-san", "--san-id", "a", "--hcc-id", "b"], "--hcc-key-file or SANCTL_HCC_KEY"),
    (["add-hcc-to-san", "--san-id", "a", "--hcc-id", "b", "--hcc-key", "k",
      "--address", "10.0.0.1"], "IP:PORT"),
    (["lifecycle", "--parallel", "2", "--volume", "v1"], "volume"),
    (["lifecycle", "--volumes", "2", "--volume", "v1"], "volume"),
]


class SanctlTest(unittest.TestCase):
    def test_exit_status_and_words_follow_the_answer(self):
        for name, answer, status, words in ANSWERS:
            with self.subTest(name), cannedServer.serve(answer) as server:
                human = sanctl("--url", server.url, "ping")
                self.assertEqual(human.returncode, status, human)
                self.assertIn(words, human.stdout)
                self.assertNotIn("\u009b", human.stdout)
                machine = json.loads(sanctl("--url", server.url, "--json", "ping").stdout)
                self.assertEqual(machine["exitStatus"], status)

    def test_no_server_and_a_silent_one_are_no_answer(self):
        with socket.create_server(("127.0.0.1", 0)) as silent:
            url = f"http://127.0.0.1:{silent.getsockname()[1]}/"
            done = sanctl("--url", url, "ping", "--timeout", "1")
        self.assertEqual(done.returncode, 3, done)
        self.assertIn("no whole answer within 1 s", done.stdout)
        with closed_port() as port:
            done = sanctl("--url", f"http://127.0.0.1:{port}/", "ping")
        self.assertEqual(done.returncode, 3, done)

    def test_wrong_usage_sends_nothing(self):
        with cannedServer.serve(reply("Ping")) as server:
            for arguments, words in WRONG:
                with self.subTest(arguments):
                    done = sanctl(*arguments, stdin="one\ntwo\n", SANCTL_URL=server.url)
                    self.assertEqual(done.returncode, 64, done)
                    self.assertIn(words, done.stderr)
            self.assertEqual(server.requests, [])

    def sent(self, operation, *arguments, **options):
        """How a command ends that is answered well, and its request without blanks in between."""
        with cannedServer.serve(reply(operation)) as server:
            done = sanctl(*arguments, "--url", server.url, **options)
        self.assertEqual(done.returncode, 0, done)
        (request,) = server.requests
        return done, re.sub(r">\s+<", "><", request)

    def test_secrets_travel_but_are_not_shown(self):
        done, request = self.sent(
            "AddHccToSan", "add-hcc-to-san", "--user", "admin", "--dump", "--san-id", "array-1",
            "--hcc-id", "hcc-1", "--hcc-name", "größte", "--address", "10.0.0.5:3260",
            "--address", "[2001:db8::1]:80", "--address", "node.example:1", **SECRETS)
        encoded = soap.encoded("admin:pass-word-1")
        for part in (f"<userPass>{encoded}<", "<authToken>token-1<", "<hccKey>key-1<",
                     "<hccName>größte<",
                     '<ipAddress type="ipv4"><ipv4Addr>10.0.0.5</ipv4Addr></ipAddress>'
                     "<port>3260</port>",
                     '<ipAddress type="ipv6"><ipv6Addr>2001:db8::1<',
                     '<ipAddress type="dns"><dnsAddr>node.example<'):
            self.assertIn(part, request)
        for secret in (*SECRETS.values(), encoded):
            self.assertNotIn(secret, done.stdout + done.stderr)
        self.assertIn("<userPass>***</userPass>", done.stderr)
        self.assertIn("<ns1:AddHccToSanResponse>", done.stderr)

    def test_secrets_come_from_files_and_standard_input(self):
        with tempfile.NamedTemporaryFile("w", encoding="utf-8") as token:
            token.write("token-2\r\nsecond line\n")
            token.flush()
            _, request = self.sent(
                "AddHccToSan", "add-hcc-to-san", "--user", "admin", "--password-file", "-",
                "--token-file", token.name, "--san-id", "a", "--hcc-id", "b", stdin="pass-2\n",
                **SECRETS)
        self.assertIn(f"<userPass>{soap.encoded('admin:pass-2')}<", request)
        self.assertIn("<authToken>token-2<", request)

    def test_attach_shows_both_identities(self):
        answer = reply("HccAttachVolume",
                       "<origScsiInfo><deviceId>600a</deviceId></origScsiInfo><aliasScsiInfo>"
                       "<deviceId>600b</deviceId><serialNumber>S2</serialNumber></aliasScsiInfo>")
        with cannedServer.serve(answer) as server:
            command = ["--url", server.url, "hcc-attach-volume", "--hc-volume-id", "cache-1",
                       "--san-id", "array-1", "--hcc-id", "hcc-1", "--san-volume-id", "vol-1"]
            human = sanctl(*command).stdout
            machine = json.loads(sanctl(*command, "--json").stdout)
        self.assertIn("origScsiInfo.deviceId: 600a", human)
        self.assertIn("aliasScsiInfo.serialNumber: S2", human)
        self.assertEqual(machine["reply"]["origScsiInfo"],
                         {"deviceId": "600a", "serialNumber": None})

    def test_add_server_sends_only_what_was_given(self):
        given = ["--san-id", "a", "--hcc-id", "b", "--hcn-id", "n"]
        rows = [
            ([], '<os xsi:nil="true"/><norvaneVersion xsi:nil="true"/></hcnInfo></ns1:AddServer>'),
            (["--cluster-id", "c", "--os-release", "6.1"],
             "<os><clusterId>c</clusterId><osType/><osRelease>6.1</osRelease></os>"),
            (["--interface", "if-0", "--interface", "if-1:fc"],
             "<intfInfo><intfId>if-0</intfId></intfInfo><intfInfo><intfId>if-1</intfId>"
             "<intfType>fc</intfType></intfInfo>"),
            (["--cache-address", "10.0.0.9:1"], "<cacheIpAddresses><ipAddress type="),
        ]
        for options, expected in rows:
            with self.subTest(options):
                self.assertIn(expected, self.sent("AddServer", "add-server", *given, *options)[1])
