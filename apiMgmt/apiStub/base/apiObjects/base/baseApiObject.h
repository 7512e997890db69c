#pragma once

#include <map>
#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/apiAttributes/attributeRow.h"
#include "apiMgmt/apiStub/base/apiObjects/base/attributeValues.h"
#include "apiMgmt/apiStub/base/apiObjects/base/objectReturnEncodeEnum.h"

/// An object of the management API: a server, a host cache, the status of a reply. Its values are
/// texts; attribute rows give the typed access.
///
///     class APITarnServer : public TARNStatusBaseApiObject {
///         API_OBJECT(TarnServer);
///         //            XML name  display name  kind    code bounds
///         API_ATTRIBUTE(Name,     "Name",       STRING, 20,  Between(1, 96).Forbidding("<>&"));
///         API_ATTRIBUTE(PathCount,"Path Count", INT,    20,  AtLeast(0));
///         API_ATTRIBUTE_LIST_THEN(TARNStatusBaseApiObject, Name, PathCount);
///     };
///     API_REGISTER_OBJECT(APITarnServer);   // in its .cpp
class BASEApiObject : public ATTRIBUTEValues {
public:
    /// Which attributes a CSV text holds: those that are mapped to true.
    using SelectionMap = std::map<std::string, bool>;

    virtual ~BASEApiObject();

    /// The type's name, such as "TarnServer".
    virtual const std::string& GetObjectName() const = 0;
    /// Whether the method of that name may run asynchronously; false for an unknown method.
    virtual bool AsyncAllowed(const std::string& objectName, const std::string& methodName) const;
    virtual const APIAttributeList& GetAttributeList() const = 0;
    /// Builds the list now instead of at its first use.
    virtual void InitializeAttributeLists() const = 0;

    // clang-format off
    //            XML name      display name     kind        code bounds
    API_ATTRIBUTE(InstanceId,   "Instance ID",   INSTANCEID, 30);
    API_ATTRIBUTE(InstanceName, "Instance Name", NAME,       50,  AtLeast(1));
    API_ATTRIBUTE(ObjectType,   "",              STRING,     15,  AtLeast(1));  // has no display name
    // clang-format on
    API_ATTRIBUTE_LIST(InstanceId, InstanceName, ObjectType);

    using ATTRIBUTEValues::PutStringDirect;
    /// With `escaped`, the text still carries XML references and is stored without them.
    void PutStringDirect(const std::string& name, const std::string& value, bool escaped);

    /// The attribute with that XML name, or null.
    const BASEApiAttribute* GetAttributeByName(const std::string& name) const;
    /// A reference to this object.
    APIObjectInstance GetObjectIdentifier() const;

    /// Xml: the object's element with escaped values. Csv: header line and data line. CsvData:
    /// the data line. An asynchronous task ("AsyncTask") shows every attribute in its element,
    /// unset ones empty, so that who polls it always finds the same fields.
    std::string ToString(ObjectReturnEncodeEnum encode) const;
    /// Takes over the content of each child element, under its tag.
    void ParseElemNode(const parser::XMLElement* element);

    /// XML names, separated by commas, in list order: of the object's attributes, of the given
    /// ones, or of those that the selection names (ones that the object does not know come last).
    /// No line end.
    std::string CreateCSVHeader() const;
    static std::string CreateCSVHeader(const APIAttributeList& attributes);
    std::string CreateCSVHeader(const SelectionMap& selection) const;
    /// The values in the order of the header; comma, line feed and colon are escaped.
    std::string CreateCSVData() const;
    std::string CreateCSVData(const APIAttributeList& attributes) const;
    std::string CreateCSVData(const SelectionMap& selection) const;
    /// Both, with a line feed between.
    std::string CreateCSVHeaderAndData() const;
    std::string CreateCSVHeaderAndData(const APIAttributeList& attributes) const;
    std::string CreateCSVHeaderAndData(const SelectionMap& selection) const;
    /// The attributes that a header names, in its order; null for one that the object has not.
    APIAttributeList ParseCSVHeader(const std::string& header) const;
    /// Takes over the values of a data line, whose columns these are. An empty value leaves its
    /// attribute unset; one without an attribute is passed over.
    void ParseCSVData(const APIAttributeList& columns, const std::string& data);
    /// All attribute names of the objects, each mapped to whether an object has it set.
    static SelectionMap GetCombinedAttributeNameList(
        const std::vector<const BASEApiObject*>& objects);

protected:
    BASEApiObject() = default;
    BASEApiObject(const BASEApiObject&) = default;
    BASEApiObject& operator=(const BASEApiObject&) = default;

private:
    std::vector<std::string> SelectNames(const SelectionMap& selection) const;
    std::string JoinValues(const std::vector<std::string>& names) const;
    std::string ToXMLString() const;
};

/// What a class states first: the type's name and that its own list is its list.
#define API_OBJECT(Name)                             \
public:                                              \
    API_NAME(GetObjectName, #Name);                  \
    API_OWN_LIST();                                  \
    void InitializeAttributeLists() const override { \
        GetAttributeList();                          \
    }                                                \
    static_assert(true)
