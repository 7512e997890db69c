"""Independent SOAP clients against the service, each with its own idea of SOAP.

Every client is a small program: CLIENT URL SCENARIO CLUSTER. It reads the service description from
URL?wsdl, calls what the scenario says, and prints what it was answered, all of them in the same
words, so that one comparison holds them to what a plain HTTP request gets. The scenarios:

    ping      one Ping
    cluster   a join, an attach that reads both SCSI identities, an attach that the array refuses,
              a detach and a leave, with texts beyond ASCII in both directions

Without SAN_CLIENTS=all in the environment only zeep runs. With --versions the program prints the
versions for the table in docs/clients.md instead.

How to add one: its program beside this file, a row in CLIENTS, its packages as "all" in
scripts/packages.txt, and its row in docs/clients.md.
"""
import contextlib
import dataclasses
import os
import pathlib
import shutil
import subprocess
import sys
import unittest
from xml.etree import ElementTree

from arraySimulator import ArraySimulator
import soap
import webServer

HERE = pathlib.Path(__file__).resolve().parent
WORK = webServer.BUILD / "tests" / "clients"
CALL_SECONDS = 120

# The libraries of Debian's Python, whichever Python runs this.
PYTHON = "/usr/bin/python3"
JAVA_LIBRARIES = "/usr/share/java/jaxws-rt.jar:/usr/share/java/jaxws-ri-runtime.jar"


def run(*command, **options):
    done = subprocess.run([str(part) for part in command], capture_output=True, encoding="utf-8",
                          timeout=CALL_SECONDS, check=False, **options)
    if done.returncode:
        raise AssertionError(f"{command} ended with {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def nothing_to_prepare(_url):
    pass


def prepare_node(_url):
    """Brings the library in the versions of the lock file, once for a build."""
    folder = WORK / "node"
    if (folder / "node_modules").exists():
        return
    folder.mkdir(parents=True, exist_ok=True)
    for name in ("package.json", "package-lock.json"):
        shutil.copy(HERE / "node" / name, folder)
    run("npm", "ci", "--no-audit", "--no-fund", "--ignore-scripts", cwd=folder)


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
    prepare: callable = nothing_to_prepare
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


class PlainClient:
    """What the clients are to print, from requests that are written out here."""

    def __init__(self, server, cluster):
        self.server, self.cluster, self.lines = server, cluster, []

    def call(self, operation, **members):
        children = "".join(f"<{name}>{text}</{name}>" for name, text in members.items())
        return self.server.post(soap.envelope(f"<ns1:{operation}>{children}</ns1:{operation}>",
                                              soap.header(user="user:pass")))

    def show(self, what, reply):
        root = ElementTree.fromstring(reply.body)
        result = soap.body_of(reply).find("return")
        self.lines += [f'{what} {result.findtext("catalogNumber")} '
                       f'"{result.findtext("defaultMsg")}" {result.findtext("resultCode")}',
                       f'header {root.find(".//xsdVersion").get("version")}']

    def attach(self, volume):
        return self.call("HccAttachVolume", hccId=self.cluster, hcVolumeId="hcv-1", sanId="array",
                         sanVolumeId=volume)

    def ping(self):
        self.show("ping", self.call("Ping"))

    def run_cluster(self):
        self.show("join", self.call(
            "AddHccToSan", sanId="array", hccId=self.cluster, hccName="Zürich 集群", hccKey="key",
            cfmIpAddresses='<ipAddress type="ipv4"><ipv4Addr>10.0.0.5</ipv4Addr></ipAddress>'
                           "<port>3260</port>"))
        identities = soap.body_of(self.attach("vol-1"))
        for which in ("orig", "alias"):
            identity = identities.find(f"{which}ScsiInfo")
            self.lines.append(f'attach {which} {identity.findtext("deviceId")} '
                              f'{identity.findtext("serialNumber")}')
        code, text = soap.fault_of(self.attach("größe-集"))
        self.lines.append(f'refused {code} "{text}"')
        self.show("detach", self.call("HccDetachVolume", hccId=self.cluster, sanId="array",
                                      sanVolumeId="vol-1"))
        self.show("leave", self.call("RemoveHccFromSan", sanId="array", hccId=self.cluster))


def chosen_clients():
    return CLIENTS if os.environ.get("SAN_CLIENTS") == "all" else CLIENTS[:1]


class ClientsTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        running = contextlib.ExitStack()
        cls.addClassCleanup(running.close)
        port = running.enter_context(ArraySimulator()).port
        cls.server = webServer.WebServer(api_manager_port=port).start()
        cls.addClassCleanup(cls.server.stop)

    def test_each_is_answered_as_a_plain_request_is(self):
        plain = PlainClient(self.server, "cluster-1")
        plain.ping()
        ping, plain.lines = plain.lines, []
        plain.run_cluster()
        self.assertEqual(ping, ['ping 0 "" 0', "header 2.3"])
        self.assertIn("größe-集", "".join(plain.lines))
        for client in chosen_clients():
            with self.subTest(client.name):
                client.prepare(self.server.url)
                for scenario, expected in (("ping", ping), ("cluster", plain.lines)):
                    printed = run(*client.command, self.server.url, scenario, "cluster-1",
                                  env={**os.environ, **client.environment})
                    self.assertEqual(printed.splitlines(), expected)


def print_versions():
    for client in CLIENTS:
        done = subprocess.run([str(part) for part in client.version], capture_output=True,
                              text=True, check=False, env={**os.environ, **client.environment})
        print(f"{client.name}: {(done.stdout + done.stderr).strip()}")


if __name__ == "__main__":
    if "--versions" in sys.argv:
        print_versions()
    else:
        unittest.main()
