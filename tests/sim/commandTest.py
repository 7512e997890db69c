"""What each command does to the array, and what the array refuses, told by its own replies."""

import os
import sqlite3
import tempfile
import unittest

import wire
from arraySimulator import ArraySimulator
from programs import SIMULATOR, run

# All that the commands of a cluster's life take.
ALL = {"HccId": "hcc-1", "HccKey": "marker-key", "HccName": "Büro & Lager", "HcnId": "hcn-1",
       "Hostname": "db-1", "OsType": "linux", "VolumeId": "vol-1", "SnapshotId": "s-1",
       "Name": "new",
       "Ipv4AddressPortList": [("Ipv4AddressPort", {"Ipv4Address": "10.0.0.5", "Port": "3260"})],
       "HcnStorageInterfaceList": [
           ("NorvaneInterfaceInformation", {"InterfaceId": "wwn-1", "InterfaceType": "Iscsi"})]}


def call(port, command, **changes):
    """Calls it with all attributes, some of them changed; None leaves one out."""
    return wire.call(port, command, {**ALL, **changes})


# One life of a cluster: command, changed attributes, words of the refusal ("" for a success).
LIFE = [
    ("Ping", {}, ""),
    ("RemoveHccFromSan", {}, 'Cluster "hcc-1" is not known'),
    ("HccAttachVolume", {}, 'Cluster "hcc-1" is not known'),
    ("FlushComplete", {}, 'Cluster "hcc-1" is not known'),
    ("AddHccToSan", {"HccKey": ""}, "Required attribute HccKey is missing"),
    ("AddHccToSan", {"Ipv4AddressPortList": None}, "attribute Ipv4AddressPortList is missing"),
    ("AddHccToSan", {"Ipv4AddressPortList": [
        ("Ipv4AddressPort", {"Ipv4Address": "10.0.0.5", "Port": "x"})]}, '"x" is not a port'),
    ("AddHccToSan", {}, ""),
    ("AddHccToSan", {}, 'Cluster "hcc-1" has joined already'),
    ("AddHccToSan", {"HccKey": "other"}, 'Wrong key for cluster "hcc-1"'),
    ("AddServer", {"HcnStorageInterfaceList": ""}, "HcnStorageInterfaceList is missing"),
    ("AddServer", {"HccId": "hcc-9"}, 'Cluster "hcc-9" is not known'),
    ("AddServer", {}, ""),
    ("AddServer", {}, 'Server "hcn-1" is a member of cluster "hcc-1" already'),
    ("RemoveServer", {"HcnId": "hcn-9"}, 'Server "hcn-9" is not a member'),
    ("HccAttachVolume", {"VolumeId": "vol-9"}, 'Volume "vol-9" is not known'),
    ("HccAttachVolume", {"VolumeId": None}, "Required attribute VolumeId is missing"),
    ("MakeDataAvailable", {}, 'Volume "vol-1" is not attached to cluster "hcc-1"'),
    ("HccAttachVolume", {}, ""),
    ("HccAttachVolume", {}, ""),
    ("AddHccToSan", {"HccId": "hcc-2"}, ""),
    ("HccAttachVolume", {"HccId": "hcc-2"}, 'Volume "vol-1" is attached to another cluster'),
    ("HccDetachVolume", {"HccId": "hcc-2"}, 'Volume "vol-1" is not attached to cluster "hcc-2"'),
    ("MakeDataAvailable", {"HcnId": "hcn-9"}, 'Server "hcn-9" is not a member'),
    ("MakeDataAvailable", {}, ""),
    ("HccDetachVolume", {}, 'still available on server "hcn-1"'),
    ("RemoveHccFromSan", {}, 'still has volume "vol-1" attached'),
    ("SnapshotPrepareComplete", {"SnapshotId": None}, "Required attribute SnapshotId is missing"),
    ("SnapshotPrepareComplete", {}, ""),
    ("FlushComplete", {}, ""),
    ("FlushComplete", {"VolumeId": "vol-2"}, 'Volume "vol-2" is not attached'),
    ("NewPrimaryCfmAddress", {}, ""),
    ("NewPrimaryCfmAddress", {"HccId": "hcc-9"}, 'Cluster "hcc-9" is not known'),
    ("RenameHccInSan", {}, ""),
    ("MakeDataUnavailable", {"VolumeId": "vol-2"}, 'Volume "vol-2" is not attached'),
    ("MakeDataUnavailable", {}, ""),
    ("HccDetachVolume", {}, ""),
    ("HccDetachVolume", {}, 'Volume "vol-1" is not attached'),
    ("RemoveServer", {}, ""),
    ("RemoveHccFromSan", {}, ""),
]


