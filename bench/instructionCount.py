#!/usr/bin/env python3
"""Counts what a request costs: instructions in user space and system calls of the web server's
process, which no noise of the machine changes.

    bench/instructionCount.py [--operation NAME]... [--functions N]

Prints a table of operations by the rungs of bench/operationCost.py (static file, bare Ping, with
exchange, with log lines, the operation), and how the cost grows with addresses and objects.
Counted is the last of some equal requests over one kept-alive connection to a prefork process
that serves nothing else; "first" is the first request of all, Ping.

    bench/instructionCount.py --growth

Counts the operation alone, from few addresses and objects to as many as the limits let pass.

    bench/instructionCount.py --check [--update]

Counts the operations of bench/instructionCeilings.json alone and fails when one needs more than is
written there and 2 % for a library of another minor release. It names the functions that grew.
--update writes down what it counted.

Needs a release build (scripts/run.sh --build-only, and the targets of bench/), valgrind and
strace. Runs its own log daemon where none runs.
"""

import argparse
import contextlib
import http.client
import json
import os
import pathlib
import re
import shutil
import socket
import statistics
import sys
import threading
import time

import operationCost as cost
from operationCost import soap, webServer

CEILINGS = pathlib.Path(__file__).with_name("instructionCeilings.json")
ROOM = 1.02
WARM, COUNTED = 4, 3
# Functions that take less than this share of the whole are neither written down nor named.
LEAST_SHARE = 0.004
LONGEST_NAME = 90
# Valgrind counts a copy by one string instruction as one for each byte.
TUNABLES = ("glibc.cpu.x86_rep_stosb_threshold=1000000000:"
            "glibc.cpu.x86_rep_movsb_threshold=1000000000")

OBJECT = ("<TarnServer><InstanceId>64015.{0}</InstanceId><Name>Server {0}</Name><ScName>Array"
          "</ScName><ScSerialNumber>64015</ScSerialNumber><Status>Up</Status><StatusMessage>"
          "Connected</StatusMessage></TarnServer>")


def success(value):
    """A reply's document, with all that the array says in one."""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<compapi><ApiMethodReturn><Error></Error>'
            "<ErrorCode>NoError</ErrorCode><ErrorDetail></ErrorDetail><LocalizedError>"
            "</LocalizedError><Successful>True</Successful>"
            f"{value}</ApiMethodReturn></compapi>")


def objects(count):
    return success("<ReturnObjectArray>" + "".join(map(OBJECT.format, range(count)))
                   + "</ReturnObjectArray>")


DONE = success("<ReturnBool>True</ReturnBool>")
SCSI = success(
    "<ReturnMethodObject><NorvaneScsiInformation>"
    "<AliasScsiDeviceId>6000d31000006b000000000000000456</AliasScsiDeviceId>"
    "<AliasScsiSerialNumber>0000006b-00000456</AliasScsiSerialNumber>"
    "<OriginalScsiDeviceId>6000d31000006b000000000000000123</OriginalScsiDeviceId>"
    "<OriginalScsiSerialNumber>0000006b-00000123</OriginalScsiSerialNumber>"
    "</NorvaneScsiInformation></ReturnMethodObject>")

# name: the client's request, the document with which the API manager answers
OPERATIONS = {
    "Ping": (soap.PING, DONE),
    "AddHccToSan, 4 addresses": (cost.join_request(4), DONE),
    "AddHccToSan, 500 addresses": (cost.join_request(500), DONE),
    "HccAttachVolume": (cost.ATTACH, SCSI),
    "refused header": (soap.envelope("<ns1:Ping/>", soap.header("3.0")), DONE),
    "reply of 1 object": (soap.PING, objects(1)),
    "reply of 10 objects": (soap.PING, objects(10)),
    "reply of 100 objects": (soap.PING, objects(100)),
}
# How cost grows: what grows, two operations, by how many units they differ, the limit.
GROWTH = [
    ("each address", "AddHccToSan, 4 addresses", "AddHccToSan, 500 addresses", 496, 12000),
    ("each byte of an array of objects", "reply of 10 objects", "reply of 100 objects",
     len(objects(100)) - len(objects(10)), 80),
]
CALLS_OF_A_PING = 13


