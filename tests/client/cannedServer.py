"""A tiny HTTP server that answers what it is told to, and keeps what it was sent."""

import contextlib
import http.server
import threading

import soap


def reply(operation, content="<return/>"):
    return 200, soap.envelope(f"<ns1:{operation}Response>{content}</ns1:{operation}Response>")


def redirect(place):
    return 302, "moved", {"Location": place, "Via": "1.1 gate.example"}


def fault(code, text):
    return 500, soap.envelope(f"<SOAP-ENV:Fault><faultcode>{code}</faultcode>"
                              f"<faultstring>{text}</faultstring></SOAP-ENV:Fault>")


NOTHING = (0, "")  # Closes the connection without a word.


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    wbufsize = -1  # One packet an answer.

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0))).decode()
        self.server.requests.append(body)
        self.server.agents.append(self.headers["User-Agent"])
        status, text, *headers = self.server.answer(body)
        if not status:
            self.close_connection = True
            return
        self.send_response(status)
        self.send_header("Content-Type", "text/xml; charset=utf-8")
        self.send_header("Content-Length", str(len(text.encode())))
        for name, value in headers[0].items() if headers else ():
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(text.encode())

    do_GET = do_POST

    def log_message(self, *arguments):
        pass


@contextlib.contextmanager
def serve(answer, tls=None):
    """`answer` is (status, body[, headers]) or a function of the request's body. Gives the server,
    whose `url`, `requests` and `agents` tell what a test needs; `tls` is a context for HTTPS."""
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.answer, server.requests = answer if callable(answer) else lambda _: answer, []
    server.agents = []
    if tls:
        server.socket = tls.wrap_socket(server.socket, server_side=True,
                                        do_handshake_on_connect=False)
    server.url = f"http{'s' if tls else ''}://127.0.0.1:{server.server_port}/sanService"
    thread = threading.Thread(target=server.serve_forever, args=(0.02,))
    thread.start()
    try:
        yield server
    finally:
        server.shutdown()
        thread.join()
        server.server_close()
