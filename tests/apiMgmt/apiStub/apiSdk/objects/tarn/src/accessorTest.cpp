#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

// Every typed setter and getter of every class, driven on an object that the registry made.
namespace {

using namespace std::string_literals;

/// For each type that a getter returns: what its setter is given, and the text that is stored.
template <class Enum>
auto sampleOf(const Enum*) {
    const auto& row = GetEnumIdStrList(Enum{}).GetRows().back();  // no unset attribute reads as it
    return std::pair(row.id, std::string(row.xmlName));
}
auto sampleOf(const bool*) {
    return std::pair(true, "True"s);
}
auto sampleOf(const std::int64_t*) {
    return std::pair(std::int64_t{5000000000}, "5000000000"s);
}
auto sampleOf(const std::string*) {
    return std::pair("10.1.2.3"s, "10.1.2.3"s);  // also an address
}
auto sampleOf(const DATETimeObject*) {
    return std::pair(DATETimeObject("11/14/2026 03:04:05 PM"), "11/14/2026 03:04:05 PM"s);
}
auto sampleOf(const GETListFilter*) {
    return std::pair(
        GETListFilter(GETListFilterType::Or, {{"Name", FILTERType::Equal, "My-Volume"}}),
        "or Name = My&hy&Volume-"s);
}
auto sampleOf(const std::unique_ptr<APIObjectInstance>*) {
    return std::pair(APIObjectInstance("101.5", "TarnServer", "My: <Server>"),
                     "101.5 TarnServer My: <Server>"s);
}
auto sampleOf(const std::vector<APIObjectInstance>*) {
    return std::pair(std::vector<APIObjectInstance>{{"101.5", "TarnServer", "My: Server"},
                                                    {"101.6", "TarnServer", "Other"}},
                     "101.5 TarnServer My-co- Server:101.6 TarnServer Other"s);
}
auto sampleOf(const std::vector<std::string>*) {
    return std::pair(std::vector{"a:b"s, "c"s}, "a-co-b:c"s);
}
template <class Enum>
auto sampleOf(const std::vector<Enum>*) {
    const auto rows = GetEnumIdStrList(Enum{}).GetRows();
    return std::pair(std::vector{rows.back().id, rows.front().id},
                     std::string(rows.back().xmlName) + " " + rows.front().xmlName);
}
template <class Record>
auto sampleOf(const std::unique_ptr<Record>*) {
    Record record;
    record.PutStringDirect(record.GetAttributeList().front()->GetXmlName(), "a<b");
    return std::pair(record, record.ToXMLString(true));
}
template <class Record>
auto sampleOf(const std::vector<std::unique_ptr<Record>>*) {
    static const auto first = sampleOf(static_cast<const std::unique_ptr<Record>*>(nullptr));
    static const Record second;
    return std::pair(std::vector<const BASEApiMethodObject*>{&first.first, &second},
                     first.second + second.ToXMLString(true));
}

/// What a getter returned, for the setter.
template <class Value>
const Value& argumentOf(const Value& value) {
    return value;
}
template <class Value>
const Value& argumentOf(const std::unique_ptr<Value>& value) {
    return *value;
}
template <class Record>
auto argumentOf(const std::vector<std::unique_ptr<Record>>& values) {
    std::vector<const BASEApiMethodObject*> argument;
    argument.reserve(values.size());
    for (const auto& record : values) {
        argument.push_back(record.get());
    }
    return argument;
}

template <class Class>
std::unique_ptr<Class> makeFromRegistry() {
    const std::string& object = Class::GetObjectNameStatic();
    if constexpr (std::is_base_of_v<BASEApiMethod, Class>) {
        auto made = APIMethodRegistry::Instance().CreateObject(
            "API" + object + Class::GetMethodNameStatic() + "Method");
        return std::unique_ptr<Class>(dynamic_cast<Class*>(made.release()));
    } else if constexpr (std::is_base_of_v<BASEApiObject, Class>) {
        auto made = APIObjectRegistry::Instance().CreateObject(object);
        return std::unique_ptr<Class>(dynamic_cast<Class*>(made.release()));
    } else {
        auto made = APIMethodObjectRegistry::Instance().CreateObject(object);
        return std::unique_ptr<Class>(dynamic_cast<Class*>(made.release()));
    }
}

/// A getter, and what it gives for its setter.
template <class Value>
using Get = Value (*)(const ATTRIBUTEValues&);
template <class Value>
using Set = void (*)(ATTRIBUTEValues&,
                     const decltype(sampleOf(static_cast<const Value*>(nullptr)).first)&);

// Knows the type of the value and not the class, so that it is compiled for each type once.
template <class Value>
void drive(const std::string& name, ATTRIBUTEValues* owner, bool escapes, Get<Value> get,
           Set<Value> set) {
    const auto sample = sampleOf(static_cast<const Value*>(nullptr));
    ASSERT_NE(owner, nullptr);
    EXPECT_FALSE(owner->IsAttributeSet(name));
    get(*owner);  // an unset attribute can be read
    set(*owner, sample.first);
    const std::string stored = owner->GetStringDirect(name);
    const bool escaped = escapes && !stored.starts_with('<');
    EXPECT_EQ(escaped ? STRINGUtil::UnEscapeString(stored, false) : stored, sample.second);
    EXPECT_EQ(escaped && stored.find_first_of("<>") != std::string::npos, false);
    EXPECT_EQ(owner->AllValues().size(), 1U);
    const Value value = get(*owner);
    const auto read = argumentOf(value);
    if constexpr (
        requires { read == sample.first; } && !requires { read.front()->AllValues(); }) {
        EXPECT_TRUE(read == sample.first);
    }
    // Records and filters are compared by the text that the setter makes of them.
    owner->PutStringDirect(name, "");
    set(*owner, read);
    EXPECT_EQ(owner->GetStringDirect(name), stored);
}

struct Accessor {
    std::string xmlName;
    const BASEApiAttribute* attribute;
    void (*drive)();
};

struct ClassAccessors {
    std::string fact;  // the class's name in the facts
    std::vector<Accessor> accessors;
};

#define ACCESSOR(XmlName)                                                             \
    Accessor{#XmlName, Class::Get##XmlName##Attr(), [] {                              \
                 using Value = decltype(std::declval<const Class&>().Get##XmlName()); \
                 drive<Value>(                                                        \
                     #XmlName, makeFromRegistry<Class>().get(),                       \
                     std::is_base_of_v<BASEApiMethod, Class>,                         \
                     [](const ATTRIBUTEValues& owner) {                               \
                         return static_cast<const Class&>(owner).Get##XmlName();      \
                     },                                                               \
                     [](ATTRIBUTEValues& owner, const auto& value) {                  \
                         static_cast<Class&>(owner).Set##XmlName(value);              \
                     });                                                              \
             }},

#define ACCESSORS(Fact, Type, ...)                                          \
    [] {                                                                    \
        using Class = Type;                                                 \
        return ClassAccessors{Fact, {API_FOR_EACH(ACCESSOR, __VA_ARGS__)}}; \
    }()
#define METHOD_ACCESSORS(Object, Command, ...)                                           \
    ACCESSORS("method " #Object " " #Command, API##Object::API##Object##Command##Method, \
              __VA_ARGS__)

// One row for each class of facts.txt. What does not compile here, the class lacks: its row in the
// class's header, docs/addingClasses.md.
std::vector<ClassAccessors> allAccessors() {
    return {
#include "accessorRows.inc"
    };
}

TEST(SdkAccessors, SetAndGetEveryAttribute) {
    for (const ClassAccessors& entry : allAccessors()) {
        for (const Accessor& accessor : entry.accessors) {
            SCOPED_TRACE(entry.fact + " " + accessor.xmlName);
            accessor.drive();
        }
    }
}

TEST(SdkAccessors, DescriptorsAreAsStated) {
    std::map<std::string, std::vector<std::string>> found;
    for (const ClassAccessors& entry : allAccessors()) {
        for (const Accessor& accessor : entry.accessors) {
            found[entry.fact].push_back(describeAttribute(*accessor.attribute));
        }
    }
    for (const ClassFact& fact : allFacts()) {
        std::vector<std::string> stated;
        for (const AttributeFact& attribute : fact.attributes) {
            stated.push_back(attribute.row);
        }
        EXPECT_EQ(differenceFromFacts(fact.name, stated, found[fact.name]), "");
    }
}

}  // namespace
