"""The service description that the build makes: a generator reads it back, it stands alone, and
each kind of fact is carried over once. That others load it is tried with independent clients."""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

WSDL, WSDL2H, SOAPCPP2, IMPORTS = sys.argv[1:]
NAMES = {"w": "http://schemas.xmlsoap.org/wsdl/", "x": "http://www.w3.org/2001/XMLSchema",
         "s": "http://schemas.xmlsoap.org/wsdl/soap/"}

# where, and what stands there: attributes, or a text
FACTS = [
    ("x:simpleType[@name='CacheMode']//*[4]", {"value": "writeback"}),
    ("x:simpleType[@name='HccStatus']//*[4]", {"value": "In Maintenance Mode"}),
    ("x:simpleType[@name='InetPortNumber']/*", {"base": "xs:unsignedShort"}),
    ("x:complexType[@name='InetAddress']//x:choice", {}),
    ("x:complexType[@name='InetAddress']//x:choice/*[4]",
     {"name": "addr", "type": "ns1:InetAddressUnknown"}),
    ("x:complexType[@name='InetAddress']/x:attribute",
     {"name": "type", "type": "ns1:InetAddressType", "use": "required"}),
    ("x:complexType[@name='HccApiXsd']/x:attribute",
     {"name": "version", "type": "xs:string", "default": "2.3"}),
    ("x:complexType[@name='dataAttachment']/*/*", {"ref": "xop:Include"}),
    ("x:complexType[@name='PingResponse']/*/*",
     {"name": "return", "type": "ns1:resultObject", "nillable": "true"}),
    ("x:complexType[@name='AddHccToSan']/*/*[3]",
     {"name": "hccName", "type": "xs:string", "minOccurs": "0"}),
    ("x:complexType[@name='AddHccToSan']/*/*[5]",
     {"name": "cfmIpAddresses", "type": "ns1:IpAddressPort", "maxOccurs": "unbounded"}),
    ("x:complexType[@name='resultObject']/*/*[3]",
     {"name": "msgArgs", "type": "xs:string", "minOccurs": "0", "maxOccurs": "unbounded"}),
    ("x:element[@name='GetHcnsResponse']",
     {"name": "GetHcnsResponse", "type": "ns1:GetHcnsResponse"}),
    ("x:element[@name='HccApiHeader']", {"name": "HccApiHeader", "type": "ns1:HccApiHeader"}),
    ("w:operation[@name='AddServer']/w:documentation", "A server becomes a node of its cluster."),
    ("x:complexType[@name='scsiInfo']/*/x:documentation", "The SCSI identity of a volume."),
    ("x:element[@name='hccKey']/*/x:documentation", "its key"),
]


class Description(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.text = pathlib.Path(WSDL).read_text()
        cls.root = ElementTree.fromstring(cls.text)

    def test_each_kind_of_fact_is_carried_over(self):
        for path, expected in FACTS:
            found = self.root.find(".//" + path, NAMES)
            self.assertIsNotNone(found, path)
            self.assertEqual(found.text if isinstance(expected, str) else found.attrib, expected,
                             path)

    def test_the_generator_reads_it_back(self):
        with tempfile.TemporaryDirectory() as folder:
            header = f"{folder}/readBack.h"
            for command in ([WSDL2H, "-o", header, WSDL],
                            [SOAPCPP2, "-1", "-x", "-L", "-S", "-i", f"-d{folder}", f"-I{IMPORTS}",
                             header]):
                done = subprocess.run(command, capture_output=True, text=True, check=False)
                self.assertEqual(done.returncode, 0, done)
            skeleton = pathlib.Path(folder, "soapSanApiPortBindingService.h").read_text()
        operations = [each.get("name") for each in self.root.findall("w:portType/*", NAMES)]
        self.assertIn("Ping", operations)
        self.assertEqual(re.findall(r"virtual int (\w+)\(ns1__", skeleton), operations)

    def test_the_header_goes_both_ways(self):
        ways = self.root.findall("w:binding/w:operation/*/[s:body]", NAMES)
        self.assertEqual(len(ways), 2 * len(self.root.findall("w:portType/*", NAMES)))
        for way in ways:
            self.assertEqual(way.find("s:header", NAMES).attrib, {
                "message": "ns1:HccApiHeader", "part": "HccApiHeader", "use": "literal"})

    def test_it_stands_alone_but_for_one_placeholder(self):
        self.assertNotIn("schemaLocation", self.text)
        self.assertEqual(self.text.count("@SERVICE_ADDRESS@"), 1)
        self.assertEqual(self.root.find(".//s:address", NAMES).get("location"), "@SERVICE_ADDRESS@")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
