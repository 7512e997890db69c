"""The control command and the page's requests: what they show, what they change, whom they
refuse, and that no secret is in anything that they show."""

import json
import os
import select
import subprocess
import unittest

import wire
from arraySimulator import ArraySimulator
from commandTest import ALL, call
from programs import ROOT, SIMCTL, SIMULATOR, run

SCENARIO = ROOT / "packaging/scenarios/arrayDown.json"
LIFE = ("AddHccToSan", "AddServer", "HccAttachVolume", "MakeDataAvailable")


class ControlTest(unittest.TestCase):
    def setUp(self):
        self.simulator = self.enterContext(ArraySimulator("--web", "0"))
        self.port = self.simulator.port

    def exchanges(self, *options):
        return [json.loads(line) for line in
                self.simulator.control("log", "--json", *options).splitlines()]

    def rules(self):
        return self.simulator.show("fail", "--rules")

    def test_what_is_shown_is_what_happened(self):
        for command in LIFE:
            call(self.port, command, HccKey="k" if command == "AddHccToSan" else None)
        call(self.port, "HccAttachVolume", VolumeId="evil\x1b[2J\x9b2J\nline")
        state = self.simulator.show("state")
        cluster, volume = state["clusters"][0], state["volumes"][0]
        self.assertEqual((cluster["name"], cluster["servers"][0]["interfaces"]),
                         ("Büro & Lager", [{"id": "wwn-1", "type": "Iscsi"}]))
        self.assertEqual((volume["attachedTo"], volume["availableOn"]), ("hcc-1", ["hcn-1"]))
        self.assertIn("attached to hcc-1, data on hcn-1", self.simulator.control("state"))
        done, refused = self.exchanges("-n", "2")
        self.assertEqual((done["command"], done["outcome"], done["clientAddress"],
                          done["schemaVersion"], done["request"]),
                         ("TarnHostCache::MakeDataAvailable", "ok", "10.9.8.7", "2.3",
                          wire.document("MakeDataAvailable", {**ALL, "HccKey": None})))
        self.assertEqual(refused["command"], "(unreadable request)")
        self.assertIn("refused: ", refused["outcome"])
        # The document cannot be read as XML, so it is shown as it came, but on the screen no
        # control character may come through.
        self.assertNotRegex(self.simulator.control("log"), "[\x1b\x80-\x9f]")

    def test_no_secret_is_shown_or_kept(self):
        session = "<ApiConnection><sessionkey>marker-session</sessionkey></ApiConnection>"
        texts = [
            wire.document("AddHccToSan", ALL, connection=session),
            wire.document("AddHccToSan", ALL),
            wire.document("GetList", connection=session),
            "<compapi><HccKey>marker-key",
            "<compapi><x:HccKey a='>'>marker-key</x:HccKey><HccKey>marker-key</HccKey >",
        ]
        for text in texts:
            wire.exchange(self.port, wire.request(text, b"user:marker-pass", "marker-token"))
        shown = [self.simulator.control(*arguments) for arguments in (
            ("log",), ("log", "--json"), ("state",), ("state", "--json"))]
        shown += [self.simulator.web("GET", path)[1] for path in ("/api/v1/exchanges", "/api/v1/state")]
        with open(self.simulator.log, encoding="utf-8") as file:
            shown.append(file.read())
        self.assertEqual(shown[-1].count("\n"), len(texts))
        self.simulator.end()
        self.assertNotIn("marker", "".join(shown + self.simulator.lines))

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
        nobody = ("--control", "/nonexistent/socket")
        for arguments, status, words in (
                (("fail", "Ping", "nonsense"), 1, "there is no fault"),
                (("fail", "Foo", "refuse"), 1, 'there is no command "Foo"'),
                (("fail", "TarnServer::HbaList", "refuse"), 0, ""),
                (("fail", "Ping"), 64, "COMMAND and FAULT"),
                ((), 64, "subcommand is required"),
                (("foo",), 64, "foo"),
                (("fail", "--remove", "99"), 1, "no fault of that id"),
                (("reset", "everything"), 64, "everything"),
                (("seed", "/"), 1, "cannot read /"),
                (("seed", SCENARIO), 1, f"{SCENARIO}: the seed has no member"),
                (("verify", "--rules", "all", SCENARIO), 1, f"{SCENARIO}: the expectations"),
                (("log", *nobody), 1, "no simulator answers"),
                (("fail", "--rules", *nobody), 1, "no simulator answers"),
                (("fail", "--kinds", *nobody), 0, "")):
            with self.subTest(arguments=arguments):
                ended = run(SIMCTL, *arguments, SANSIM_CONTROL=self.simulator.control_socket)
                self.assertEqual(ended.returncode, status, ended.stderr)
                self.assertIn(words, ended.stderr)

    def test_following_without_a_history_shows_only_what_comes(self):
        call(self.port, "AddHccToSan")
        environment = {**os.environ, "SANSIM_CONTROL": self.simulator.control_socket}
        with subprocess.Popen([SIMCTL, "log", "-n", "0", "-f", "--json"], env=environment,
                              stdout=subprocess.PIPE) as follower:
            # It says nothing when it begins, so calls go on until one is shown.
            while not select.select([follower.stdout], [], [], 0.2)[0]:
                wire.call(self.port, "Ping")
            shown = json.loads(follower.stdout.readline())
            follower.terminate()
        self.assertEqual(shown["command"], "TarnHostCache::Ping")

    def test_reset_goes_back_to_the_seed(self):
        call(self.port, "AddHccToSan")
        self.simulator.control("reset", "log")
        self.assertEqual((self.exchanges(), len(self.simulator.show("state")["clusters"])), ([], 1))
        self.simulator.control("reset")
        state = self.simulator.show("state")
        self.assertEqual((state["clusters"], len(state["volumes"])), ([], 8))
        self.assertTrue(call(self.port, "AddHccToSan").ok)
        self.assertTrue(wire.call(self.port, "Get", {"InstanceId": "101.1"}).ok)  # counted anew

    def test_only_the_own_page_is_served(self):
        own = f"http://127.0.0.1:{self.simulator.web_port}"
        rule = json.dumps({"command": "Ping", "fault": "refuse"})
        as_json = {"Content-Type": "application/json"}
        no_type = "needs Content-Type"
        cases = [  # method, path, body, headers, status, words of the answer
            ("GET", "/", None, {}, 200, ""),
            ("GET", "/page.js", None, {}, 200, ""),
            ("GET", "/api/v1/state", None, {"Host": "rebound.example:80"}, 403, "own page"),
            ("GET", "/api/v1/state", None, {"Origin": "http://other.example"}, 403, "own page"),
            ("POST", "/api/v1/faults", rule, {"Content-Type": "text/plain"}, 403, no_type),
            ("DELETE", "/api/v1/faults/1", None, {}, 403, no_type),
            ("POST", "/api/v1/faults", rule, {**as_json, "Origin": "null"}, 403, "own page"),
            ("POST", "/api/v1/reset", "{}", {**as_json, "Host": "localhost"}, 403, "own page"),
            ("POST", "/api/v1/faults", "{\n", as_json, 400, "is no JSON: line"),
            ("POST", "/api/v1/faults", "[1]", as_json, 400, ""),
            ("GET", "/api/v1/exchanges?last=-1", None, {}, 400, ""),
            ("POST", "/api/v1/faults", rule, {**as_json, "Origin": own}, 200, ""),
            ("POST", "/api/v1/faults", rule, as_json, 200, ""),
            ("DELETE", "/api/v1/faults/2", None, as_json, 200, ""),
            ("DELETE", "/api/v1/faults/2", None, as_json, 404, "no fault of that id"),
            ("POST", "/api/v1/clock", '{"advanceMs": -1}', as_json, 400, "advanceMs has to be"),
            ("POST", "/api/v1/reset", '{"what": 1}', as_json, 400, "what has to be a text"),
            ("GET", "/../etc/passwd", None, {}, 404, "there is no"),
        ]
        for *request, status, words in cases:
            with self.subTest(request=request):
                answer = self.simulator.web(*request)
                self.assertEqual(answer[0], status)
                self.assertIn(words, answer[1])
        self.assertEqual(len(self.rules()), 1)

    def test_the_socket_is_its_owners_and_goes_with_the_simulator(self):
        path = self.simulator.control_socket
        self.assertEqual(os.stat(path).st_mode & 0o077, 0)
        second = run(SIMULATOR, "--port", "0", "--control", path)
        self.assertEqual(second.returncode, 1)
        self.assertIn("another simulator answers", second.stderr)
        with open(self.simulator.path("file"), "w", encoding="utf-8") as file:
            file.write("precious")
        third = run(SIMULATOR, "--port", "0", "--control", file.name)
        self.assertEqual((third.returncode, os.path.exists(file.name)), (1, True))
        self.assertIn("is no socket", third.stderr)
        self.simulator.end()
        self.assertFalse(os.path.exists(path))
