"""The served operations as tests see them: a request, what it must send to the API manager, and
what must come back. Written by hand and apart from the service's code."""

import dataclasses

from arraySimulator import request_document
from soap import address, elements


def sent_address(ip, port):
    return elements(f"<Ipv4AddressPort>Ipv4Address={ip} Port={port}</Ipv4AddressPort>")


SKIPPED = "AddSan request: IpAddress information not specified"
RESULT = ("<return><catalogNumber>0</catalogNumber><defaultMsg/>"
          "<resultCode>0</resultCode></return>")
NIL_RESULT = '<return xsi:nil="true"/>'
SCSI = elements("<ReturnMethodObject><NorvaneScsiInformation>AliasScsiDeviceId=a-dev "
                "AliasScsiSerialNumber=a-ser OriginalScsiDeviceId=o-dev "
                "OriginalScsiSerialNumber=o-ser </NorvaneScsiInformation></ReturnMethodObject>")
# The volume of the rows below, with these identities, for the simulator's seed.
VOLUME = {"id": "B", "original": {"deviceId": "o-dev", "serialNumber": "o-ser"},
          "alias": {"deviceId": "a-dev", "serialNumber": "a-ser"}}


@dataclasses.dataclass
class Operation:
    """A request; its texts have their elements written as for elements()."""
    name: str
    fields: str                 # what stands in the request's wrapper
    attributes: str             # what stands in the request document's Attributes
    reply: str = RESULT         # what stands in the response's wrapper
    command: str = ""           # the API method, where it has another name
    logs: tuple = ()            # what it logs beside the two lines of every request

    @property
    def body(self):
        return f"<ns1:{self.name}>{elements(self.fields)}</ns1:{self.name}>"

    @property
    def document(self):
        return request_document(self.command or self.name, elements(self.attributes))


# How to add one: a row with the request's children, the attributes that they become, and the
# children of the response where it carries no plain result.
OPERATIONS = [
    Operation("Ping", "", ""),
    Operation(
        "AddHccToSan",
        "sanId=s1 hccId=c1 hccName=Cluster hccKey=k1 "
        f"<cfmIpAddresses>{address('10.0.0.5', 3260)}</cfmIpAddresses>"
        f"<cfmIpAddresses>{address('fe80::1', 1, 'ipv6')}</cfmIpAddresses>"
        f"<cfmIpAddresses>{address('10.0.0.6', 65535, 'unknown', 'addr')}</cfmIpAddresses>",
        "HccId=c1 HccKey=k1 HccName=Cluster <Ipv4AddressPortList>"
        + sent_address("10.0.0.5", 3260) + sent_address("0.0.0.0", 1)
        + sent_address("10.0.0.6", 65535) + "</Ipv4AddressPortList>"),
    Operation(
        "AddHccToSan",
        "sanId=s1 hccId=c1 hccKey=k1 <cfmIpAddresses>port=1</cfmIpAddresses>"
        f"<cfmIpAddresses>{address('10.0.0.5', 3260)}</cfmIpAddresses>",
        "HccId=c1 HccKey=k1 <Ipv4AddressPortList>"
        f"{sent_address('10.0.0.5', 3260)}</Ipv4AddressPortList>", logs=(SKIPPED,)),
    Operation("RemoveHccFromSan", "sanId=s1 hccId=c1", "HccId=c1"),
    Operation(
        "AddServer",
        "sanId=s1 <hcnInfo>hccId=c1 hcnId=n1 hostname=host "
        f"<mgmtIpAddresses>{address('10.0.0.7', 22)}</mgmtIpAddresses>"
        f"<cacheIpAddresses>{address('10.9.9.9', 23)}</cacheIpAddresses>"
        "<os>osType=Linux osRelease=6.1</os>"
        "<norvaneVersion>apiVersion=1 softwareVersion=2</norvaneVersion></hcnInfo>"
        "<intfInfo>intfId=i0</intfInfo><intfInfo>intfId=i1 intfType=unknown</intfInfo>"
        "<intfInfo>intfId=i2 intfType=fc</intfInfo><intfInfo>intfId=i3 intfType=iscsi</intfInfo>"
        "<intfInfo>intfId=i4 intfType=77</intfInfo>",
        "HccId=c1 HcnId=n1 <HcnStorageInterfaceList>"
        + "".join(f"<NorvaneInterfaceInformation>InterfaceId={interface}"
                  "</NorvaneInterfaceInformation>" for interface in (
                      "i0", "i1 InterfaceType=Unknown", "i2 InterfaceType=FibreChannel",
                      "i3 InterfaceType=Iscsi", "i4"))
        + "</HcnStorageInterfaceList>Hostname=host <Ipv4AddressPortList>"
        + sent_address("10.0.0.7", 22) + "</Ipv4AddressPortList>OsType=Linux OsVersion=6.1"),
    Operation("RemoveServer", "hccId=c1 sanId=s1 hcnId=n1", "HccId=c1 HcnId=n1"),
    Operation("HccAttachVolume", "hccId=c1 hcVolumeId=A sanId=s1 sanVolumeId=B",
              "HccId=c1 VolumeId=B",
              elements("<origScsiInfo>deviceId=o-dev serialNumber=o-ser </origScsiInfo>"
                       "<aliasScsiInfo>deviceId=a-dev serialNumber=a-ser </aliasScsiInfo>")),
    Operation("HccDetachVolume", "hccId=c1 sanId=s1 sanVolumeId=B", "HccId=c1 VolumeId=B"),
    Operation("MakeDataAvailable", "hccId=c1 hcnId=n1 sanId=s1 sanVolumeId=B",
              "HccId=c1 HcnId=n1 VolumeId=B"),
    Operation("MakeDataUnavailable", "hccId=c1 hcnId=n1 sanId=s1 sanVolumeId=B",
              "HccId=c1 HcnId=n1 VolumeId=B"),
    Operation("FlushComplete", "hccId=c1 sanId=s1 sanVolumeId=B snapshotId=p1",
              "HccId=c1 SnapshotId=p1 VolumeId=B"),
    Operation("SnapshotPrepareComplete", "hccId=c1 sanId=s1 sanVolumeId=B snapshotId=p1",
              "HccId=c1 SnapshotId=p1 VolumeId=B"),
    Operation("NewPrimaryCfmAddresses",
              f"hccId=c1 <mgmtIpAddresses>{address('10.0.0.8', 443)}</mgmtIpAddresses>",
              "HccId=c1", NIL_RESULT, command="NewPrimaryCfmAddress"),
    Operation("NewPrimaryCfmAddresses", "hccId=c1", "HccId=c1", NIL_RESULT,
              command="NewPrimaryCfmAddress"),
]
