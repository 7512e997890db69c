"""The API manager's wire by hand: frames, messages and documents, built and read without any
code of the project, so that a fault in that code cannot hide itself."""

import socket
import struct
import xml.etree.ElementTree as ET
from xml.sax.saxutils import escape

from arraySimulator import request_document


def varint(number):
    if number < 0x80:
        return bytes([number])
    return bytes([number & 0x7F | 0x80]) + varint(number >> 7)


def number_field(number, value):
    return varint(number << 3) + varint(value)


def bytes_field(number, value):
    value = value.encode() if isinstance(value, str) else value
    return varint(number << 3 | 2) + varint(len(value)) + value


def read_varint(data):
    """The number at the front, and what follows it."""
    value = 0
    for at, byte in enumerate(data):
        value |= (byte & 0x7F) << 7 * at
        if byte < 0x80:
            return value, data[at + 1:]
    raise ValueError("a number without end")


def read_fields(data):
    """Field number to value; only the two wire types that the schema uses."""
    fields = {}
    while data:
        key, data = read_varint(data)
        value, data = read_varint(data)
        if key & 7 == 2 and value <= len(data):
            value, data = data[:value], data[value:]
        elif key & 7 != 0:
            raise ValueError("unexpected wire type, or a field beyond the end")
        fields[key >> 3] = value
    return fields


def document(command, attributes={}, **others):
    """A request document; attribute values are text, or a list of (record name, {tag: text}),
    or None to leave one out."""
    def render(value):
        if isinstance(value, str):
            return escape(value)
        return "".join(f"<{name}>" + "".join(f"<{t}>{escape(v)}</{t}>" for t, v in record.items())
                       + f"</{name}>" for name, record in value)
    inner = "".join(f"<{name}>{render(value)}</{name}>"
                    for name, value in sorted(attributes.items()) if value is not None)
    return request_document(command, inner, **others)


def request(text, credentials=b"user:pass", token=""):
    header = (bytes_field(1, "2.3") + bytes_field(2, credentials) + bytes_field(3, token)
              + bytes_field(4, "hcc-1"))
    command = bytes_field(1, text) + bytes_field(2, header)
    api = number_field(1, 1) + bytes_field(2, "10.9.8.7") + bytes_field(3, command)
    return number_field(1, 2) + bytes_field(3, api)


def frame(body):
    return struct.pack(">I", len(body)) + body


def announced(data):
    """The length of the frame that begins so."""
    return struct.unpack(">I", data[:4])[0]


def receive_all(connection):
    """Everything until a whole frame is there or the peer ends: then what came of it."""
    data = b""
    while len(data) < 4 or len(data) < 4 + announced(data):
        piece = connection.recv(65536)
        if not piece:
            break
        data += piece
    return data


def exchange(port, body):
    with socket.create_connection(("127.0.0.1", port), 20) as connection:
        connection.sendall(frame(body))
        return receive_all(connection)


def reply_document(data):
    """The reply document inside the bytes of a whole frame, with every layer checked."""
    message = read_fields(data[4:])
    response = read_fields(message[4])
    if (announced(data), message[1], response[1]) != (len(data) - 4, 3, 1):
        raise ValueError("not the frame of an API response to an API command")
    return read_fields(response[2])[1].decode()


class Reply:
    """The one ApiMethodReturn of a reply."""

    def __init__(self, data):
        self.document = reply_document(data)
        (self.element,) = ET.fromstring(self.document).findall("ApiMethodReturn")
        self.ok = self.element.findtext("Successful") == "True"
        self.error = self.element.findtext("Error")
        self.code = self.element.findtext("ErrorCode")


def call(port, command, attributes={}, **others):
    return Reply(exchange(port, request(document(command, attributes, **others))))
