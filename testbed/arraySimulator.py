"""The array simulator as the API manager of a test.

    with ArraySimulator("--lenient") as array:
        array.fail("refuse", command="AddServer", error="no")   # the next AddServer is refused
        ...                                   # let the service send something
        array.take_requests()[0].request      # the document that arrived
"""

import contextlib
import http.client
import json
import os
import re
import subprocess
import tempfile
import threading
import types

from programs import SIMCTL, SIMULATOR, run


def request_document(command, attributes="", object_name="TarnHostCache", kind="Method",
                     connection=""):
    """The document of a request, with these elements as its attributes."""
    return (f"<compapi>{connection}<ApiMethod><CommandType>{kind}</CommandType>"
            f"<Object>{object_name}</Object><Command>{command}</Command><Async>false</Async>"
            "<ObjectEncodeType>xml</ObjectEncodeType>"
            + (f"<Attributes>{attributes}</Attributes>" if attributes else "")
            + "</ApiMethod></compapi>")


def success(value):
    """The document of a reply that is a success with this value element."""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<compapi><ApiMethodReturn>'
            f"<Successful>True</Successful>{value}</ApiMethodReturn></compapi>")


class ArraySimulator:
    """Runs on a free port of its own until it is stopped. `files` are the contents of the JSON
    files that go to the options of these names, such as seed_file."""

    def __init__(self, *arguments, **files):
        self._folder = tempfile.TemporaryDirectory()
        self.control_socket, self.log = self.path("control"), self.path("calls.log")
        self._taken, self.lines = 0, []
        command = [SIMULATOR, "--port", "0", "--control", self.control_socket, "--log", self.log]
        for option, content in files.items():
            command += ["--" + option.replace("_", "-"), self._write(option, content)]
        self.process = subprocess.Popen([*command, *arguments], stdout=subprocess.PIPE, text=True)
        self.port = int(self._read(r":(\d+)$"))
        self.web_url = self._read(r"page at (.*)") if "--web" in arguments else None
        self.web_port = self.web_url and int(re.search(r":(\d+)/", self.web_url).group(1))
        # Read all the time: lines for which the pipe has no room are left out.
        self._reader = threading.Thread(target=lambda: self.lines.extend(self.process.stdout))
        self._reader.start()

    def path(self, name):
        """A file that goes away with the simulator."""
        return os.path.join(self._folder.name, name)

    def _write(self, name, content):
        with open(self.path(name), "w", encoding="utf-8") as file:
            json.dump(content, file)
        return file.name

    def _read(self, pattern):
        """What the next line says."""
        found = re.search(pattern, self.process.stdout.readline())
        if not found:
            raise RuntimeError("the array simulator did not start")
        return found.group(1)

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.stop()

    def end(self):
        """Ends it as an administrator does: `lines` holds all that it printed, and later
        connections are refused."""
        self.process.terminate()
        self._reader.join()
        self.process.stdout.close()
        if status := self.process.wait(60):
            raise AssertionError(f"the simulator ended with status {status}")

    def stop(self):
        """Ends it, if it has not, and removes its files."""
        self.end()
        self._folder.cleanup()

    def control(self, *arguments):
        """What the control command prints; it has to succeed."""
        done = run(SIMCTL, *arguments, SANSIM_CONTROL=self.control_socket)
        if done.returncode:
            raise AssertionError(done)
        return done.stdout

    def web(self, method, path, body=None, headers={}):
        """What its HTTP interface answers: the status and the text."""
        with contextlib.closing(http.client.HTTPConnection(
                "127.0.0.1", self.web_port, timeout=20)) as connection:
            connection.request(method, path, body, headers)
            answer = connection.getresponse()
            return answer.status, answer.read().decode()

    def fail(self, fault, command="*", **members):
        """Makes the next call of the command fail; the members are those of a fault rule."""
        rule = {"command": command, "fault": fault, **members}
        self.control("fail", "--file", self._write("rule", {"faults": [rule]}))

    def show(self, *arguments):
        """What the control command shows, read from its JSON."""
        return json.loads(self.control(*arguments, "--json"))

    def take_requests(self):
        """The requests that arrived since the last call, with the members that the log has."""
        with open(self.log, encoding="utf-8") as log:
            log.seek(self._taken)
            lines = log.readlines()
            self._taken = log.tell()
        return [types.SimpleNamespace(**json.loads(line)) for line in lines]