def reply_frame(document):
    """The API manager's message with this document, as it travels."""
    def varint(number):
        return bytes([number & 0x7F | 0x80]) + varint(number >> 7) if number > 0x7F else bytes([number])

    def field(number, content):
        return varint(number << 3 | 2) + varint(len(content)) + content
    body = b"\x08\x03" + field(4, b"\x08\x01" + field(2, field(1, document.encode())))
    return len(body).to_bytes(4, "big") + body


class Peer:
    """The API manager: answers whatever comes with `reply`."""

    def __init__(self):
        self.reply, self.request_bytes = b"", 0
        self._listener = socket.create_server(("127.0.0.1", 0))
        self.port = self._listener.getsockname()[1]
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            with self._listener.accept()[0] as connection, contextlib.suppress(OSError, EOFError):
                self.request_bytes = len(cost.receive_frame(connection))
                connection.sendall(self.reply)


class Server:
    """The web server with all rungs, under a program that counts."""

    def __init__(self, peer, request_bytes, wrapper):
        self.web = webServer.WebServer(
            mpm="prefork", threads=1, collect_syslog=False, access_log=False, wrapper=wrapper,
            extra=cost.NO_OVERRIDES + "".join(
                cost.LOCATION.format(path=path, plugin=plugin) for path, plugin in (
                    ("/bare", webServer.BARE_PLUGIN), ("/exchange", cost.EXCHANGE_PLUGIN),
                    ("/logging", cost.LOGGING_PLUGIN)) if plugin.exists()))
        (self.web.directory / "documents" / "1k.html").write_bytes(b"x" * 1024)
        self.web.environment.update({
            "SAN_TEST_APIMGR_PORT": str(peer.port), "BENCH_PEER_PORT": str(peer.port),
            "BENCH_REQUEST_BYTES": str(request_bytes), "BENCH_REPLY_BYTES": str(len(peer.reply)),
            "GLIBC_TUNABLES": TUNABLES})
        self.output = self.web.directory / "counts"
        self.output.mkdir()
        self.output.chmod(0o777)  # the child that writes there has given up its privileges
        self.web.wrapper = [part.format(output=self.output) for part in wrapper]

    def __enter__(self):
        self.web.start()
        self._connect()
        return self

    def __exit__(self, *exception):
        self.socket.close()
        self.web.stop()

    def _connect(self):
        self.socket = socket.create_connection(("127.0.0.1", self.web.port))

    def ask(self, path, request):
        """Sends a request in one piece, so that it arrives in one, and takes the reply."""
        head = f"{'POST' if request else 'GET'} {path} HTTP/1.1\r\nHost: localhost\r\n"
        body = (request or "").encode()
        if body:
            head += f"Content-Type: text/xml; charset=utf-8\r\nContent-Length: {len(body)}\r\n"
        self.socket.sendall(f"{head}\r\n".encode() + body)
        reply = http.client.HTTPResponse(self.socket)
        reply.begin()
        reply.read()
        if reply.status not in (200, 500):
            raise RuntimeError(f"{path} was not served: {reply.status}\n{self.web.error_log()}")
        if reply.will_close:  # as the server does behind a fault
            self.socket.close()
            self._connect()


# Every request gets a dump of its own: what was executed since the server began to wait for the
# one before.
CALLGRIND = ["valgrind", "--tool=callgrind", "--dump-before=ap_read_request", "--dump-line=no",
             "--callgrind-out-file={output}/%p", "--log-file={output}/log.%p"]


class Instructions(Server):
    def __init__(self, peer, request_bytes):
        super().__init__(peer, request_bytes, CALLGRIND)

    def _dumps(self):
        (child,) = self.web.children()
        return sorted(self.output.glob(f"{child}.*"), key=lambda path: int(path.suffix[1:]))

    def count(self, path, request):
        """The dump of one request."""
        before = len(self._dumps())
        self.ask(path, request)
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            for dump in (path.read_text() for path in self._dumps()[before:]):
                # There may be others, of connections that came without a request.
                if total_of(dump) is not None and " ap_process_request\n" in dump:
                    return dump
            time.sleep(0.01)
        raise RuntimeError(f"no count of {path}")

    def warm(self, path, request):
        """(instructions, functions by name) of a request that is not the first of its kind."""
        dumps = [self.count(path, request) for _ in range(WARM + COUNTED)][WARM:]
        middle = statistics.median_low(map(total_of, dumps))
        dump = next(dump for dump in dumps if total_of(dump) == middle)
        return middle, functions_of(dump)


