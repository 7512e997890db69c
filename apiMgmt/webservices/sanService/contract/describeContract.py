"""Makes the service description (WSDL) that clients load.

soapcpp2 writes a description of the definitions, which says everything about types and operations
but cannot be served: it imports schemas by their addresses, names localhost, leaves the header out
of the operations, calls the choice of an address optional, and has no element for a message that is
not served. Here its types and operations are put into a description that stands alone, with the
documentation that the definitions carry (/// above a type, ///< behind a member).

Whatever is met and not expected ends with an error, so that nothing gets lost on the way.
"""
import re
import sys
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import escape, quoteattr

XS = "{http://www.w3.org/2001/XMLSchema}"
WSDL = "{http://schemas.xmlsoap.org/wsdl/}"
SERVICE = "urn:san-api:service"
VERSION = "urn:san-api:version"
HEADER = "HccApiHeader"
# The web server puts the address in its place by which a client came.
ADDRESS = "@SERVICE_ADDRESS@"

FRAME = """<?xml version="1.0" encoding="UTF-8"?>
<!-- Made in the build from the definitions of the contract. Everything is in this one file: nothing
     has to be fetched from elsewhere. -->
<definitions name="SanApi"
    targetNamespace="urn:san-api:service"
    xmlns="http://schemas.xmlsoap.org/wsdl/"
    xmlns:soap="http://schemas.xmlsoap.org/wsdl/soap/"
    xmlns:xs="http://www.w3.org/2001/XMLSchema"
    xmlns:xop="http://www.w3.org/2004/08/xop/include"
    xmlns:xmime="http://www.w3.org/2004/06/xmlmime"
    xmlns:ns3="urn:san-api:version"
    xmlns:ns1="urn:san-api:service">

  <types>
    <!-- The two attachment schemas, as far as dataAttachment needs them. -->
    <xs:schema targetNamespace="http://www.w3.org/2004/08/xop/include">
      <xs:element name="Include" type="xop:Include"/>
      <xs:complexType name="Include">
        <xs:attribute name="href" type="xs:anyURI" use="required"/>
      </xs:complexType>
    </xs:schema>

    <xs:schema targetNamespace="http://www.w3.org/2004/06/xmlmime">
      <xs:attribute name="contentType" type="xs:string"/>
    </xs:schema>

    <xs:schema targetNamespace="urn:san-api:version">
{version}
    </xs:schema>

    <xs:schema targetNamespace="urn:san-api:service" elementFormDefault="unqualified"
        attributeFormDefault="unqualified">
      <xs:import namespace="http://www.w3.org/2004/08/xop/include"/>
      <xs:import namespace="http://www.w3.org/2004/06/xmlmime"/>

{types}
    </xs:schema>
  </types>

{messages}

  <portType name="SanApi">
{operations}
  </portType>

  <binding name="SanApiPortBinding" type="ns1:SanApi">
    <soap:binding style="document" transport="http://schemas.xmlsoap.org/soap/http"/>
{bindings}
  </binding>

  <service name="SanApiService">
    <port name="SanApiPort" binding="ns1:SanApiPortBinding">
      <soap:address location="{address}"/>
    </port>
  </service>
</definitions>
"""

OPERATION = """    <operation name="{name}">
      <documentation>{documentation}</documentation>
      <input message="ns1:{name}"/>
      <output message="ns1:{name}Response"/>
    </operation>"""

BOUND = """        <soap:header message="ns1:HccApiHeader" part="HccApiHeader" use="literal"/>
        <soap:body parts="parameters" use="literal"/>"""
BINDING = f"""    <operation name="{{name}}">
      <soap:operation soapAction=""/>
      <input>
{BOUND}
      </input>
      <output>
{BOUND}
      </output>
    </operation>"""


def refuse(problem):
    sys.exit(f"The service description cannot be made: {problem}")


def wire_name(identifier):
    """The name that a C++ identifier of the definitions has on the wire."""
    return identifier.removesuffix("_").replace("_x0020", " ").replace("_", "-")


def read_documentation(definitions):
    """The documentation of each type ("Ping") and member ("Ping/sanId") in the definition files."""
    found = {}
    for path in definitions:
        above, owner = [], None
        for line in path.read_text(encoding="utf-8").splitlines():
            if comment := re.match(r"/// (.+)", line):
                above.append(comment[1])
                continue
            if opened := re.match(r"(?:class|enum) _?(?:ns\d|xsd)__(\w+) \{", line):
                owner = opened[1]
                if above:
                    found[owner] = " ".join(above)
                    above = []
            if behind := re.search(r"(\w+)(?: nullptr)?(?: [01])?[;,]? +///< (.+)", line):
                member = behind[1].removeprefix(f"ns1__{owner}__")
                found[f"{owner}/{wire_name(member)}"] = behind[2]
            elif "///" in line and not line.startswith("//"):
                refuse(f"{path.name}: what does this belong to? {line}")
            if above:
                refuse(f"{path.name}: /// stands above a class or an enumeration, not above {line}")
    return found


