#!/usr/bin/env python3
"""What an operation costs the web server, beside what nobody can do without.

    bench/operationCost.py [--operation NAME] [--rounds N] [--seconds S] [--connections N]
                           [--mpm event|prefork] [--cpu N]

One Apache serves, in turns, and a load generator asks for

  a  a static file of 1 KB
  b  a Ping that a bare engine service answers, hosted by the same module
  c  the same with one bare exchange over loopback, of as many bytes as d exchanges
  l  the same with the two log lines that every request writes, the log opened and closed for them
  d  the operation (Ping by default; AddHccToSan with four addresses; HccAttachVolume), whose
     API manager is the peer of c with the answer that an array gives
  s  l in the engine's own stand-alone server, a program without any web server around it
  p  l in PHP's SoapServer (php-cli and php-soap), where they are installed

Printed are medians of requests per second and of processor time per request of the server's
processes (user and system, from /proc), and the ratios of the latter. Ratios are worth something
while nothing else runs; what else ran is measured, and too much of it is said.

With --cpu all of it shares one processor: then nothing is spent on waking an idle one and nothing
moves between caches, and what is left is the work itself.

Needs a release build (scripts/run.sh --build-only, and the targets of bench/) and wrk.
"""

import argparse
import contextlib
import os
import pathlib
import re
import shutil
import socket
import statistics
import subprocess
import sys
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("SAN_BUILD_DIR", str(ROOT / "build" / "release"))
sys.path.insert(0, str(ROOT / "testbed"))

from arraySimulator import ArraySimulator  # noqa: E402
import soap  # noqa: E402
import webServer  # noqa: E402

PEER = webServer.BUILD / "bench" / "exchangePeer"
LOG_SINK = webServer.BUILD / "bench" / "logSink"
EXCHANGE_PLUGIN = webServer.BUILD / "bench" / "libexchangePlugin.so"
LOGGING_PLUGIN = webServer.BUILD / "bench" / "libloggingPlugin.so"
STAND_ALONE = webServer.BUILD / "bench" / "standAloneServer"
PHP_SERVICE = ROOT / "bench" / "soapServer.php"
TICK = os.sysconf("SC_CLK_TCK")
# Beyond these the figures say more about the machine than about the server.
MOST_FOREIGN_LOAD = 0.10
MOST_SPREAD = 0.15

# name, what it is, path
TARGETS = [
    ("a", "static file of 1 KB", "/1k.html"),
    ("b", "bare Ping", "/bare"),
    ("c", "bare Ping and exchange", "/exchange"),
    ("l", "the same and log lines", "/logging"),
    ("d", "the operation", webServer.PATH),
]
# what, as a multiple of what, the limit, the aim
RATIOS = [("d", "a", 4.0, 3.5), ("d", "l", 1.0, 0.85), ("d", "c", None, None),
          ("d", "b", None, None), ("b", "a", None, None), ("l", "c", None, None),
          ("d", "s", None, None), ("d", "p", None, None)]

# Without it the server would look for .htaccess in each folder on the way to the static file,
# which would flatter everything that is compared with it.
NO_OVERRIDES = '<Directory "/">\nAllowOverride None\n</Directory>\n'

LOCATION = """
<Location "{path}">
    SetHandler gsoap_handler
    SOAPLibrary "{plugin}"
</Location>
"""


def join_request(addresses):
    """AddHccToSan with so many addresses of the cluster."""
    entries = "".join(
        f"<cfmIpAddresses>{soap.address(f'10.0.{n // 250}.{n % 250 + 1}', 3260)}</cfmIpAddresses>"
        for n in range(addresses))
    return soap.envelope(
        "<ns1:AddHccToSan><sanId>64015</sanId><hccId>cluster-1</hccId><hccName>Cluster One"
        f"</hccName><hccKey>0123456789abcdef</hccKey>{entries}</ns1:AddHccToSan>",
        soap.header(user="admin:secret"))


ATTACH = soap.envelope(
    "<ns1:HccAttachVolume><hccId>cluster-1</hccId><hcVolumeId>v1</hcVolumeId>"
    "<sanId>64015</sanId><sanVolumeId>64015.7</sanVolumeId></ns1:HccAttachVolume>",
    soap.header(user="admin:secret"))

# name: the client's request
OPERATIONS = {
    "Ping": soap.PING,
    "AddHccToSan": join_request(4),
    "HccAttachVolume": ATTACH,
}


def receive_frame(connection):
    data = b""
    while len(data) < 4 or len(data) < 4 + int.from_bytes(data[:4], "big"):
        part = connection.recv(65536)
        if not part:
            raise EOFError("closed in the middle of a frame")
        data += part
    return data


