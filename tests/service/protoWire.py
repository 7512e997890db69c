"""Just enough of the wire format of Protocol Buffers to play the API manager.

Written by hand and apart from the service's own code, so that a fault there cannot cancel
itself out: messages are dictionaries of field number to the list of its values, integers for
varints and bytes for everything with a length.
"""

VARINT, BYTES = 0, 2


def write_varint(value):
    octets = bytearray()
    while value > 0x7F:
        octets.append(value & 0x7F | 0x80)
        value >>= 7
    octets.append(value)
    return bytes(octets)


def read_varint(data, at):
    value = shift = 0
    while True:
        octet = data[at]
        value |= (octet & 0x7F) << shift
        at, shift = at + 1, shift + 7
        if octet < 0x80:
            return value, at


def encode(fields):
    """Bytes of a message from a list of (number, value): int, str, bytes or such a list."""
    parts = []
    for number, value in fields:
        if isinstance(value, int):
            parts += [write_varint(number << 3 | VARINT), write_varint(value)]
            continue
        content = encode(value) if isinstance(value, list) else value
        content = content.encode() if isinstance(content, str) else content
        parts += [write_varint(number << 3 | BYTES), write_varint(len(content)), content]
    return b"".join(parts)


def decode(data):
    """Field number to list of values. Raises ValueError for anything but varints and bytes."""
    fields, at = {}, 0
    while at < len(data):
        key, at = read_varint(data, at)
        if key & 7 == VARINT:
            value, at = read_varint(data, at)
        elif key & 7 == BYTES:
            length, at = read_varint(data, at)
            value, at = data[at:at + length], at + length
            if len(value) < length:
                raise ValueError("a field that ends behind its message")
        else:
            raise ValueError(f"wire type {key & 7}")
        fields.setdefault(key >> 3, []).append(value)
    return fields