class Schema:
    """Writes types as the generator states them, with the documentation of the definitions."""

    ATTRIBUTES = ("name", "ref", "type", "base", "value", "use", "default", "minOccurs",
                  "maxOccurs", "nillable")
    # What a description need not say.
    DEFAULTS = {("minOccurs", "1"), ("maxOccurs", "1"), ("nillable", "false")}
    CONTENT = {XS + tag for tag in ("simpleType", "restriction", "enumeration", "complexType",
                                    "sequence", "choice", "element", "attribute")}

    def __init__(self, documentation):
        self.documentation = documentation
        self.used = set()

    def text_of(self, key):
        self.used.add(key)
        return self.documentation.get(key)

    def write(self, node, depth, owner=None):
        if node.tag not in self.CONTENT:
            refuse(f"unexpected {node.tag} in {owner}")
        if node.tag == XS + "choice":
            # Exactly one of the children is there. The generator calls all of it optional.
            for optional in (node, *node):
                del optional.attrib["minOccurs"]
        tag = "xs:" + node.tag.removeprefix(XS)
        name = node.get("name") or node.get("value")
        key = f"{owner}/{name}" if owner else name
        # The content of a message is said once, at its operation.
        text = None if owner is None and f"{name}Response" in self.messages else self.text_of(key)
        inner = [line for child in node for line in self.write(child, depth + 1, owner or name)]
        if text:
            note = f"<xs:annotation><xs:documentation>{escape(text)}</xs:documentation>" \
                   "</xs:annotation>"
            inner.insert(0, "  " * (depth + 1) + note)
        opening = f"{'  ' * depth}<{tag}{self.attributes_of(node, owner)}"
        return [f"{opening}>", *inner, f"{'  ' * depth}</{tag}>"] if inner else [f"{opening}/>"]

    def attributes_of(self, node, owner):
        given = dict(node.attrib)
        written = ""
        for name in self.ATTRIBUTES:
            value = given.pop(name, None)
            if value is not None and (name, value) not in self.DEFAULTS:
                written += f" {name}={quoteattr(re.sub('^xsd:', 'xs:', value))}"
        if given:
            refuse(f"unexpected {given} in {owner}")
        return written

    def write_all(self, node):
        types = [child for child in node
                 if child.tag in (XS + "simpleType", XS + "complexType")]
        names = [each.get("name") for each in types]
        self.messages = {name for name in names if name.endswith("Response")}
        elements = [HEADER] if HEADER in names else []
        for name in names:
            if f"{name}Response" in names:
                elements += [name, f"{name}Response"]
        return elements, [line for each in types for line in self.write(each, 3)]


def schema_of(root, namespace):
    found = [each for each in root.iter(XS + "schema") if each.get("targetNamespace") == namespace]
    if len(found) != 1:
        refuse(f"{len(found)} schemas for {namespace}")
    return found[0]


def describe(generated, definitions):
    """The description as a text; `generated` is soapcpp2's, `definitions` are the files."""
    root = ElementTree.parse(generated).getroot()
    schema = Schema(read_documentation(definitions))
    _, version = schema.write_all(schema_of(root, VERSION))
    version.insert(0, '      <xs:element name="SanApiWsdl" type="ns3:SanApiWsdl"/>')
    elements, types = schema.write_all(schema_of(root, SERVICE))
    types[:0] = [f'      <xs:element name="{each}" type="ns1:{each}"/>' for each in elements]
    operations = [each.get("name") for each in root.find(WSDL + "portType")]
    messages = [f'  <message name="{HEADER}"><part name="{HEADER}" element="ns1:{HEADER}"/>'
                "</message>"]
    rows = []
    for name in operations:
        text = schema.text_of(name)
        if not text:
            refuse(f"sanOperations.h: write a line /// above class ns1__{name} that says what it does")
        rows.append(OPERATION.format(name=name, documentation=escape(text)))
        messages += [f'  <message name="{each}"><part name="parameters" element="ns1:{each}"/>'
                     "</message>" for each in (name, f"{name}Response")]
    lost = sorted(set(schema.documentation) - schema.used)
    if lost:
        refuse(f"no place for the documentation of {', '.join(lost)}")
    return FRAME.format(
        version="\n".join(version), types="\n".join(types), messages="\n".join(messages),
        operations="\n".join(rows), address=ADDRESS,
        bindings="\n".join(BINDING.format(name=name) for name in operations))
