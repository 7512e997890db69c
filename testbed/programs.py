"""The programs of the build, and what they run with.

Where the build is comes from the environment that it sets for its tests; by hand, SAN_BUILD_DIR
names one (default: build/debug).
"""

import contextlib
import functools
import os
import pathlib
import socket
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[1]
BUILD = pathlib.Path(os.environ.get("SAN_BUILD_DIR", ROOT / "build" / "debug")).resolve()
SANCTL = BUILD / "client" / "sanctl"
API_CHECK = BUILD / "apiCheck" / "sanApiCheck"
PLUGIN_CHECK = BUILD / "pluginCheck" / "sanPluginCheck"
SIMCTL = BUILD / "sim" / "simctl"
SIMULATOR = BUILD / "sim" / "sanSim"
SHIM = BUILD / "testbed" / "libserviceShim.so"

# For a program that the shim is preloaded into.
PRELOADED = {
    "LD_PRELOAD": ":".join(filter(None, [os.environ.get("SAN_RUNTIME"), str(SHIM)])),
    "ASAN_OPTIONS": "detect_leaks=1:detect_stack_use_after_return=0:exitcode=99",
    "LSAN_OPTIONS": f"suppressions={ROOT}/tests/support/lsan.supp:print_suppressions=0",
    "UBSAN_OPTIONS": "print_stacktrace=1",
    "TSAN_OPTIONS": f"suppressions={ROOT}/tests/support/tsan.supp:die_after_fork=0",
}


def run(*command, stdin="", **environment):
    """Runs a program to its end, away from the settings of whoever runs the test."""
    inherited = {k: v for k, v in os.environ.items() if not k.startswith("SANCTL_")}
    return subprocess.run([str(part) for part in command], input=stdin, encoding="utf-8",
                          capture_output=True, timeout=300, check=False,
                          env={**inherited, **environment})


@contextlib.contextmanager
def closed_port():
    """A loopback port on which nobody listens, nor can while this is open."""
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        yield taken.getsockname()[1]


# Without the settings of whoever runs the test.
sanctl = functools.partial(run, SANCTL, XDG_CONFIG_HOME="/nonexistent")
