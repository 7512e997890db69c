"""What each command does to the array, and what the array refuses, told by its own replies."""

import json
import os
import sqlite3
import tempfile
import unittest

import wire
from simProcess import Simulator

ADDRESSES = [("Ipv4AddressPort", {"Ipv4Address": "10.0.0.5", "Port": "3260"})]
INTERFACES = [("NorvaneInterfaceInformation", {"InterfaceId": "wwn-1", "InterfaceType": "Iscsi"})]
JOIN = {"HccId": "hcc-1", "HccKey": "marker-key", "HccName": "Büro & Lager",
        "Ipv4AddressPortList": ADDRESSES}
SERVER = {"HccId": "hcc-1", "HcnId": "hcn-1", "Hostname": "db-1", "OsType": "linux",
          "Ipv4AddressPortList": ADDRESSES, "HcnStorageInterfaceList": INTERFACES}


def ids(**more):
    """The ids that most commands take; None leaves one out."""
    values = {"HccId": "hcc-1", "VolumeId": "vol-1", **more}
    return {name: value for name, value in values.items() if value is not None}


def on_server(**more):
    return ids(**{"HcnId": "hcn-1", **more})


# One life of a cluster: command, attributes, and the words of the refusal ("" for a success).
LIFE = [
    ("Ping", {}, ""),
    ("RemoveHccFromSan", ids(VolumeId=None), 'Cluster "hcc-1" is not known'),
    ("HccAttachVolume", ids(), 'Cluster "hcc-1" is not known'),
    ("AddHccToSan", {**JOIN, "HccKey": ""}, "Required attribute HccKey is missing"),
    ("AddHccToSan", {"HccId": "hcc-1", "HccKey": "k"}, "attribute Ipv4AddressPortList is missing"),
    ("AddHccToSan", {**JOIN, "Ipv4AddressPortList": [
        ("Ipv4AddressPort", {"Ipv4Address": "10.0.0.5", "Port": "x"})]}, '"x" is not a port'),
    ("AddHccToSan", JOIN, ""),
    ("AddHccToSan", JOIN, 'Cluster "hcc-1" has joined already'),
    ("AddHccToSan", {**JOIN, "HccKey": "other"}, 'Wrong key for cluster "hcc-1"'),
    ("AddServer", {**SERVER, "HcnStorageInterfaceList": ""}, "HcnStorageInterfaceList is missing"),
    ("AddServer", {**SERVER, "HccId": "hcc-9"}, 'Cluster "hcc-9" is not known'),
    ("AddServer", SERVER, ""),
    ("AddServer", SERVER, 'Server "hcn-1" is a member of cluster "hcc-1" already'),
    ("RemoveServer", ids(VolumeId=None, HcnId="hcn-9"), 'Server "hcn-9" is not a member'),
    ("HccAttachVolume", ids(VolumeId="vol-9"), 'Volume "vol-9" is not known'),
    ("HccAttachVolume", ids(VolumeId=None), "Required attribute VolumeId is missing"),
    ("MakeDataAvailable", on_server(), 'Volume "vol-1" is not attached to cluster "hcc-1"'),
    ("HccAttachVolume", ids(), ""),
    ("HccAttachVolume", ids(), ""),
    ("AddHccToSan", {**JOIN, "HccId": "hcc-2"}, ""),
    ("HccAttachVolume", ids(HccId="hcc-2"), 'Volume "vol-1" is attached to another cluster'),
    ("HccDetachVolume", ids(HccId="hcc-2"), 'Volume "vol-1" is not attached to cluster "hcc-2"'),
    ("MakeDataAvailable", on_server(HcnId="hcn-9"), 'Server "hcn-9" is not a member'),
    ("MakeDataAvailable", on_server(), ""),
    ("HccDetachVolume", ids(), 'still available on server "hcn-1"'),
    ("RemoveHccFromSan", ids(VolumeId=None), 'still has volume "vol-1" attached'),
    ("SnapshotPrepareComplete", ids(), "Required attribute SnapshotId is missing"),
    ("SnapshotPrepareComplete", ids(SnapshotId="s-1"), ""),
    ("FlushComplete", ids(SnapshotId="s-1"), ""),
    ("FlushComplete", ids(SnapshotId="s-1", VolumeId="vol-2"), 'Volume "vol-2" is not attached'),
    ("NewPrimaryCfmAddress", ids(VolumeId=None), ""),
    ("NewPrimaryCfmAddress", ids(HccId="hcc-9"), 'Cluster "hcc-9" is not known'),
    ("RenameHccInSan", {"HccId": "hcc-1", "Name": "new"}, ""),
    ("MakeDataUnavailable", on_server(VolumeId="vol-2"), 'Volume "vol-2" is not attached'),
    ("MakeDataUnavailable", on_server(), ""),
    ("HccDetachVolume", ids(), ""),
    ("HccDetachVolume", ids(), 'Volume "vol-1" is not attached'),
    ("RemoveServer", ids(VolumeId=None, HcnId="hcn-1"), ""),
    ("RemoveHccFromSan", ids(VolumeId=None), ""),
    ("FlushComplete", ids(SnapshotId="s-1"), 'Cluster "hcc-1" is not known'),
]


