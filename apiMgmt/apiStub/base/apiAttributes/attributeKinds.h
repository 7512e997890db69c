#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/apiAttributes/attributeBounds.h"
#include "apiMgmt/apiStub/base/apiAttributes/booleanApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/dateTimeApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/enumApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"
#include "apiMgmt/apiStub/base/apiAttributes/enumMaskApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/getListFilterApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/instanceIdApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/intApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/ipv4AddressApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/methodObjectApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/methodObjectArrayApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/nameApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/objectApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/objectArrayApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/stringApiAttribute.h"
#include "apiMgmt/apiStub/base/apiAttributes/stringArrayApiAttribute.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectInstance.h"
#include "apiMgmt/apiStub/base/filters/dateTimeObject.h"
#include "apiMgmt/apiStub/base/filters/getListFilter.h"
#include "apiMgmt/common/xmlParser/xmlParser.h"

/// The kinds that an attribute row can name. Each says
///
/// - `Attribute`: its descriptor; `Make`: builds one from a row's columns, with bounds only where
///   the kind has them;
/// - `Value`, `Argument`: what the typed getter returns and the typed setter takes;
/// - `Print`, `Parse`: typed value to text and back;
/// - `kIsMarkup`: the text is XML whose values are escaped already.
///
/// To add a kind: derive its descriptor from BASEApiAttribute and add a struct here.
namespace apiKind {

template <class AttributeType, class ValueType, class ArgumentType = const ValueType&>
struct UNBOUNDED {
    using Attribute = AttributeType;
    using Value = ValueType;
    using Argument = ArgumentType;
    static constexpr bool kIsMarkup = false;

    static Attribute Make(const char* xmlName, const char* displayName, int code) {
        return Attribute(xmlName, code, false, displayName);
    }
    static std::string Print(const Attribute& attribute, Argument value) {
        return attribute.ToString(value);
    }
    static Value Parse(const Attribute& attribute, const std::string& text) {
        return attribute.ParseString(text);
    }
};

/// For kinds whose value is its own text: printing makes no copy.
struct PLAINText {
    using Value = std::string;
    using Argument = const std::string&;
    static constexpr bool kIsMarkup = false;

    static const std::string& Print(const BASEApiAttribute& /*attribute*/,
                                    const std::string& value) {
        return value;
    }
    static std::string Parse(const BASEApiAttribute& /*attribute*/, const std::string& text) {
        return text;
    }
};

struct BOOLEAN : UNBOUNDED<BOOLEANApiAttribute, bool, bool> {};
struct IPV4ADDRESS : UNBOUNDED<IPV4ADDRESSApiAttribute, std::string> {};
struct STRINGARRAY : UNBOUNDED<STRINGARRAYApiAttribute, std::vector<std::string>> {};
struct OBJECT
    : UNBOUNDED<OBJECTApiAttribute, std::unique_ptr<APIObjectInstance>, const APIObjectInstance&> {
};
struct OBJECTARRAY : UNBOUNDED<OBJECTARRAYApiAttribute, std::vector<APIObjectInstance>> {};
struct GETLISTFILTER : UNBOUNDED<GETLISTFILTERApiAttribute, GETListFilter> {};
struct DATETIME : UNBOUNDED<DATETIMEApiAttribute, DATETimeObject> {};

struct INSTANCEID : PLAINText {
    using Attribute = INSTANCEIDApiAttribute;
    static Attribute Make(const char* xmlName, const char* displayName, int code) {
        return Attribute(xmlName, code, false, displayName);
    }
};

struct INT : UNBOUNDED<INTApiAttribute, std::int64_t, std::int64_t> {
    static Attribute Make(const char* xmlName, const char* displayName, int code,
                          VALUEBounds bounds) {
        return {xmlName, code, false, bounds.minimum, bounds.maximum, displayName};
    }
};

struct STRING : PLAINText {
    using Attribute = STRINGApiAttribute;
    static Attribute Make(const char* xmlName, const char* displayName, int code,
                          VALUEBounds bounds) {
        return {xmlName, code, false, bounds.minimum, bounds.maximum, displayName};
    }
    static Attribute Make(const char* xmlName, const char* displayName, int code,
                          TEXTBounds bounds) {
        return {xmlName,          code, false,      bounds.minimum, bounds.maximum,
                bounds.forbidden, "",   displayName};
    }
};

struct NAME : PLAINText {
    using Attribute = NAMEApiAttribute;
    static Attribute Make(const char* xmlName, const char* displayName, int code,
                          VALUEBounds bounds) {
        return {xmlName, code, false, false, bounds.minimum, bounds.maximum, displayName};
    }
};

/// An item of the enumeration's list (API_ENUM_LIST).
template <class Enum>
struct ENUM : UNBOUNDED<ENUMApiAttribute, Enum, Enum> {
    static std::string Print(const ENUMApiAttribute& attribute, Enum value) {
        return attribute.ToString(GetEnumIdStrList(value).GetXmlName(value));
    }
    static Enum Parse(const ENUMApiAttribute& attribute, const std::string& text) {
        return GetEnumIdStrList(Enum{}).GetId(attribute.ParseString(text));
    }
};

/// Any number of items of the enumeration's list.
template <class Enum>
struct ENUMMASK : UNBOUNDED<ENUMMASKApiAttribute, std::vector<Enum>> {
    static std::string Print(const ENUMMASKApiAttribute& attribute,
                             const std::vector<Enum>& value) {
        std::vector<std::string> names;
        names.reserve(value.size());
        for (const Enum item : value) {
            names.push_back(GetEnumIdStrList(item).GetXmlName(item));
        }
        return attribute.ToString(names);
    }
    static std::vector<Enum> Parse(const ENUMMASKApiAttribute& attribute, const std::string& text) {
        std::vector<Enum> items;
        for (const std::string& name : attribute.ParseString(text)) {
            items.push_back(GetEnumIdStrList(Enum{}).GetId(name));
        }
        return items;
    }
};

/// One record; the getter gives a new one, null when the text holds none.
template <class Record>
struct METHODOBJECT : UNBOUNDED<METHODOBJECTApiAttribute, std::unique_ptr<Record>, const Record&> {
    static constexpr bool kIsMarkup = true;
    static std::unique_ptr<Record> Parse(const METHODOBJECTApiAttribute& /*attribute*/,
                                         const std::string& text) {
        auto record = std::make_unique<Record>();
        return record->Parse(text) ? std::move(record) : nullptr;
    }
};

/// Records; the setter only reads the pointers, the getter gives new records.
template <class Record>
struct METHODOBJECTARRAY
    : UNBOUNDED<METHODOBJECTARRAYApiAttribute, std::vector<std::unique_ptr<Record>>,
                const std::vector<const BASEApiMethodObject*>&> {
    static constexpr bool kIsMarkup = true;
    static std::vector<std::unique_ptr<Record>> Parse(
        const METHODOBJECTARRAYApiAttribute& /*attribute*/, const std::string& text) {
        std::vector<std::unique_ptr<Record>> records;
        parser::XMLParser reader(nullptr);
        if (!reader.ParseXMLString("<list>" + text + "</list>")) {
            return records;
        }
        const auto elements =
            reader.GetDocumentElement()->GetChildElemsByTagName(Record::GetObjectNameStatic());
        for (const parser::XMLElement* element : elements) {
            records.emplace_back(std::make_unique<Record>())->ParseElemNode(element);
        }
        return records;
    }
};

}  // namespace apiKind
