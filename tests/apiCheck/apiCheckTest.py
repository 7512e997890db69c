"""sanApiCheck against the array simulator, whole and with each of its faults."""

import unittest

from arraySimulator import ArraySimulator
from programs import API_CHECK, closed_port, run

SEED = {"clusters": [{"id": "hcc-1", "key": "k1", "servers": [{"id": "node-1"}]}]}
HARMLESS = {"delay", "drip"}
# What these spoil is in a reply that carries objects.
OF_OBJECTS = {"succeed", "noObject", "otherObject"}


def check(port, *options):
    """The exit status, and (verdict, question and words) of each line."""
    done = run(API_CHECK, port, *options)
    return done.returncode, [line.split(None, 1) for line in done.stdout.splitlines()]


class ApiCheckTest(unittest.TestCase):
    def test_a_whole_array_passes(self):
        array = self.enterContext(ArraySimulator(seed_file=SEED))
        status, lines = check(array.port)
        self.assertEqual((status, {verdict for verdict, _ in lines}), (0, {"ok"}), lines)
        self.assertEqual([words.split(":")[0] for _, words in lines], [
            "Ping", "Ping without an identity", "GetList of TarnHostCache",
            "Get of TarnHostCache 101.1", "GetList of TarnServer", "Get of TarnServer 101.1",
            "Get of an object that there is not", "GetList without an identity"])

    def test_each_fault_is_told_once_and_in_words(self):
        array = self.enterContext(ArraySimulator(seed_file=SEED))
        for kind in array.show("fail", "--kinds"):
            name = kind["name"]
            with self.subTest(name):
                command = "GetList" if name in OF_OBJECTS else "Ping"
                array.fail(name, command=command, document="<other/>", delayMs=1)
                status, lines = check(array.port)
                wrong = [words for verdict, words in lines if verdict == "WRONG"]
                self.assertEqual((status, len(wrong)), (0, 0) if name in HARMLESS else (1, 1),
                                 lines)
                for words in wrong:
                    self.assertRegex(words, rf"^{command}.*: \S+ \S+ \S+")

    def test_nobody_and_a_silent_one_are_told_apart(self):
        with closed_port() as port:
            status, lines = check(port)
        self.assertEqual((status, len(lines)), (3, 1), lines)
        self.assertIn("Connection refused", lines[0][1])
        array = self.enterContext(ArraySimulator(seed_file=SEED))
        array.fail("delay", command="Ping", delayMs=60000)
        status, lines = check(array.port, "--timeout", "1")
        self.assertEqual((status, lines[0][0]), (3, "SILENT"), lines)
        self.assertIn("no reply within 1 s", lines[0][1])
