"""Replies stay as they are, byte for byte: every request below gets the reply that is recorded for
it in the folder replies.

A change that alters replies on purpose records those anew and says why in its commit; every other
difference is a fault:

    SAN_BUILD_DIR=build/asan PYTHONPATH=testbed:tests/service python3 \
        tests/service/repliesTest.py NAME...

records the named ones, or all without a name.
"""

import re
import sys
import unittest

import harness
import soap
from operations import OPERATIONS, VOLUME
from programs import ROOT
from soap import address, elements

RECORDED = ROOT / "tests" / "service" / "replies"
HEAD = soap.header(user="user:pass")
SOAP_12 = "http://www.w3.org/2003/05/soap-envelope"
XSI = 'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"'
REMOVE = "<ns1:RemoveHccFromSan><sanId>s</sanId><hccId>{}</hccId></ns1:RemoveHccFromSan>"


def message(body, head=HEAD, namespace=soap.ENVELOPE):
    return soap.envelope(body, head).replace(soap.ENVELOPE, namespace)


def remove(cluster, head=HEAD, namespace=soap.ENVELOPE):
    return message(REMOVE.format(cluster), head, namespace)


def join(entries):
    return message("<ns1:AddHccToSan><sanId>s</sanId><hccId>c</hccId><hccKey>k</hccKey>"
                   f"{entries}</ns1:AddHccToSan>")


def addresses(count):
    return "".join(f"<cfmIpAddresses>{address(f'10.0.{n // 250}.{n % 250 + 1}', 3260)}"
                   "</cfmIpAddresses>" for n in range(count))


SHARED = ('<cfmIpAddresses href="#a"/><cfmIpAddresses href="#a"/>'
          f'<cfmIpAddresses id="a">{address("10.0.0.1", 1)}</cfmIpAddresses>')

# name of the recorded reply: the request
REQUESTS = {
    "Ping": message("<ns1:Ping></ns1:Ping>"),
    # Refusals.
    "noHeader": soap.PING.replace("HccApiHeader", "OtherHeader"),
    "emptyHeader": message("<ns1:Ping/>", ""),
    "noVersion": message("<ns1:Ping/>", "<ns1:HccApiHeader/>"),
    "otherVersion": message("<ns1:Ping/>", soap.header("3.0&lt;x&gt;")),
    "otherVersionSoap12": message("<ns1:Ping/>", soap.header("3.0"), SOAP_12),
    "noCredentials": remove("c", soap.header()),
    "badCredentials": remove("c", soap.header().replace("</ns1", "<userPass>!</userPass></ns1")),
    "tokenAlone": remove("c", soap.header(token="t")),
    "understoodByNobody": message("<ns1:Ping/>", HEAD + (
        '<o:Other xmlns:o="urn:o" SOAP-ENV:mustUnderstand="1"/>')),
    "notSupported": message("<ns1:RenameHccInSan><hccId>c</hccId><sanId>s</sanId><name>n</name>"
                            "</ns1:RenameHccInSan>"),
    "nilRequest": message(f'<ns1:RemoveServer {XSI} xsi:nil="true"/>'),
    "unknownOperation": message("<ns1:Unheard/>"),
    "otherNamespace": message('<Ping xmlns="urn:other"/>'),
    "unknownWithoutHeader": message("<ns1:Unheard/>").replace(
        f"<SOAP-ENV:Header>{HEAD}</SOAP-ENV:Header>", ""),
    "longUnknownName": message(f"<ns1:{'n' * 900}/>"),
    "emptyBody": message(""),
    # SOAP 1.2.
    "soap12": message("<ns1:Ping/>", namespace=SOAP_12),
    "soap12Unknown": message("<ns1:Unheard/>", namespace=SOAP_12),
    "soap12Malformed": message("<ns1:Ping>", namespace=SOAP_12),
    "soap12Draft": message("<ns1:Ping/>", namespace="http://www.w3.org/2001/12/soap-envelope"),
    "soap12NotText": remove("c\0", namespace=SOAP_12),
    "otherEnvelope": message("<ns1:Ping/>", namespace="urn:no:envelope"),
    # Content that does not fit.
    "lacksAnElement": message("<ns1:RemoveServer><hccId>c</hccId></ns1:RemoveServer>"),
    "wrongType": join(addresses(1).replace("3260", "port")),
    "numberTooLarge": join(addresses(1).replace("3260", "65536")),
    "unknownEnumeration": join(addresses(1).replace('"ipv4"', '"ipv5"')),
    "numberForEnumeration": join(addresses(1).replace('"ipv4"', '"99"')),
    "nilAddress": join(f'<cfmIpAddresses {XSI} xsi:nil="1"/>'),
    "typeOfItsOwn": join(addresses(1).replace(
        "<cfmIpAddresses>", f'<cfmIpAddresses {XSI} xsi:type="ns1:Unheard">')),
    "unknownElements": message("<ns1:Ping><a b='c'>d<e/></a></ns1:Ping>"),
    "twoOperations": message("<ns1:Ping/><ns1:Ping/>"),
    # References, which are not followed.
    "references": join(SHARED),
    "referenceToNothing": join('<cfmIpAddresses href="#nowhere"/>' + addresses(1)),
    "sameIdTwice": join(addresses(2).replace("<ipAddress", '<ipAddress id="a"')),
    # Large ones.
    "manyAddresses": join(addresses(500)),
    "mostAddresses": join("<cfmIpAddresses/>" * 4096),
    "tooManyAddresses": join("<cfmIpAddresses/>" * 4097),
    "longestText": remove("x" * 65536),
    "textTooLong": remove("x" * 65537),
    "deep": message("<ns1:Ping>" + "<a>" * 3000 + "</a>" * 3000 + "</ns1:Ping>"),
    "manyElements": message("<ns1:Ping>" + "<a/>" * 20000 + "</ns1:Ping>"),
    "manyPrefixes": message("<ns1:Ping " + " ".join(f'xmlns:n{n}="urn:n{n}"' for n in range(200))
                            + "/>"),
    # Text in other forms.
    "ownPrefixes": f'<e:Envelope xmlns:e="{soap.ENVELOPE}" xmlns:s="{soap.NS1}"><e:Header>'
                   f'{HEAD.replace("ns1:", "s:")}</e:Header><e:Body><Ping xmlns="{soap.NS1}"/>'
                   "</e:Body></e:Envelope>",
    "byteOrderMark": "\ufeff" + soap.PING,
    "blanksInFront": " \r\n" + soap.PING.partition("\n")[2],
    "comments": message("<!-- a --><?b c?><ns1:Ping><!-- - --></ns1:Ping><!-- d -->"),
    "sections": remove("<![CDATA[<a>&amp;]]>"),
    "characterReferences": remove("&#x96c6;&lt;&amp;&#10;"),
    "childInText": remove("<b>child</b>"),
    "surrogate": remove("&#xD800;"),
    "unknownEntity": remove("&nbsp;"),
    "beyondAscii": message("<ns1:Ünheard é=''/>"),
    # Malformed ones.
    "noSoap": "<a/>",
    "cutShort": soap.PING[:300],
    "cutInATag": soap.PING[:-8],
    "wrongEndTag": soap.PING.replace("</SOAP-ENV:Body>", "</SOAP-ENV:Bode>"),
    "unquotedAttribute": message("<ns1:Ping a=b/>"),
    "attributeTwice": message("<ns1:Ping a='b' a='c'/>"),
    "unboundPrefix": message("<x:Ping/>"),
    "unclosedSection": message("<ns1:Ping><![CDATA[</ns1:Ping>"),
    "documentType": '<!DOCTYPE a [<!ENTITY b "c">]>' + soap.PING.partition("\n")[2],
    "behindTheEnd": soap.PING + "<a>",
}

