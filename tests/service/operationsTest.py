"""What each operation sends to the API manager, answers and logs, and what becomes of a call
that fails."""

import re
from xml.sax.saxutils import escape

import harness
import soap
from arraySimulator import success
from operations import OPERATIONS, SCSI, SKIPPED, VOLUME
from soap import elements

USER, TOKEN = "marker-user:marker-pass", "marker-token"
HEAD = soap.header(user=USER, token=TOKEN)
# The only ones that the array accepts.
ACCEPTED = {"users": [{"user": "marker-user", "password": "marker-pass"}], "tokens": [TOKEN]}
NO_RETURN = ("Server", "Received Invalid/NULL response from tarn")


def line(text):
    return f"level(4) category(SANService) message({text})"


# The body of a request of each operation.
BODIES = {row.name: row.body for row in OPERATIONS}
ATTACH = next(row for row in OPERATIONS if row.name == "HccAttachVolume")


def wrapper_of(reply):
    """The text between the start and the end tag of the response's wrapper."""
    return re.search(r"<ns1:\w+Response[^>]*>(.*)</ns1:\w+Response>", reply.text, re.S).group(1)


class OperationsTest(harness.ServiceCase):
    # Lenient, so that each operation can be called by itself.
    simulator_arguments = ["--lenient", "--show-keys"]
    simulator_files = {"credentials": ACCEPTED, "seed_file": {"volumes": [VOLUME]}}

    def tearDown(self):
        self.array.control("reset", "faults")
        self.array.take_requests()

    def call(self, body, head=HEAD):
        before = len(self.server.syslog())
        reply = self.server.post(soap.envelope(body, head))
        self.assertEqual((reply.headers["Content-Type"], int(reply.headers["Content-Length"])),
                         ("text/xml; charset=utf-8", len(reply.body)))
        # No secret comes back, whatever went wrong.
        self.assertNotRegex(reply.text, "marker|userPass|authToken")
        return reply, self.array.take_requests(), self.server.syslog()[before:]

    def test_each_operation_sends_answers_and_logs(self):
        for row in OPERATIONS:
            with self.subTest(row.name, fields=row.fields):
                reply, (request,), lines = self.call(row.body)
                self.assertTrue(soap.answered(reply, row.name), reply.text)
                self.assertEqual(wrapper_of(reply), row.reply)
                self.assertEqual(request.request, row.document)
                self.assertEqual((request.clientAddress, request.schemaVersion, request.hccId,
                                  request.blobs),
                                 ("127.0.0.1", "2.3", "c1" if row.fields else "", []))
                self.assertEqual(lines, [line(text) for text in (
                    "Validating soap header", f"Serving {row.name} request", *row.logs)])

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
                reply, (request,), _ = self.call(BODIES["RemoveServer"],
                                                 soap.header(user=user, token=token))
                self.assertEqual((request.credentials, request.authToken), shown)
                self.assertEqual(soap.fault_of(reply), fault)

    def test_refusals_of_the_service_reach_no_api_manager(self):
        null = ("Client", "Invalid request parameter, NULL")
        nil = 'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:nil="true"'
        unusable = ("Client", "AddHccToSan: IpAddresses not specified or invalid")
        rows = [  # operation, its children, the fault, how many addresses are skipped
            ("RenameHccInSan", elements("hccId=c sanId=s name=n"),
             ("Client", "RenameHccInSan is not supported by SanApi interface."), 0),
            ("AddServer", "<sanId>s1</sanId>", null, 0),
            *(("AddHccToSan", f"<hccId>c1</hccId><hccKey>k</hccKey>{addresses}", unusable, skipped)
              for addresses, skipped in [
                  ("", 0), ("<cfmIpAddresses><port>1</port></cfmIpAddresses>", 1),
                  (f"<cfmIpAddresses {nil}/>", 1), ("<cfmIpAddresses/>" * 501, 500),
                  ('<cfmIpAddresses><ipAddress type="ipv4"><ipv4Addr/></ipAddress><port>1</port>'
                   "</cfmIpAddresses>", 0)]),
        ]
        bodies = [(f"<ns1:{name}>{children}</ns1:{name}>", *expected)
                  for name, children, *expected in rows]
        nothing = [(f"<ns1:{name} {nil}/>", null, 0) for name in BODIES if name != "Ping"]
        for body, fault, skipped in bodies + nothing:
            with self.subTest(body):
                reply, requests, lines = self.call(body)
                self.assertEqual((reply.status, soap.fault_of(reply)), (500, fault))
                self.assertEqual(requests, [])
                self.assertEqual(lines.count(line(SKIPPED)), skipped)

    def test_text_of_the_api_manager_reaches_the_client(self):
        for text in ["No such cluster", "tom & <jerry> \"q\" 'a'", "集群 é %s%n", "a\nb", ""]:
            with self.subTest(text):
                self.array.fail("refuse", command="RemoveServer", error=text, localized="other")
                reply, _, lines = self.call(BODIES["RemoveServer"])
                self.assertEqual(soap.fault_of(reply), ("Server", text))
                self.assertNotIn("<detail>", reply.text)
                self.assertEqual(len(lines), 2)  # the array's refusals leave no line

    def test_every_fault_of_the_array_is_answered_and_the_next_request_works(self):
        failed = ("Server", "Failed to attach volume")
        rows = [  # fault, its members, what the client gets
            ("answer", {"document": "<!DOCTYPE a><compapi/>"},
             ("Server", "Invalid content in response message")),
            ("answer", {"document": success("<ReturnMethodObject><Unheard/></ReturnMethodObject>")},
             failed),
            ("answer", {"document": success(SCSI.replace("MethodObject>", "MethodObjectArray>"))},
             failed),
            ("delay", {"delayMs": 300}, None),
            ("drip", {"intervalMs": 1}, None),
        ]
        for kind in self.array.show("fail", "--kinds"):
            # What the simulator promises; those of no fixed words have rows of their own.
            promised = re.search(r'receiver fault (?:"([^"]+)"$|"(Failed[^"]+)"|with an empty)',
                                 kind["clientSees"])
            if promised:
                text = promised.group(1) or promised.group(2) or ""
                rows.append((kind["name"], {}, ("Server", text)))
            else:
                self.assertIn(kind["name"], ("refuse", "answer", "delay", "drip"))
        for fault, members, expected in rows:
            with self.subTest(fault, **members):
                self.array.fail(fault, command="HccAttachVolume", **members)
                reply, requests, lines = self.call(ATTACH.body)
                self.assertEqual(soap.fault_of(reply), expected)
                self.assertEqual(len(requests), 1)
                if expected == NO_RETURN:
                    self.assertRegex(lines[2], r"^level\(4\) category\(SANService\) message\("
                                     r"Connection error serving san service request\. "
                                     r"msg\(.+\)\)$")
                    self.assertEqual(lines[3:], [line("Received NULL response")])
                else:
                    self.assertEqual(len(lines), 2)
                again = self.call(ATTACH.body)[0] if expected else reply
                self.assertEqual(wrapper_of(again), ATTACH.reply)

    def test_client_text_stays_inside_its_element_and_its_line(self):
        escaped = {"markup": "</HccId><SanId>x</SanId>", "per cent": "%s%n%d", "quotes": "\"'&",
                   "beyond ASCII": "集群 Zürich 😀", "long": "x" * 60000}
        rows = [(name, escape(text), text) for name, text in escaped.items()]
        rows += [("CDATA", "<![CDATA[</HccId>&amp;]]>", "</HccId>&amp;"),
                 ("reference", "&#65;&lt;b&gt;", "A<b>"),
                 ("controls", "a&#10;level(0) forged&#13;b", None)]
        for name, sent, arrives in rows:
            with self.subTest(name):
                reply, (request,), lines = self.call(BODIES["RemoveHccFromSan"].replace("c1", sent))
                self.assertTrue(soap.answered(reply, "RemoveHccFromSan"), reply.text)
                value = re.fullmatch(r".*<Attributes><HccId>([^<]*)</HccId></Attributes>.*",
                                     request.request, re.S).group(1)
                if arrives is not None:
                    self.assertEqual(value, escape(arrives, {'"': "&quot;", "'": "&apos;"}))
                    self.assertEqual(request.hccId, arrives)
                self.assertEqual(len(lines), 2)

    @classmethod
    def tearDownClass(cls):
        """After every failure above: no secret stands in any log."""
        if "marker" in "".join(cls.server.syslog()) + cls.server.error_log():
            raise AssertionError("credentials or token in a log")
