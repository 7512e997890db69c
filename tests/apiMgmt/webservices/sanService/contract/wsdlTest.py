"""The service description says what the definition says, and the generator reads it back; that
others can is tried with independent clients.

sanApi.wsdl is compared with the description that the generator writes from the definition. Both
are brought to one plain form first, since they differ in layout and in what they leave to defaults.
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

XS = "{http://www.w3.org/2001/XMLSchema}"
WSDL = "{http://schemas.xmlsoap.org/wsdl/}"
SOAP = "{http://schemas.xmlsoap.org/wsdl/soap/}"
SERVICE = "urn:san-api:service"
PLACEHOLDER = "@SERVICE_ADDRESS@"

OURS, GENERATED, WSDL2H, SOAPCPP2, IMPORTS = sys.argv[1:]


def local(name):
    return name.split(":")[-1] if name else name


def schema_of(root, namespace=SERVICE):
    found = [s for s in root.iter(XS + "schema") if s.get("targetNamespace") == namespace]
    assert len(found) == 1, f"{len(found)} schemas for {namespace}"
    return found[0]


def plain_child(child):
    if child.tag == XS + "choice":
        return ("choice", [(c.get("name"), local(c.get("type"))) for c in child])
    return (local(child.get("name") or child.get("ref")), local(child.get("type")),
            child.get("minOccurs", "1"), child.get("maxOccurs", "1"),
            child.get("nillable", "false"))


def plain_type(node):
    if node.tag == XS + "simpleType":
        restriction = node.find(XS + "restriction")
        return (local(restriction.get("base")), [e.get("value") for e in restriction])
    children = [plain_child(c) for sequence in node.findall(XS + "sequence") for c in sequence]
    attributes = [(local(a.get("name") or a.get("ref")), local(a.get("type")), a.get("default"),
                   a.get("use", "optional")) for a in node.findall(XS + "attribute")]
    return (children, attributes)


def types_of(root, namespace=SERVICE):
    return {node.get("name"): plain_type(node) for node in schema_of(root, namespace)
            if node.tag in (XS + "simpleType", XS + "complexType")}


def elements_of(root, namespace=SERVICE):
    return {e.get("name"): local(e.get("type")) for e in schema_of(root, namespace)
            if e.tag == XS + "element"}


def operations_of(root):
    """Operation -> the elements of its request and response."""
    messages = {m.get("name"): local(m.find(WSDL + "part").get("element"))
                for m in root.iter(WSDL + "message")}
    return [(o.get("name"), [messages[local(o.find(WSDL + way).get("message"))]
                             for way in ("input", "output")])
            for o in root.find(WSDL + "portType")]


class Description(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.ours = ElementTree.parse(OURS).getroot()
        cls.generated = ElementTree.parse(GENERATED).getroot()

    def assert_same_types(self, actual, expected):
        self.assertEqual(sorted(actual), sorted(expected))
        for name, content in expected.items():
            self.assertEqual(actual[name], content, name)

    def test_types_are_those_of_the_definition(self):
        for namespace in (SERVICE, "urn:san-api:version"):
            self.assert_same_types(types_of(self.ours, namespace),
                                   types_of(self.generated, namespace))

    def test_every_message_and_the_headers_have_an_element(self):
        types = types_of(self.ours)
        messages = {n for n in types if f"{n}Response" in types}
        messages |= {f"{n}Response" for n in messages}
        self.assertEqual(len(messages), 2 * (13 + 61))
        self.assertEqual(elements_of(self.ours),
                         {name: name for name in messages | {"HccApiHeader"}})
        self.assertEqual(elements_of(self.ours, "urn:san-api:version"),
                         elements_of(self.generated, "urn:san-api:version"))
        self.assertEqual(schema_of(self.ours).get("elementFormDefault"), "unqualified")

    def test_operations_are_those_of_the_skeleton_with_the_header_both_ways(self):
        self.assertEqual(operations_of(self.ours), operations_of(self.generated))
        for operation in self.ours.find(WSDL + "binding").findall(WSDL + "operation"):
            for way in ("input", "output"):
                header = operation.find(f"{WSDL}{way}/{SOAP}header")
                self.assertEqual(header.get("use"), "literal")
                self.assertEqual(local(header.get("message")), "HccApiHeader")

    def test_the_generator_reads_it_back(self):
        with tempfile.TemporaryDirectory() as folder:
            header = f"{folder}/readBack.h"
            for command in ([WSDL2H, "-o", header, OURS],
                            [SOAPCPP2, "-1", "-x", "-L", "-S", "-i", f"-d{folder}", f"-I{IMPORTS}",
                             header]):
                done = subprocess.run(command, capture_output=True, text=True, check=False)
                self.assertEqual(done.returncode, 0, done)
            skeleton = pathlib.Path(folder, "soapSanApiPortBindingService.h").read_text()
        self.assertEqual(re.findall(r"virtual int (\w+)\(ns1__", skeleton),
                         [name for name, _ in operations_of(self.ours)])

    def test_it_stands_alone_but_for_one_placeholder(self):
        text = pathlib.Path(OURS).read_text()
        self.assertNotIn("schemaLocation", text)
        self.assertEqual(text.count(PLACEHOLDER), 1)
        self.assertEqual(self.ours.find(f".//{SOAP}address").get("location"), PLACEHOLDER)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
