"""The web server's module: what it answers by itself, and what it stands.

The plug-in behind it is one that answers a Ping at once, or one that misbehaves.
"""

import concurrent.futures
import contextlib
import gzip
import os
import pathlib
import re
import shutil
import signal
import tempfile
import threading
import time
import unittest

import programs
import soap
import webServer
from webServer import PATH, WebServer

MARKER = "MARKER-of-a-request"
LIMIT = 128 * 1024


def http(method="POST", path=PATH, version="1.1", body=b"", length=None, **headers):
    """A request as bytes. `length` overrides the Content-Length; None for a header drops it."""
    fields = {"Host": "localhost", "Content-Type": "text/xml", "Connection": "close"}
    fields["Content-Length"] = str(len(body) if length is None else length)
    fields.update({name.replace("_", "-"): value for name, value in headers.items()})
    lines = [f"{method} {path} HTTP/{version}"]
    lines += [f"{name}: {value}" for name, value in fields.items() if value is not None]
    return "\r\n".join(lines).encode() + b"\r\n\r\n" + body


def chunked(*chunks, **headers):
    body = b"".join(b"%x\r\n%s\r\n" % (len(c), c) for c in (*chunks, b""))
    return http(body=body, Content_Length=None, Transfer_Encoding="chunked", **headers)


PING = soap.PING.encode()
IN_ENVELOPE = soap.envelope(f"<ns1:Ping>{MARKER}%s</ns1:Ping>")


def with_body(content):
    return http(body=(IN_ENVELOPE % content).encode())


# What a client sends, and the status that it gets.
REQUESTS = [
    ("a Ping", http(body=PING), 200),
    ("a Ping of HTTP/1.0", http(body=PING, version="1.0", Host=None), 200),
    ("SOAP 1.2", http(body=PING.replace(b"schemas.xmlsoap.org/soap/", b"www.w3.org/2003/05/soap-")
                      .replace(b"-envelope/", b"-envelope"),
                      Content_Type="application/soap+xml; action=urn:a"), 200),
    ("a body of just the limit", http(body=PING.ljust(LIMIT)), 200),
    ("a description", http("GET", PATH + "?wsdl"), 200),
    ("the head of a description", http("HEAD", PATH + "?WSDL"), 200),
    # Methods.
    ("GET without a query", http("GET"), 405),
    ("GET with another query", http("GET", PATH + "?wsdl=" + MARKER), 405),
    ("HEAD", http("HEAD"), 405),
    ("OPTIONS", http("OPTIONS"), 405),
    ("TRACE", http("TRACE", Content_Length=None), 405),
    ("a method of no standard", http(MARKER.replace("-", ""), body=PING), 405),
    # Content that is not a SOAP request.
    ("no content type", http(body=PING, Content_Type=None), 415),
    *((f"content type {given}", http(body=PING, Content_Type=given), status)
      for given, status in (
          ('text/xml; charset="UTF-8"', 200), ("TEXT/XML ;Charset = 'utf-8'", 200),
          (r'text/xml;a="\";charset=x";charset="u\tf-8"', 200), ("text/xml;charset=Utf8;b", 200),
          ("text/xml; charset=us-ascii; action=a", 200), ("text/xmlx", 415), ("text/html", 415),
          ("application/soap+xm", 415), ("text/xml;charset=utf-16", 415),
          ("text/xml; charset='utf-8", 200), ("text/xml;charset=utf-8x", 415),
          ('text/xml;charset="utf-8 "', 415), ("text/xml; x=y; charset=", 415))),
    ("a compressed body", http(body=gzip.compress(PING), Content_Encoding="gzip"), 415),
    ("a body compressed in secret", http(body=gzip.compress(PING)), 400),
    ("an empty body", http(), 400),
    ("no length", http(Content_Length=None), 400),
    ("no chunk", chunked(), 400),
    ("blanks", http(body=b" \r\n" * 1000), 400),
    ("HTTP in the body", http(body=http(body=PING)), 400),
    ("a package of parts", http(body=b"--part\r\n\r\n" + PING), 400),
    ("zero bytes", http(body=bytes(100)), 400),
    # Size and framing.
    ("a body above the limit", http(body=PING.ljust(LIMIT + 1)), 413),
    ("a body announced above the limit", http(length=1 << 40), 413),
    ("chunks above the limit", chunked(PING, b" " * LIMIT), 413),
    *((f"{number} chunks of one byte", chunked(*(b"%c" % c for c in PING.ljust(number))), status)
      for number, status in ((1057, 200), (1058, 400), (LIMIT, 400))),
    ("an endless chunk", chunked()[:-5] + b"ffffffffffffffffff\r\n", 413),
    ("a chunk of no size", chunked()[:-5] + MARKER.encode() + b"\r\n", 400),
    ("a chunk cut short", chunked()[:-5] + b"ff\r\n<a>", 400),
    ("a body cut short", http(body=PING[:100], length=len(PING)), 400),
    ("a negative length", http(length=-1), 400),
    ("two lengths", http(body=PING).replace(b"\r\n\r\n", b"\r\nContent-Length: 1\r\n\r\n", 1), 400),
    ("no HTTP", MARKER.encode() + b"\r\n\r\n", 400),
    ("a host of markup", http("GET", PATH + "?wsdl", Host='"><' + MARKER), 400),
    # XML that the engine has to stand.
    ("a zero within", with_body("\0"), 200),
    ("deep nesting", with_body("<a>" * 40000), 400),
    ("many attributes", with_body("<a " + "".join(f'b{i}="" ' for i in range(65)) + "/>"), 400),
]


