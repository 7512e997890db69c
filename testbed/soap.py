"""SOAP messages of the service, written and read as text and apart from the generated code."""

import base64
import re
import xml.etree.ElementTree as ElementTree

ENVELOPE = "http://schemas.xmlsoap.org/soap/envelope/"
NS1 = "urn:san-api:service"


def encoded(user):
    """Credentials in clear as they travel, encoded twice."""
    return base64.b64encode(base64.b64encode(user.encode())).decode()


def header(version="2.3", user=None, token=None):
    """The header's element; `user` are credentials in clear."""
    return (f'<ns1:HccApiHeader><xsdVersion version="{version}"/>'
            + (f"<userPass>{encoded(user)}</userPass>" if user is not None else "")
            + (f"<authToken>{token}</authToken>" if token is not None else "")
            + "</ns1:HccApiHeader>")


def envelope(body, head=header()):
    """A message with this header, by default one without credentials."""
    return ('<?xml version="1.0" encoding="UTF-8"?>\n'
            f'<SOAP-ENV:Envelope xmlns:SOAP-ENV="{ENVELOPE}" xmlns:ns1="{NS1}">'
            f"<SOAP-ENV:Header>{head}</SOAP-ENV:Header>"
            f"<SOAP-ENV:Body>{body}</SOAP-ENV:Body></SOAP-ENV:Envelope>")


def elements(text):
    """The text with every name=value in it as an element."""
    return re.sub(r"(\w+)=([\w.:-]+) *", r"<\1>\2</\1>", text)


def address(ip, port, kind="ipv4", element=None):
    """The children of an element that is an address with its port."""
    return elements(f'<ipAddress type="{kind}">{element or kind + "Addr"}={ip}</ipAddress>'
                    f"port={port}")


PING = envelope("<ns1:Ping/>")


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
    return reply.status == 200 and body_of(reply).tag == f"{{{NS1}}}{operation}Response"
