#!/usr/bin/env python3
"""A long mixed load: does the service answer what it must, lose nothing, and stay as large as it was?

    bench/soak.py --requests 1000000 --mpm event      # and: --mpm prefork
    bench/soak.py --requests 100000 --restarts 100    # graceful restarts meanwhile
    bench/soak.py --requests 0 --end TERM             # calls under way when it ends; or WINCH

Of the requests a tenth is faulty or hostile, and 5 % of the clients leave in the middle. The API
manager must have got exactly the calls of the requests that were answered well. The build is that of
SAN_BUILD_DIR (default: build/release). Ends with 1 when something is not as it must be.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import os
import pathlib
import random
import signal
import socket
import sys
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("SAN_BUILD_DIR", str(ROOT / "build" / "release"))
sys.path[:0] = [str(ROOT / "testbed"), str(ROOT / "tests" / "service")]

import soap  # noqa: E402
from arraySimulator import ArraySimulator  # noqa: E402
from operations import OPERATIONS, VOLUME  # noqa: E402
from webServer import PATH, WebServer  # noqa: E402

HEAD = soap.header(user="user:pass")
GOOD = [soap.envelope(row.body, HEAD).encode() for row in OPERATIONS]
REMOVE = soap.envelope("<ns1:RemoveHccFromSan><sanId>s</sanId><hccId>{}</hccId>"
                       "</ns1:RemoveHccFromSan>", HEAD)
FAULTY = [text.encode() for text in (
    soap.envelope("<ns1:Ping/>", soap.header("9.0")), soap.envelope("<ns1:Unheard/>", HEAD),
    soap.envelope(OPERATIONS[3].body), REMOVE.format("&#xD800;"), REMOVE.format("\0"),
    REMOVE.format("&nbsp;"), REMOVE.format("<a>" * 90), REMOVE.format("x" * 70000), "<a", "",
)]
# Of the memory after the first tenth, which is 100,000 requests of a million; in a shorter run not
# all threads have served by then.
GROWTH, FIRST_USE = 1.1, 4096


def http(body):
    return (f"POST {PATH} HTTP/1.1\r\nHost: localhost\r\nContent-Type: text/xml\r\n"
            f"Connection: close\r\nContent-Length: {len(body)}\r\n\r\n").encode() + body


def exchange(port, data):
    """The status of what comes back; None when nothing does."""
    received = b""
    with contextlib.suppress(ConnectionError), \
            socket.create_connection(("127.0.0.1", port), timeout=120) as connection:
        connection.sendall(data)
        while part := connection.recv(65536):
            received += part
    return int(received.split(b" ", 2)[1]) if received else None


def client(port, seed, count):
    """Sends so many requests; gives how each kind of them went."""
    choose, seen = random.Random(seed), collections.Counter()
    for _ in range(count):
        draw = choose.random()
        if draw < 0.05:
            request = http(choose.choice(GOOD))
            with socket.create_connection(("127.0.0.1", port), timeout=120) as connection:
                connection.sendall(request[:choose.randrange(1, len(request) - 1)])
            seen["left"] += 1
        elif draw < 0.15:
            status = exchange(port, http(choose.choice(FAULTY)))
            seen["refused" if status in (400, 500) else f"faulty: {status}"] += 1
        else:
            status = exchange(port, http(choose.choice(GOOD)))
            seen["answered" if status == 200 else f"good: {status}"] += 1
    return seen


def memory(server):
    """Of all processes, what is theirs alone and their part of what is shared, in KiB."""
    total = 0
    for process in [server.process.pid, *server.children()]:
        with contextlib.suppress(OSError):
            rollup = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text()
            total += int(rollup.split("Pss:")[1].split()[0])
    return total


def restart_often(server, times, pause, stop):
    for done in range(times):
        if stop.wait(pause):
            return done
        server.process.send_signal(signal.SIGUSR1)
    return times


def run_load(options, server, array):
    tenth = max(1, options.requests // 10 // options.clients)
    seen, sizes, stop = collections.Counter(), [], threading.Event()
    with concurrent.futures.ProcessPoolExecutor(options.clients) as pool, \
            concurrent.futures.ThreadPoolExecutor(1) as side:
        restarts = side.submit(restart_often, server, options.restarts, options.pause, stop)
        for part in range(10):
            work = [pool.submit(client, server.port, part * 1000 + number, tenth)
                    for number in range(options.clients)]
            for done in work:
                seen += done.result()
            sizes.append(memory(server))
            print(f"{(part + 1) * 10:3} %  {sum(seen.values())} requests  {sizes[-1]} KiB",
                  flush=True)
        stop.set()
        print(f"graceful restarts: {restarts.result()}")
    time.sleep(1)
    calls = len(array.take_requests())
    print(f"{dict(seen)}; calls at the API manager: {calls}")
    good = set(seen) <= {"left", "refused", "answered"} and calls == seen["answered"]
    flat = options.restarts or max(sizes[1:]) <= GROWTH * sizes[0] + FIRST_USE
    return good and flat


def run_end(options, server, array):
    """Calls are under way when the server is told to end. A graceful end answers them all."""
    array.fail("delay", count=0, delayMs=2000)
    with concurrent.futures.ThreadPoolExecutor(options.clients) as pool:
        calls = [pool.submit(exchange, server.port, http(GOOD[0])) for _ in range(options.clients)]
        time.sleep(1)
        server.process.send_signal(getattr(signal, "SIG" + options.end))
        statuses = collections.Counter(call.result() for call in calls)
    server.process.wait(60)
    print(f"after {options.end}: {dict(statuses)}")
    return set(statuses) <= ({200} if options.end == "WINCH" else {200, None})


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--requests", type=int, default=20000)
    parser.add_argument("--mpm", default="event", choices=["event", "prefork", "worker"])
    parser.add_argument("--clients", type=int, default=8)
    parser.add_argument("--restarts", type=int, default=0)
    parser.add_argument("--pause", type=float, default=1.0, help="seconds between restarts")
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
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
