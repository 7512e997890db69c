#!/usr/bin/env python3
"""What each operation sends to the API manager, answers and logs, and what becomes of a call
that fails."""

import re
import socket
import struct
import unittest
from xml.sax.saxutils import escape

import apiManager
import harness
import soap
from operations import ADDRESS, OPERATIONS, PLAIN, SCSI, address

USER, TOKEN = "marker-user:marker-pass", "marker-token"
HEAD = soap.header(user=USER, token=TOKEN)
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
    def tearDown(self):
        self.manager.answer = apiManager.success()
        self.manager.take_requests()

    def call(self, body, head=HEAD):
        lines = self.new_log_lines()
        reply = self.server.post(soap.envelope(body, head))
        return reply, self.manager.take_requests(), [text.rstrip("\n") for text in lines()]

    def test_each_operation_sends_answers_and_logs(self):
        for row in OPERATIONS:
            with self.subTest(row.name, fields=row.fields):
                self.manager.answer = apiManager.success(row.value)
                reply, requests, lines = self.call(row.body)
                self.assertTrue(soap.answered(reply, row.name), reply.text)
                self.assertEqual(wrapper_of(reply), row.reply)
                (request,) = requests
                self.assertEqual(request.document, row.document)
                self.assertEqual((request.message_type, request.command_type), (2, 1))
                self.assertEqual(request.client_address, "127.0.0.1")
                self.assertEqual(request.header, {
                    "schemaVersion": "2.3", "credentials": USER.encode(), "authToken": TOKEN,
                    "hccId": row.hcc_id})
                self.assertEqual(request.blobs, [])
                self.assertEqual(lines, [line("Validating soap header"),
                                         line(f"Serving {row.name} request")])

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
        for text in ["No such cluster", "tom & <jerry> \"q\" 'a'", "集群 é %s%n", "a&#10;b", ""]:
            with self.subTest(text):
                xml = text if "&#10;" in text else escape(text)
                self.manager.answer = apiManager.failure(xml)
                reply, _, lines = self.call(operation("RemoveServer").body)
                self.assertEqual(soap.fault_of(reply), ("Server", text.replace("&#10;", "\n")))
                self.assertNotIn("<detail>", reply.text)
                self.assertEqual(len(lines), 2)  # the array's refusals leave no line

    def test_every_way_to_fail_is_answered_and_the_next_request_works(self):
        invalid = ("Server", "Invalid content in response message")
        wrong = ("Server", "Invalid response in return XML")
        good = apiManager.reply_frame(apiManager.method_return(
            f"<Successful>True</Successful>{PLAIN}"))
        ret = "<ApiMethodReturn><Successful>True</Successful></ApiMethodReturn>"
        rows = [
            *(("closed early", apiManager.close_after(good, count), NO_RETURN)
              for count in (0, 3, 4, 20)),
            *(("bad length", apiManager.raw(struct.pack("!I", length) + b"x" * 64), NO_RETURN)
              for length in (0, 64 * 1024 * 1024 + 1, 0xFFFFFFFF)),
            ("garbage", apiManager.raw(apiManager.frame(b"\xff" * 40)), NO_RETURN),
            ("empty message", apiManager.raw(apiManager.frame(b"\x08\x03")), invalid),
            ("message type", apiManager.document("<compapi/>", message_type=2), invalid),
            ("command type", apiManager.document("<compapi/>", command_type=2), invalid),
            ("bad XML", apiManager.document("<compapi><a></compapi>"), invalid),
            ("document type", apiManager.document("<!DOCTYPE a><compapi/>"), invalid),
            ("other root", apiManager.document(f"<other>{ret}</other>"), wrong),
            ("no return", apiManager.document("<compapi/>"), wrong),
            ("two returns", apiManager.document(f"<compapi>{ret}{ret}</compapi>"), wrong),
            ("no value", apiManager.document(f"<compapi>{ret}</compapi>"), wrong),
            ("no texts", apiManager.document(apiManager.method_return(
                "<Successful>False</Successful>")), ("Server", "")),
            ("texts", apiManager.failure("E", "ParsingError", "D", "L"), ("Server", "E")),
            ("no object", apiManager.success(PLAIN), ("Server", "Failed to attach volume")),
            ("other object", apiManager.success(
                f"<ReturnMethodObject>{ADDRESS.format('10.0.0.1', 1)}</ReturnMethodObject>"),
             ("Server", "Failed to attach volume")),
            ("unknown object", apiManager.success(
                "<ReturnMethodObject><Unheard/></ReturnMethodObject>"),
             ("Server", "Failed to attach volume")),
            ("array", apiManager.success(SCSI.replace("MethodObject>", "MethodObjectArray>")),
             ("Server", "Failed to attach volume")),
        ]
        attach = operation("HccAttachVolume")
        for name, answer, fault in rows:
            with self.subTest(name):
                self.manager.answer = [answer, apiManager.success(SCSI)]
                reply, requests, lines = self.call(attach.body)
                self.assertEqual((reply.status, soap.fault_of(reply)), (500, fault))
                self.assertEqual(len(requests), 1)
                if fault == NO_RETURN:
                    self.assertRegex(lines[2], r"^level\(4\) category\(SANService\) message\("
                                     r"Connection error serving san service request\. msg\(.+\)\)$")
                    self.assertEqual(lines[3:], [line("Received NULL response")])
                else:
                    self.assertEqual(len(lines), 2)
                again, _, _ = self.call(attach.body)
                self.assertEqual(wrapper_of(again), attach.reply)

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
                    self.assertEqual(request.header["hccId"], arrives)
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
                for request in self.manager.take_requests():
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
