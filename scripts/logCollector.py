#!/usr/bin/env python3
"""Collects what programs send to the system log, where no log daemon runs.

    logCollector.py FILE [SOCKET]
    logCollector.py --probe [SOCKET]    only says whether one runs: status 0 when it does, and
                                        prints the FILE when it is another of this program

Binds the socket (default /dev/log), appends each message to FILE with a time in front, and
removes the socket when SIGTERM or SIGINT ends it. Ends with status 1 when a daemon listens there.
"""

import os
import pathlib
import re
import signal
import socket
import stat
import sys
import time

DEFAULT_SOCKET = "/dev/log"
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


def collected_file(path):
    """The file of the collector that runs at the path; nothing when it is a daemon that does.
    Command lines tell, since they are gone with their process, however that ends."""
    for command_line in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            words = command_line.read_bytes().decode(errors="replace").split("\0")[:-1]
        except OSError:
            continue  # ended meanwhile
        if len(words) < 3 or os.path.basename(words[1]) != os.path.basename(__file__):
            continue
        file, served = (words[2:] + [DEFAULT_SOCKET])[:2]
        if served == path and file != "--probe":
            return file
    return ""


def bind(path):
    """A datagram socket at the path. One that nobody listens on is replaced, and nothing else."""
    if is_served(path):
        sys.exit(f"{path}: a log daemon listens here")
    if os.path.lexists(path):
        if not stat.S_ISSOCK(os.lstat(path).st_mode):
            sys.exit(f"{path}: is there already and is no socket; it is left as it is")
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
    path = sys.argv[2] if len(sys.argv) > 2 else DEFAULT_SOCKET
    if sys.argv[1] == "--probe":
        if not is_served(path):
            sys.exit(1)
        print(collected_file(path), end="")
        sys.exit(0)
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
