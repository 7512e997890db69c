#!/usr/bin/env python3
"""What a reply of 64 MiB takes of a server process while it is read, and what stays of it.

    bench/replyMemory.py [--mebibytes N] [--most RATIO]

A peer in place of the API manager gives replies of several shapes. With --most it ends with 1 when a
reply takes more than so many times its size, or more than 8 MiB stay. The build is that of
SAN_BUILD_DIR (default: build/release).
"""

import argparse
import os
import pathlib
import socket
import struct
import sys
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
os.environ.setdefault("SAN_BUILD_DIR", str(ROOT / "build" / "release"))
sys.path.insert(0, str(ROOT / "testbed"))

import soap  # noqa: E402
from webServer import WebServer  # noqa: E402

MIB = 1 << 20
START = "<compapi><ApiMethodReturn><Successful>True</Successful>"
END = "</ApiMethodReturn></compapi>"
OBJECT = "<TarnVolume><Name>" + "n" * 400 + "</Name><Notes>" + "m" * 560 + "</Notes></TarnVolume>"


def filled(size, before, piece, after):
    return START + before + piece * (size // len(piece)) + after + END


def shapes(size):
    """Name and document of each shape."""
    room = size - 1000
    yield "one text", filled(room, "<ReturnString>", "x" * 64, "</ReturnString>")
    yield "references", filled(room, "<ReturnString>", "&lt;a&#65;", "</ReturnString>")
    yield "objects", filled(room, "<ReturnObjectArray>", OBJECT, "</ReturnObjectArray>")
    yield "no document", "<" * room


def varint(number):
    encoded = b""
    while number > 0x7F:
        encoded += bytes([number & 0x7F | 0x80])
        number >>= 7
    return encoded + bytes([number])


def frame(document):
    """The reply's frame, without the schema's generated code."""
    text = document.encode()
    command = b"\x0a" + varint(len(text)) + text
    response = b"\x08\x01\x12" + varint(len(command)) + command
    body = b"\x08\x03\x22" + varint(len(response)) + response
    return struct.pack(">I", len(body)) + body


def answer(listener, replies):
    for reply in replies:
        connection, _ = listener.accept()
        with connection:
            connection.recv(65536)
            connection.sendall(reply)


def memory(process):
    """What is in memory now and what was at most, in MiB."""
    lines = pathlib.Path(f"/proc/{process}/status").read_text().splitlines()
    fields = dict(line.split(":", 1) for line in lines)
    return [int(fields[name].split()[0]) / 1024 for name in ("VmRSS", "VmHWM")]


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--mebibytes", type=int, default=64)
    parser.add_argument("--most", type=float, default=float("inf"))
    options = parser.parse_args()
    size, good = options.mebibytes * MIB, True
    plain = frame(START + "<ReturnInt>0</ReturnInt>" + END)
    print(f"{'reply':<12} {'at most':>9} {'stays':>9}   times its size / MiB")
    for name, document in shapes(size):
        with socket.create_server(("127.0.0.1", 0)) as listener:
            peer = threading.Thread(target=answer,
                                    args=(listener, [plain, frame(document), plain]))
            peer.start()
            with WebServer(mpm="prefork", threads=1,
                           api_manager_port=listener.getsockname()[1]) as server:
                server.post(soap.PING)
                before, _ = memory(server.children()[0])
                server.post(soap.PING)
                time.sleep(0.2)
                after, most = memory(server.children()[0])
                server.post(soap.PING)
            peer.join()
        times, stays = (most - before) * MIB / size, after - before
        print(f"{name:<12} {times:9.2f} {stays:9.1f}")
        good = good and times <= options.most and (stays <= 8 or options.most == float("inf"))
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
