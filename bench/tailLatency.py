#!/usr/bin/env python3
"""Throughput and latency as connections and threads grow, beside the static file and the bare
exchange in the same run, and what the lock around the log costs.

    bench/tailLatency.py [--rounds N] [--seconds S] [--connections N,...] [--threads N,...] [--lock]

Asks the rungs a, c, l and d of operationCost.py in turns, over each number of connections to each
number of threads, under event, and prints the medians of the rounds: requests per second, the
latencies that half, 99 % and 99.9 % of the requests stay below, processor time. The last line of
each tells the service's latencies as multiples of the bare exchange's.

The C library lets one thread of a process at a time write to the log; it is the only lock that a
request meets. --lock measures what it costs instead: 64 connections to 64 threads of one process,
and to 8 threads of each of 8 processes, with log lines (l) and without (c). Needs what
operationCost.py needs.
"""

import argparse
import re
import statistics
import subprocess

import operationCost as cost
from operationCost import soap, webServer

RUNGS = "acld"
ONE_PROCESS = ""
EIGHT_PROCESSES = ("StartServers 8\nMinSpareThreads 64\nMaxSpareThreads 64\nThreadsPerChild 8\n"
                   "MaxRequestWorkers 64\n")
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


def prepared(server):
    load = Load(server, argparse.Namespace(connections=1))
    script = server.directory / "fetch.lua"
    script.write_text(SCRIPT)
    load.scripts["/1k.html"] = str(script)
    for path in ("/exchange", "/logging", webServer.PATH):
        load.prepare(path, soap.PING)
    return load


def in_turns(loads, connections, arguments):
    """Medians of each rung at each of the loads: rate, three latencies, processor time."""
    rows = {}
    for _ in range(arguments.rounds):
        for place, load in loads.items():
            for name, _, path in cost.TARGETS:
                if name in RUNGS:
                    rate, latencies, used = load.measure(path, connections, arguments.seconds)
                    rows.setdefault((place, name), []).append((rate, *latencies, used))
    return {key: [statistics.median(column) for column in zip(*rounds)]
            for key, rounds in rows.items()}


def report(rows, place):
    for name, what, _ in cost.TARGETS:
        if (place, name) in rows:
            rate, half, most, nearly_all, used = rows[place, name]
            print(f"  {name}  {what:25}{rate:10.0f}/s   p50 {half:8.2f} ms   p99 {most:8.2f} ms   "
                  f"p99.9 {nearly_all:8.2f} ms   {used:6.1f} µs", flush=True)


def grow(arguments):
    for threads in arguments.threads:
        with serving(arguments, threads) as server:
            load = prepared(server)
            for connections in arguments.connections:
                print(f"\n{connections} connections, {threads} threads")
                rows = in_turns({"": load}, connections, arguments)
                report(rows, "")
                print("     the service by the bare exchange:" + "".join(
                    f"   {what} {ours / bare:.2f}" for what, ours, bare in
                    zip(("p50", "p99", "p99.9"), rows["", "d"][1:], rows["", "c"][1:])))


def lock(arguments):
    connections = 64
    with serving(arguments, connections, ONE_PROCESS) as one, \
            serving(arguments, connections, EIGHT_PROCESSES) as eight:
        rows = in_turns({"one process of 64 threads": prepared(one),
                         "8 processes of 8 threads": prepared(eight)}, connections, arguments)
    lines = {}
    for place in dict.fromkeys(place for place, _ in rows):
        print(f"\n{place}, {connections} connections")
        report(rows, place)
        lines[place] = rows[place, "l"][4] - rows[place, "c"][4]
        print(f"     the log lines: {lines[place]:.1f} µs of processor time")
    one_process, eight_processes = lines.values()
    print(f"\nthe lock between 64 threads: {one_process - eight_processes:.1f} µs of processor time")


def serving(arguments, threads, server_lines=ONE_PROCESS):
    return cost.serving(argparse.Namespace(**{**vars(arguments), "mpm": "event", "threads": threads,
                                              "server_lines": server_lines}), soap.PING)


def numbers(text):
    return [int(number) for number in text.split(",")]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--seconds", type=int, default=2, help="for each figure of a round")
    parser.add_argument("--connections", type=numbers, default=[1, 4, 16, 64, 256])
    parser.add_argument("--threads", type=numbers, default=[1, 8, 64])
    parser.add_argument("--lock", action="store_true", help="what the lock costs, instead")
    arguments = parser.parse_args()
    (lock if arguments.lock else grow)(arguments)


if __name__ == "__main__":
    main()