def exchange_of(request):
    """(bytes of the request frame, the simulator's reply frame) of one operation, seen on its
    way."""
    seen = []

    def pass_on(listener, port):
        with listener.accept()[0] as service, \
                socket.create_connection(("127.0.0.1", port)) as array:
            seen.append(receive_frame(service))
            array.sendall(seen[0])
            seen.append(receive_frame(array))
            service.sendall(seen[1])

    with ArraySimulator("--lenient") as array, socket.create_server(("127.0.0.1", 0)) as listener:
        passing = threading.Thread(target=pass_on, args=(listener, array.port))
        passing.start()
        server = webServer.WebServer(api_manager_port=listener.getsockname()[1])
        server.start()
        try:
            server.post(request)
        finally:
            server.stop()
        passing.join()
    return len(seen[0]), seen[1]


@contextlib.contextmanager
def running(command, **options):
    process = subprocess.Popen(command, **options)
    try:
        yield process
    finally:
        process.terminate()
        process.wait()
        if process.stdout:
            process.stdout.close()


LOG_SOCKET = pathlib.Path("/dev/log")


@contextlib.contextmanager
def log_daemon():
    """A log daemon where none runs; without one the C library writes every line to the console,
    at many times the cost."""
    collector = str(ROOT / "scripts" / "logCollector.py")
    if subprocess.run([collector, "--probe"], check=False, capture_output=True).returncode == 0:
        yield
    elif not os.access(LOG_SOCKET.parent, os.W_OK):
        print("no log daemon runs: the log lines of d cost more here than they would")
        yield
    else:
        LOG_SOCKET.unlink(missing_ok=True)
        with running([LOG_SINK, LOG_SOCKET], text=True, stdout=subprocess.PIPE) as sink:
            sink.stdout.readline()
            try:
                yield
            finally:
                LOG_SOCKET.unlink()


def has_php_soap():
    return bool(shutil.which("php")) and "soap" in subprocess.run(
        ["php", "-m"], check=False, capture_output=True, text=True).stdout.split()


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as probe:
        return probe.getsockname()[1]


@contextlib.contextmanager
def peer_servers(environment):
    """What the service is compared with outside the web server, by its letter: where it is, and
    the process."""
    options = {"env": {**os.environ, **environment}, "stdout": subprocess.PIPE, "text": True}
    with contextlib.ExitStack() as stack:
        servers = {}
        if STAND_ALONE.exists():
            process = stack.enter_context(running([STAND_ALONE], **options))
            servers["s"] = (f"http://127.0.0.1:{process.stdout.readline().strip()}/", process.pid)
        if has_php_soap():
            address = f"127.0.0.1:{free_port()}"
            process = stack.enter_context(running(
                ["php", "-S", address, PHP_SERVICE], stderr=subprocess.DEVNULL, **options))
            servers["p"] = (f"http://{address}/", process.pid)
            time.sleep(1)
        yield servers


@contextlib.contextmanager
def serving(arguments, request):
    """The server with all rungs, and the peers beside it in `peers`."""
    request_bytes, reply = exchange_of(request)
    server = webServer.WebServer(
        mpm=arguments.mpm, threads=getattr(arguments, "threads", 16), collect_syslog=False,
        access_log=False,
        extra=NO_OVERRIDES + LOCATION.format(path="/bare", plugin=webServer.BARE_PLUGIN)
        + LOCATION.format(path="/exchange", plugin=EXCHANGE_PLUGIN)
        + LOCATION.format(path="/logging", plugin=LOGGING_PLUGIN)
        + getattr(arguments, "server_lines", ""))
    (server.directory / "documents" / "1k.html").write_bytes(b"x" * 1024)
    (server.directory / "reply").write_bytes(reply)
    with running([PEER, server.directory / "reply"], text=True,
                 stdout=subprocess.PIPE) as peer, log_daemon():
        port = peer.stdout.readline().strip()
        server.environment.update({
            "SAN_TEST_APIMGR_PORT": port, "BENCH_PEER_PORT": port,
            "BENCH_REQUEST_BYTES": str(request_bytes), "BENCH_REPLY_BYTES": str(len(reply))})
        server.start()
        try:
            print(f"exchange of c and d: {request_bytes} bytes out, {len(reply)} bytes back")
            with peer_servers(server.environment) as server.peers:
                yield server
        finally:
            server.stop()


def targets(server):
    """(letter, what it is, path or address) of all that is there."""
    beside = {"s": "the engine's own server", "p": "PHP's SoapServer"}
    return TARGETS + [(name, beside[name], url) for name, (url, _) in server.peers.items()]


def process_ticks(pid):
    """User and system time of a process that is there, in ticks."""
    try:
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
        return int(fields[11]) + int(fields[12])
    except FileNotFoundError:
        return 0


def busy_and_all_ticks():
    fields = [int(f) for f in pathlib.Path("/proc/stat").read_text().split("\n")[0].split()[1:9]]
    return sum(fields) - fields[3] - fields[4], sum(fields)


def own_ticks():
    """All that this program and its descendants used so far, as far as they are still there or
    were waited for."""
    times, total = os.times(), 0
    pids, queue = [], [os.getpid()]
    while queue:
        pid = queue.pop()
        pids.append(pid)
        with contextlib.suppress(FileNotFoundError):
            text = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text()
            queue += [int(p) for p in text.split()]
    total = sum(process_ticks(pid) for pid in pids)
    return total + (times.children_user + times.children_system) * TICK