def statuses(received):
    return [int(s) for s in re.findall(rb"^HTTP/1\.[01] (\d+)", received, re.MULTILINE)]


class ModuleCase(unittest.TestCase):
    def start(self, plugin=webServer.BARE_PLUGIN, wsdl=None, **options):
        return self.enterContext(WebServer(plugin=plugin, wsdl=wsdl, **options))

    def start_oddly(self, behaviour):
        return self.start(webServer.ODD_PLUGIN, environment={"ODD_PLUGIN": behaviour})


class AnswerTest(ModuleCase):
    def test_each_request_gets_its_answer_and_the_child_lives(self):
        server = self.start(wsdl="<definitions/>", threads=4)
        children = server.children()
        for name, request, expected in REQUESTS:
            with self.subTest(name):
                received = server.send_raw(request)
                self.assertEqual(statuses(received)[:1], [expected], received[:500])
                self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))
                self.assertEqual(server.children(), children)
        self.assertNotIn(MARKER, server.error_log())

    def test_refused_method_is_told_what_is_allowed(self):
        for wsdl, allowed in (("<definitions/>", {"GET", "HEAD", "POST"}), (None, {"POST"})):
            server = self.start(wsdl=wsdl)
            for method in ("GET", "PUT", "OPTIONS"):
                reply = server.request(method)
                self.assertEqual(reply.status, 405)
                self.assertEqual(set(reply.headers["Allow"].replace(",", " ").split()), allowed)

    def test_streams_of_bytes_and_a_lowered_limit(self):
        server = self.start(extra=f"<Location {PATH}>\nLimitRequestBody 1000\n</Location>")
        keep, ask = http(body=PING, Connection=None), {"Expect": "100-continue"}
        rows = [
            ("requests in a row", keep * 3 + http(body=PING), [200] * 4),
            ("a client that waits for leave", http(body=PING, **ask), [100, 200]),
            ("one that would send too much", http(length=LIMIT + 1, **ask), [413]),
            ("a body of just the limit", http(body=PING.ljust(1000)), [200]),
            ("a body above it", http(body=PING.ljust(1001)), [413]),
            ("chunks above it", chunked(PING, b" " * 1000), [413]),
        ]
        for name, request, expected in rows:
            with self.subTest(name):
                self.assertEqual(statuses(server.send_raw(request)), expected)


