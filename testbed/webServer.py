"""A private Apache httpd for one test: loopback, a free port, its own directory, no privileges.

    with WebServer(mpm="prefork", api_manager_port=array.port) as server:
        reply = server.post(soap.envelope("<ns1:Ping/>"))
    # ends it, and raises when a sanitizer reported something or a child crashed
"""

import contextlib
import ctypes
import http.client
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import tempfile
import time

from programs import BUILD, PRELOADED

APACHE = os.environ.get("SAN_APACHE", "/usr/sbin/apache2")
MODULES = "/usr/lib/apache2/modules"
MODULE = BUILD / "host" / "mod_gsoap.so"
SERVICE_PLUGIN = BUILD / "apiMgmt/webservices/sanService/libsanService.so"
SERVICE_CONFIGURATION = BUILD / "packaging" / "apache" / "san-service.conf"
BARE_PLUGIN = BUILD / "bench" / "libbarePlugin.so"
ODD_PLUGIN = BUILD / "tests" / "service" / "liboddPlugin.so"
WSDL = BUILD / "generated/sanContract/sanApi.wsdl"

PATH = "/sanService"
START_SECONDS = 60
STOP_SECONDS = 60

# A line of the error log that no test may leave behind.
TROUBLE = re.compile(r"ERROR: \w+Sanitizer|WARNING: ThreadSanitizer|runtime error:"
                     r"|exit signal|Assertion|glibc|ABORT|terminate called")

CONFIGURATION = """
ServerName localhost
Listen 127.0.0.1:{port}
PidFile "{directory}/httpd.pid"
DefaultRuntimeDir "{directory}"
DocumentRoot "{directory}/documents"
ErrorLog "{directory}/error.log"
# Keeps the children's memory readable to the leak check after they gave up their privileges.
CoreDumpDirectory "{directory}"
{user}
LoadModule mpm_{mpm}_module {modules}/mod_mpm_{mpm}.so
LoadModule authz_core_module {modules}/mod_authz_core.so
LoadModule authz_host_module {modules}/mod_authz_host.so
LoadModule env_module {modules}/mod_env.so
LoadModule reqtimeout_module {modules}/mod_reqtimeout.so
LoadModule gsoap_module "{module}"
MaxKeepAliveRequests 0
KeepAliveTimeout 60
TraceEnable off
{processes}
Define SAN_PLUGIN "{plugin}"
{wsdl}
Define {access_log}
Include "{service}"
{patience}
{extra}
"""

# A client on a busy machine may be slower than the service's configuration allows.
PATIENCE = "RequestReadTimeout header=0 body=0"

# The threaded ones have one child process, so that a test can tell whether it lived; a second
# one starts only while the first ends.
THREADED = "StartServers 1\nServerLimit 8\nThreadsPerChild {n}\nMaxRequestWorkers {n}"
PROCESSES = {
    "event": THREADED,
    "worker": THREADED,
    "prefork": "StartServers {n}\nMinSpareServers 1\nMaxSpareServers {n}\nMaxRequestWorkers {n}",
}


def _end_with_parent():
    """In the server's process: it ends with the test, also with one that is killed."""
    PR_SET_PDEATHSIG = 1
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


