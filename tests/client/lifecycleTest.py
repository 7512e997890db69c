"""A cluster's life as the client calls it, and the load that many of them make."""

import json
import re
import unittest

import cannedServer
import harness
from cannedServer import NOTHING, fault, reply
from programs import sanctl

LIFE = ["Ping", "AddHccToSan", "AddServer", "AddServer", "HccAttachVolume", "MakeDataAvailable",
        "MakeDataAvailable", "MakeDataUnavailable", "MakeDataUnavailable", "FlushComplete",
        "SnapshotPrepareComplete", "NewPrimaryCfmAddresses", "HccDetachVolume", "RemoveServer",
        "RemoveServer", "RemoveHccFromSan"]


def operation(request):
    return re.search(r"Body>\s*<ns1:(\w+)", request).group(1)


class CannedTest(unittest.TestCase):
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
            def answer(request):
                name = operation(request)
                content = "" if name == "HccAttachVolume" else "<return/>"
                return answers.get(name, reply(name, content))
            with self.subTest(answers), cannedServer.serve(answer) as server:
                done = sanctl("lifecycle", "--volume", "mine", "--url", server.url)
                self.assertEqual(list(map(operation, server.requests)), expected)
                self.assertEqual(done.returncode, status, done)
                self.assertEqual(len(done.stdout.splitlines()), len(expected) + 1)


class ServiceTest(harness.ServiceCase):
    """Against the service and an array, which refuses a volume that another cluster holds."""

    def sanctl(self, status, *arguments):
        done = sanctl(*arguments, SANCTL_URL=self.server.url, SANCTL_USER="admin",
                      SANCTL_PASSWORD="marker-pass")
        self.assertEqual(done.returncode, status, done)
        return done

    def test_one_life_twice_and_many_beside_each_other(self):
        for _ in range(2):
            self.sanctl(0, "lifecycle", "--hcc-id", "集群 <1>")
        self.array.take_requests()
        self.array.fail("refuse", "SnapshotPrepareComplete", error="later", count=10)
        report = json.loads(self.sanctl(1, "lifecycle", "--clusters", "40", "--parallel", "8",
                                        "--json").stdout)
        requests = self.array.take_requests()
        self.assertEqual((report["calls"], report["failedClusters"], report["failures"]),
                         (len(requests), 10,
                          {"SnapshotPrepareComplete: refused by the array: later": 10}))
        self.assertEqual(len({request.hccId for request in requests} - {""}), 40)
        self.assertEqual(self.array.show("state")["clusters"], [])
        alone = self.sanctl(0, "lifecycle", "--parallel", "3")
        self.assertIn("3 of 3 clusters lived to the end", alone.stdout)

    def test_a_refusal_is_told(self):
        unknown = self.sanctl(1, "remove-hcc-from-san", "--san-id", "array-1", "--hcc-id", "c1")
        self.assertIn('Cluster "c1" is not known', unknown.stderr)
