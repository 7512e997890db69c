#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/attributeRow.h"
#include "apiMgmt/apiStub/base/apiObjects/base/attributeValues.h"

/// A small record that is passed as an argument of a method or comes back in a reply.
///
///     class APIIpv4AddressPort : public BASEApiMethodObject {
///         API_METHOD_OBJECT(Ipv4AddressPort);
///         //            XML name     display name    kind         code bounds
///         API_ATTRIBUTE(Ipv4Address, "IPv4 Address", IPV4ADDRESS, 20);
///         API_ATTRIBUTE(Port,        "Port",         INT,         20,  AtLeast(0));
///         API_ATTRIBUTE_LIST(Ipv4Address, Port);
///     };
///     API_REGISTER_METHOD_OBJECT(APIIpv4AddressPort);   // in its .cpp
class BASEApiMethodObject : public ATTRIBUTEValues {
public:
    virtual ~BASEApiMethodObject();

    /// The record's type, such as "Ipv4AddressPort".
    virtual const std::string& GetObjectName() const = 0;
    virtual const APIAttributeList& GetAttributeList() const = 0;

    /// The attribute with that XML name, or null.
    const BASEApiAttribute* GetAttributeByName(const std::string& name) const;

    /// One element named after the record that holds one for each set attribute, in list order,
    /// without blanks between. With `escape`, values are XML-escaped.
    std::string ToXMLString(bool escape) const;
    /// Appends the same to `xml`.
    void AppendXMLString(std::string& xml, bool escape) const;
    /// Takes over what ToXMLString(true) wrote; false, and no change, when the text is no XML.
    bool Parse(const std::string& text);
    /// Takes over the content of each child element under its tag, also of unknown ones. Null has
    /// none. The element is only read.
    void ParseElemNode(const parser::XMLElement* element);

protected:
    BASEApiMethodObject() = default;
    BASEApiMethodObject(const BASEApiMethodObject&) = default;
    BASEApiMethodObject& operator=(const BASEApiMethodObject&) = default;
};

/// What a class states first: the record's type and that its own list is its list.
#define API_METHOD_OBJECT(Name)     \
public:                             \
    API_NAME(GetObjectName, #Name); \
    API_OWN_LIST()
