"""Many peers at once, and peers that misbehave, against the running simulator."""

import contextlib
import os
import socket
import struct
import subprocess
import tempfile
import threading
import unittest

import wire
from simProcess import Simulator

PING = wire.request(wire.document("Ping"), credentials=b"")


class ConnectionTest(unittest.TestCase):
    def setUp(self):
        self.simulator = Simulator()
        self.addCleanup(lambda: self.assertEqual(self.simulator.stop(), 0))
        self.port = self.simulator.port

    def ping(self):
        reply = wire.Reply(wire.exchange(self.port, PING))
        self.assertTrue(reply.ok, reply.document)

    def connect(self, data=b""):
        connection = socket.create_connection(("127.0.0.1", self.port), 20)
        self.addCleanup(connection.close)
        connection.sendall(data)
        return connection

    def test_silent_and_slow_peers_do_not_hold_up_others(self):
        whole = wire.frame(PING)
        stuck = [self.connect(whole[:n]) for n in range(0, len(whole), 3)]
        self.ping()
        for connection, n in zip(stuck, range(0, len(whole), 3)):
            connection.sendall(whole[n:])
            self.assertTrue(wire.Reply(wire.receive_all(connection)).ok)

    def test_one_byte_at_a_time(self):
        connection = self.connect()
        for byte in wire.frame(PING):
            connection.sendall(bytes([byte]))
        self.assertTrue(wire.Reply(wire.receive_all(connection)).ok)

    def test_bad_frame_costs_its_own_connection_only(self):
        for length in (0, 64 * 1024 * 1024 + 1, 2**32 - 1):
            with self.subTest(length=length):
                other = self.connect(wire.frame(PING)[:10])
                self.assertEqual(self.connect(struct.pack(">I", length)).recv(100), b"")
                other.sendall(wire.frame(PING)[10:])
                self.assertTrue(wire.Reply(wire.receive_all(other)).ok)

    def test_unreadable_requests_are_refused_in_words(self):
        api = wire.bytes_field(3, wire.bytes_field(1, "<compapi/>"))
        cases = {
            "not an IPC message": b"\xff\xff\xff",
            "not an API request": wire.number_field(1, 3),
            "no API command": wire.number_field(1, 2) + wire.bytes_field(3, api),
            "not well-formed": wire.request("<compapi>"),
            "not one ApiMethod": wire.request("<compapi></compapi>"),
            "NoSuchThing is not supported": wire.request(wire.document("NoSuchThing")),
        }
        for words, body in cases.items():
            with self.subTest(words=words):
                reply = wire.Reply(wire.exchange(self.port, body))
                self.assertFalse(reply.ok)
                self.assertIn(words, reply.error)
        self.ping()

    def test_every_one_of_many_callers_is_answered_while_others_look(self):
        failures = []

        def attempt(work):
            try:
                work()
            except Exception as problem:  # whatever it is, the test has to see it
                failures.append(problem)

        def caller():
            for _ in range(50):
                self.ping()

        def looker():
            for _ in range(5):
                self.simulator.control("log", "--json")
                self.simulator.control("state")
                self.simulator.control("fail", "TarnServer::Get", "refuse")
                self.simulator.control("reset")

        callers = [threading.Thread(target=attempt, args=(work,))
                   for work in 16 * [caller] + 2 * [looker]]
        for thread in callers:
            thread.start()
        for thread in callers:
            thread.join()
        self.assertEqual(failures, [])
        self.simulator.process.send_signal(15)
        self.simulator.reader.join()
        self.assertEqual(sum("TarnHostCache::Ping" in line for line in self.simulator.lines), 800)


class PortTest(unittest.TestCase):
    def test_port_that_a_connection_has_is_waited_for(self):
        with socket.create_server(("127.0.0.1", 0)) as listener, \
                tempfile.TemporaryDirectory() as folder:
            client = socket.create_connection(listener.getsockname())
            port = client.getsockname()[1]
            command = [os.environ["SANSIM"], "--control", os.path.join(folder, "control.sock"),
                       "--port", str(port)]
            with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as simulator, \
                    contextlib.ExitStack() as ending:
                ending.callback(simulator.terminate)
                self.assertIn(f"waiting for port {port}", simulator.stdout.readline())
                listener.accept()[0].close()  # the side that closes first is the one that lingers
                client.close()
                self.assertIn(f"listening on 127.0.0.1:{port}", simulator.stdout.readline())
                second = subprocess.run(command, capture_output=True, text=True, check=False)
                self.assertEqual(second.returncode, 1)
                self.assertIn("Address already in use", second.stderr)
            self.assertEqual(simulator.returncode, 0)


if __name__ == "__main__":
    unittest.main()
