"""A scripted API manager: records what it is sent and answers as a test wants.

    with ApiManager(success()) as manager:
        ...                                   # let the service send something
        manager.requests[0].document          # what arrived

An answer is a function of the connection and the request; the functions below make the usual
ones, good and bad. `manager.answer` can be exchanged at any time, also by a list whose items
serve one request each, the last of them all that follow.
"""

import dataclasses
import socket
import struct
import threading
import time

import protoWire

DECLARATION = '<?xml version="1.0" encoding="UTF-8"?>\n'


@dataclasses.dataclass
class ApiRequest:
    """One request as it arrived; a field that was not sent is None."""
    message: bytes          # the serialized message, without the length in front
    message_type: int
    command_type: int
    client_address: str
    document: str
    header: dict            # schemaVersion, credentials, authToken, hccId; None without a header
    blobs: list             # of (name, data, length)


def _one(fields, number, kind=bytes):
    values = fields.get(number, [None])
    value = values[-1]
    return value.decode() if kind is str and value is not None else value


def read_request(message):
    whole = protoWire.decode(message)
    request = protoWire.decode(_one(whole, 3) or b"")
    command = protoWire.decode(_one(request, 3) or b"")
    header = None
    if 2 in command:
        fields = protoWire.decode(_one(command, 2))
        header = {"schemaVersion": _one(fields, 1, str), "credentials": _one(fields, 2),
                  "authToken": _one(fields, 3, str), "hccId": _one(fields, 4, str)}
    blobs = [protoWire.decode(blob) for blob in command.get(3, [])]
    return ApiRequest(message, _one(whole, 1), _one(request, 1), _one(request, 2, str),
                      _one(command, 1, str), header,
                      [(_one(b, 1, str), _one(b, 2), _one(b, 3)) for b in blobs])


def frame(message):
    return struct.pack("!I", len(message)) + message


def reply_frame(document, message_type=3, command_type=1):
    return frame(protoWire.encode(
        [(1, message_type), (4, [(1, command_type), (2, [(1, document)])])]))


def method_return(content):
    """The reply document with one ApiMethodReturn that holds this content."""
    return f"{DECLARATION}<compapi><ApiMethodReturn>{content}</ApiMethodReturn></compapi>"


# Answers -----------------------------------------------------------------------------------

def raw(data):
    """Sends these bytes as they are, and closes."""
    return lambda connection, request: connection.sendall(data)


def document(text, **types):
    return raw(reply_frame(text, **types))


def success(value="<ReturnBool>True</ReturnBool>"):
    """A successful return with the elements in `value`."""
    return document(method_return(f"<Successful>True</Successful>{value}"))


def failure(error, code="25", detail="", localized=""):
    """A failed return; the texts are XML already."""
    return document(method_return(
        f"<Successful>False</Successful><ErrorCode>{code}</ErrorCode><Error>{error}</Error>"
        f"<LocalizedError>{localized}</LocalizedError><ErrorDetail>{detail}</ErrorDetail>"))


def close_after(answer_bytes, count):
    """Sends the first `count` bytes of an answer and closes."""
    return raw(answer_bytes[:count])


def delayed(seconds, answer):
    def act(connection, request):
        time.sleep(seconds)
        answer(connection, request)
    return act


def drip(data):
    """Sends one byte at a time."""
    def act(connection, request):
        for at in range(len(data)):
            connection.sendall(data[at:at + 1])
    return act


def choose(function):
    """An answer that depends on the request: `function` gives the answer to use."""
    return lambda connection, request: function(request)(connection, request)


# The server --------------------------------------------------------------------------------

class ApiManager:
    """Listens on 127.0.0.1 at `port`, any free one by default; a thread for each connection."""

    def __init__(self, answer=None, port=0):
        self.answer = answer or success()
        self.requests = []
        self.faults = []            # what went wrong on connections, for a look at a failure
        self._lock = threading.Lock()
        self._listener = socket.create_server(("127.0.0.1", port), backlog=128)
        self.port = self._listener.getsockname()[1]
        self._threads = [threading.Thread(target=self._accept, daemon=True)]
        self._threads[0].start()

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.stop()

    def stop(self):
        """Closes the listener: later connections are refused."""
        if self._listener.fileno() >= 0:
            self._listener.shutdown(socket.SHUT_RDWR)
            self._listener.close()
        for thread in list(self._threads):
            thread.join(timeout=10)

    def take_requests(self):
        """The requests that arrived since the last call."""
        with self._lock:
            taken, self.requests = self.requests, []
        return taken

    def _accept(self):
        while True:
            try:
                connection, _ = self._listener.accept()
            except OSError:
                return
            thread = threading.Thread(target=self._serve, args=(connection,), daemon=True)
            self._threads.append(thread)
            thread.start()

    def _next_answer(self):
        with self._lock:
            if not isinstance(self.answer, list):
                return self.answer
            return self.answer.pop(0) if len(self.answer) > 1 else self.answer[0]

    def _serve(self, connection):
        try:
            with connection:
                (length,) = struct.unpack("!I", _receive(connection, 4))
                request = read_request(_receive(connection, length))
                with self._lock:
                    self.requests.append(request)
                self._next_answer()(connection, request)
        except Exception as fault:  # a test that breaks connections on purpose breaks these too
            with self._lock:
                self.faults.append(fault)
        finally:
            with self._lock:
                self._threads.remove(threading.current_thread())


def _receive(connection, size):
    data = b""
    while len(data) < size:
        part = connection.recv(size - len(data))
        if not part:
            raise EOFError(f"the service closed after {len(data)} of {size} bytes")
        data += part
    return data
