"""Expectations, rules and recordings against what clusters did, and the ready scenarios."""

import json
import pathlib
import tempfile
import unittest
import xml.etree.ElementTree as ET

from arraySimulator import ArraySimulator
from commandTest import call
from programs import ROOT, SIMCTL, run

SCENARIOS = sorted((ROOT / "packaging" / "scenarios").glob("*.json"))
# What the cluster of these tests does: volume 2 is attached twice.
LIFE = [("AddHccToSan", {}), ("AddServer", {}), ("HccAttachVolume", {"VolumeId": "vol-1"}),
        ("HccAttachVolume", {"VolumeId": "vol-2"}), ("HccAttachVolume", {"VolumeId": "vol-2"}),
        ("MakeDataAvailable", {"VolumeId": "vol-2"})]


def attach(volume, **members):
    return {"command": "HccAttachVolume", "members": {"VolumeId": volume}, **members}


JOIN = {"command": "AddHccToSan"}
DETACH = {"command": "HccDetachVolume"}
# Expectations, members of the file besides, and the words of what is wrong ("" for a pass).
VERDICTS = [
    ([JOIN, attach("vol-1"), attach("vol-2", exactly=2)], {}, ""),
    ([attach("vol-2")], {}, "came 2 times, expected exactly once"),
    ([attach("vol-2", exactly=3)], {}, "came 2 times, expected exactly 3 times"),
    ([attach("vol-2", atLeast=2)], {}, ""),
    ([attach("vol-2", atLeast=3)], {}, "came 2 times, expected 3 times or more"),
    ([attach("vol-2", atMost=2)], {}, ""),
    ([attach("vol-2", atMost=1)], {}, "came 2 times, expected once at most"),
    ([attach("vol-2", atLeast=2, atMost=2)], {}, ""),
    ([attach({"like": "vol-1*"})], {}, ""),
    ([DETACH], {}, "came 0 times, expected exactly once"),
    ([{**DETACH, "exactly": 0}], {}, ""),
    ([attach({"like": "vol-?"}, exactly=3)], {}, ""),
    ([attach({"like": "v*-2"}, exactly=2)], {}, ""),
    ([attach({"like": "vol"}, exactly=0)], {}, ""),
    ([attach(None)], {}, 'VolumeId is there, and is not expected'),
    ([{"command": "AddServer", "members": {"HcnId": "hcn-9"}}], {},
     'HcnId is "hcn-1", not "hcn-9"'),
    ([{"command": "AddServer", "members": {"Absent": "x"}}], {}, "Absent is missing"),
    ([{"command": "AddServer", "cluster": "hcc-9"}], {}, 'cluster is "hcc-1", not "hcc-9"'),
    ([{"command": "AddServer", "outcome": "refused"}], {}, 'outcome is "ok", not "refused"'),
    ([{"command": "AddServer", "withinMs": 3_600_000}], {}, ""),
    ([{"command": "MakeDataAvailable", "withinMs": 0}], {}, "expected within 0 ms"),
    ([JOIN, attach("vol-1"), attach("vol-2", exactly=2)], {"ordered": True}, ""),
    ([attach("vol-1"), JOIN], {"ordered": True}, "came 0 times in its place and once elsewhere"),
    ([JOIN, attach("vol-2", atLeast=1), {"command": "MakeDataAvailable"}], {"ordered": True}, ""),
    ([attach("vol-2"), attach("vol-2")], {"ordered": True}, ""),
    ([JOIN, attach("vol-2")], {"ordered": True}, "came once in its place and once elsewhere"),
    ([{"command": "*", "exactly": 6}], {"nothingElse": True}, ""),
    ([JOIN], {"nothingElse": True}, "5 call(s) nobody expects"),
    ([JOIN], {"since": 1}, "came 0 times"),
    ([], {"rules": ["all"]}, ""),
]
WRONG = [
    ({}, 'needs "expect" or "rules"'),
    ({"expect": [{"command": "Nonsense"}]}, "expect[0].command has to name a command"),
    ({"expect": [{"command": "Ping", "exactly": 1, "atMost": 2}]}, "choose"),
    ({"expect": [{"command": "Ping", "atLeast": 3, "atMost": 2}]}, "fewer calls at most"),
    ({"expect": [{"command": "Ping", "members": {"a": {"matches": "x"}}}]}, 'no member "matches"'),
    ({"rules": ["nonsense"]}, 'no rule "nonsense"'),
]


