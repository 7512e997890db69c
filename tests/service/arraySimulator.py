"""The array simulator as the API manager of a test.

    with ArraySimulator("--lenient") as array:
        array.fail("refuse", command="AddServer", error="no")   # the next AddServer is refused
        ...                                   # let the service send something
        array.take_requests()[0].document     # what arrived
"""

import contextlib
import dataclasses
import http.client
import json
import os
import socket
import subprocess
import tempfile
import time

from webServer import SIMULATOR

DECLARATION = '<?xml version="1.0" encoding="UTF-8"?>\n'
START_SECONDS = 60


def reply_document(content):
    """The document of a reply with one ApiMethodReturn that holds this content."""
    return f"{DECLARATION}<compapi><ApiMethodReturn>{content}</ApiMethodReturn></compapi>"


def success(value):
    """The document of a success with this value element."""
    return reply_document(f"<Successful>True</Successful>{value}")


@dataclasses.dataclass
class Request:
    """One request as the simulator logged it."""
    document: str
    client_address: str
    schema_version: str
    credentials: str        # "***" when some came; the simulator shows no secret
    auth_token: str
    hcc_id: str             # of the header
    blobs: list             # their names
    outcome: str            # "ok", or why it was refused


class _Control(http.client.HTTPConnection):
    """HTTP over the simulator's control socket."""

    def __init__(self, path):
        super().__init__("simulator", timeout=60)
        self._path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.sock.connect(self._path)


class ArraySimulator:
    """Runs on a free port of its own until it is stopped. `seed` and `credentials` are the
    content of the files that go to the options of these names."""

    def __init__(self, *arguments, seed=None, credentials=None):
        self._directory = tempfile.TemporaryDirectory()
        self._log = self._path("calls.log")
        self._taken = 0
        command = [SIMULATOR, "--port", "0", "--control", self._path("control"),
                   "--log", self._log, *arguments]
        for option, content in (("--seed-file", seed), ("--credentials", credentials)):
            if content is not None:
                with open(self._path(option), "w", encoding="utf-8") as file:
                    json.dump(content, file)
                command += [option, self._path(option)]
        # What it prints goes into a file: a pipe that nobody empties would stop it.
        with open(self._path("printed"), "w", encoding="utf-8") as printed:
            self._process = subprocess.Popen(command, stdout=printed)
        self.port = self._read_port()

    def _path(self, name):
        return os.path.join(self._directory.name, name)

    def _read_port(self):
        end = time.monotonic() + START_SECONDS
        while time.monotonic() < end and self._process.poll() is None:
            with open(self._path("printed"), encoding="utf-8") as printed:
                first = printed.readline()
            if first.endswith("\n"):
                return int(first.rpartition(":")[2])
            time.sleep(0.02)
        self.stop()
        raise RuntimeError("the array simulator did not start")

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.stop()

    def stop(self):
        """Ends it: later connections are refused."""
        self._process.terminate()
        self._process.wait(timeout=60)
        self._directory.cleanup()

    def _ask(self, method, path, body=None):
        with contextlib.closing(_Control(self._path("control"))) as control:
            control.request(method, path, body and json.dumps(body))
            answer = control.getresponse()
            content = json.loads(answer.read())
        if answer.status != 200:
            raise RuntimeError(content["error"])
        return content

    def fail(self, fault, command="*", **members):
        """Makes the next call of the command fail; the members are those of a fault rule."""
        self._ask("POST", "/api/scenario",
                  {"faults": [{"command": command, "fault": fault, **members}]})

    def answer(self, document, **members):
        """Answers the next call with this document."""
        self.fail("answer", document=document, **members)

    def fault_kinds(self):
        """Every fault that there is, with the words for what the client sees."""
        return self._ask("GET", "/api/faults")["kinds"]

    def reset(self, what):
        self._ask("POST", "/api/reset", {"what": what})

    def take_requests(self):
        """The requests that arrived since the last call."""
        with open(self._log, encoding="utf-8") as log:
            log.seek(self._taken)
            lines = log.readlines()
            self._taken = log.tell()
        rows = [json.loads(line) for line in lines]
        return [Request(row["request"], row["clientAddress"], row["schemaVersion"],
                        row["credentials"], row["authToken"], row["hccId"], row["blobs"],
                        row["outcome"]) for row in rows]
