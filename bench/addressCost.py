#!/usr/bin/env python3
"""How the cost of AddHccToSan grows with the number of addresses.

    bench/addressCost.py [--rounds N] [--seconds S] [--connections N] [--mpm event|prefork]

Sends requests of 1 to 500 addresses in turns and prints, for each number, the median of the
server's processor time per request, the straight line through all of them, and how far the
points lie from it. Needs what operationCost.py needs.
"""

import argparse
import statistics

import operationCost as cost

COUNTS = (1, 4, 16, 50, 100, 200, 300, 400, 500)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--seconds", type=int, default=2, help="for each number in each round")
    parser.add_argument("--connections", type=int, default=1)
    parser.add_argument("--mpm", choices=("event", "worker", "prefork"), default="event")
    arguments = parser.parse_args()
    costs = {count: [] for count in COUNTS}
    # The peer answers whatever comes first, so any request's length does for it.
    with cost.serving(arguments, cost.join_request(1)) as server:
        load = cost.Load(server, arguments)
        for _ in range(arguments.rounds):
            for count in COUNTS:
                load.prepare(cost.webServer.PATH, cost.join_request(count))
                costs[count].append(load.run(cost.webServer.PATH, arguments.seconds)[1])
    medians = [statistics.median(costs[count]) for count in COUNTS]
    line = statistics.linear_regression(COUNTS, medians)
    print(f"\n{'addresses':>10}{'µs/request':>12}{'line':>10}{'off':>7}")
    for count, median in zip(COUNTS, medians):
        on_line = line.intercept + line.slope * count
        print(f"{count:10}{median:12.1f}{on_line:10.1f}{median / on_line - 1:7.0%}")
    print(f"\n{line.intercept:.1f} µs and {line.slope:.2f} µs for each address; "
          f"correlation {statistics.correlation(COUNTS, medians):.4f}")


if __name__ == "__main__":
    main()