def total_of(dump):
    """The instructions in a dump; None while it is being written."""
    found = re.search(r"^totals: (\d+)\n", dump, re.M)
    return int(found.group(1)) if found else None


def functions_of(dump):
    """Instructions of each function itself, by library and name."""
    names, costs = {}, {}

    def name_of(text):
        number, _, name = text.partition(" ")
        if name:
            names[number] = name
        return names.get(number, number)
    library = function = ""
    is_call = False
    for line in dump.splitlines():
        if line.startswith("ob="):
            library = name_of("o" + line[3:])
        elif line.startswith("fn="):
            function = f"{os.path.basename(library)}: {name_of('f' + line[3:])}"[:LONGEST_NAME]
        elif line.startswith(("cfn=", "cob=")):
            name_of(("f" if line.startswith("cf") else "o") + line[4:])
        elif line.startswith("calls="):
            is_call = True  # the next line is what the callee took
        elif found := re.match(r"[+*-]?\d* (\d+)$", line):
            if not is_call:
                costs[function] = costs.get(function, 0) + int(found.group(1))
            is_call = False
    return costs


class SystemCalls(Server):
    TRACE = ["strace", "-D", "-ff", "-qq", "-s", "8", "-o", "{output}/trace"]

    def __init__(self, peer, request_bytes):
        super().__init__(peer, request_bytes, self.TRACE)

    def calls(self, path, request):
        """The names of the system calls of a warm request, without the reading of the request
        that must be tried first and the wait for the next."""
        for _ in range(WARM):
            self.ask(path, request)
        (child,) = self.web.children()
        trace = self.output / f"trace.{child}"
        before = len(trace.read_text().splitlines())
        self.ask(path, request)
        time.sleep(0.2)
        lines = trace.read_text().splitlines()[before - 1:]
        names = [line.partition("(")[0] for line in lines]
        start = next(i for i, line in enumerate(lines) if re.match(r'read\(\d+, "(POST|GET)', line))
        end = max(i for i, name in enumerate(names) if name in ("writev", "sendfile", "write"))
        return names[start:end + 1]


def exchange_bytes(peer, names):
    """The size of each operation's request to the API manager."""
    sizes = {}
    with Server(peer, 8, []) as server:
        for name in names:
            request, document = OPERATIONS[name]
            peer.reply, peer.request_bytes = reply_frame(document), 0
            server.ask(webServer.PATH, request)
            sizes[name] = max(peer.request_bytes, 8)
    return sizes


def paths(request, rungs):
    return [(rung, path, {"a": None, "d": request}.get(rung, soap.PING))
            for rung, _, path in cost.TARGETS if rung in rungs]


def count_all(names, rungs, functions):
    peer = Peer()
    sizes = exchange_bytes(peer, names)
    counts, calls, first = {}, {}, None
    for name in names:
        request, document = OPERATIONS[name]
        peer.reply = reply_frame(document)
        print(f"counting {name}", file=sys.stderr)
        with Instructions(peer, sizes[name]) as server:
            if name == "Ping":
                first = total_of(server.count(webServer.PATH, request))
            counts[name] = {}
            for rung, path, message in paths(request, rungs):
                counts[name][rung], costs = server.warm(path, message)
            if functions:
                print(f"\n{name}: the functions that take most")
                for function in sorted(costs, key=costs.get, reverse=True)[:functions]:
                    print(f"{costs[function]:10,}  {function}")
        with SystemCalls(peer, sizes[name]) as server:
            calls[name] = {rung: server.calls(path, message)
                           for rung, path, message in paths(request, rungs)}
    report(counts, calls, first, rungs)


def report(counts, calls, first, rungs):
    print(f"\n{'instructions in user space':28}" + "".join(
        f"{what[:22]:>24}" for rung, what, _ in cost.TARGETS if rung in rungs))
    for name, row in counts.items():
        print(f"{name:28}" + "".join(f"{row[rung]:24,}" for rung in rungs))
    print("\nsystem calls")
    for name, row in calls.items():
        print(f"{name:28}" + "".join(f"{len(row[rung]):24}" for rung in rungs))
    if "Ping" in counts and "d" in rungs:
        print(f"\na Ping's system calls: {' '.join(calls['Ping']['d'])}")
        warm = counts["Ping"]["d"]
        print(f"the first request of a process, Ping: {first:,}, {first / warm:.1f} warm ones")
    print_growth({name: row["d"] for name, row in counts.items() if "d" in row})


