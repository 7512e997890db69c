"""Independent SOAP clients against the service, each with its own idea of SOAP.

Every client is a small program: CLIENT URL SCENARIO CLUSTER. It reads the service description from
URL?wsdl, calls what the scenario says, and prints what it was answered, all of them in the same
words, so that one comparison holds them to what the array answered. The scenarios:

    ping      one Ping
    cluster   a join, an attach that reads both SCSI identities, an attach that the array refuses,
              a detach and a leave, with texts beyond ASCII in both directions

Without SAN_CLIENTS=all in the environment only zeep runs. With --versions the program prints the
versions that are installed instead; docs/clients.md says how to call it.

How to add one: its program beside this file, a row in CLIENTS, its packages as "all" in
scripts/packages.txt, and its row in docs/clients.md.
"""
import contextlib
import dataclasses
import os
import pathlib
import shutil
import sys

import harness
import programs

HERE = pathlib.Path(__file__).resolve().parent
WORK = programs.BUILD / "tests" / "clients"

# The libraries of Debian's Python, whichever Python runs this.
PYTHON = "/usr/bin/python3"
JAVA_LIBRARIES = "/usr/share/java/jaxws-rt.jar:/usr/share/java/jaxws-ri-runtime.jar"


def run(*command, **environment):
    done = programs.run(*command, **environment)
    if done.returncode:
        raise AssertionError(done)
    return done.stdout


def prepare_node(_url):
    """Brings the library in the versions of the lock file, once for a build."""
    folder = WORK / "node"
    if (folder / "node_modules").exists():
        return
    folder.mkdir(parents=True, exist_ok=True)
    for name in ("package.json", "package-lock.json"):
        shutil.copy(HERE / "node" / name, folder)
    run("npm", "ci", "--no-audit", "--no-fund", "--ignore-scripts", "--prefix", folder)


def prepare_java(url):
    """Makes the classes from the service description, as a Java programmer does."""
    folder = WORK / "java"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    run("wsimport", "-quiet", "-Xnocompile", "-extension", "-XadditionalHeaders", "-p",
        "sanapi", "-s", folder, f"{url}?wsdl")
    run("javac", "-encoding", "UTF-8", "-cp", JAVA_LIBRARIES, "-d", folder,
        *folder.glob("sanapi/*.java"), HERE / "java" / "JaxWsClient.java")


@dataclasses.dataclass
class Client:
    name: str
    command: list           # without URL, SCENARIO and CLUSTER
    version: list           # a command that prints it
    prepare: callable = lambda url: None
    environment: dict = dataclasses.field(default_factory=dict)


CLIENTS = [
    Client("zeep", [PYTHON, HERE / "zeepClient.py"],
           [PYTHON, "-c", "import zeep; print(zeep.__version__)"]),
    Client("suds", [PYTHON, HERE / "sudsClient.py"],
           [PYTHON, "-c", "import suds; print(suds.__version__)"]),
    Client("PHP SoapClient", ["php", HERE / "phpClient.php"],
           ["php", "-r", "echo PHP_VERSION;"]),
    Client("node soap", ["node", HERE / "node" / "nodeClient.js"],
           ["node", "-p", "require('soap/package.json').version + ' on node ' + process.version"],
           prepare_node, {"NODE_PATH": str(WORK / "node" / "node_modules")}),
    Client("Perl SOAP::Lite", ["perl", HERE / "soapLiteClient.pl"],
           ["perl", "-MSOAP::Lite", "-e", "print $SOAP::Lite::VERSION"]),
    Client("JAX-WS", ["java", "-Dfile.encoding=UTF-8", "-cp", f"{JAVA_LIBRARIES}:{WORK}/java",
                      "JaxWsClient"],
           ["wsimport", "-version"], prepare_java),
]


# What the clients are to print for each scenario.
PRINTED = {
    "ping": ['ping 0 "" 0', "header 2.3"],
    "cluster": [
        'join 0 "" 0', "header 2.3",
        "attach orig 600005e0000000000000000000000001 SIMO00000001",
        "attach alias 600005e1000000000000000000000001 SIMA00000001",
        'refused Server "Volume "größe-集" is not known to this array"',
        'detach 0 "" 0', "header 2.3",
        'leave 0 "" 0', "header 2.3",
    ],
}


class ClientsTest(harness.ServiceCase):
    maxDiff = None

    def test_each_prints_what_the_array_answered(self):
        for client in CLIENTS if os.environ.get("SAN_CLIENTS") == "all" else CLIENTS[:1]:
            with self.subTest(client.name):
                client.prepare(self.server.url)
                for scenario, expected in PRINTED.items():
                    printed = run(*client.command, self.server.url, scenario, "cluster-1",
                                  **client.environment)
                    self.assertEqual(printed.splitlines(), expected)
                joined = [request.request for request in self.array.take_requests()
                          if "<HccName>Zürich 集群</HccName>" in request.request]
                self.assertEqual(len(joined), 1)
                for scenario in PRINTED:
                    self.ends_with_an_error(client, scenario)

    def ends_with_an_error(self, client, scenario):
        """The array refuses the first call, which the scenario does not expect."""
        self.array.fail("refuse", error="not today")
        done = programs.run(*client.command, self.server.url, scenario, "cluster-1",
                            **client.environment)
        self.assertNotEqual(done.returncode, 0, done)
        self.assertIn("not today", done.stdout + done.stderr)
        self.array.take_requests()


def installed_version(client):
    with contextlib.suppress(FileNotFoundError):
        done = programs.run(*client.version, **client.environment)
        if done.returncode == 0:
            return done.stdout.strip()
    return "not installed"


if __name__ == "__main__" and "--versions" in sys.argv:
    for each in CLIENTS:
        print(f"{each.name}: {installed_version(each)}")