class WsdlTest(ModuleCase):
    HOSTS = [
        # Host header, address in the description; {} is the server's port
        ("array.example", "http://array.example/sanService"),
        ("array.example:80", "http://array.example/sanService"),
        ("Array.example:8443", "http://array.example:8443/sanService"),
        ("[::1]:8080", "http://[::1]:8080/sanService"),
        (None, "http://127.0.0.1:{}/sanService"),
    ]

    def test_names_the_address_that_the_client_used(self):
        server = self.start(wsdl="<a>@SERVICE_ADDRESS@</a><b>@SERVICE_ADDRESS@</b>")
        for host, address in self.HOSTS:
            version = "1.1" if host else "1.0"
            received = server.send_raw(http("GET", PATH + "?wsdl", version, Host=host))
            address = address.format(server.port).encode()
            self.assertTrue(received.endswith(b"<a>%s</a><b>%s</b>" % (address, address)),
                            received)

    def test_markup_in_a_path_stays_text(self):
        server = self.start(wsdl='<a b="@SERVICE_ADDRESS@"/>', extra=(
            '<LocationMatch "/other">\nSetHandler gsoap_handler\n'
            'SOAPWsdl test.wsdl\n</LocationMatch>'))
        received = server.request("GET", '/other%22%3E%3C%26?wsdl').text
        self.assertRegex(received, r'^<a b="[^"<>]*/other[^"<>]*"/>$')


SECTIONS = """
SOAPWsdl "{outer}"
SOAPLibrary "{plugin}"
SOAPMaxCalls 1
<Location /a>
    SetHandler gsoap_handler
</Location>
<Location /a/b>
    SOAPWsdl "{inner}"
</Location>
<Location /a/c>
    SOAPLibrary "{odd}"
    SOAPMaxCalls 0
</Location>
<Location /a/c/d>
    SetHandler None
</Location>
"""


class SectionsTest(ModuleCase):
    def test_a_section_inherits_what_it_does_not_say(self):
        with contextlib.ExitStack() as stack:
            outer, inner = (stack.enter_context(tempfile.NamedTemporaryFile("w", suffix=".wsdl"))
                            for _ in range(2))
            for file, text in ((outer, "<outer/>"), (inner, "<inner/>")):
                os.chmod(file.name, 0o644)
                file.write(text)
                file.flush()
            server = self.start(environment={"ODD_PLUGIN": "registers"}, extra=SECTIONS.format(
                outer=outer.name, inner=inner.name, plugin=webServer.BARE_PLUGIN,
                odd=webServer.ODD_PLUGIN))
            rows = [
                # path, description, what answers a Ping
                ("/a", "<outer/>", "PingResponse"), ("/a/b", "<inner/>", "PingResponse"),
                ("/a/c", "<outer/>", "3"), ("/a/c/d", None, None), ("/e", None, None),
            ]
            for path, description, answer in rows:
                with self.subTest(path):
                    found = server.request("GET", path + "?wsdl")
                    self.assertEqual(found.text if found.status == 200 else None, description)
                    reply = server.request("POST", path, PING, {"Content-Type": "text/xml"})
                    self.assertIn(answer or "Not Found", reply.text)
            # The inner section's word that there is no limit holds against the outer one's.
            with concurrent.futures.ThreadPoolExecutor(4) as pool:
                self.assertEqual(list(pool.map(lambda _: server.request(
                    "POST", "/a/c", PING, {"Content-Type": "text/xml"}).status, range(16))),
                    [200] * 16)


