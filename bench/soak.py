#!/usr/bin/env python3
"""A long mixed load: does the service answer what it must, lose nothing, and stay as large as it was?

    bench/soak.py --requests 1000000 --mpm event      # and: --mpm prefork
    bench/soak.py --restarts 100                      # graceful restarts under load
    bench/soak.py --requests 0 --end TERM             # calls under way when it ends; or WINCH

Of the requests a tenth is faulty or hostile, and 5 % of the clients leave: half of them within their
request, half before its answer. The API manager must have got exactly the calls of the requests that
were answered well, and of those whose clients left without waiting. The load goes on until all
restarts were done. The build is that of SAN_BUILD_DIR (default: build/release). Ends with 1 when
something is not as it must be.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import os
import pathlib
import random
import re
import resource
import signal
import socket
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("SAN_BUILD_DIR", str(ROOT / "build" / "release"))
sys.path[:0] = [str(ROOT / "testbed"), str(ROOT / "tests" / "service")]

import soap  # noqa: E402
from arraySimulator import ArraySimulator  # noqa: E402
from operations import OPERATIONS, VOLUME  # noqa: E402
from webServer import PATH, WebServer  # noqa: E402

HEAD = soap.header(user="user:pass")
REMOVE = soap.envelope("<ns1:RemoveHccFromSan><sanId>s</sanId><hccId>{}</hccId>"
                       "</ns1:RemoveHccFromSan>", HEAD)
# Of the memory after the first tenth, which is 100,000 requests of a million; in a shorter run not
# all threads have served by then.
GROWTH, FIRST_USE = 1.1, 4096
# A connection serves so many requests on average. With restarts each has its own: a server that
# ends may close a kept one at the moment when the next request is on its way.
KEPT = 20


def http(text):
    body = text.encode()
    return (f"POST {PATH} HTTP/1.1\r\nHost: localhost\r\nContent-Type: text/xml\r\n"
            f"Content-Length: {len(body)}\r\n\r\n").encode() + body


GOOD = [http(soap.envelope(row.body, HEAD)) for row in OPERATIONS]
FAULTY = [http(text) for text in (
    soap.envelope("<ns1:Ping/>", soap.header("9.0")), soap.envelope("<ns1:Unheard/>", HEAD),
    soap.envelope(OPERATIONS[3].body), REMOVE.format("&#xD800;"), REMOVE.format("\0"),
    REMOVE.format("&nbsp;"), REMOVE.format("<a>" * 90), REMOVE.format("x" * 70000), "<a", "",
)]


class Client:
    """Its connection lasts until it is closed, by whichever side."""

    def __init__(self, port):
        self.port, self.connection = port, None

    def send(self, data):
        if self.connection is None:
            self.connection = socket.create_connection(("127.0.0.1", self.port), timeout=120)
        self.connection.sendall(data)

    def close(self):
        if self.connection is not None:
            self.connection.close()
            self.connection = None

    def exchange(self, data):
        """The status of what comes back; None when nothing whole does."""
        try:
            self.send(data)
            received = b""
            while (end := received.find(b"\r\n\r\n")) < 0:
                part = self.connection.recv(65536)
                if not part:
                    raise ConnectionError
                received += part
            head = received[:end].lower()
            size = end + 4 + int(re.search(rb"\ncontent-length: (\d+)", head)[1])
            while len(received) < size:
                part = self.connection.recv(65536)
                if not part:
                    raise ConnectionError
                received += part
            if b"\nconnection: close" in head:
                self.close()
            return int(received.split(b" ", 2)[1])
        except ConnectionError:
            self.close()
            return None


def run_client(port, seed, count, kept):
    """Sends so many requests; gives how each kind of them went."""
    choose, seen, client = random.Random(seed), collections.Counter(), Client(port)
    for _ in range(count):
        draw, request = choose.random(), choose.choice(GOOD)
        if draw < 0.025:
            client.send(request[:choose.randrange(1, len(request) - 1)])
            seen["left within"] += 1
        elif draw < 0.05:
            client.send(request)
            seen["left"] += 1
        elif draw < 0.15:
            status = client.exchange(choose.choice(FAULTY))
            seen["refused" if status in (400, 500) else f"faulty: {status}"] += 1
        else:
            status = client.exchange(request)
            seen["answered" if status == 200 else f"good: {status}"] += 1
        if draw < 0.05 or choose.random() * kept < 1:
            client.close()
    client.close()
    return seen


def memory(server):
    """Of all processes, what is theirs alone and their part of what is shared, in KiB."""
    total = 0
    for process in [server.process.pid, *server.children()]:
        with contextlib.suppress(OSError):
            rollup = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text()
            total += int(rollup.split("Pss:")[1].split()[0])
    return total


def calls_at(array):
    """The log can be larger than memory is, so its lines are counted only."""
    with open(array.log, "rb") as log:
        return sum(part.count(b"\n") for part in iter(lambda: log.read(1 << 20), b""))


def restart_often(server, times, pause):
    """Each when the last one is over."""
    started = len(re.findall("resuming normal operations", server.error_log()))
    for done in range(1, times + 1):
        time.sleep(pause)
        server.process.send_signal(signal.SIGUSR1)
        while len(re.findall("resuming normal operations", server.error_log())) < started + done:
            time.sleep(0.05)


def run_load(options, server, array):
    tenth = max(1, options.requests // 10 // options.clients)
    seen, sizes, began = collections.Counter(), [], time.monotonic()
    with concurrent.futures.ProcessPoolExecutor(options.clients) as pool, \
            concurrent.futures.ThreadPoolExecutor(1) as side:
        restarts = side.submit(restart_often, server, options.restarts, options.pause)
        while len(sizes) < 10 or not restarts.done():
            work = [pool.submit(run_client, server.port, len(sizes) * 1000 + number, tenth,
                                1 if options.restarts else KEPT)
                    for number in range(options.clients)]
            for done in work:
                seen += done.result()
            sizes.append(memory(server))
            print(f"{len(sizes)}: {sum(seen.values())} requests, {sizes[-1]} KiB, "
                  f"{time.monotonic() - began:.0f} s", flush=True)
        restarts.result()
    time.sleep(1)  # for the calls whose clients have left
    calls, caused = calls_at(array), seen["answered"] + seen["left"]
    spent = resource.getrusage(resource.RUSAGE_CHILDREN)
    print(f"{dict(seen)}; calls at the API manager: {calls}, caused: {caused}; "
          f"graceful restarts: {options.restarts}; "
          f"the clients' processor time: {spent.ru_utime + spent.ru_stime:.1f} s")
    good = set(seen) <= {"left within", "left", "refused", "answered"} and calls == caused
    flat = options.restarts or max(sizes[1:]) <= GROWTH * sizes[0] + FIRST_USE
    return good and flat


def run_end(options, server, array):
    """Calls are under way when the server is told to end. A graceful end answers them all."""
    array.fail("delay", count=0, delayMs=2000)
    before = calls_at(array)
    with concurrent.futures.ThreadPoolExecutor(options.clients) as pool:
        calls = [pool.submit(Client(server.port).exchange, GOOD[0]) for _ in range(options.clients)]
        time.sleep(1)
        server.process.send_signal(getattr(signal, "SIG" + options.end))
        statuses = collections.Counter(call.result() for call in calls)
    server.process.wait(60)
    time.sleep(3)  # for the calls whose server has left
    made = calls_at(array) - before
    print(f"after {options.end}: {dict(statuses)}; calls at the API manager: {made}")
    return (made == options.clients and
            set(statuses) <= ({200} if options.end == "WINCH" else {200, None}))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--requests", type=int, default=20000)
    parser.add_argument("--mpm", default="event", choices=["event", "prefork", "worker"])
    parser.add_argument("--clients", type=int, default=8)
    parser.add_argument("--restarts", type=int, default=0)
    parser.add_argument("--pause", type=float, default=0.5, help="seconds between restarts")
    parser.add_argument("--end", choices=["TERM", "WINCH"])
    options = parser.parse_args()
    good = True
    with ArraySimulator("--lenient", seed_file={"volumes": [VOLUME]}) as array, \
            WebServer(mpm=options.mpm, threads=2 * options.clients,
                      api_manager_port=array.port) as server:
        if options.requests:
            good = run_load(options, server, array)
        if options.end:
            good = run_end(options, server, array) and good
    print("as it must be" if good else "NOT as it must be")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