def print_growth(counts):
    for what, few, many, units, limit in GROWTH:
        if few in counts and many in counts:
            print(f"{what}: {(counts[many] - counts[few]) / units:,.0f}, limit {limit:,}")


def grown(costs, recorded):
    """The functions that cost more than is written down, the worst first."""
    least = LEAST_SHARE * sum(costs.values())
    more = {name: value - recorded.get(name, 0) for name, value in costs.items()
            if value - recorded.get(name, 0) >= least}
    return "".join(f"\n    {more[name]:+9,}  {name}"
                   for name in sorted(more, key=more.get, reverse=True)[:12])


def check(update):
    ceilings = json.loads(CEILINGS.read_text()) if CEILINGS.exists() else {}
    names = ["Ping", "AddHccToSan, 4 addresses", "AddHccToSan, 500 addresses",
             "reply of 10 objects", "reply of 100 objects"]
    peer, counted, failures = Peer(), {}, []
    with Instructions(peer, 8) as server:
        for name in names:
            request, document = OPERATIONS[name]
            peer.reply = reply_frame(document)
            total, costs = server.warm(webServer.PATH, request)
            ceiling = ceilings.get(name, {"instructions": 0, "functions": {}})
            print(f"{name}: {total:,} instructions, ceiling {ceiling['instructions']:,}")
            if total > ceiling["instructions"] * ROOM:
                failures.append(f"{name} takes {total:,} instructions, "
                                f"{total - ceiling['instructions']:+,}. What grew:"
                                + grown(costs, ceiling["functions"]))
            counted[name] = {"instructions": total, "functions": {
                function: value for function, value in sorted(costs.items())
                if value >= LEAST_SHARE * total}}
    print_growth({name: row["instructions"] for name, row in counted.items()})
    with SystemCalls(peer, 8) as server:
        peer.reply = reply_frame(DONE)
        calls = server.calls(webServer.PATH, soap.PING)
        if len(calls) > CALLS_OF_A_PING:
            failures.append(f"a Ping makes {len(calls)} system calls: {' '.join(calls)}")
    if update:
        CEILINGS.write_text(json.dumps(counted, indent=1) + "\n")
    elif failures:
        sys.exit("\n".join(failures) + "\nIf the work is worth it: bench/instructionCount.py "
                 "--check --update, and the reason in the commit")


def most_addresses():
    """As many as a body of 128 KiB holds."""
    count = 1000
    while len(cost.join_request(count + 1)) <= 128 * 1024:
        count += 1
    return count


def grow():
    """How the cost of the operation grows, step by step."""
    steps = {
        "addresses of AddHccToSan": [(count, cost.join_request(count), DONE)
                                     for count in (4, 100, 500, 1000, most_addresses())],
        "objects of a reply": [(count, soap.PING, objects(count))
                               for count in (1, 10, 100, 1000, 10000)],
    }
    peer = Peer()
    with Instructions(peer, 8) as server:
        for what, rows in steps.items():
            print(f"\n{what:>26}{'instructions':>16}{'for each more':>16}")
            before = None
            for count, request, document in rows:
                peer.reply = reply_frame(document)
                total, _ = server.warm(webServer.PATH, request)
                each = f"{(total - before[1]) / (count - before[0]):,.0f}" if before else ""
                print(f"{count:26,}{total:16,}{each:>16}", flush=True)
                before = count, total


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("--operation", choices=OPERATIONS, action="append")
    parser.add_argument("--rungs", default="abcld", metavar="LETTERS",
                        help="which of the rungs (default: %(default)s)")
    parser.add_argument("--functions", type=int, default=0, metavar="N",
                        help="also name the N functions that take most")
    parser.add_argument("--growth", action="store_true", help="up to the limits")
    parser.add_argument("--check", action="store_true", help="compare with the ceilings")
    parser.add_argument("--update", action="store_true", help="write the ceilings down anew")
    arguments = parser.parse_args()
    for program in ("valgrind", "strace"):
        if not shutil.which(program):
            sys.exit(f"{program} is missing: apt-get install {program}")
    with cost.log_daemon():
        if arguments.check:
            check(arguments.update)
        elif arguments.growth:
            grow()
        else:
            count_all(arguments.operation or list(OPERATIONS), arguments.rungs,
                      arguments.functions)


if __name__ == "__main__":
    main()
