"""The API manager's wire by hand: frames, messages and documents, built and read without any
code of the project, so that a fault in that code cannot hide itself."""

import socket
import struct
import xml.etree.ElementTree as ET
from xml.sax.saxutils import escape


def varint(number):
    out = bytearray()
    while number > 0x7F:
        out.append(number & 0x7F | 0x80)
        number >>= 7
    out.append(number)
    return bytes(out)


def number_field(number, value):
    return varint(number << 3) + varint(value)


def bytes_field(number, value):
    value = value.encode() if isinstance(value, str) else value
    return varint(number << 3 | 2) + varint(len(value)) + value


def read_varint(data, at):
    value = shift = 0
    while True:
        value |= (data[at] & 0x7F) << shift
        shift += 7
        at += 1
        if not data[at - 1] & 0x80:
            return value, at


def read_fields(data):
    """Field number to value; only the two wire types that the schema uses."""
    fields, at = {}, 0
    while at < len(data):
        key, at = read_varint(data, at)
        value, at = read_varint(data, at)
        if key & 7 == 2:
            value, at = data[at:at + value], at + value
            if at > len(data):
                raise ValueError("field beyond the end")
        elif key & 7 != 0:
            raise ValueError("unexpected wire type")
        fields[key >> 3] = value
    return fields


def document(command, attributes=None, object_name="TarnHostCache", kind="Method", connection=""):
    """A request document; attribute values are text, or a list of (record name, {tag: text})."""
    def render(value):
        if isinstance(value, str):
            return escape(value)
        return "".join(f"<{name}>" + "".join(f"<{t}>{escape(v)}</{t}>" for t, v in record.items())
                       + f"</{name}>" for name, record in value)
    inner = "".join(f"<{n}>{render(v)}</{n}>" for n, v in sorted((attributes or {}).items()))
    return (f"<compapi>{connection}<ApiMethod><CommandType>{kind}</CommandType>"
            f"<Object>{object_name}</Object><Command>{command}</Command><Async>false</Async>"
            f"<ObjectEncodeType>xml</ObjectEncodeType>"
            + (f"<Attributes>{inner}</Attributes>" if inner else "") + "</ApiMethod></compapi>")


def request(text, credentials=b"user:pass", token="", hcc_id="hcc-1", client="10.9.8.7"):
    header = (bytes_field(1, "2.3") + bytes_field(2, credentials) + bytes_field(3, token)
              + bytes_field(4, hcc_id))
    command = bytes_field(1, text) + bytes_field(2, header)
    api = number_field(1, 1) + bytes_field(2, client) + bytes_field(3, command)
    return number_field(1, 2) + bytes_field(3, api)


def frame(body):
    return struct.pack(">I", len(body)) + body


def receive_all(connection):
    """Everything until a whole frame is there or the peer ends: then what came of it."""
    data = b""
    while len(data) < 4 or len(data) < 4 + struct.unpack(">I", data[:4])[0]:
        piece = connection.recv(65536)
        if not piece:
            break
        data += piece
    return data


def exchange(port, body, timeout=20):
    with socket.create_connection(("127.0.0.1", port), timeout) as connection:
        connection.sendall(frame(body))
        return receive_all(connection)


def reply_document(data):
    """The reply document inside the bytes of a whole frame, with every layer checked."""
    length, = struct.unpack(">I", data[:4])
    if length != len(data) - 4:
        raise ValueError(f"frame announces {length} bytes and holds {len(data) - 4}")
    message = read_fields(data[4:])
    if message.get(1) != 3:
        raise ValueError("not an API response")
    response = read_fields(message[4])
    if response.get(1) != 1:
        raise ValueError("not an API command")
    return read_fields(response[2])[1].decode()


class Reply:
    """The one ApiMethodReturn of a reply."""

    def __init__(self, data):
        self.document = reply_document(data)
        returns = ET.fromstring(self.document).findall("ApiMethodReturn")
        if len(returns) != 1:
            raise ValueError(f"{len(returns)} returns")
        self.element = returns[0]
        self.ok = self.element.findtext("Successful") == "True"
        self.error = self.element.findtext("Error")
        self.code = self.element.findtext("ErrorCode")
        self.detail = self.element.findtext("ErrorDetail")


def call(port, command, attributes=None, object_name="TarnHostCache", kind="Method", **header):
    return Reply(exchange(port, request(document(command, attributes, object_name, kind),
                                        **header)))
