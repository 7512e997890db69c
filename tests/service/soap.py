"""SOAP messages of the service, written and read as text and apart from the generated code."""

import base64
import xml.etree.ElementTree as ElementTree

ENVELOPE = "http://schemas.xmlsoap.org/soap/envelope/"
NS1 = "urn:san-api:service"


def header(version="2.3", user=None, token=None):
    """The header's element. `user` are the credentials in clear, encoded twice as clients do."""
    parts = [f'<xsdVersion version="{version}"/>' if version is not None else ""]
    if user is not None:
        encoded = base64.b64encode(base64.b64encode(user.encode())).decode()
        parts.append(f"<userPass>{encoded}</userPass>")
    if token is not None:
        parts.append(f"<authToken>{token}</authToken>")
    return f"<ns1:HccApiHeader>{''.join(parts)}</ns1:HccApiHeader>"


def envelope(body, head=None):
    """A request. `head` is the header's content; None gives one without credentials, and an
    empty text a message without header."""
    head = header() if head is None else head
    head = f"<SOAP-ENV:Header>{head}</SOAP-ENV:Header>" if head else ""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n'
            f'<SOAP-ENV:Envelope xmlns:SOAP-ENV="{ENVELOPE}" xmlns:ns1="{NS1}">'
            f"{head}<SOAP-ENV:Body>{body}</SOAP-ENV:Body></SOAP-ENV:Envelope>")


PING = envelope("<ns1:Ping/>")


def _local(tag):
    return tag.rpartition("}")[2]


def body_of(reply):
    """The one element in the body of a reply."""
    (element,) = list(ElementTree.fromstring(reply.body).find(f"{{{ENVELOPE}}}Body"))
    return element


def fault_of(reply):
    """(fault code without its prefix, fault string), or None for a reply that is no fault."""
    element = body_of(reply)
    if element.tag != f"{{{ENVELOPE}}}Fault":
        return None
    return (element.findtext("faultcode").rpartition(":")[2], element.findtext("faultstring"))


def answered(reply, operation):
    """Whether a reply is the response of this operation and no fault."""
    return reply.status == 200 and _local(body_of(reply).tag) == operation + "Response"
