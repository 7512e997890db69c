"""The service description says what the definition says, and tools can read it.

sanApi.wsdl is compared with the description that the generator writes from the definition. Both
are brought to one plain form first, since they differ in layout and in what they leave to defaults.
"""
import argparse
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

parser = argparse.ArgumentParser()
for name in ("wsdl", "generated", "samples"):
    parser.add_argument(f"--{name}", required=True, type=pathlib.Path)
for name in ("soapcpp2", "wsdl2h", "imports"):
    parser.add_argument(f"--{name}", required=True)
args, unittest_args = parser.parse_known_args()


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False)
    assert done.returncode == 0, f"{command}\n{done.stdout}"
    return done.stdout


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
        cls.ours = ElementTree.parse(args.wsdl).getroot()
        cls.generated = ElementTree.parse(args.generated).getroot()

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

    def test_it_stands_alone_but_for_one_placeholder(self):
        self.assertNotIn("schemaLocation", args.wsdl.read_text())
        self.assertEqual(args.wsdl.read_text().count(PLACEHOLDER), 1)
        self.assertEqual(self.ours.find(f".//{SOAP}address").get("location"), PLACEHOLDER)

    def test_the_generator_reads_it_back(self):
        with tempfile.TemporaryDirectory() as folder:
            header = f"{folder}/readBack.h"
            run(args.wsdl2h, "-o", header, str(args.wsdl))
            run(args.soapcpp2, "-1", "-x", "-L", "-S", "-i", f"-d{folder}", f"-I{args.imports}",
                header)
            skeleton = pathlib.Path(folder, "soapSanApiPortBindingService.h").read_text()
        self.assertEqual(re.findall(r"virtual int (\w+)\(ns1__", skeleton),
                         [name for name, _ in operations_of(self.ours)])


class Samples(unittest.TestCase):
    """The golden samples, which the wire tests read and write, are valid by the schema."""

    def test_samples_are_valid(self):
        root = ElementTree.parse(args.wsdl).getroot()
        prefixes = [found for _, found in ElementTree.iterparse(args.wsdl, ["start-ns"])
                    if re.match("ns[13]|x(op|mime)", found[0])]
        for schema in root.iter(XS + "schema"):
            for imported in schema.iter(XS + "import"):
                imported.set("schemaLocation", self.file_of(imported.get("namespace")))
        with tempfile.TemporaryDirectory() as folder:
            for schema in root.iter(XS + "schema"):
                for prefix, uri in prefixes:  # in values, which the writer does not look at
                    schema.set(f"xmlns:{prefix}", uri)
                path = pathlib.Path(folder) / self.file_of(schema.get("targetNamespace"))
                ElementTree.ElementTree(schema).write(path)
            parts = list(self.parts(pathlib.Path(folder)))
            self.assertGreater(len(parts), 26)
            run("xmllint", "--noout", "--schema", f"{folder}/{self.file_of(SERVICE)}", *parts)

    @staticmethod
    def file_of(namespace):
        return re.sub(r"\W", "_", namespace) + ".xsd"

    @staticmethod
    def parts(folder):
        """Each header and body element of the samples as a file of its own."""
        envelope = "{http://schemas.xmlsoap.org/soap/envelope/}"
        for sample in sorted(args.samples.glob("*.xml")):
            root = ElementTree.parse(sample).getroot()
            for number, part in enumerate(root.findall(f"{envelope}Header/*")
                                          + root.findall(f"{envelope}Body/*")):
                if part.tag.startswith(envelope):
                    continue  # a fault
                path = folder / f"{sample.stem}.{number}.xml"
                ElementTree.ElementTree(part).write(path)
                yield str(path)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *unittest_args])
