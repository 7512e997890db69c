"""The control command and the page's requests: what they show, what they change, whom they
refuse, and that no secret is in anything that they show."""

import http.client
import json
import os
import unittest

import wire
from commandTest import JOIN, SERVER, ids, on_server
from simProcess import Simulator

SECRETS = ("marker-pass", "marker-token", "marker-key", "marker-session")


def has_secret(text):
    return [secret for secret in SECRETS if secret in text]


class ControlTest(unittest.TestCase):
    def setUp(self):
        self.simulator = Simulator("--web", "0", "--log", "{folder}/calls.log")
        self.addCleanup(lambda: self.assertEqual(self.simulator.stop(), 0))
        self.port = self.simulator.port

    def exchanges(self, *options):
        return [json.loads(line) for line in
                self.simulator.control("log", "--json", *options).splitlines()]

    def rules(self):
        return json.loads(self.simulator.control("fail", "--rules", "--json"))

    def test_what_is_shown_is_what_happened(self):
        wire.call(self.port, "AddHccToSan", JOIN)
        wire.call(self.port, "AddServer", SERVER)
        wire.call(self.port, "HccAttachVolume", ids())
        wire.call(self.port, "MakeDataAvailable", on_server())
        wire.call(self.port, "HccAttachVolume", ids(VolumeId="evil\x1b[2J\nline"))
        state = json.loads(self.simulator.control("state", "--json"))
        cluster, volume = state["clusters"][0], state["volumes"][0]
        self.assertEqual((cluster["name"], cluster["servers"][0]["interfaces"]),
                         ("Büro & Lager", [{"id": "wwn-1", "type": "Iscsi"}]))
        self.assertEqual((volume["attachedTo"], volume["availableOn"]), ("hcc-1", ["hcn-1"]))
        text = self.simulator.control("state")
        self.assertIn("attached to hcc-1, data on hcn-1", text)

        last = self.exchanges("-n", "2")
        self.assertEqual([e["command"] for e in last],
                         ["TarnHostCache::MakeDataAvailable", "(unreadable request)"])
        self.assertEqual((last[0]["outcome"], last[0]["clientAddress"], last[0]["schemaVersion"]),
                         ("ok", "10.9.8.7", "2.3"))
        self.assertEqual(last[0]["request"], wire.document("MakeDataAvailable", on_server()))
        self.assertIn("refused: ", last[1]["outcome"])
        # The document cannot be read as XML, so it is shown as it came, but on the screen no
        # control character may come through.
        self.assertNotIn("\x1b", self.simulator.control("log"))

    def test_no_secret_is_shown_or_kept(self):
        session = "<ApiConnection><sessionkey>marker-session</sessionkey></ApiConnection>"
        texts = [
            wire.document("AddHccToSan", {**JOIN, "HccKey": "marker-key"}, connection=session),
            wire.document("AddHccToSan", {**JOIN, "HccKey": "other"}).replace("other", "marker-key"),
            wire.document("GetList", connection=session),
            "<compapi><HccKey>marker-key",
            "<compapi><x:HccKey a='>'>marker-key</x:HccKey><HccKey>marker-key</HccKey >",
        ]
        for text in texts:
            wire.exchange(self.port, wire.request(text, credentials=b"user:marker-pass",
                                                  token="marker-token"))
        shown = [self.simulator.control(*arguments) for arguments in (
            ("log",), ("log", "--json"), ("state",), ("state", "--json"))]
        with open(os.path.join(self.simulator.folder.name, "calls.log")) as file:
            shown.append(file.read())
        self.assertEqual(shown[-1].count("\n"), len(texts))
        for path in ("/api/exchanges", "/api/state"):
            shown.append(self.web("GET", path)[1])
        self.simulator.stop_reading()
        shown.append("".join(self.simulator.lines))
        self.assertEqual([has_secret(text) for text in shown], [[]] * len(shown))

    def test_faults_are_set_shown_and_taken_back(self):
        self.simulator.control("fail", "Ping", "refuse", "--error", "not now", "--count", "2")
        self.simulator.control("fail", "*", "delay", "--delay-ms", "1", "--after", "7")
        self.assertEqual([(r["id"], r["command"], r["fault"], r["count"]) for r in self.rules()],
                         [(1, "Ping", "refuse", 2), (2, "*", "delay", 1)])
        self.assertEqual(wire.call(self.port, "Ping").error, "not now")
        self.assertEqual(self.exchanges("-n", "1")[0]["fault"], "refuse")
        self.simulator.control("fail", "--remove", "1")
        self.assertTrue(wire.call(self.port, "Ping").ok)
        self.simulator.control("reset", "faults")
        self.assertEqual(self.rules(), [])
        for arguments, status, words in (
                (("fail", "Ping", "nonsense"), 1, "there is no fault"),
                (("fail", "Ping"), 64, "COMMAND and FAULT"),
                (("fail", "--remove", "99"), 1, "no fault of that id"),
                (("reset", "everything"), 64, "everything"),
                (("log", "--port", "1"), 1, "no simulator answers")):
            with self.subTest(arguments=arguments):
                ended = self.simulator.run_control(*arguments)
                self.assertEqual(ended.returncode, status, ended.stderr)
                self.assertIn(words, ended.stderr)

    def test_reset_goes_back_to_the_seed(self):
        wire.call(self.port, "AddHccToSan", JOIN)
        self.simulator.control("reset", "log")
        self.assertEqual(self.exchanges(), [])
        self.assertEqual(len(json.loads(self.simulator.control("state", "--json"))["clusters"]), 1)
        self.simulator.control("reset")
        state = json.loads(self.simulator.control("state", "--json"))
        self.assertEqual((state["clusters"], len(state["volumes"])), ([], 8))
        self.assertTrue(wire.call(self.port, "AddHccToSan", JOIN).ok)

    def web(self, method, path, body=None, **headers):
        connection = http.client.HTTPConnection("127.0.0.1", self.simulator.web_port, timeout=20)
        self.addCleanup(connection.close)
        connection.request(method, path, body, {
            name.replace("_", "-"): value for name, value in headers.items()})
        answer = connection.getresponse()
        return answer.status, answer.read().decode()

    def test_only_the_own_page_is_served(self):
        own = f"http://127.0.0.1:{self.simulator.web_port}"
        rule = json.dumps({"command": "Ping", "fault": "refuse"})
        as_json = "application/json"
        cases = [  # method, path, body, headers, status
            ("GET", "/", None, {}, 200),
            ("GET", "/page.js", None, {}, 200),
            ("GET", "/api/state", None, {"Host": "rebound.example:80"}, 403),
            ("GET", "/api/state", None, {"Origin": "http://other.example"}, 403),
            ("POST", "/api/faults", rule, {"Content_Type": "text/plain"}, 403),
            ("POST", "/api/faults", rule, {"Content_Type": as_json, "Origin": "null"}, 403),
            ("POST", "/api/reset", "{}", {"Host": "localhost", "Content_Type": as_json}, 403),
            ("POST", "/api/faults", "{", {"Content_Type": as_json}, 400),
            ("POST", "/api/faults", "[1]", {"Content_Type": as_json}, 400),
            ("GET", "/api/exchanges?last=-1", None, {}, 400),
            ("POST", "/api/faults", rule, {"Content_Type": as_json, "Origin": own}, 200),
            ("GET", "/../etc/passwd", None, {}, 404),
        ]
        for method, path, body, headers, status in cases:
            with self.subTest(method=method, path=path, headers=headers):
                self.assertEqual(self.web(method, path, body, **headers)[0], status)
        self.assertEqual(len(self.rules()), 1)

    def test_the_socket_is_its_owners_and_goes_with_the_simulator(self):
        self.assertEqual(os.stat(self.simulator.socket).st_mode & 0o077, 0)
        second = Simulator.run("--port", "0", "--control", self.simulator.socket)
        self.assertEqual(second.returncode, 1)
        self.assertIn("another simulator answers", second.stderr)
        with Simulator() as other:
            self.assertTrue(os.path.exists(other.socket))
        self.assertFalse(os.path.exists(other.socket))


if __name__ == "__main__":
    unittest.main()
