#!/usr/bin/env python3
"""What a hostile body costs the web server, beside the largest sensible request.

    bench/hostileBodies.py [--rounds N] [--most RATIO] [--alone]

Posts bodies of just the limit of 128 KiB, each made to cost as much as its shape can, and in turns
with them AddHccToSan with 500 addresses. Printed are the status of each, the median of the
processor time that one request took of the server's process, and its ratio to the sensible
request; then what a body costs that comes in chunks, in processor time and memory. Exit status 1
when a ratio is above --most.

With --alone the plug-in is served by a program that looks at nothing before it, in place of the
web server and its module: its own limits are what keeps the ratio.

Needs a release build (scripts/run.sh --build-only), and the targets of bench/ for --alone.
"""

import argparse
import itertools
import os
import pathlib
import re
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("SAN_BUILD_DIR", str(ROOT / "build" / "release"))
sys.path.insert(0, str(ROOT / "testbed"))

import operationCost  # noqa: E402
from arraySimulator import ArraySimulator  # noqa: E402
from programs import PRELOADED  # noqa: E402
import soap  # noqa: E402
import webServer  # noqa: E402

LIMIT = 128 * 1024
JOIN = ("<ns1:AddHccToSan><sanId>64015</sanId><hccId>c{}</hccId><hccKey>k</hccKey>%s"
        "</ns1:AddHccToSan>")
CREDENTIALS = soap.header(user="admin:secret")
CHUNKED = "Transfer-Encoding: chunked"
serial = itertools.count()


def filled(template, piece, head=soap.header(), limit=LIMIT):
    """An envelope of just the limit, its %s filled with `piece` repeated, up to `limit` bytes; {}
    in it counts up."""
    whole = soap.envelope(template, head).replace("{}", str(next(serial)))
    room = limit - len((whole % "").encode())
    size, pieces = 0, []
    for number in itertools.count():
        text = piece.replace("{}", str(number))
        size += len(text.encode())
        if size > room:
            break
        pieces.append(text)
    return (whole % "".join(pieces)).ljust(LIMIT)


PING = "<ns1:Ping>%s</ns1:Ping>"
# As many as pass the gate: names of attributes in one tag, namespaces in scope, levels.
NAMES = "".join(f' n{i}=""' for i in range(22))
SPACES = "".join(f' xmlns:p{i}="u{i}"' for i in range(28))
DEEP = "<a>" * 50