class CommandTest(unittest.TestCase):
    def start(self, *options, **files):
        return self.enterContext(ArraySimulator("--volumes", "2", *options, **files)).port

    def test_life_of_a_cluster(self):
        port = self.start()
        for number, (command, changes, refusal) in enumerate(LIFE):
            with self.subTest(step=number, command=command):
                reply = call(port, command, **changes)
                self.assertEqual(reply.ok, refusal == "", reply.error)
                self.assertIn(refusal, reply.error)
                self.assertEqual(reply.code == "NoError", reply.ok)

    def test_a_lenient_array_refuses_nothing(self):
        port = self.start("--lenient")
        # Every life's step from here on comes before what it needs.
        for command, changes, _ in reversed(LIFE):
            with self.subTest(command=command, **changes):
                reply = call(port, command, **changes)
                self.assertEqual(reply.ok, "is not a port" not in reply.error, reply.error)

    def test_who_is_let_in(self):
        accepted = {"users": [{"user": "admin", "password": "pa:ss"}], "tokens": ["t-1"],
                    "sessionKeys": ["s-1"]}
        session = "<ApiConnection><sessionkey>%s</sessionkey></ApiConnection>"
        restricted, anyone = self.start(credentials=accepted), self.start()
        cases = [  # credentials, token, session key, let in when restricted, by default
            (b"admin:pa:ss", "", "", True, True),
            (b"", "t-1", "", True, True),
            (b"", "", "s-1", True, True),
            (b"admin:wrong", "", "", False, True),
            (b"admin:pa:ss\xff", "", "", False, True),
            (b"", "t-2", "", False, True),
            (b"", "", "", False, False),
        ]
        for credentials, token, key, *expected in cases:
            for port, let_in in zip((restricted, anyone), expected):
                with self.subTest(credentials=credentials, token=token, key=key, let_in=let_in):
                    text = wire.document("GetList", connection=session % key if key else "")
                    reply = wire.Reply(wire.exchange(port, wire.request(text, credentials, token)))
                    self.assertEqual((reply.ok, reply.code), (True, "NoError") if let_in
                                     else (False, "InvalidCredentials"))
        ping = wire.request(wire.document("Ping"), credentials=b"")
        self.assertTrue(wire.Reply(wire.exchange(restricted, ping)).ok)

    def test_wrong_files_are_told_at_the_start(self):
        cases = [  # option, content, words
            ("--credentials", "{}", 'needs "users", "tokens" or "sessionKeys"'),
            ("--credentials", '{"tokens":\n["secret', "is no JSON: line 2 is wrong\n"),
            ("--seed-file", '{"array":\n{"name" "x"}\n}', "is no JSON: line 2 is wrong\n"),
            ("--seed-file", '{"clusters": [{"id": 5}]}', ": clusters[0].id has to be a text"),
            ("--seed-file", '{"clusters": [{"id": "a"}, {"id": "a"}]}',
             ': clusters[1].id is "a", which is there already'),
            ("--seed-file", '{"volumes": [{"id": "vol-1"}]}', ": volumes[0].id is "),
            ("--seed-file", '{"volumes": [{"id": "a", "sizeInBytes": 1e30}]}',
             ": volumes[0].sizeInBytes has to be a whole number"),
            ("--seed-file", '{"volumes": 1e999}', " holds a number that is too large"),
            ("--seed-file", '{"clusters": [{"id": "a", "attachments": [{"volume": "v"}]}]}',
             ': clusters[0].attachments[0] cannot be: Volume "v" is not known to this array'),
            ("--credentials", '{"users": [{"user": "a"}]}', ": users[0].password is missing"),
            ("--scenario", "{}", ": faults is missing"),
            ("--scenario", "[]", "has to be an object"),
            *(("--scenario", '{"faults": [{%s}]}' % members, words) for members, words in (
                ('"command": "Ping"', ": faults[0].fault is missing"),
                ('"fault": "refuse"', ": faults[0].command is missing"),
                ('"command": "Ping", "fault": "nonsense"', 'there is no fault "nonsense"'),
                ('"fault": "refuse", "command": "AddHccTosan"', 'no command "AddHccTosan"'),
                ('"fault": "refuse", "command": "TarnServer::Ping"', '"TarnServer::Ping"'),
                ('"fault": "refuse", "comand": "Ping"', 'no member "comand"'),
                ('"fault": "refuse", "command": "Ping", "count": -1',
                 "count has to be a number from 0 to 1000000000"),
                ('"fault": "refuse", "command": "Ping", "error": 1',
                 "faults[0].error has to be a text"))),
        ]
        for option, content, words in cases:
            with self.subTest(content), tempfile.NamedTemporaryFile("w") as file:
                file.write(content)
                file.flush()
                ended = run(SIMULATOR, "--port", "0", option, file.name)
                self.assertEqual(ended.returncode, 1)
                self.assertIn(words, ended.stderr)
                self.assertIn(file.name, ended.stderr)
                self.assertNotIn("secret", ended.stderr)

    def test_objects_filters_and_associations(self):
        port = self.start()
        for number in "123":
            call(port, "AddHccToSan", HccId=f"hcc-{number}", HccName=f"c-{number}")
        for command in ("AddServer", "HccAttachVolume", "MakeDataAvailable"):
            call(port, command)

        def objects(*request, **others):
            reply = wire.call(port, *request, **others)
            self.assertTrue(reply.ok, reply.error)
            return list(reply.element[-1])

        def names(*request, **others):
            return [item.findtext("InstanceName") for item in objects(*request, **others)]

        filters = {
            "": ["c-1", "c-2", "c-3"],
            "and HostCacheId = hcc&hy&2-": ["c-2"],
            "or Name eq C&hy&1-Name = c&hy&3-": ["c-1", "c-3"],
            "and Index > 1-Index <= 2-": ["c-2"],
            "and Name iqs C-Index lt 10-": ["c-1", "c-2", "c-3"],
            "and Name iqin &hy&3": ["c-3"],
            "and Name = nothing-": [],
            "and NoSuchAttribute = 1-": [],
        }
        for text, expected in filters.items():
            with self.subTest(filter=text):
                self.assertEqual(names("GetList", {"Filter": text}), expected)
        first = {"InstanceId": "101.1"}
        self.assertEqual(names("Get", first), ["c-1"])
        (server,) = objects("GetList", object_name="TarnServer")
        self.assertEqual(server.findtext("HostCache"), "101.1 TarnHostCache c-1")
        (lite,) = objects("Get", {**first, "LiteObj": "1"}, object_name="TarnServer")
        self.assertEqual({child.tag for child in lite},
                         {"InstanceId", "InstanceName", "ObjectType"})
        associations = [
            ("TarnHostCache", "ServerList", ["db-1"]),
            ("TarnServer", "HostCache", ["c-1"]),
            ("TarnServer", "Tarn", ["Array Simulator"]),
            ("TarnServer", "HbaList", ["wwn-1"]),
            ("TarnServer", "MappingList", ["Volume 1"]),
            ("TarnServer", "PathList", []),
        ]
        for start, name, expected in associations:
            with self.subTest(association=name):
                self.assertEqual(names(name, first, object_name=start,
                                       kind="Association"), expected)
        self.assertEqual(wire.call(port, "Get", {"InstanceId": "101.9"}).code, "ObjectNotFound")

    def test_state_file_survives_a_restart_and_holds_no_key(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        file = os.path.join(folder, "state.db")
        with ArraySimulator("--state", file, "--volumes", "2") as simulator:
            call(simulator.port, "AddHccToSan")
            call(simulator.port, "HccAttachVolume")
            second = run(SIMULATOR, "--port", "0", "--state", file)
            self.assertEqual(second.returncode, 1)
            self.assertIn("another simulator uses it", second.stderr)
        port = self.enterContext(ArraySimulator("--state", file, "--volumes", "9")).port
        for command, changes, refusal in [
                ("RemoveHccFromSan", {}, 'still has volume "vol-1"'),
                ("HccAttachVolume", {"VolumeId": "vol-3"}, 'Volume "vol-3" is not known'),
                ("AddHccToSan", {"HccKey": "k"}, "Wrong key")]:
            self.assertIn(refusal, call(port, command, **changes).error)
        self.assertEqual(os.stat(file).st_mode & 0o077, 0)
        for name in os.listdir(folder):
            with open(os.path.join(folder, name), "rb") as content:
                self.assertNotIn(b"marker-key", content.read())
        self.assertEqual(sqlite3.connect(file).execute("SELECT name FROM clusters").fetchall(),
                         [("Büro & Lager",)])
