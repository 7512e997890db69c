#!/usr/bin/env python3
"""Collects what programs send to the system log, where no log daemon runs.

    logCollector.py FILE [SOCKET]
    logCollector.py --probe [SOCKET]    only says whether one runs: status 0 when it does

Binds the socket (default /dev/log), appends each message to FILE with a time in front, and
removes the socket when SIGTERM or SIGINT ends it. Ends with status 1 when a daemon listens there.
"""

import os
import re
import signal
import socket
import sys
import time

LONGEST = 65536
PRIORITY = re.compile(rb"^<\d{1,3}>")
# The sender's own time, as the C library writes it; the collector's has the date and zone.
SENT = re.compile(rb"^[A-Z][a-z]{2} [ \d]\d \d\d:\d\d:\d\d ")


def is_served(path):
    """Whether a log daemon listens at the path."""
    for kind in (socket.SOCK_DGRAM, socket.SOCK_STREAM):
        with socket.socket(socket.AF_UNIX, kind) as probe:
            try:
                probe.connect(path)
                return True
            except OSError:
                pass
    return False


def bind(path):
    """A datagram socket at the path. One that nobody listens on is replaced."""
    if is_served(path):
        sys.exit(f"{path}: a log daemon listens here")
    if os.path.exists(path):
        os.unlink(path)
    collector = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    collector.bind(path)
    os.chmod(path, 0o666)  # the web server's children log without privileges
    return collector


def line_of(message):
    """One line for one message: a control character within cannot forge another."""
    text = SENT.sub(b"", PRIORITY.sub(b"", message)).rstrip(b"\n\0")
    text = re.sub(rb"[\0-\x1f\x7f]", b" ", text)
    return time.strftime("%Y-%m-%dT%H:%M:%S%z ").encode() + text + b"\n"


def main():
    path = sys.argv[2] if len(sys.argv) > 2 else "/dev/log"
    if sys.argv[1] == "--probe":
        sys.exit(0 if is_served(path) else 1)
    for ending in (signal.SIGTERM, signal.SIGINT):
        signal.signal(ending, lambda *_: sys.exit(0))
    with open(sys.argv[1], "ab", buffering=0) as target, bind(path) as collector:
        try:
            while True:
                target.write(line_of(collector.recv(LONGEST)))
        finally:
            os.unlink(path)


if __name__ == "__main__":
    main()
