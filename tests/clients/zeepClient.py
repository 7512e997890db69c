"""zeep against the service: zeepClient.py URL SCENARIO CLUSTER. See clientsTest.py."""
import base64
import sys

import zeep

url, scenario, cluster = sys.argv[1:]
service = zeep.Client(f"{url}?wsdl").service
HEADER = {"HccApiHeader": {
    "xsdVersion": {"version": "2.3"},
    # The bytes are base64 text themselves; the library encodes them once more.
    "userPass": base64.b64encode(b"user:pass"),
}}


def show(what, reply):
    result = reply.body["return"]
    print(f'{what} {result.catalogNumber} "{result.defaultMsg or ""}" {result.resultCode}')
    print(f"header {reply.header.HccApiHeader.xsdVersion.version}")


def attach(volume):
    return service.HccAttachVolume(hccId=cluster, hcVolumeId="hcv-1", sanId="array",
                                   sanVolumeId=volume, _soapheaders=HEADER).body


def run_cluster():
    addresses = [{"ipAddress": {"type": "ipv4", "ipv4Addr": "10.0.0.5"}, "port": 3260},
                 {"ipAddress": {"type": "dns", "dnsAddr": "cfm.example.org"}, "port": 3261}]
    show("join", service.AddHccToSan(sanId="array", hccId=cluster, hccName="Zürich 集群",
                                     hccKey="key", cfmIpAddresses=addresses,
                                     _soapheaders=HEADER))
    identities = attach("vol-1")
    for which in ("orig", "alias"):
        identity = identities[f"{which}ScsiInfo"]
        print(f"attach {which} {identity.deviceId} {identity.serialNumber}")
    try:
        attach("größe-集")
    except zeep.exceptions.Fault as fault:
        print(f'refused {fault.code.rpartition(":")[2]} "{fault.message}"')
    show("detach", service.HccDetachVolume(hccId=cluster, sanId="array", sanVolumeId="vol-1",
                                           _soapheaders=HEADER))
    show("leave", service.RemoveHccFromSan(sanId="array", hccId=cluster, _soapheaders=HEADER))


if scenario == "ping":
    show("ping", service.Ping(_soapheaders=HEADER))
else:
    run_cluster()
