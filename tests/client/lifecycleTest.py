"""A cluster's life as the client calls it, and the load that many of them make."""

import json
import re
import threading
import unittest

import cannedServer
from cannedServer import NOTHING, fault, reply
from sanctlTest import sanctl

LIFE = ["Ping", "AddHccToSan", "AddServer", "AddServer", "HccAttachVolume", "MakeDataAvailable",
        "MakeDataAvailable", "MakeDataUnavailable", "MakeDataUnavailable", "FlushComplete",
        "SnapshotPrepareComplete", "NewPrimaryCfmAddresses", "HccDetachVolume", "RemoveServer",
        "RemoveServer", "RemoveHccFromSan"]


def operation(request):
    return re.search(r"Body><ns1:(\w+)", request).group(1)


def child(request, name):
    return request.partition(f"<{name}>")[2].partition("<")[0]


class Array:
    """Answers every operation; what `answers` holds for one is its answer instead. Keeps which
    volumes clusters hold at the same time."""

    def __init__(self, **answers):
        self.answers, self.lock = answers, threading.Lock()
        self.holders, self.clashes = {}, []

    def __call__(self, request):
        name, volume = operation(request), child(request, "sanVolumeId")
        with self.lock:
            if name == "HccAttachVolume":
                if volume in self.holders:
                    self.clashes.append(volume)
                self.holders[volume] = child(request, "hccId")
            elif name == "HccDetachVolume":
                del self.holders[volume]
        return self.answers.get(name, reply(name, "" if name == "HccAttachVolume" else "<return/>"))


class LifecycleTest(unittest.TestCase):
    def test_calls_follow_a_life_and_a_failure_takes_down(self):
        refusal = fault("SOAP-ENV:Server", "no room")
        rows = [
            ({}, LIFE, 0),
            # Only what was done is undone.
            ({"HccAttachVolume": refusal}, LIFE[:5] + LIFE[13:], 1),
            ({"MakeDataAvailable": refusal}, LIFE[:6] + LIFE[12:], 1),
            ({"FlushComplete": fault("SOAP-ENV:Client", "no")}, LIFE[:10] + LIFE[12:], 2),
            ({"RemoveServer": refusal}, LIFE, 1),
            # Another cluster may have this id: it must not be taken down.
            ({"AddHccToSan": refusal}, LIFE[:2], 1),
            ({"HccAttachVolume": NOTHING}, LIFE[:5], 3),
        ]
        for answers, expected, status in rows:
            array = Array(**answers)
            with self.subTest(answers), cannedServer.serve(array) as server:
                done = sanctl("lifecycle", "--volume", "mine", "--url", server.url)
                self.assertEqual(list(map(operation, server.requests)), expected)
                self.assertEqual(done.returncode, status, done)
                self.assertEqual(len(done.stdout.splitlines()), len(expected) + 1)

    def test_load_runs_every_life_once_with_volumes_of_its_own(self):
        array = Array(SnapshotPrepareComplete=fault("SOAP-ENV:Server", "later"))
        with cannedServer.serve(array) as server:
            done = sanctl("lifecycle", "--clusters", "30", "--parallel", "5", "--json",
                          "--url", server.url)
        report = json.loads(done.stdout)
        joined = [child(r, "hccId") for r in server.requests if operation(r) == "AddHccToSan"]
        left = [child(r, "hccId") for r in server.requests if operation(r) == "RemoveHccFromSan"]
        self.assertEqual(len(set(joined)), 30)
        self.assertEqual(sorted(joined), sorted(left))
        self.assertEqual((array.clashes, array.holders), ([], {}))
        self.assertEqual(done.returncode, 1)
        self.assertEqual(report["calls"], len(server.requests))
        self.assertEqual(report["failedClusters"], 30)
        self.assertEqual(list(report["failures"].values()), [30])

    def test_too_few_volumes_are_wrong_usage(self):
        for arguments in (["--parallel", "2", "--volume", "v1"],
                          ["--volumes", "2", "--volume", "v1"]):
            done = sanctl("lifecycle", "--url", "http://127.0.0.1:1/", *arguments)
            self.assertEqual(done.returncode, 64, done)


if __name__ == "__main__":
    unittest.main()