SHAPES = [
    ("attributes of one tag", lambda: filled("<ns1:Ping><a%s/></ns1:Ping>", ' b{}=""')),
    ("one attribute again and again", lambda: filled("<ns1:Ping><a%s/></ns1:Ping>", ' b=""')),
    ("a new name on each element", lambda: filled(PING, '<a b{}=""/>')),
    ("few names on each element", lambda: filled(PING, f"<a{NAMES}/>")),
    ("the last of few names", lambda: filled(
        f"<ns1:Ping><a{NAMES}/>%s</ns1:Ping>", '<a n21=""/>')),
    ("long names of attributes", lambda: filled(
        PING, "<a " + "b" * 4000 + '{}=""/>')),
    ("namespaces of one tag", lambda: filled("<ns1:Ping><a%s/></ns1:Ping>", ' xmlns:n{}=""')),
    ("a namespace on each element", lambda: filled(PING, '<n:a xmlns:n="u{}"/>')),
    ("few namespaces on each element", lambda: filled(PING, f"<p0:a{SPACES}/>")),
    ("prefixes far from their names", lambda: filled(
        f"<ns1:Ping><a{SPACES}>%s</a></ns1:Ping>", "<p0:a/>")),
    ("namespaces at each level", lambda: filled("%s", '<a xmlns:n{}="{}">')),
    ("a long name", lambda: filled("<ns1:Ping><%s/></ns1:Ping>", "a")),
    ("deep", lambda: filled("<ns1:Ping>%s</ns1:Ping>", "<a>")),
    ("deep again and again", lambda: filled(PING, DEEP + DEEP.replace("<", "</"))),
    ("wide", lambda: filled(PING, "<a/>")),
    ("wide, with a prefix", lambda: filled(PING, "<ns1:a/>")),
    ("wide in the header", lambda: filled("<ns1:Ping/>", "<a/>", "%s" + soap.header())),
    ("references", lambda: filled(PING, "&amp;")),
    ("character references", lambda: filled(PING, "&#65;")),
    ("pieces of CDATA", lambda: filled(PING, "<![CDATA[]]>")),
    ("comments", lambda: filled(PING, "<!---->")),
    ("instructions", lambda: filled(PING, "<?a?>")),
    ("ids", lambda: filled(PING, '<a id="i{}" href="#i{}"/>')),
    ("a long text", lambda: filled(PING, "a")),
    ("a text in many pieces", lambda: filled(
        JOIN % "<hccName>%s</hccName>", "<![CDATA[a]]>&#65;", CREDENTIALS, LIMIT // 2)),
    ("markup in a text", lambda: filled(
        JOIN % "<hccName>%s</hccName>", "<a/>", CREDENTIALS, LIMIT // 2)),
    ("a field again and again", lambda: filled(JOIN, "<hccName/>", CREDENTIALS)),
    ("empty items", lambda: filled(JOIN, "<cfmIpAddresses/>", CREDENTIALS)),
    ("small items", lambda: filled(
        JOIN, "<cfmIpAddresses><port>1</port></cfmIpAddresses>", CREDENTIALS)),
    ("addresses", lambda: filled(
        JOIN, f"<cfmIpAddresses>{soap.address('10.0.0.1', 1)}</cfmIpAddresses>", CREDENTIALS)),
]


def sensible():
    entries = "".join(f"<cfmIpAddresses>{soap.address(f'10.0.{n // 250}.{n % 250 + 1}', 3260)}"
                      "</cfmIpAddresses>" for n in range(500))
    return soap.envelope((JOIN % entries).replace("{}", str(next(serial))), CREDENTIALS)


def processor_time(server):
    """Nanoseconds that the server's children have run."""
    return sum(int(pathlib.Path(f"/proc/{pid}/schedstat").read_text().split()[0])
               for pid in server.children())


def peak_memory(server):
    """KiB that the child held at its largest since the last call."""
    (pid,) = server.children()
    text = pathlib.Path(f"/proc/{pid}/status").read_text()
    pathlib.Path(f"/proc/{pid}/clear_refs").write_text("5")
    return int(re.search(r"^VmHWM:\s+(\d+)", text, re.M).group(1))


def cost(server, body, chunk=None):
    """(milliseconds of processor time, status) of one request, sent at once; `chunk` is the size
    of its chunks, none for a body with a length."""
    body, length = body.encode(), f"Content-Length: {len(body.encode())}"
    if chunk:
        parts = [body[i:i + chunk] for i in range(0, len(body), chunk)] + [b""]
        body, length = b"".join(b"%x\r\n%s\r\n" % (len(p), p) for p in parts), CHUNKED
    before = processor_time(server)
    received = server.send_raw(f"POST {webServer.PATH} HTTP/1.1\r\nHost: localhost\r\n"
                               f"Content-Type: text/xml\r\nConnection: close\r\n{length}"
                               "\r\n\r\n".encode() + body)
    return (processor_time(server) - before) / 1e6, int(received.split()[1])


def serving(array):
    return webServer.WebServer(mpm="prefork", threads=1, api_manager_port=array.port)


def in_pieces(array, rounds, chunk):
    """(milliseconds, KiB that a fresh process grows by, status) of a body in such chunks."""
    body = filled(PING, "<a>b</a>")
    with serving(array) as server:
        cost(server, soap.PING)
        rest = peak_memory(server)
        cost(server, body, chunk)
        grown = peak_memory(server) - rest
        times, statuses = zip(*(cost(server, body, chunk) for _ in range(rounds)))
    return statistics.median(times), grown, statuses[0]


def cost_alone(array, body, rounds):
    """(milliseconds of processor time, what became of it) of a request to the plug-in alone."""
    environment = {**os.environ, **PRELOADED,
                   "SAN_TEST_APIMGR_PORT": str(array.port)}
    said = subprocess.run([webServer.BUILD / "bench" / "aloneCost", str(rounds)], check=True,
                          input=body.encode(), capture_output=True, env=environment).stdout.decode()
    spent, _, outcome = said.strip().partition(" ")
    return float(spent) / 1000, outcome


def measure_alone(rounds):
    """The worst ratio of all shapes at the plug-in alone, and the sensible request's time."""
    worst = 0.0
    with operationCost.log_daemon(), ArraySimulator("--lenient") as array:
        for name, shape in SHAPES:
            (base, outcome), (spent, end) = (cost_alone(array, body, rounds)
                                             for body in (sensible(), shape()))
            if outcome != "served":
                sys.exit(f"the sensible request was not served: {outcome}")
            worst = max(worst, spent / base)
            print(f"{name:32}{spent:9.2f}{spent / base:8.2f}  {end}", flush=True)
    return worst, base


def conclude(worst, base, most):
    print(f"AddHccToSan with 500 addresses: {base:.2f} ms; worst ratio: {worst:.2f}, "
          f"at most {most:.2f}: {'met' if worst <= most else 'NOT MET'}")
    return 0 if worst <= most else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--most", type=float, default=5.0)
    parser.add_argument("--alone", action="store_true", help="without the module")
    arguments = parser.parse_args()
    if arguments.alone:
        return conclude(*measure_alone(arguments.rounds), arguments.most)
    worst = 0.0
    with ArraySimulator("--lenient") as array, \
            serving(array) as server:
        cost(server, soap.PING)
        print(f"{'':32}{'status':>7}{'ms':>9}{'ratio':>8}")
        for name, shape in SHAPES:
            rounds = [(cost(server, sensible()), cost(server, shape()))
                      for _ in range(arguments.rounds)]
            if any(status != 200 for (_, status), _ in rounds):
                sys.exit("the sensible request was not served")
            base = statistics.median(time for (time, _), _ in rounds)
            spent = statistics.median(time for _, (time, _) in rounds)
            worst = max(worst, spent / base)
            print(f"{name:32}{rounds[0][1][1]:7}{spent:9.2f}{spent / base:8.2f}", flush=True)
        print("the same body in chunks:")
        for chunk in (None, 1000, 26, 25, 1):
            time, memory, status = in_pieces(array, arguments.rounds, chunk)
            print(f"{f'of {chunk} bytes' if chunk else 'none, with a length':32}{status:7}"
                  f"{time:9.2f}{memory:8} KiB")
    return conclude(worst, base, arguments.most)


if __name__ == "__main__":
    sys.exit(main())
