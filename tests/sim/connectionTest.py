"""Many peers at once, and peers that misbehave, against the running simulator."""

import concurrent.futures
import contextlib
import os
import random
import socket
import struct
import subprocess
import tempfile
import unittest

import programs
import wire
from arraySimulator import ArraySimulator

PING = wire.request(wire.document("Ping"), credentials=b"")
WHOLE = wire.frame(PING)


class ConnectionTest(unittest.TestCase):
    def setUp(self):
        self.simulator = self.enterContext(ArraySimulator())
        self.port = self.simulator.port

    def connect(self, data=b""):
        connection = self.enterContext(socket.create_connection(("127.0.0.1", self.port), 20))
        connection.sendall(data)
        return connection

    def ping(self, connection=None, rest=WHOLE):
        """Sends a request, or its rest, and gets the answer."""
        connection = connection or self.connect()
        connection.sendall(rest)
        reply = wire.Reply(wire.receive_all(connection))
        self.assertTrue(reply.ok, reply.document)

    def test_silent_and_slow_peers_do_not_hold_up_others(self):
        stuck = {n: self.connect(WHOLE[:n]) for n in range(0, len(WHOLE), 3)}
        self.ping()
        for n, connection in stuck.items():
            self.ping(connection, WHOLE[n:])
        slow = self.connect()
        for byte in WHOLE[:-1]:
            slow.sendall(bytes([byte]))
        self.ping(slow, WHOLE[-1:])

    def test_bad_frame_costs_its_own_connection_only(self):
        for length in (0, 64 * 1024 * 1024 + 1, 2**32 - 1):
            with self.subTest(length=length):
                other = self.connect(WHOLE[:10])
                self.assertEqual(self.connect(struct.pack(">I", length)).recv(100), b"")
                self.ping(other, WHOLE[10:])

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

    def test_every_one_of_many_callers_is_answered_while_others_look(self):
        def call():
            for _ in range(50):
                self.assertTrue(wire.Reply(wire.exchange(self.port, PING)).ok)

        def look():
            for _ in range(5):
                self.simulator.control("log", "--json")
                self.simulator.control("state")
                self.simulator.control("fail", "TarnServer::Get", "refuse")
                self.simulator.control("reset")
        with concurrent.futures.ThreadPoolExecutor(18) as pool:
            for done in [pool.submit(work) for work in 16 * [call] + 2 * [look]]:
                done.result()
        self.simulator.end()
        self.assertEqual(sum("TarnHostCache::Ping" in line for line in self.simulator.lines), 800)


class PortTest(unittest.TestCase):
    def test_port_that_a_connection_has_is_waited_for(self):
        with socket.create_server(("127.0.0.1", 0)) as listener, \
                tempfile.TemporaryDirectory() as folder:
            # Above those that the system gives away: others would share or take such a port.
            port = random.randrange(61000, 65536)
            client = socket.create_connection(listener.getsockname(), 20, ("127.0.0.1", port))
            command = [programs.SIMULATOR, "--control", os.path.join(folder, "control.sock"),
                       "--port", str(port)]
            with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as simulator, \
                    contextlib.ExitStack() as ending:
                ending.callback(simulator.terminate)
                self.assertIn(f"waiting for port {port}", simulator.stdout.readline())
                listener.accept()[0].close()  # the side that closes first is the one that lingers
                self.assertEqual(client.recv(1), b"")
                client.close()
                self.assertIn(f"listening on 127.0.0.1:{port}", simulator.stdout.readline())
                second = programs.run(*command)
                self.assertEqual(second.returncode, 1)
                self.assertIn("another simulator or an API manager listens", second.stderr)
            self.assertEqual(simulator.returncode, 0)