# The reply to every operation is that to a Ping but for what stands in the body.
OPERATION_ROWS = {f"{number}{row.name}": row for number, row in enumerate(OPERATIONS)}

# Faults of the array; the request is an attach.
FAULTS = {
    "arrayRefuses": ("refuse", {"error": "No <such> & volume é \x01"}),
    "arraySaysNothing": ("refuseWithoutTexts", {}),
    "arrayIsIllegible": ("badXml", {}),
    "arrayHangsUp": ("garbage", {}),
    "arrayHasNoObject": ("noObject", {}),
}


class RepliesTest(harness.ServiceCase):
    simulator_arguments = ["--lenient"]
    simulator_files = {"seed_file": {"volumes": [VOLUME]}}
    server_options = {"mpm": "prefork", "threads": 1}
    recorded_anew = []

    def reply_to(self, name):
        """The reply with its headers, as it comes, save for what the server's package and the
        clock say."""
        request = REQUESTS.get(name)
        if name in OPERATION_ROWS:
            request = message(OPERATION_ROWS[name].body)
        if name in FAULTS:
            kind, members = FAULTS[name]
            self.array.fail(kind, command="HccAttachVolume", **members)
            request = message(elements("<ns1:HccAttachVolume>hccId=c1 hcVolumeId=A sanId=s1 "
                                       "sanVolumeId=B</ns1:HccAttachVolume>"))
        body = request.encode()
        received = self.server.send_raw(
            b"POST /sanService HTTP/1.1\r\nHost: localhost\r\nContent-Type: text/xml\r\n"
            b"Connection: close\r\nContent-Length: %d\r\n\r\n%s" % (len(body), body))
        return re.sub(rb"(Date|Server): [^\r]*\r\n", b"", received)

    @staticmethod
    def recorded(name):
        if name not in OPERATION_ROWS:
            return (RECORDED / name).read_bytes()
        row = OPERATION_ROWS[name]
        head, _, body = (RECORDED / "Ping").read_bytes().partition(b"\r\n\r\n")
        response = f"<ns1:{row.name}Response>{row.reply}</ns1:{row.name}Response>".encode()
        body = re.sub(rb"<ns1:PingResponse>.*</ns1:PingResponse>", response, body)
        head = re.sub(rb"(?<=Content-Length: )\d+", b"%d" % len(body), head)
        return head + b"\r\n\r\n" + body

    def test_every_reply_is_as_recorded(self):
        for name in self.recorded_anew:
            (RECORDED / name).write_bytes(self.reply_to(name))
        # Twice, since what one request leaves behind must not show in the next one's reply.
        for round_number in (1, 2):
            for name in (*REQUESTS, *OPERATION_ROWS, *FAULTS):
                with self.subTest(name, round=round_number):
                    self.assertEqual(self.reply_to(name), self.recorded(name))


if __name__ == "__main__":
    RepliesTest.recorded_anew = sys.argv[1:] or [*REQUESTS, *FAULTS]
    unittest.main(argv=sys.argv[:1])