class VerifyTest(unittest.TestCase):
    def start(self, life=(), **files):
        self.simulator = self.enterContext(ArraySimulator(**files))
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.live(life)

    def live(self, life):
        """Calls in turn; those whose answers get lost count as well."""
        for command, changes in life:
            try:
                call(self.simulator.port, command, **changes)
            except (ConnectionResetError, KeyError):
                pass

    def verify(self, content, *options):
        file = self.folder / "expected.json"
        file.write_text(json.dumps(content), encoding="utf-8")
        return run(SIMCTL, "verify", file, *options,
                   SANSIM_CONTROL=self.simulator.control_socket)

    def test_verdicts(self):
        self.start(LIFE)
        for expect, others, words in VERDICTS:
            with self.subTest(expect=expect, **others):
                ended = self.verify({"expect": expect, **others})
                self.assertEqual(ended.returncode, 1 if words else 0, ended.stdout)
                self.assertIn(words, ended.stdout)
        for content, words in WRONG:
            with self.subTest(content=content):
                ended = self.verify(content)
                self.assertEqual((ended.returncode, ended.stdout), (1, ""))
                self.assertIn(words, ended.stderr)

    def test_a_failure_shows_the_nearest_calls_and_goes_into_a_junit_report(self):
        self.start(LIFE)
        report = self.folder / "report.xml"
        ended = self.verify({"expect": [JOIN, attach("vol-<3>")]}, "--junit", report)
        self.assertIn("ok    1: AddHccToSan", ended.stdout)
        self.assertRegex(ended.stdout, r'FAIL  2: HccAttachVolume with VolumeId "vol-<3>": came 0')
        self.assertRegex(ended.stdout, r'#3 TarnHostCache::HccAttachVolume .*\n'
                                       r' +- VolumeId is "vol-1", not "vol-<3>"')
        suite = ET.parse(report).getroot()
        self.assertEqual((suite.get("tests"), suite.get("failures")), ("3", "1"))
        (failure,) = suite.findall("testcase/failure")
        self.assertIn('VolumeId is "vol-1", not "vol-<3>"', failure.text)

    def test_a_recording_holds_until_something_changes(self):
        self.start(LIFE)
        file = self.folder / "recording.json"
        self.simulator.control("record", str(file))
        self.assertNotIn("marker-key", file.read_text(encoding="utf-8"))
        recording = json.loads(file.read_text(encoding="utf-8"))
        self.assertEqual(len(recording["expect"]), len(LIFE) - 1)  # one call came twice
        self.assertEqual(self.verify(recording).returncode, 0)
        self.simulator.control("reset")
        for changed in (LIFE, LIFE[:-1], LIFE[1:] + LIFE[:1], LIFE + [("GetList", {})]):
            self.simulator.control("reset")
            self.live(changed)
            self.assertEqual(self.verify(recording).returncode, 0 if changed is LIFE else 1)

    def test_rules_are_broken_by_those_who_break_them(self):
        join, server = LIFE[:2]
        volume = {"VolumeId": "vol-1"}
        lost = {"faults": [{"command": "AddServer", "fault": "reset"}]}
        cases = [  # rule, calls, broken
            ("attachAfterJoin", [("HccAttachVolume", volume)], True),
            ("attachAfterJoin", [join, ("HccAttachVolume", volume)], False),
            ("dataOnMembers", [join, LIFE[2], ("MakeDataAvailable", volume)], True),
            ("dataOnMembers", [join, server, LIFE[2], ("MakeDataAvailable", volume)], False),
            ("detachAfterUnavailable", LIFE + [("HccDetachVolume", {"VolumeId": "vol-2"})], True),
            ("detachAfterUnavailable", LIFE + [("HccDetachVolume", {"VolumeId": "vol-1"})], False),
            ("repeatIsSameCall", [join, server, ("AddServer", {"Hostname": "other"})], True),
            ("repeatIsSameCall", [join, server, server, ("AddServer", {"Hostname": "o"})], False),
            ("repeatIsSameCall", [join, server, ("AddServer", {"HcnId": "hcn-2"})], False),
        ]
        for rule, life, broken in cases:
            with self.subTest(rule=rule, life=life):
                self.start(life, scenario=lost if rule == "repeatIsSameCall" else {"faults": []})
                for rules in (rule, "all"):
                    ended = run(SIMCTL, "verify", "--rules", rules,
                                SANSIM_CONTROL=self.simulator.control_socket)
                    self.assertEqual(ended.returncode, 1 if broken else 0, ended.stdout)
                    self.assertEqual(f"FAIL  rule {rule}" in ended.stdout, broken)

    def test_calls_that_were_dropped_are_no_pass(self):
        self.start()
        ping = {"expect": [{"command": "Ping", "atLeast": 0}]}
        for _ in range(1001):
            call(self.simulator.port, "Ping")
        ended = self.verify(ping)
        self.assertEqual(ended.returncode, 1)
        self.assertIn("older calls were dropped", ended.stdout)
        self.assertEqual(self.verify({**ping, "since": 1}).returncode, 0)

    def test_every_ready_scenario_strikes_and_says_what_a_good_cluster_does(self):
        self.assertGreaterEqual(len(SCENARIOS), 6)
        for file in SCENARIOS:
            with self.subTest(scenario=file.stem):
                scenario = json.loads(file.read_text(encoding="utf-8"))
                self.assertTrue(scenario["description"] and scenario["goodCluster"])
                self.start()
                self.simulator.control("fail", "--file", str(file))
                # A step at a time, so that what waits can be moved on: nobody waits for real.
                for command, changes in LIFE:
                    rule = self.simulator.show("fail", "--rules")
                    if not any(one["delayMs"] for one in rule):
                        self.live([(command, changes)])
                struck = self.simulator.control("log", "-n", "99", "--fault", "*")
                delayed = any(rule.get("delayMs") for rule in scenario["faults"])
                self.assertEqual(bool(struck), not delayed, struck)
                self.simulator.control("clock", "--advance-ms", "3600000")
                if not delayed:
                    # Once the trouble is over, a cluster that tries again gets on.
                    self.live(4 * LIFE)
                    state = self.simulator.show("state")
                    self.assertEqual(state["volumes"][1]["availableOn"], ["hcn-1"])
