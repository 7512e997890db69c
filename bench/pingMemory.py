#!/usr/bin/env python3
"""Whether the web server's memory stays flat while it serves Pings.

    bench/pingMemory.py [--pings N] [--mpm event|prefork]

Sends Pings over 16 connections and prints the private memory of the server's children at the
start, after a tenth, after a half and at the end. Threads get their working memory with their
first request, so the first tenth grows; exit status 1 when the second half added more than 1 per
cent.

Needs a release build (scripts/run.sh --build-only, and the test targets of the web server).
"""

import argparse
import concurrent.futures
import contextlib
import os
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("SAN_BUILD_DIR", str(ROOT / "build" / "release"))
sys.path.insert(0, str(ROOT / "testbed"))

from arraySimulator import ArraySimulator  # noqa: E402
import soap  # noqa: E402
import webServer  # noqa: E402

CONNECTIONS = 16
MOST_GROWTH = 0.01


def private_kib(server):
    """Memory that the children do not share with anyone, in KiB."""
    total = 0
    for pid in server.children():
        text = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text()
        total += sum(int(kib) for kib in re.findall(r"^Private_\w+:\s+(\d+) kB", text, re.M))
    return total


def send_pings(server, count):
    def send(number):
        with contextlib.closing(server.connect()) as connection:
            return sum(soap.answered(server.post(soap.PING, connection=connection), "Ping")
                       for _ in range(number))
    shares = [count // CONNECTIONS + (i < count % CONNECTIONS) for i in range(CONNECTIONS)]
    with concurrent.futures.ThreadPoolExecutor(CONNECTIONS) as pool:
        answered = sum(pool.map(send, shares))
    if answered != count:
        sys.exit(f"{count - answered} of {count} Pings were not answered")


def measure(server, sent):
    size = private_kib(server)
    print(f"after {sent:7} Pings {size:8} KiB", flush=True)
    return size


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--pings", type=int, default=20000)
    parser.add_argument("--mpm", choices=("event", "prefork"), default="event")
    arguments = parser.parse_args()
    # With no thread idle the server closes kept-alive connections; a process has but one.
    threads = CONNECTIONS if arguments.mpm == "prefork" else 2 * CONNECTIONS
    with ArraySimulator() as array:
        server = webServer.WebServer(mpm=arguments.mpm, threads=threads,
                                     api_manager_port=array.port)
        server.start()
        sizes = [measure(server, 0)]
        try:
            sent = 0
            for share in (0.1, 0.4, 0.5):
                send_pings(server, round(arguments.pings * share))
                sent += round(arguments.pings * share)
                sizes.append(measure(server, sent))
        finally:
            server.stop()
    return 0 if sizes[-1] <= sizes[-2] * (1 + MOST_GROWTH) else 1


if __name__ == "__main__":
    sys.exit(main())
