"""A cluster's life as the client calls it, and the load that many of them make."""

import json
import os
import re
import signal
import subprocess
import unittest

import cannedServer
import harness
from cannedServer import NOTHING, fault, reply
from programs import SANCTL, sanctl

LIFE = ["Ping", "AddHccToSan", "AddServer", "AddServer", "HccAttachVolume", "MakeDataAvailable",
        "MakeDataAvailable", "MakeDataUnavailable", "MakeDataUnavailable", "FlushComplete",
        "SnapshotPrepareComplete", "NewPrimaryCfmAddresses", "HccDetachVolume", "RemoveServer",
        "RemoveServer", "RemoveHccFromSan"]


def operation(request):
    return re.search(r"Body>\s*<ns1:(\w+)", request).group(1)


def answering(answers):
    """Answers well but where `answers`, by operation, says otherwise."""
    def answer(request):
        name = operation(request)
        content = "" if name == "HccAttachVolume" else "<return/>"
        chosen = answers.get(name, reply(name, content))
        return chosen() if callable(chosen) else chosen
    return answer


def left_behind(stderr):
    return re.findall(r"left behind on the array: (.*) \(", stderr)


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
            with self.subTest(answers), cannedServer.serve(answering(answers)) as server:
                done = sanctl("lifecycle", "--volume", "mine", "--url", server.url)
                self.assertEqual(list(map(operation, server.requests)), expected)
                self.assertEqual(done.returncode, status, done)
                self.assertEqual(len(done.stdout.splitlines()), len(expected) + 1)

    def test_what_stays_is_named_or_cleaned_up(self):
        standing = ["server h-node-1 of cluster h", "server h-node-2 of cluster h", "cluster h"]
        refusal, options = fault("SOAP-ENV:Server", "no"), ["--hcc-id", "h", "--volume", "v"]
        perhaps = ["perhaps volume v attached to cluster h"]
        for answers, more, calls, left, status in [
                ({"HccAttachVolume": NOTHING}, [], LIFE[:5], perhaps + standing, 3),
                ({"HccAttachVolume": NOTHING}, ["--cleanup"], LIFE[:5] + LIFE[12:], [], 3),
                # Refused: it was not attached.
                ({"HccAttachVolume": NOTHING, "HccDetachVolume": refusal}, ["--cleanup"],
                 LIFE[:5] + LIFE[12:], [], 3),
                ({"HccAttachVolume": NOTHING, "HccDetachVolume": NOTHING}, ["--cleanup"],
                 LIFE[:5] + LIFE[12:13], perhaps + standing, 3),
                ({"HccDetachVolume": refusal}, [], LIFE, [], 1)]:
            with self.subTest(more, **answers), cannedServer.serve(answering(answers)) as server:
                done = sanctl("lifecycle", *options, *more, "--url", server.url)
                self.assertEqual(list(map(operation, server.requests)), calls)
                self.assertEqual((left_behind(done.stderr), done.returncode), (left, status))

    def test_a_signal_ends_it_with_a_report(self):
        for options, calls, left in [([], LIFE[:3], ["server h-node-1 of cluster h", "cluster h"]),
                                     (["--cleanup"], LIFE[:3] + LIFE[14:], [])]:
            def interrupt():
                os.kill(client.pid, signal.SIGINT)
                self.assertIn("ending after the calls under way", client.stderr.readline())
                return reply("AddServer")
            with self.subTest(options), \
                    cannedServer.serve(answering({"AddServer": interrupt})) as server:
                client = subprocess.Popen([SANCTL, "lifecycle", "--hcc-id", "h", "--url",
                                           server.url, *options], text=True,
                                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
                self.assertEqual(client.wait(120), 130)
                stderr = client.stderr.read()
                client.stderr.close()
                self.assertEqual(list(map(operation, server.requests)), calls)
                self.assertEqual(left_behind(stderr), left)

    def test_a_load_keeps_to_its_limits(self):
        with cannedServer.serve(NOTHING) as server:
            options = ["lifecycle", "--json", "--url", server.url]
            done = sanctl(*options, "--clusters", "50", "--max-failures", "3")
            self.assertEqual((done.returncode, len(server.requests)), (3, 3))
            self.assertEqual(json.loads(done.stdout)["end"], "too many failures")
            report = json.loads(sanctl(*options, "--duration", "0.3", "--rate", "20").stdout)
            self.assertEqual(report["end"], "finished")
            self.assertLessEqual(report["calls"], 1 + 20 * report["seconds"])


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