class WebServer:
    def __init__(self, plugin=SERVICE_PLUGIN, mpm="event", threads=8, wsdl=WSDL, extra="",
                 api_manager_port=None, environment=None, collect_syslog=True, impatient=False,
                 access_log=True, wrapper=()):
        """`wsdl` is the description's path, its text, or None; `extra` is added to the
        configuration. Without `api_manager_port` the service database has no entry for the API
        manager. Without `collect_syslog` log lines go where they go. Only an `impatient` server
        ends connections whose clients are slow. `wrapper` is a command that runs the server, such
        as a debugger's."""
        self.impatient, self.access_log = impatient, access_log
        self.plugin, self.mpm, self.threads, self.extra = plugin, mpm, threads, extra
        self.process, self.wrapper = None, wrapper
        # Not below the build: a checkout in a home directory is closed to the server's user.
        self.directory = pathlib.Path(tempfile.mkdtemp(prefix="httpd-"))
        self.directory.chmod(0o755)
        (self.directory / "documents").mkdir()
        self.wsdl = wsdl
        if isinstance(wsdl, str):
            self.wsdl = self.directory / "test.wsdl"
            self.wsdl.write_text(wsdl)
        self.environment = {"SAN_TEST_APIMGR_PORT": str(api_manager_port or ""),
                            **(environment or {})}
        if collect_syslog:
            self.environment["SAN_TEST_SYSLOG"] = str(self.directory / "syslog")

    # Life ----------------------------------------------------------------------------------

    def configure(self):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        self.url = f"http://127.0.0.1:{self.port}{PATH}"
        (self.directory / "httpd.conf").write_text(CONFIGURATION.format(
            directory=self.directory, port=self.port, modules=MODULES, module=MODULE,
            mpm=self.mpm, processes=PROCESSES[self.mpm].format(n=self.threads),
            plugin=self.plugin, wsdl=f'Define SAN_WSDL "{self.wsdl}"' if self.wsdl else "",
            service=SERVICE_CONFIGURATION, patience="" if self.impatient else PATIENCE,
            access_log=(f'SAN_ACCESS_LOG "{self.directory}/access.log"' if self.access_log
                        else "SAN_NO_ACCESS_LOG"), extra=self.extra,
            user="User nobody\nGroup nogroup" if os.getuid() == 0 else ""))

    def run_apache(self, *arguments):
        """Starts Apache with further arguments, its output in the error log; gives the process.
        Apache ends its whole process group, so it gets one of its own."""
        with open(self.directory / "error.log", "ab") as output:
            return subprocess.Popen(
                [*self.wrapper, APACHE, "-d", self.directory, "-f", self.directory / "httpd.conf",
                 "-DFOREGROUND", *arguments],
                env={**os.environ, **PRELOADED, **self.environment}, stdin=subprocess.DEVNULL,
                stdout=output, stderr=output, start_new_session=True, preexec_fn=_end_with_parent)

    def start(self):
        """Gives self when the server accepts connections; raises when it ends instead."""
        for _ in range(5):  # another test may take the port between its choice and its use
            self.configure()
            self.process = self.run_apache()
            if self._wait_until_listening():
                return self
            if "Address already in use" not in self.error_log():
                break
        raise RuntimeError(f"Apache ended with {self.process.returncode}:\n{self.error_log()}")

    def _wait_until_listening(self):
        deadline = time.monotonic() + START_SECONDS
        while self.process.poll() is None and time.monotonic() < deadline:
            with contextlib.suppress(OSError):
                socket.create_connection(("127.0.0.1", self.port), timeout=5).close()
                if self.children():  # the kernel accepts before there is anyone to serve
                    return True
            time.sleep(0.05)
        return False

    def stop(self):
        """Ends the server, its children with their leak checks first. Raises on any trouble, and
        keeps the directory then."""
        if self.process is not None:
            self.process.send_signal(signal.SIGWINCH)
            try:
                self.process.wait(STOP_SECONDS)
            except subprocess.TimeoutExpired:
                os.killpg(self.process.pid, signal.SIGKILL)  # its children too: their own group
                self.process.wait()
                raise AssertionError(f"Apache did not end; see {self.directory}") from None
            text = self.error_log()
            if found := TROUBLE.search(text):
                raise AssertionError(f"{text[found.start():found.start() + 6000]}\n"
                                     f"see {self.directory}/error.log")
        shutil.rmtree(self.directory)

    def __enter__(self):
        return self.start()

    def __exit__(self, *exception):
        self.stop()

    # What is to be seen --------------------------------------------------------------------

    def error_log(self):
        """The server's log, and what it and its children printed."""
        return (self.directory / "error.log").read_text(errors="replace")

    def syslog(self):
        """The texts of the entries of the system log so far."""
        path = self.directory / "syslog"
        lines = path.read_text(errors="replace").splitlines() if path.exists() else []
        return [line.split("\t", 2)[2] for line in lines]

    def children(self):
        """Process ids of the server's children."""
        path = pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children")
        return sorted(int(pid) for pid in path.read_text().split())

    # Requests ------------------------------------------------------------------------------

    def connect(self, timeout=60):
        """A connection for several requests; close it, or use it in a with contextlib.closing."""
        return http.client.HTTPConnection("127.0.0.1", self.port, timeout=timeout)

    def request(self, method, path=PATH, body=None, headers=None, connection=None):
        """Gives the response, with its whole content as `body` and `text`."""
        used = connection or self.connect()
        try:
            used.request(method, path, body, headers or {})
            reply = used.getresponse()
            reply.body = reply.read()
            reply.text = reply.body.decode()
            return reply
        finally:
            if connection is None:
                used.close()

    def post(self, body, connection=None):
        body = body.encode() if isinstance(body, str) else body
        headers = {"Content-Type": "text/xml; charset=utf-8", "SOAPAction": '""'}
        return self.request("POST", PATH, body, headers, connection)

    def send_raw(self, data, timeout=60):
        """Sends bytes as they are, ends the sending side, gives all that comes back."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=timeout) as connection:
            received = b""
            with contextlib.suppress(ConnectionError):
                connection.sendall(data)
                connection.shutdown(socket.SHUT_WR)
            with contextlib.suppress(ConnectionError):
                while part := connection.recv(65536):
                    received += part
            return received
