"""The command-line client as a user meets it, against a server that answers canned replies."""

import json
import re
import socket
import tempfile
import unittest

import cannedServer
import soap
from cannedServer import NOTHING, fault, redirect, reply
from programs import closed_port, sanctl

SECRETS = {"SANCTL_PASSWORD": "pass-word-1", "SANCTL_TOKEN": "token-1",
           "SANCTL_HCC_KEY": "key-1"}

# What the server answers to a Ping, the exit status, and what the user reads.
ANSWERS = [
    ("done", reply("Ping"), 0, "PING OK"),
    ("nil result", reply("Ping", '<return xsi:nil="true"/>'), 0, "PING OK"),
    ("server fault", fault("SOAP-ENV:Server", "Array is &lt;full>"), 1,
     "refused by the array: Array is <full>"),
    ("array's answer unusable", fault("SOAP-ENV:Server",
                                      "Received Invalid/NULL response from tarn"), 4,
     "outcome unknown: Received"),
    ("client fault", fault("SOAP-ENV:Client", "No header"), 2,
     "refused by the service: No header"),
    ("must understand", fault("SOAP-ENV:MustUnderstand", "What?"), 2, "refused by the service"),
    ("code without prefix", fault("Server", "Full"), 1, "refused by the array: Full"),
    ("subcode", fault("SOAP-ENV:Server.Busy", "Later"), 1, "refused by the array: Later"),
    ("no text", fault("SOAP-ENV:Server", ""), 1, "refused by the array: (no reason given)"),
    ("terminal control", fault("SOAP-ENV:Server", "a\u009b2J&#127;b"), 1, "\\x7fb"),
    ("body too large", (413, "<html>too large</html>"), 2, "refused by the service"),
    ("bad gateway", (502, "<html>bad gateway</html>"), 3, "a proxy stands before the service"),
    ("gateway time-out", (504, "<html>late</html>"), 3, "got no answer from it"),
    ("SOAP 1.2", (500, soap.envelope(
        "<SOAP-ENV:Fault><SOAP-ENV:Code><SOAP-ENV:Value>SOAP-ENV:Receiver</SOAP-ENV:Value>"
        "</SOAP-ENV:Code><SOAP-ENV:Reason><SOAP-ENV:Text>Full</SOAP-ENV:Text></SOAP-ENV:Reason>"
        "</SOAP-ENV:Fault>").replace(soap.ENVELOPE, "http://www.w3.org/2003/05/soap-envelope")),
     1, "refused by the array: Full"),
    ("proxy", (407, "who?"), 3, "asks who calls"),
    ("redirect", redirect("https://b.example/"), 3,
     "redirect to https://b.example/, which is not followed; give the right place as --url "
     "(by way of 1.1 gate.example)"),
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
    (["add-server", "--san-id", "a", "--hcc-id", "b", "--hcn-id", "n", "--interface", "w:foo"],
     "'foo' is no transport"),
    (["ping", "--token", "a\udcff"], "no UTF-8"),
    (["ping", "--target", "lab"], "[lab]"),
    (["ping", "--config", "/nonexistent"], "/nonexistent"),
    (["ping", "--config", __file__], "unknown setting"),
    (["lifecycle", "--parallel", "2", "--volume", "v1"], "volume"),
    (["lifecycle", "--volumes", "2", "--volume", "v1"], "volume"),
]