WRK_SCRIPT = """
wrk.method = "POST"
wrk.headers["Content-Type"] = "text/xml; charset=utf-8"
wrk.body = io.open("{file}"):read("*a")
"""


class Load:
    def __init__(self, server, arguments):
        self.server, self.arguments = server, arguments
        self.scripts = {}

    def prepare(self, path, message):
        """Has `message` posted to `path` from now on; a path without one is fetched."""
        name = re.sub(r"\W", "", path) + "-request"
        body = self.server.directory / f"{name}.xml"
        body.write_text(message)
        script = self.server.directory / f"{name}.lua"
        script.write_text(WRK_SCRIPT.format(file=body))
        self.scripts[path] = str(script)

    def run(self, path, seconds):
        """(requests per second, microseconds of the server's processor time per request, share
        of the machine that others used)"""
        url = path if "://" in path else f"http://127.0.0.1:{self.server.port}{path}"
        beside = [pid for address, pid in self.server.peers.values() if address == path]
        command = ["wrk", "-t1", f"-c{self.arguments.connections}", f"-d{seconds}s", url]
        if path in self.scripts:
            command[1:1] = ["-s", self.scripts[path]]
        server_before = sum(map(process_ticks, beside or self.server.children()))
        own_before, (busy_before, all_before) = own_ticks(), busy_and_all_ticks()
        output = subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout
        used = sum(map(process_ticks, beside or self.server.children())) - server_before
        own, (busy, whole) = own_ticks() - own_before, busy_and_all_ticks()
        if "Non-2xx" in output or "Socket errors" in output:
            raise RuntimeError(f"{path} was not served:\n{output}{self.server.error_log()}")
        count = int(re.search(r"(\d+) requests in", output).group(1))
        rate = float(re.search(r"Requests/sec:\s+([\d.]+)", output).group(1))
        foreign = (busy - busy_before - own) / (whole - all_before)
        return rate, used / TICK / count * 1e6, max(0.0, foreign)


def spread(values):
    """Distance of the quartiles as a share of the median."""
    quarters = statistics.quantiles(values, n=4)
    return (quarters[2] - quarters[0]) / statistics.median(values)


def report(present, rates, costs, foreign):
    print(f"\n{'':28}{'requests/s':>12}{'µs/request':>12}{'spread':>9}{'least µs':>10}")
    for name, what, _ in present:
        print(f"{name}  {what:25}{statistics.median(rates[name]):12.0f}"
              f"{statistics.median(costs[name]):12.1f}{spread(costs[name]):9.0%}"
              f"{min(costs[name]):10.1f}")
    print("\nratios of processor time, each the median of the rounds:")
    for above, below, *bounds in RATIOS:
        if below not in costs:
            continue
        ratio = statistics.median(u / d for u, d in zip(costs[above], costs[below]))
        least = min(costs[above]) / min(costs[below])
        met = "".join(f"   {what} {bound:.2f} {'met' if ratio <= bound else 'not met'}"
                      for what, bound in zip(("limit", "aim"), bounds) if bound is not None)
        print(f"  {above}/{below}  {ratio:5.2f}   of the least: {least:5.2f}{met}")
    others = statistics.median(foreign)
    worst = max(map(spread, costs.values()))
    print(f"\nother load on the machine: {others:.0%} of it")
    if others > MOST_FOREIGN_LOAD or worst > MOST_SPREAD:
        print("THE MACHINE WAS TOO BUSY: the rates are worthless, and the ratios a hint at best")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--operation", choices=OPERATIONS, default="Ping")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--seconds", type=int, default=2, help="for each target in each round")
    parser.add_argument("--connections", type=int, default=1)
    parser.add_argument("--mpm", choices=("event", "worker", "prefork"), default="event")
    parser.add_argument("--cpu", type=int, help="the one processor that everything shares")
    arguments = parser.parse_args()
    if arguments.rounds < 2:
        parser.error("it takes two rounds to tell a spread")
    if not shutil.which("wrk"):
        sys.exit("wrk is missing: apt-get install wrk")
    if arguments.cpu is not None:
        os.sched_setaffinity(0, {arguments.cpu})
    foreign = []
    request = OPERATIONS[arguments.operation]
    with serving(arguments, request) as server:
        load = Load(server, arguments)
        present = targets(server)
        rates, costs = ({name: [] for name, _, _ in present} for _ in range(2))
        for name, _, path in present:
            if name != "a":
                load.prepare(path, request if name == "d" else soap.PING)
        for number in range(-1, arguments.rounds):  # the first warms up and is not counted
            for name, _, path in present:
                rate, cost, others = load.run(path, arguments.seconds)
                if number < 0:
                    continue
                rates[name].append(rate)
                costs[name].append(cost)
                foreign.append(others)
            print(f"\rround {number + 1} of {arguments.rounds}", end="", flush=True)
    report(present, rates, costs, foreign)


if __name__ == "__main__":
    main()
