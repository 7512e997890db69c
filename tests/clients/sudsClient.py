"""suds against the service: sudsClient.py URL SCENARIO CLUSTER. See clientsTest.py."""
import base64
import sys

import suds.client

url, scenario, cluster = sys.argv[1:]
client = suds.client.Client(f"{url}?wsdl", cache=None, retxml=False)


def new(kind, **members):
    made = client.factory.create("{urn:san-api:service}" + kind)
    for name, value in members.items():
        setattr(made, name, value)
    return made


def header():
    made = new("HccApiHeader")
    made.xsdVersion._version = "2.3"
    # Base64 text of the credentials, and that once more, since this library does not encode.
    made.userPass = base64.b64encode(base64.b64encode(b"user:pass")).decode()
    return made


def address(kind, child, text, port):
    inet = new("InetAddress", _type=kind)
    setattr(inet, child, text)
    return new("IpAddressPort", ipAddress=inet, port=port)


def show(what, result):
    print(f'{what} {result.catalogNumber} "{result.defaultMsg or ""}" {result.resultCode}')
    received = client.last_received()
    version = received.childAtPath("Envelope/Header/HccApiHeader/xsdVersion")
    print(f'header {version.get("version")}')


def attach(volume):
    return client.service.HccAttachVolume(cluster, "hcv-1", "array", volume)


def run_cluster():
    show("join", client.service.AddHccToSan(
        "array", cluster, "Zürich 集群", "key",
        [address("ipv4", "ipv4Addr", "10.0.0.5", 3260),
         address("dns", "dnsAddr", "cfm.example.org", 3261)]))
    identities = attach("vol-1")
    for which, identity in (("orig", identities.origScsiInfo),
                            ("alias", identities.aliasScsiInfo)):
        print(f"attach {which} {identity.deviceId} {identity.serialNumber}")
    try:
        attach("größe-集")
    except suds.WebFault as error:
        print(f'refused {error.fault.faultcode.rpartition(":")[2]} "{error.fault.faultstring}"')
    show("detach", client.service.HccDetachVolume(cluster, "array", "vol-1"))
    show("leave", client.service.RemoveHccFromSan("array", cluster))


client.set_options(soapheaders=header())
if scenario == "ping":
    show("ping", client.service.Ping())
else:
    run_cluster()