class CommandTest(unittest.TestCase):
    def start(self, *options):
        simulator = Simulator("--volumes", "2", *options)
        self.addCleanup(lambda: self.assertEqual(simulator.stop(), 0))
        return simulator

    def file(self, content):
        with tempfile.NamedTemporaryFile("w", suffix=".json", delete=False) as file:
            json.dump(content, file)
        self.addCleanup(os.unlink, file.name)
        return file.name

    def test_life_of_a_cluster(self):
        port = self.start().port
        for number, (command, attributes, refusal) in enumerate(LIFE):
            with self.subTest(step=number, command=command):
                reply = wire.call(port, command, attributes)
                self.assertEqual(reply.ok, refusal == "", reply.error)
                self.assertIn(refusal, reply.error)
                self.assertEqual(reply.code == "NoError", reply.ok)

    def test_attach_gives_both_identities_of_the_volume(self):
        seed = {"volumes": [{"id": "db", "original": {"deviceId": "o-d", "serialNumber": "o-s"},
                             "alias": {"deviceId": "a-d", "serialNumber": "a-s"}}],
                "clusters": [{"id": "hcc-1", "key": "k"}]}
        port = self.start("--seed-file", self.file(seed)).port
        record = wire.call(port, "HccAttachVolume", ids(VolumeId="db")).element.find(
            "ReturnMethodObject/NorvaneScsiInformation")
        self.assertEqual({child.tag: child.text for child in record}, {
            "AliasScsiDeviceId": "a-d", "AliasScsiSerialNumber": "a-s",
            "OriginalScsiDeviceId": "o-d", "OriginalScsiSerialNumber": "o-s"})
        seen = set()
        for volume in ("vol-1", "vol-2"):
            record = wire.call(port, "HccAttachVolume", ids(VolumeId=volume)).element.find(
                "ReturnMethodObject/NorvaneScsiInformation")
            seen |= {child.text for child in record}
        self.assertEqual(len(seen), 8, "every identity is the volume's own")

    def test_a_lenient_array_refuses_nothing(self):
        port = self.start("--lenient").port
        # Every life's step from here on comes before what it needs.
        for command, attributes, _ in reversed(LIFE):
            with self.subTest(command=command, attributes=attributes):
                reply = wire.call(port, command, attributes)
                self.assertEqual(reply.ok, "is not a port" not in reply.error, reply.error)

    def test_who_is_let_in(self):
        accepted = {"users": [{"user": "admin", "password": "pa:ss"}], "tokens": ["t-1"],
                    "sessionKeys": ["s-1"]}
        session = "<ApiConnection><sessionkey>%s</sessionkey></ApiConnection>"
        restricted, anyone = self.start("--credentials", self.file(accepted)).port, self.start().port
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
                    reply = wire.Reply(wire.exchange(
                        port, wire.request(text, credentials=credentials, token=token)))
                    self.assertEqual((reply.ok, reply.code), (True, "NoError") if let_in
                                     else (False, "InvalidCredentials"))
        self.assertTrue(wire.call(restricted, "Ping", credentials=b"").ok)

    def test_objects_filters_and_associations(self):
        port = self.start().port
        for number in "123":
            wire.call(port, "AddHccToSan", {**JOIN, "HccId": f"hcc-{number}", "HccName": f"c-{number}"})
        wire.call(port, "AddServer", SERVER)
        wire.call(port, "HccAttachVolume", ids())
        wire.call(port, "MakeDataAvailable", on_server())

        def names(command, attributes, path, object_name="TarnHostCache", kind="Method"):
            reply = wire.call(port, command, attributes, object_name, kind)
            self.assertTrue(reply.ok, reply.error)
            return [item.findtext("InstanceName") for item in reply.element.findall(path)]

        filters = {
            "": ["c-1", "c-2", "c-3"],
            "and HostCacheId = hcc&hy&2-": ["c-2"],
            "or Name eq C&hy&1-Name = c&hy&3-": ["c-1", "c-3"],
            "and Index > 1-Index <= 2-": ["c-2"],
            "and Name iqs c-Index lt 10-": ["c-1", "c-2", "c-3"],
            "and Name iqin &hy&3": ["c-3"],
            "and Name = nothing-": [],
            "and NoSuchAttribute = 1-": [],
        }
        for text, expected in filters.items():
            with self.subTest(filter=text):
                self.assertEqual(names("GetList", {"Filter": text},
                                       "ReturnObjectArray/TarnHostCache"), expected)

        cluster = names("Get", {"InstanceId": "101.1"}, "ReturnObject/TarnHostCache")
        self.assertEqual(cluster, ["c-1"])
        server = wire.call(port, "GetList", {}, "TarnServer").element.find("ReturnObjectArray/TarnServer")
        self.assertEqual(server.findtext("HostCache"), "101.1 TarnHostCache c-1")
        lite = wire.call(port, "Get", {"InstanceId": "101.1", "LiteObj": "1"}, "TarnServer").element
        self.assertEqual({child.tag for child in lite.find("ReturnObject/TarnServer")},
                         {"InstanceId", "InstanceName", "ObjectType"})
        associations = [
            ("TarnHostCache", "ServerList", "ReturnObjectArray/TarnServer", ["db-1"]),
            ("TarnServer", "HostCache", "ReturnObject/TarnHostCache", ["c-1"]),
            ("TarnServer", "Tarn", "ReturnObject/Tarn", ["Array Simulator"]),
            ("TarnServer", "HbaList", "ReturnObjectArray/TarnServerHba", ["wwn-1"]),
            ("TarnServer", "MappingList", "ReturnObjectArray/TarnMapping", ["Volume 1"]),
            ("TarnServer", "PathList", "ReturnObjectArray/*", []),
        ]
        for start, name, path, expected in associations:
            with self.subTest(association=name):
                self.assertEqual(names(name, {"InstanceId": "101.1"}, path, start, "Association"),
                                 expected)
        unknown = wire.call(port, "Get", {"InstanceId": "101.9"})
        self.assertEqual((unknown.ok, unknown.code), (False, "ObjectNotFound"))

    def test_state_file_survives_a_restart_and_holds_no_key(self):
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "state.db")
            with Simulator("--state", file, "--volumes", "2") as simulator:
                wire.call(simulator.port, "AddHccToSan", JOIN)
                wire.call(simulator.port, "HccAttachVolume", ids())
            with Simulator("--state", file, "--volumes", "9") as simulator:
                reply = wire.call(simulator.port, "RemoveHccFromSan", ids())
                self.assertIn('still has volume "vol-1"', reply.error)
                self.assertFalse(wire.call(simulator.port, "HccAttachVolume", ids(VolumeId="vol-3")).ok)
                self.assertIn("Wrong key", wire.call(simulator.port, "AddHccToSan",
                                                     {**JOIN, "HccKey": "k"}).error)
            self.assertEqual(os.stat(file).st_mode & 0o077, 0)
            for name in os.listdir(folder):
                with open(os.path.join(folder, name), "rb") as content:
                    self.assertNotIn(b"marker-key", content.read())
            self.assertEqual(sqlite3.connect(file).execute("SELECT name FROM clusters").fetchall(),
                             [("Büro & Lager",)])


if __name__ == "__main__":
    unittest.main()
