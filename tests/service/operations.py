"""The served operations as tests see them: a request, what it must send to the API manager, and
what must come back. Written by hand and apart from the service's code."""

import dataclasses

ADDRESS = ("<Ipv4AddressPort><Ipv4Address>{0}</Ipv4Address><Port>{1}</Port></Ipv4AddressPort>")
RESULT = ("<return><catalogNumber>0</catalogNumber><defaultMsg/>"
          "<resultCode>0</resultCode></return>")
SCSI = ("<ReturnMethodObject><NorvaneScsiInformation>"
        "<AliasScsiDeviceId>a-dev</AliasScsiDeviceId>"
        "<AliasScsiSerialNumber>a-ser</AliasScsiSerialNumber>"
        "<OriginalScsiDeviceId>o-dev</OriginalScsiDeviceId>"
        "<OriginalScsiSerialNumber>o-ser</OriginalScsiSerialNumber>"
        "</NorvaneScsiInformation></ReturnMethodObject>")
# The volume of the rows below, with these identities, for the simulator's seed.
VOLUME = {"id": "B", "original": {"deviceId": "o-dev", "serialNumber": "o-ser"},
          "alias": {"deviceId": "a-dev", "serialNumber": "a-ser"}}


@dataclasses.dataclass
class Operation:
    name: str
    fields: str                 # what stands in the request's wrapper
    attributes: str             # what stands in the request document's Attributes
    reply: str = RESULT         # what stands in the response's wrapper
    command: str = ""           # the API method, where it has another name
    hcc_id: str = "c1"

    @property
    def body(self):
        return f"<ns1:{self.name}>{self.fields}</ns1:{self.name}>"

    @property
    def document(self):
        attributes = f"<Attributes>{self.attributes}</Attributes>" if self.attributes else ""
        return ("<compapi><ApiMethod><CommandType>Method</CommandType>"
                "<Object>TarnHostCache</Object>"
                f"<Command>{self.command or self.name}</Command><Async>false</Async>"
                f"<ObjectEncodeType>xml</ObjectEncodeType>{attributes}</ApiMethod></compapi>")


def address(ip, port, kind="ipv4", element=None):
    return (f'<ipAddress type="{kind}"><{element or kind + "Addr"}>{ip}'
            f'</{element or kind + "Addr"}></ipAddress><port>{port}</port>')


