#!/usr/bin/env python3
"""What each operation sends to the API manager, answers and logs, and what becomes of a call
that fails."""

import re
import socket
import unittest
from xml.sax.saxutils import escape

import harness
import soap
from arraySimulator import reply_document, success
from operations import ADDRESS, OPERATIONS, SCSI, VOLUME, address

USER, TOKEN = "marker-user:marker-pass", "marker-token"
HEAD = soap.header(user=USER, token=TOKEN)
# The only ones that the array accepts.
ACCEPTED = {"users": [{"user": "marker-user", "password": "marker-pass"}], "tokens": [TOKEN]}
NO_RETURN = ("Server", "Received Invalid/NULL response from tarn")
SKIPPED = "AddSan request: IpAddress information not specified"


def line(text, level=4):
    return f"level({level}) category(SANService) message({text})"


def operation(name):
    return next(row for row in OPERATIONS if row.name == name)


def wrapper_of(reply):
    """The text between the start and the end tag of the response's wrapper."""
    return re.search(r"<ns1:\w+Response[^>]*>(.*)</ns1:\w+Response>", reply.text, re.S).group(1)


class OperationsTest(harness.ServiceCase):
    simulator_files = {"credentials": ACCEPTED, "seed": {"volumes": [VOLUME]}}

    def tearDown(self):
        self.array.reset("faults")
        self.array.take_requests()

    def call(self, body, head=HEAD):
        lines = self.new_log_lines()
        reply = self.server.post(soap.envelope(body, head))
        self.assertNotIn("marker", reply.text)  # no secret comes back, whatever went wrong
        return reply, self.array.take_requests(), [text.rstrip("\n") for text in lines()]

    def test_each_operation_sends_answers_and_logs(self):
        for row in OPERATIONS:
            with self.subTest(row.name, fields=row.fields):
                reply, requests, lines = self.call(row.body)
                self.assertTrue(soap.answered(reply, row.name), reply.text)
                self.assertEqual(wrapper_of(reply), row.reply)
                (request,) = requests
                self.assertEqual(request.document, row.document)
                self.assertEqual((request.client_address, request.schema_version),
                                 ("127.0.0.1", "2.3"))
                self.assertEqual(request.hcc_id, row.hcc_id)
                self.assertEqual(request.blobs, [])
                self.assertEqual(lines, [line("Validating soap header"),
                                         line(f"Serving {row.name} request")])

    def test_credentials_and_token_arrive_as_they_are(self):
        seen, refused = "***", ("Server", "Access denied")
        rows = [  # credentials, token, what the simulator shows of them, the fault if any
            (USER, None, (seen, ""), None),
            (None, TOKEN, ("", seen), None),
            (USER, TOKEN, (seen, seen), None),
            (USER + "x", None, (seen, ""), refused),
            (USER[:-1], TOKEN[:-1], (seen, seen), refused),
        ]
        for user, token, shown, fault in rows:
            with self.subTest(user=user, token=token):
                reply, (request,), _ = self.call(operation("RemoveServer").body,
                                                 soap.header(user=user, token=token))
                self.assertEqual((request.credentials, request.auth_token), shown)
                self.assertEqual(reply.status, 500 if fault else 200)
                if fault:
                    self.assertEqual(soap.fault_of(reply), fault)

    def test_the_reply_carries_our_version_and_no_secret(self):
        reply, _, _ = self.call("<ns1:Ping/>", soap.header(version="2.9", user=USER))
        self.assertIn('<xsdVersion version="2.3"', reply.text)
        self.assertNotIn("userPass", reply.text)

    def test_refusals_of_the_service_reach_no_api_manager(self):
        null = ("Client", "Invalid request parameter, NULL")
        nil = 'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:nil="true"'
        unusable = ("Client", "AddHccToSan: IpAddresses not specified or invalid")
        join = "<ns1:AddHccToSan><hccId>c1</hccId><hccKey>k</hccKey>{}</ns1:AddHccToSan>"
        rows = [
            ("<ns1:RenameHccInSan><hccId>c</hccId><sanId>s</sanId><name>n</name>"
             "</ns1:RenameHccInSan>",
             ("Client", "RenameHccInSan is not supported by SanApi interface."), 0),
            ("<ns1:AddServer><sanId>s1</sanId></ns1:AddServer>", null, 0),
            *((f"<ns1:{row.name} {nil}/>", null, 0) for row in OPERATIONS),
            (join.format(""), unusable, 0),
            (join.format("<cfmIpAddresses><port>1</port></cfmIpAddresses>"), unusable, 1),
            (join.format(f"<cfmIpAddresses {nil}/>"), unusable, 1),
            (join.format(f"<cfmIpAddresses>{address('', 1)}</cfmIpAddresses>"), unusable, 0),
        ]
        for body, fault, skipped in rows:
            with self.subTest(body):
                reply, requests, lines = self.call(body)
                self.assertEqual((reply.status, soap.fault_of(reply)), (500, fault))
                self.assertEqual(requests, [])
                self.assertEqual(lines.count(line(SKIPPED)), skipped)

    def test_unusable_addresses_are_skipped(self):
        body = ("<ns1:AddHccToSan><hccId>c1</hccId><hccKey>k</hccKey>"
                "<cfmIpAddresses><port>1</port></cfmIpAddresses>"
                f"<cfmIpAddresses>{address('10.0.0.5', 3260)}</cfmIpAddresses></ns1:AddHccToSan>")
        _, (request,), lines = self.call(body)
        self.assertIn(f"<Ipv4AddressPortList>{ADDRESS.format('10.0.0.5', 3260)}"
                      "</Ipv4AddressPortList>", request.document)
        self.assertEqual(lines.count(line(SKIPPED)), 1)

    def test_text_of_the_api_manager_reaches_the_client(self):
        for text in ["No such cluster", "tom & <jerry> \"q\" 'a'", "集群 é %s%n", "a\nb", ""]:
            with self.subTest(text):
                self.array.fail("refuse", command="RemoveServer", error=text)
                reply, _, lines = self.call(operation("RemoveServer").body)
                self.assertEqual(soap.fault_of(reply), ("Server", text))
                self.assertNotIn("<detail>", reply.text)
                self.assertEqual(len(lines), 2)  # the array's refusals leave no line

    def fails_once(self, name, expected):
        """The attach that the simulator was told to fail, and the one after it."""
        attach = operation("HccAttachVolume")
        reply, requests, lines = self.call(attach.body)
        self.assertEqual((reply.status, soap.fault_of(reply)), (500, expected), name)
        self.assertEqual(len(requests), 1)
        if expected == NO_RETURN:
            self.assertRegex(lines[2], r"^level\(4\) category\(SANService\) message\("
                             r"Connection error serving san service request\. msg\(.+\)\)$")
            self.assertEqual(lines[3:], [line("Received NULL response")])
        else:
            self.assertEqual(len(lines), 2)
        again, _, _ = self.call(attach.body)
        self.assertEqual(wrapper_of(again), attach.reply)

    def test_every_fault_of_the_array_is_answered_and_the_next_request_works(self):
        # What the simulator promises that the client sees; those that end well, or need a
        # document of one's own, have rows of their own.
        for kind in self.array.fault_kinds():
            promised = re.search(r'receiver fault (?:"([^"]+)"$|"(Failed[^"]+)"|with an empty)',
                                 kind["clientSees"])
            if promised is None:
                self.assertIn(kind["name"], ("refuse", "answer", "delay", "drip"))
                continue
            with self.subTest(kind["name"]):
                self.array.fail(kind["name"], command="HccAttachVolume")
                self.fails_once(kind["name"],
                                ("Server", promised.group(1) or promised.group(2) or ""))

    def test_replies_that_are_not_as_they_should_be(self):
        invalid = ("Server", "Invalid content in response message")
        wrong = ("Server", "Invalid response in return XML")
        failed = ("Server", "Failed to attach volume")
        rows = [  # fault, its members, what the client gets
            *(("closeEarly", {"bytes": count}, NO_RETURN) for count in (3, 4, 20)),
            ("refuse", {"error": "E", "code": "ParsingError", "detail": "D"}, ("Server", "E")),
            *(("answer", {"document": document}, expected) for document, expected in [
                ("<compapi><a></compapi>", invalid),
                ("<!DOCTYPE a><compapi/>", invalid),
                ("<compapi/>", wrong),
                (success("<ReturnMethodObject><Unheard/></ReturnMethodObject>"), failed),
                (success(SCSI.replace("MethodObject>", "MethodObjectArray>")), failed),
                (reply_document("<Successful>no</Successful><ErrorCode>8</ErrorCode>"),
                 ("Server", "")),
            ]),
        ]
        for fault, members, expected in rows:
            with self.subTest(fault, **members):
                self.array.fail(fault, command="HccAttachVolume", **members)
                self.fails_once(fault, expected)

    def test_a_late_or_slow_answer_is_the_answer(self):
        attach = operation("HccAttachVolume")
        for fault, members in (("delay", {"delayMs": 300}), ("drip", {"intervalMs": 1})):
            with self.subTest(fault):
                self.array.fail(fault, command="HccAttachVolume", **members)
                reply, _, _ = self.call(attach.body)
                self.assertEqual(wrapper_of(reply), attach.reply)

    def test_client_text_stays_inside_its_element_and_its_line(self):
        escaped = {"markup": "</HccId><SanId>x</SanId>", "per cent": "%s%n%d", "quotes": "\"'&",
                   "beyond ASCII": "集群 Zürich 😀", "long": "x" * 60000}
        rows = [(name, escape(text), text) for name, text in escaped.items()]
        rows += [("CDATA", "<![CDATA[</HccId>&amp;]]>", "</HccId>&amp;"),
                 ("reference", "&#65;&lt;b&gt;", "A<b>"),
                 ("controls", "a&#10;level(0) forged&#13;b", None)]
        for name, sent, arrives in rows:
            with self.subTest(name):
                reply, requests, lines = self.call(
                    f"<ns1:RemoveHccFromSan><sanId>s</sanId><hccId>{sent}</hccId>"
                    "</ns1:RemoveHccFromSan>")
                self.assertTrue(soap.answered(reply, "RemoveHccFromSan"), reply.text)
                (request,) = requests
                value = re.fullmatch(r".*<Attributes><HccId>([^<]*)</HccId></Attributes>.*",
                                     request.document, re.S).group(1)
                if arrives is not None:
                    expected = escape(arrives, {'"': "&quot;", "'": "&apos;"})
                    self.assertEqual(value, expected)
                    self.assertEqual(request.hcc_id, arrives)
                self.assertEqual(len(lines), 2)

    def test_odd_bodies_are_answered(self):
        remove = "<ns1:RemoveHccFromSan><sanId>s</sanId><hccId>{}</hccId></ns1:RemoveHccFromSan>"
        rows = [b"\xff\xfe\x80", b"<b>child</b>", b"&unknown;", b"&#0;", b"x" * 70000,
                b"<a>" * 200 + b"</a>" * 200]
        for text in rows:
            with self.subTest(text[:20]):
                body = soap.envelope(remove, HEAD).encode().replace(b"{}", text)
                reply = self.server.post(body)
                self.assertIn(reply.status, (200, 500))
                for request in self.array.take_requests():
                    self.assertEqual(request.document.count("<HccId>"), 1)
        for version in ("3%s%n", "3&#10;level(0) forged"):
            _, _, lines = self.call("<ns1:Ping/>", soap.header(version=version))
            self.assertEqual(len(lines), 2, lines)
        reply, _, _ = self.call("<ns1:Ping/>")
        self.assertTrue(soap.answered(reply, "Ping"))

    def test_a_service_database_and_a_manager_that_are_not_there(self):
        with socket.socket() as closed:
            closed.bind(("127.0.0.1", 0))  # taken, and nobody listens
            server = harness.WebServer(api_manager_port=closed.getsockname()[1])
            server.start()
            try:
                for row in OPERATIONS:
                    reply = server.post(soap.envelope(row.body, HEAD))
                    self.assertEqual(soap.fault_of(reply), NO_RETURN)
                texts = [text for _, _, text in server.syslog()]
                self.assertIn(line("Received NULL response"),
                              [text.rstrip("\n") for text in texts])
                seen = "".join(texts) + server.error_log() + reply.text
                self.assertNotIn("marker", seen)
            finally:
                server.stop()

    @classmethod
    def tearDownClass(cls):
        """After every failure above: no secret stands in any log."""
        seen = "".join(text for _, _, text in cls.server.syslog()) + cls.server.error_log()
        if "marker" in seen:
            raise AssertionError("credentials or token in a log")


if __name__ == "__main__":
    unittest.main()
