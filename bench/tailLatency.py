#!/usr/bin/env python3
"""Throughput and latency as connections and threads grow, beside the static file.

    bench/tailLatency.py [--seconds S]

Asks the rungs a, c, l and d of operationCost.py over 1 to 256 connections to 64 threads, then over
64 connections to 1 to 64 threads, under event. Prints requests per second and the latencies that
half, 99 % and 99.9 % of the requests stay below, and what the log lines cost (l without c) in
processor time: the C library lets one thread at a time write to the log, which is the only lock
that a request meets. Needs what operationCost.py needs.
"""

import argparse
import re
import statistics
import subprocess

import operationCost as cost
from operationCost import soap, webServer

CONNECTIONS = (1, 4, 16, 64, 256)
THREADS = (1, 4, 16, 64)
RUNGS = "acld"
SCRIPT = """
done = function(summary, latency, requests)
    io.write(string.format("LATENCY %d %d %d\\n", latency:percentile(50),
                           latency:percentile(99), latency:percentile(99.9)))
end
"""


class Load(cost.Load):
    def prepare(self, path, message):
        super().prepare(path, message)
        with open(self.scripts[path], "a", encoding="ascii") as script:
            script.write(SCRIPT)

    def measure(self, path, connections, seconds):
        """(requests per second, three latencies in ms, µs of processor time per request)"""
        ticks = sum(map(cost.process_ticks, self.server.children()))
        done = subprocess.run(
            ["wrk", "-t1", f"-c{connections}", f"-d{seconds}s", "-s", self.scripts[path],
             f"http://127.0.0.1:{self.server.port}{path}"],
            check=True, text=True, stdout=subprocess.PIPE).stdout
        used = sum(map(cost.process_ticks, self.server.children())) - ticks
        count = int(re.search(r"(\d+) requests in", done).group(1))
        rate = float(re.search(r"Requests/sec:\s+([\d.]+)", done).group(1))
        latencies = re.search(r"^LATENCY (\d+) (\d+) (\d+)", done, re.M).groups()
        return rate, [int(us) / 1000 for us in latencies], used / cost.TICK / max(count, 1) * 1e6


def measure_all(load, connections, threads, seconds):
    print(f"\n{connections} connections, {threads} threads")
    used = {}
    for name, what, path in cost.TARGETS:
        if name not in RUNGS:
            continue
        rounds = [load.measure(path, connections, seconds) for _ in range(3)]
        rate = statistics.median(row[0] for row in rounds)
        half, most, nearly_all = (statistics.median(row[1][i] for row in rounds) for i in range(3))
        used[name] = statistics.median(row[2] for row in rounds)
        print(f"  {name}  {what:25}{rate:10.0f}/s   p50 {half:8.2f} ms   p99 {most:8.2f} ms   "
              f"p99.9 {nearly_all:8.2f} ms   {used[name]:6.1f} µs")
    print(f"     the log lines: {used['l'] - used['c']:.1f} µs of processor time")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--seconds", type=int, default=2, help="for each figure, three times")
    arguments = parser.parse_args()
    arguments.mpm = "event"
    for threads in THREADS:
        arguments.threads = threads
        with cost.serving(arguments, soap.PING) as server:
            load = Load(server, argparse.Namespace(connections=1))
            script = server.directory / "fetch.lua"
            script.write_text(SCRIPT)
            load.scripts["/1k.html"] = str(script)
            for path in ("/exchange", "/logging", webServer.PATH):
                load.prepare(path, soap.PING)
            for connections in CONNECTIONS if threads == THREADS[-1] else (64,):
                measure_all(load, connections, threads, arguments.seconds)


if __name__ == "__main__":
    main()
