"""Every fault as it arrives on the wire, and how rules choose the calls that they strike."""

import socket
import unittest

import wire
from arraySimulator import ArraySimulator
from programs import ROOT

ATTACH = {"HccId": "hcc-1", "VolumeId": "vol-1"}


def message(data):
    return wire.read_fields(data[4:])


def response(data):
    return wire.read_fields(message(data)[4])


def is_no_message(data):
    try:
        message(data)
    except ValueError:
        return wire.announced(data) == len(data) - 4
    return False


def returns(data):
    return wire.reply_document(data).count("<ApiMethodReturn>")


# Fault name: members of its rule, then what has to hold of the bytes that arrive.
FAULTS = {
    "refuse": ({"code": "Timeout", "error": "Too <late>", "detail": "why"}, lambda d: (
        (r := wire.Reply(d)).ok, r.code, r.error, r.element.findtext("ErrorDetail"))
        == (False, "Timeout", "Too <late>", "why")),
    "refuseWithoutTexts": ({}, lambda d: (wire.Reply(d).ok, wire.Reply(d).error) == (False, None)),
    "succeed": ({}, lambda d: wire.Reply(d).element.findtext("ReturnBool") == "True"),
    "answer": ({"document": "<a>\u00e9 & "}, lambda d: wire.reply_document(d) == "<a>\u00e9 & "),
    "noObject": ({}, lambda d: wire.Reply(d).element.findtext("ReturnBool") == "True"),
    "otherObject": ({}, lambda d: wire.Reply(d).ok and "Ipv4AddressPort" in wire.reply_document(d)),
    "noValue": ({}, lambda d: wire.Reply(d).ok and "<Return" not in wire.reply_document(d)),
    "noReturn": ({}, lambda d: returns(d) == 0),
    "twoReturns": ({}, lambda d: returns(d) == 2),
    "wrongRoot": ({}, lambda d: "compapi" not in wire.reply_document(d) and returns(d) == 1),
    "badXml": ({}, lambda d: "</compapi>" not in wire.reply_document(d)),
    "emptyDocument": ({}, lambda d: wire.reply_document(d) == ""),
    "wrongMessageType": ({}, lambda d: message(d)[1] == 2),
    "noMessageType": ({}, lambda d: 1 not in message(d)),
    "noResponse": ({}, lambda d: message(d) == {1: 3}),
    "wrongCommandType": ({}, lambda d: 1 not in response(d) and 2 in response(d)),
    "noCommand": ({}, lambda d: 2 not in response(d)),
    "garbage": ({}, is_no_message),
    "otherProtocol": ({}, lambda d: d.startswith(b"HTTP/")),
    "lengthZero": ({}, lambda d: wire.announced(d) == 0),
    "lengthTooLong": ({}, lambda d: wire.announced(d) == 64 * 1024 * 1024 + 1),
    "lengthHuge": ({}, lambda d: wire.announced(d) == 2**32 - 1),
    "down": ({}, lambda d: d == b""),
    "closeEarly": ({"bytes": 7}, lambda d: len(d) == 7 and wire.announced(d) > 7),
    "reset": ({}, lambda d: d is None),
    "delay": ({"delayMs": 50}, lambda d: wire.Reply(d).ok),
    "drip": ({"chunk": 100, "intervalMs": 1}, lambda d: wire.Reply(d).ok),
}
MANUAL = ROOT / "docs" / "simulator.md"
NOT_RUN = {"refuse", "refuseWithoutTexts", "succeed", "answer", "down"}


class FaultTest(unittest.TestCase):
    def start(self, *faults):
        return self.enterContext(ArraySimulator(scenario={"faults": faults}, seed_file={
            "clusters": [{"id": "hcc-1", "key": "k"}]}))

    def test_each_fault_strikes_once_and_the_next_call_is_whole(self):
        for name, (members, holds) in FAULTS.items():
            with self.subTest(fault=name):
                port = self.start({"command": "HccAttachVolume", "fault": name, **members}).port
                try:
                    data = wire.exchange(port, wire.request(
                        wire.document("HccAttachVolume", ATTACH)))
                except ConnectionResetError:
                    data = None
                self.assertTrue(holds(data), data)
                detached = wire.call(port, "HccDetachVolume", ATTACH)
                self.assertEqual(detached.ok, name not in NOT_RUN, "whether the command was run")
                after = wire.call(port, "HccAttachVolume", ATTACH)
                self.assertIsNotNone(after.element.find("ReturnMethodObject"), after.document)

    def test_an_early_close_is_early_however_much_is_asked_for(self):
        port = self.start({"command": "GetList", "fault": "closeEarly", "bytes": 1 << 20}).port
        data = wire.exchange(port, wire.request(wire.document("GetList")))
        self.assertEqual(len(data), wire.announced(data) + 3)

    def test_the_table_above_and_the_manual_know_every_fault(self):
        kinds = self.start().show("fail", "--kinds")
        self.assertEqual({kind["name"] for kind in kinds}, set(FAULTS))
        rows = [line for line in MANUAL.read_text().splitlines() if line.startswith("| `")]
        for kind in kinds:
            words = [f"| `{kind['name']}` |", kind["does"][1:], kind["clientSees"][1:]]
            self.assertTrue(any(all(word in row for word in words) for row in rows), kind)

    def test_which_calls_a_rule_strikes(self):
        port = self.start(
            {"command": "TarnServer::GetList", "fault": "refuse", "error": "by object"},
            {"command": "GetList", "fault": "refuse", "error": "first", "after": 1, "count": 2},
            {"command": "GetList", "fault": "refuse", "error": "second"},
            {"command": "*", "fault": "refuse", "error": "always", "count": 0, "after": 2},
        ).port
        calls = [("TarnHostCache", "GetList"), ("TarnServer", "GetList")] + 4 * [
            ("TarnHostCache", "GetList")] + 2 * [("TarnHostCache", "Ping")]
        words = [wire.call(port, command, object_name=of).error for of, command in calls]
        # The rules are asked in their order, and each that lets a call pass has counted it.
        self.assertEqual(words, ["second", "by object", "first", "first", "", "",
                                 "always", "always"])

    def test_delay_and_drip_hold_up_nobody_else(self):
        port = self.start({"command": "GetList", "fault": "delay", "delayMs": 3_600_000},
                          {"command": "GetList", "fault": "drip", "intervalMs": 3_600_000}).port
        body = wire.frame(wire.request(wire.document("GetList")))
        late, dripping = (self.enterContext(socket.create_connection(("127.0.0.1", port)))
                          for _ in range(2))
        late.sendall(body)
        dripping.sendall(body)
        self.assertEqual(dripping.recv(100), b"\0")
        self.assertTrue(wire.call(port, "GetList").ok)