# How to add one: a row with the request's children, the attributes that they become, and the
# children of the response where it carries no plain result.
OPERATIONS = [
    Operation("Ping", "", "", hcc_id=""),
    Operation(
        "AddHccToSan",
        "<sanId>s1</sanId><hccId>c1</hccId><hccName>Cluster</hccName><hccKey>k1</hccKey>"
        f"<cfmIpAddresses>{address('10.0.0.5', 3260)}</cfmIpAddresses>"
        f"<cfmIpAddresses>{address('fe80::1', 1, 'ipv6')}</cfmIpAddresses>"
        f"<cfmIpAddresses>{address('10.0.0.6', 65535, 'unknown', 'addr')}</cfmIpAddresses>",
        "<HccId>c1</HccId><HccKey>k1</HccKey><HccName>Cluster</HccName><Ipv4AddressPortList>"
        + ADDRESS.format("10.0.0.5", 3260) + ADDRESS.format("0.0.0.0", 1)
        + ADDRESS.format("10.0.0.6", 65535) + "</Ipv4AddressPortList>"),
    Operation(
        "AddHccToSan",
        "<sanId>s1</sanId><hccId>c1</hccId><hccKey>k1</hccKey>"
        f"<cfmIpAddresses>{address('10.0.0.5', 3260)}</cfmIpAddresses>",
        "<HccId>c1</HccId><HccKey>k1</HccKey><Ipv4AddressPortList>"
        + ADDRESS.format("10.0.0.5", 3260) + "</Ipv4AddressPortList>"),
    Operation("RemoveHccFromSan", "<sanId>s1</sanId><hccId>c1</hccId>", "<HccId>c1</HccId>"),
    Operation(
        "AddServer",
        "<sanId>s1</sanId><hcnInfo><hccId>c1</hccId><hcnId>n1</hcnId><hostname>host</hostname>"
        f"<mgmtIpAddresses>{address('10.0.0.7', 22)}</mgmtIpAddresses>"
        f"<cacheIpAddresses>{address('10.9.9.9', 23)}</cacheIpAddresses>"
        "<os><osType>Linux</osType><osRelease>6.1</osRelease></os>"
        "<norvaneVersion><apiVersion>1</apiVersion><softwareVersion>2</softwareVersion>"
        "</norvaneVersion></hcnInfo>"
        "<intfInfo><intfId>i0</intfId></intfInfo>"
        "<intfInfo><intfId>i1</intfId><intfType>unknown</intfType></intfInfo>"
        "<intfInfo><intfId>i2</intfId><intfType>fc</intfType></intfInfo>"
        "<intfInfo><intfId>i3</intfId><intfType>iscsi</intfType></intfInfo>"
        "<intfInfo><intfId>i4</intfId><intfType>77</intfType></intfInfo>",
        "<HccId>c1</HccId><HcnId>n1</HcnId><HcnStorageInterfaceList>"
        + "".join("<NorvaneInterfaceInformation><InterfaceId>i%d</InterfaceId>%s"
                  "</NorvaneInterfaceInformation>" % (number, text) for number, text in enumerate(
                      ["", "<InterfaceType>Unknown</InterfaceType>",
                       "<InterfaceType>FibreChannel</InterfaceType>",
                       "<InterfaceType>Iscsi</InterfaceType>", ""]))
        + "</HcnStorageInterfaceList><Hostname>host</Hostname><Ipv4AddressPortList>"
        + ADDRESS.format("10.0.0.7", 22) + "</Ipv4AddressPortList>"
        "<OsType>Linux</OsType><OsVersion>6.1</OsVersion>"),
    Operation("RemoveServer", "<hccId>c1</hccId><sanId>s1</sanId><hcnId>n1</hcnId>",
              "<HccId>c1</HccId><HcnId>n1</HcnId>"),
    Operation(
        "HccAttachVolume",
        "<hccId>c1</hccId><hcVolumeId>A</hcVolumeId><sanId>s1</sanId>"
        "<sanVolumeId>B</sanVolumeId>",
        "<HccId>c1</HccId><VolumeId>B</VolumeId>",
        "<origScsiInfo><deviceId>o-dev</deviceId><serialNumber>o-ser</serialNumber>"
        "</origScsiInfo><aliasScsiInfo><deviceId>a-dev</deviceId>"
        "<serialNumber>a-ser</serialNumber></aliasScsiInfo>"),
    Operation("HccDetachVolume",
              "<hccId>c1</hccId><sanId>s1</sanId><sanVolumeId>B</sanVolumeId>",
              "<HccId>c1</HccId><VolumeId>B</VolumeId>"),
    Operation("MakeDataAvailable",
              "<hccId>c1</hccId><hcnId>n1</hcnId><sanId>s1</sanId><sanVolumeId>B</sanVolumeId>",
              "<HccId>c1</HccId><HcnId>n1</HcnId><VolumeId>B</VolumeId>"),
    Operation("MakeDataUnavailable",
              "<hccId>c1</hccId><hcnId>n1</hcnId><sanId>s1</sanId><sanVolumeId>B</sanVolumeId>",
              "<HccId>c1</HccId><HcnId>n1</HcnId><VolumeId>B</VolumeId>"),
    Operation("FlushComplete",
              "<hccId>c1</hccId><sanId>s1</sanId><sanVolumeId>B</sanVolumeId>"
              "<snapshotId>p1</snapshotId>",
              "<HccId>c1</HccId><SnapshotId>p1</SnapshotId><VolumeId>B</VolumeId>"),
    Operation("SnapshotPrepareComplete",
              "<hccId>c1</hccId><sanId>s1</sanId><sanVolumeId>B</sanVolumeId>"
              "<snapshotId>p1</snapshotId>",
              "<HccId>c1</HccId><SnapshotId>p1</SnapshotId><VolumeId>B</VolumeId>"),
    Operation("NewPrimaryCfmAddresses",
              f"<hccId>c1</hccId><mgmtIpAddresses>{address('10.0.0.8', 443)}</mgmtIpAddresses>",
              "<HccId>c1</HccId>", '<return xsi:nil="true"/>', command="NewPrimaryCfmAddress"),
    Operation("NewPrimaryCfmAddresses", "<hccId>c1</hccId>", "<HccId>c1</HccId>",
              '<return xsi:nil="true"/>', command="NewPrimaryCfmAddress"),
]