class SanctlTest(unittest.TestCase):
    def test_exit_status_and_words_follow_the_answer(self):
        for name, answer, status, words in ANSWERS:
            with self.subTest(name), cannedServer.serve(answer) as server:
                human = sanctl("--url", server.url, "ping")
                self.assertEqual(human.returncode, status, human)
                said = human.stderr if status else human.stdout
                self.assertIn(words, said)
                self.assertTrue(said.startswith("sanctl: Ping: " if status else "PING OK"), said)
                self.assertNotIn("\u009b", said)
                machine = json.loads(sanctl("--url", server.url, "--json", "ping").stdout)
                self.assertEqual(machine["exitStatus"], status)
                self.assertRegex(server.agents[0], r"^sanctl/\d")
                monitored = sanctl("--url", server.url, "ping", "--monitoring")
                self.assertEqual(monitored.returncode, {0: 0, 2: 1}.get(status, 2))
                self.assertRegex(monitored.stdout, "^PING (OK|WARNING|CRITICAL): ")

    def test_no_server_and_a_silent_one_are_no_answer(self):
        with socket.create_server(("127.0.0.1", 0)) as silent:
            for scheme, words in (("http", "no whole answer within 1 s"),
                                  ("https", "no connection within 1 s")):
                url = f"{scheme}://localhost:{silent.getsockname()[1]}/"
                done = sanctl("--url", url, "ping", "--timeout", "1")
                self.assertEqual(done.returncode, 3, done)
                self.assertIn(words, done.stderr)
        # The system takes no further connection while these wait to be taken.
        with socket.create_server(("127.0.0.1", 0), backlog=0) as full, \
                socket.create_connection(full.getsockname()):
            url = f"http://127.0.0.1:{full.getsockname()[1]}/"
            done = sanctl("--url", url, "ping", "--connect-timeout", "1")
        self.assertIn("no connection within 1 s", done.stderr)
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
                    for line in done.stderr.splitlines():
                        self.assertTrue(line.startswith("sanctl: "), line)
                    done = sanctl(*arguments, "--json", stdin="one\ntwo\n", SANCTL_URL=server.url)
                    self.assertEqual(json.loads(done.stdout)["exitStatus"], 64)
                    done = sanctl(*arguments, "--monitoring", SANCTL_URL=server.url)
                    self.assertEqual((done.returncode, done.stdout[:13]), (3, "PING UNKNOWN:"))
            self.assertEqual(server.requests, [])

    def test_only_what_may_be_repeated_is_repeated(self):
        add = ["add-server", "--san-id", "a", "--hcc-id", "b", "--hcn-id", "n"]
        done, busy = reply("Any"), (503, "busy")
        unusable = fault("SOAP-ENV:Server", "Invalid content in response message")
        for command, answers, status in [
                (["ping", "--retry", "2"], [NOTHING, unusable, reply("Ping")], 0),
                (["ping", "--retry", "1"], [NOTHING, NOTHING], 3),
                (["ping", "--retry", "1"], [fault("SOAP-ENV:Server", "no")], 1),
                ([*add, "--retry", "1"], [NOTHING], 3),
                ([*add, "--retry", "1"], [unusable], 4),
                ([*add, "--retry", "1"], [busy, reply("AddServer")], 0),
                ([*add, "--retry", "1", "--force-retry"], [NOTHING, reply("AddServer")], 0)]:
            left = [*answers, done]
            with self.subTest(command), cannedServer.serve(lambda _: left.pop(0)) as server:
                ended = sanctl(*command, "--retry-delay", "0", "--json", "--url", server.url)
                self.assertEqual(ended.returncode, status, ended)
                self.assertEqual(json.loads(ended.stdout)["attempts"], len(answers))
                self.assertEqual(len(server.requests), len(answers))

    def test_settings_come_from_the_nearest_place(self):
        with cannedServer.serve(reply("Ping")) as server, tempfile.TemporaryDirectory() as home:
            with open(f"{home}/sanctl.ini", "w", encoding="utf-8") as file:
                file.write(f"url = {server.url}\ntoken = top\n[lab]\ntoken = lab\n[bare]\n"
                           "timeout = 5\n")
            environment = {"SANCTL_TOKEN": "environment"}
            for options, variables, token in [
                    ([], {}, "top"),
                    ([], environment, "environment"),
                    (["--target", "lab"], environment, "lab"),
                    (["--target", "bare"], environment, "environment"),
                    (["--target", "bare"], {}, "top"),
                    (["--target", "lab", "--token", "line"], environment, "line")]:
                with self.subTest(options, **variables):
                    done = sanctl("ping", *options, **{**variables, "XDG_CONFIG_HOME": home})
                    self.assertEqual(done.returncode, 0, done)
                    self.assertIn(f"<authToken>{token}<", server.requests.pop())

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
        self.assertEqual(re.findall(r"warning: --address (\S+): .*0\.0\.0\.0", done.stderr),
                         ["[2001:db8::1]:80", "node.example:1"])

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