class LoadTest(ModuleCase):
    def test_graceful_restarts_under_load_lose_nothing(self):
        for mpm in ("event", "worker", "prefork"):
            with self.subTest(mpm):
                server = self.start(mpm=mpm)
                done = threading.Event()

                def send():
                    while not done.is_set():
                        with contextlib.suppress(ConnectionRefusedError):
                            self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))

                def restart():
                    for count in range(2, 12):
                        server.process.send_signal(signal.SIGUSR1)
                        while server.error_log().count("resuming normal operations") < count:
                            time.sleep(0.05)
                    done.set()
                with concurrent.futures.ThreadPoolExecutor(9) as pool:
                    for work in [pool.submit(f) for f in [send] * 8 + [restart]]:
                        work.result()
                self.assertTrue(soap.answered(server.post(soap.PING), "Ping"))

    def test_a_graceful_restart_takes_up_a_plugin_that_was_replaced(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

        def replace(plugin):
            os.replace(shutil.copy(plugin, folder / "new"), folder / "plugin.so")
        replace(webServer.ODD_PLUGIN)
        server = self.start(folder / "plugin.so", environment={"ODD_PLUGIN": "registers"})
        self.assertEqual(server.post(soap.PING).text, "3")
        service = (webServer.SERVICE_PLUGIN, "Received Invalid")
        for plugin, answer in (service, (webServer.BARE_PLUGIN, "PingResponse"), service):
            replace(plugin)
            server.process.send_signal(signal.SIGUSR1)
            self.assertTrue(any(answer in server.post(soap.PING).text or time.sleep(0.05)
                                for _ in range(600)), plugin)
        replace(webServer.WSDL)  # no plug-in, so the one of before goes on
        server.process.send_signal(signal.SIGUSR1)
        while server.error_log().count("resuming normal operations") < 5:
            time.sleep(0.05)
        self.assertIn("invalid ELF header", server.error_log())
        self.assertIn("Received Invalid", server.post(soap.PING).text)


class OddPluginTest(ModuleCase):
    REFUSED = [
        # behaviour, options of the server, what it says
        ("other length", {}, "liboddPlugin.so: .*length 192 and revision 6"),
        ("other revision", {}, "liboddPlugin.so: .*length 184 and revision 7"),
        ("reserved slot", {}, "liboddPlugin.so: the reserved slot"),
        ("no serve function", {}, "liboddPlugin.so: .*lacks functions"),
        ("larger context", {}, "liboddPlugin.so: its SOAP engine lays out a context in another way"),
        ("smaller context", {}, "liboddPlugin.so: its SOAP engine lays out a context in another way"),
        ("no entry", {"plugin": programs.SHIM}, "does not export apache_init_soap_interface"),
        ("no shared object", {"plugin": webServer.WSDL}, "sanApi.wsdl: .*invalid ELF header"),
        ("no plug-in", {"plugin": "nowhere.so"}, "cannot use .*nowhere.so"),
        ("no number", {"extra": "SOAPMaxCalls 1x"}, "a number is wanted"),
        ("a number below", {"extra": "SOAPMaxCalls -1"}, "a number is wanted"),
        ("no time", {"extra": f"SOAPPing {__file__} 0"}, "from 1 to 300 seconds"),
        ("no plug-in to ping", {"extra": f"SOAPPing {__file__}"}, "without SOAPLibrary, server"),
        ("no description", {"extra": "SOAPWsdl nowhere.wsdl"}, "cannot use .*nowhere.wsdl"),
    ]

    def test_what_cannot_be_used_keeps_the_server_from_starting(self):
        for behaviour, options, reason in self.REFUSED:
            for arguments in ((), ("-t",)):
                with self.subTest(behaviour, arguments=arguments):
                    server = WebServer(**{"plugin": webServer.ODD_PLUGIN, **options},
                                       environment={"ODD_PLUGIN": behaviour})
                    self.addCleanup(server.stop)
                    server.configure()
                    self.assertEqual(server.run_apache(*arguments).wait(60), 1)
                    self.assertRegex(server.error_log(), rf"SOAP\w+.*{reason}")

    ANSWERLESS = [
        ("throws", "exception of type St13runtime_error"),
        ("throws midway", "exception of type i"),
        ("says nothing", "gave no answer, its status is 0"),
        ("fails silently", "gave no answer, its status is 20"),
    ]

    def test_request_without_answer_gets_a_fault_and_the_child_lives(self):
        for behaviour, line in self.ANSWERLESS:
            with self.subTest(behaviour):
                server = self.start_oddly(behaviour)
                children = server.children()
                for _ in range(2):
                    reply = server.post(soap.PING)
                    self.assertEqual(reply.status, 500)
                    self.assertEqual(soap.fault_of(reply),
                                     ("Server", "The service failed to answer"))
                self.assertEqual(server.children(), children)
                self.assertIn(line, server.error_log())
                self.assertNotIn("words of the plug-in", server.error_log())

    CHECKED = [
        # plug-in, behaviour, exit status of sanPluginCheck, what it says
        (webServer.SERVICE_PLUGIN, "", 0, r"\A(ok .*\n){10}\Z"),
        (webServer.BARE_PLUGIN, "", 0, r"odd +Generated functions: 13 slots"),
        (webServer.BARE_PLUGIN, "", 0, r"odd +Exported names: .*missing: \S+init\b"),
        (webServer.BARE_PLUGIN, "", 0, r"odd +Ping: answered without"),
        (webServer.ODD_PLUGIN, "throws", 1, "WRONG +Ping: an exception of type St13runtime_error"),
        (webServer.ODD_PLUGIN, "fails silently", 1, "WRONG +Ping: it writes .*status is 20"),
        (webServer.ODD_PLUGIN, "registers", 1, "WRONG +Ping: .* no answer to a Ping: 1 bytes"),
        (webServer.ODD_PLUGIN, "aborts", 1, r"WRONG +Entry: .*signal 6 \(Aborted\)\n\Z"),
        (webServer.ODD_PLUGIN, "ends", 1, r"WRONG +Entry: .*status 7\n\Z"),
        (webServer.ODD_PLUGIN, "hangs", 3, r"SILENT +Entry: not done within 2 s\n\Z"),
        ("nowhere.so", "", 64, r"\A\Z"),
    ]

    def test_the_check_without_a_server_says_the_same_and_more(self):
        rows = self.CHECKED + [
            (options.get("plugin", webServer.ODD_PLUGIN), behaviour, 1,
             "WRONG .*" + reason.removeprefix("liboddPlugin.so: "))
            for behaviour, options, reason in self.REFUSED
            if "extra" not in options and options.get("plugin") != "nowhere.so"]
        unbound = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()), "unbound.so")
        programs.run("cc", "-shared", "-fPIC", "-x", "c", "-o", unbound, "-", stdin=(
            "void nobodyHasThis(void); void apache_init_soap_interface(void) { nobodyHasThis(); }"))
        for plugin, behaviour, status, words in rows + [
                (unbound, "", 1, "WRONG +Loading: .*undefined symbol: nobodyHasThis")]:
            with self.subTest(plugin, behaviour=behaviour):
                limit = ["--timeout", 2] if behaviour == "hangs" else ["--timeout", 120]
                done = programs.run(programs.PLUGIN_CHECK, *limit, plugin, ODD_PLUGIN=behaviour)
                self.assertRegex(done.stdout, words)
                self.assertEqual(done.returncode, status, done)

    def test_context_that_a_plugin_changed_is_not_used_again(self):
        for behaviour, seen in (("serves without a copy", "new"), ("serves lightly", "new"),
                                ("registers", "3")):
            with self.subTest(behaviour):
                server = self.start_oddly(behaviour)
                self.assertEqual([server.post(soap.PING).text for _ in range(3)], [seen] * 3)

    def test_location_without_plugin_answers_and_says_so(self):
        server = self.start(extra="<Location /bare>\nSetHandler gsoap_handler\n</Location>")
        self.assertEqual(server.request("POST", "/bare", PING).status, 500)
        self.assertIn("no SOAPLibrary", server.error_log())
