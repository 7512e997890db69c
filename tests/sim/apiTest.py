"""The HTTP interface against its own description, and what it lets whom do."""

import json
import os
import unittest

import jsonschema

import wire
from arraySimulator import ArraySimulator
from commandTest import call
from programs import SIMCTL, SIMULATOR, run

ROOT = "/api/v1"
# What the requests that take a body are sent; the rest of the interface needs none.
BODIES = {
    "postFault": {"command": "Ping", "fault": "delay", "delayMs": 1, "count": 0},
    "postScenario": {"description": "d", "goodCluster": "g",
                     "faults": [{"command": "GetList", "fault": "refuse"}]},
    "postReset": {"what": "faults"},
    "postClock": {"advanceMs": 1000},
    "putSeed": {"volumes": 1, "content": {"clusters": [{"id": "hcc-2", "key": "secret-key"}]}},
    "postVerify": {"rules": ["all"], "nothingElse": True,
                   "expect": [{"command": "Ping", "members": {"HccId": {"like": "*"}}}]},
}


class ApiTest(unittest.TestCase):
    def start(self, *options):
        self.simulator = self.enterContext(ArraySimulator("--web", "0", *options))
        return self.simulator

    def ask(self, method, path, body=None, **headers):
        if method != "GET":
            headers = {"Content-Type": "application/json", **headers}
        status, text = self.simulator.web(method, path, body and json.dumps(body), headers)
        return status, json.loads(text)

    def test_every_request_is_as_the_description_says(self):
        self.start()
        for command in ("AddHccToSan", "AddServer", "HccAttachVolume", "MakeDataAvailable",
                        "SnapshotPrepareComplete", "Nonsense"):
            call(self.simulator.port, command)
        description = self.ask("GET", ROOT + "/openapi.json")[1]
        requests = {(method.upper(), path, operation["operationId"]): operation
                    for path, operations in description["paths"].items()
                    for method, operation in operations.items()}
        served = self.ask("GET", ROOT)[1]["requests"]
        self.assertEqual(sorted(served),
                         sorted(f"{method} {ROOT}{path}" for method, path, _ in requests))

        def check(value, schema, words):
            # The references point into the description.
            jsonschema.validate(value, {**schema, "components": description["components"]}, words)

        # Those that look come last, so that there is something to see; a fault is taken back
        # after it was set.
        for (method, path, name), operation in sorted(
                requests.items(), key=lambda one: "POST PUT DELETE GET".index(one[0][0])):
            with self.subTest(request=name):
                body = BODIES.get(name)
                self.assertEqual(body is not None, "requestBody" in operation)
                if body:
                    check(body, operation["requestBody"]["content"]["application/json"]["schema"],
                          jsonschema.Draft4Validator)
                    status, answer = self.ask(method, ROOT + path, {"surplus": body})
                    self.assertEqual(status, 400)
                    check(answer, {"$ref": "#/components/schemas/Error"},
                          jsonschema.Draft4Validator)
                if name == "deleteFault":
                    self.ask("POST", ROOT + "/faults", BODIES["postFault"])
                    path = f"/faults/{self.ask('GET', ROOT + '/faults')[1][0]['id']}"
                status, answer = self.ask(method, ROOT + path, body)
                self.assertEqual(status, 200, answer)
                check(answer, operation["responses"]["200"]["content"]["application/json"]
                      ["schema"], jsonschema.Draft4Validator)
                self.assertNotIn("secret-key", json.dumps(answer))
        self.assertEqual([c["id"] for c in self.ask("GET", ROOT + "/state")[1]["clusters"]],
                         ["hcc-2"])

    def test_exchanges_are_chosen_by_what_is_asked(self):
        self.start()
        self.simulator.fail("reset", command="AddServer")
        for command, changes in (("AddHccToSan", {}), ("AddHccToSan", {"HccId": "hcc-2"}),
                                 ("HccAttachVolume", {"VolumeId": "vol-99"}), ("GetList", {})):
            call(self.simulator.port, command, **changes)
        with self.assertRaises(ConnectionResetError):
            call(self.simulator.port, "AddServer")
        cases = {
            "": [1, 2, 3, 4, 5], "last=2": [4, 5], "since=3": [4, 5], "since=1&last=1": [5],
            "command=AddHccToSan": [1, 2], "command=TarnHostCache::GetList": [4], "command=Add": [],
            "cluster=hcc-2": [2], "outcome=refused": [3], "outcome=ok&cluster=hcc-1": [1, 4, 5],
            "fault=reset": [5], "fault=*": [5], "fault=delay": [], "documents=none&last=1": [5],
        }
        for query, expected in cases.items():
            with self.subTest(query=query):
                answer = self.ask("GET", f"{ROOT}/exchanges?{query}")[1]
                self.assertEqual([one["id"] for one in answer], expected)
                self.assertEqual(all("request" in one for one in answer), "none" not in query)
        self.assertEqual(self.ask("GET", ROOT + "/exchanges?documents=all")[0], 400)

    def test_time_moves_on_for_replies_and_faults_that_wait(self):
        self.start()
        with self.assertRaises(TimeoutError):
            self.simulator.fail("delay", command="Ping", delayMs=3_600_000)
            late = wire.socket.create_connection(("127.0.0.1", self.simulator.port), 20)
            self.addCleanup(late.close)
            late.sendall(wire.frame(wire.request(wire.document("Ping"))))
            late.settimeout(0.2)
            late.recv(1)
        self.simulator.fail("refuse", command="GetList", count=0, forMs=60_000)
        self.assertFalse(call(self.simulator.port, "GetList").ok)
        self.simulator.control("clock", "--advance-ms", "3600000")
        late.settimeout(20)
        self.assertTrue(wire.Reply(wire.receive_all(late)).ok)
        self.assertTrue(call(self.simulator.port, "GetList").ok)
        self.assertEqual(self.simulator.show("clock")["advancedMs"], 3_600_000)

    def test_other_machines_need_the_token(self):
        # An address of this machine that is not taken for loopback by its name.
        self.start("--listen", "0.0.0.0")
        token = self.simulator.web_url.split("#token=")[1]
        right = {"Authorization": f"Bearer {token}"}
        for path, headers, expected in (
                ("/state", {}, 401), ("/state", {"Authorization": "Bearer x"}, 401),
                ("/state", {**right, "Origin": "http://other.example"}, 403),
                ("/state", {**right, "Host": "any.example"}, 200), ("/state", right, 200)):
            with self.subTest(path=path, headers=headers):
                self.assertEqual(self.ask("GET", ROOT + path, **headers)[0], expected)
        place = f"http://127.0.0.1:{self.simulator.web_port}"
        secret = self.simulator.path("token")
        for words, mode, status in ((token, 0o600, 0), (token, 0o644, 1), ("", 0o600, 1),
                                    ("x", 0o600, 1)):
            with open(secret, "w", encoding="utf-8") as file:
                file.write(words)
            os.chmod(secret, mode)
            with self.subTest(words=words, mode=mode):
                ended = run(SIMCTL, "--url", place, "--token-file", secret, "state")
                self.assertEqual(ended.returncode, status, ended.stderr)
        printed = run(SIMCTL, "state", SANSIM_URL=f"{place}/#token={token}")
        self.assertEqual(printed.returncode, 0, printed.stderr)
        for options, words in (
                (("--web", str(self.simulator.web_port)), "choose another port with --web"),
                (("--web", "0", "--token-file", "/nonexistent"), "no token can be read")):
            ended = run(SIMULATOR, "--port", "0", "--control", self.simulator.path("other"),
                        *options)
            self.assertEqual(ended.returncode, 1)
            self.assertIn(words.lower(), ended.stderr.lower())
