#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <typeindex>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

// Every typed setter and getter of every class, driven on an object that the registry made.
namespace {

/// For each type that a getter returns: a text that is stored, which no unset attribute reads as.
// clang-format off
const std::map<std::type_index, std::string> kSamples = {
    {typeid(bool),                               "True"},
    {typeid(std::int64_t),                       "5000000000"},
    {typeid(std::string),                        "10.1.2.3"},  // also an address
    {typeid(DATETimeObject),                     "11/14/2026 03:04:05 PM"},
    {typeid(GETListFilter),                      "or Name = My&hy&Volume-"},
    {typeid(std::unique_ptr<APIObjectInstance>), "101.5 TarnServer My: <Server>"},
    {typeid(std::vector<APIObjectInstance>),     "101.5 TarnServer My-co- Server:101.6 TarnServer Other"},
    {typeid(std::vector<std::string>),           "a-co-b:c"},
};
// clang-format on

template <class Value>
std::string sampleOf(const Value*) {
    return kSamples.at(typeid(Value));
}
template <class Enum>
requires std::is_enum_v<Enum> std::string sampleOf(const Enum*) {
    return GetEnumIdStrList(Enum{}).GetRows().back().xmlName;
}
template <class Enum>
requires std::is_enum_v<Enum> std::string sampleOf(const std::vector<Enum>*) {
    const auto rows = GetEnumIdStrList(Enum{}).GetRows();
    return std::string(rows.back().xmlName) + " " + rows.front().xmlName;
}
template <std::derived_from<BASEApiMethodObject> Record>
std::string sampleOf(const std::unique_ptr<Record>*) {
    Record record;
    record.PutStringDirect(record.GetAttributeList().front()->GetXmlName(), "a<b");
    return record.ToXMLString(true);
}
template <class Record>
std::string sampleOf(const std::vector<std::unique_ptr<Record>>*) {
    const std::unique_ptr<Record>* each = nullptr;
    return sampleOf(each) + Record().ToXMLString(true);
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
std::shared_ptr<ATTRIBUTEValues> makeFromRegistry() {
    const auto made = [](auto object) {
        return std::dynamic_pointer_cast<Class>(std::shared_ptr(std::move(object)));
    };
    const std::string& object = Class::GetObjectNameStatic();
    if constexpr (std::is_base_of_v<BASEApiMethod, Class>) {
        return made(APIMethodRegistry::Instance().CreateObject(
            "API" + object + Class::GetMethodNameStatic() + "Method"));
    } else if constexpr (std::is_base_of_v<BASEApiObject, Class>) {
        return made(APIObjectRegistry::Instance().CreateObject(object));
    } else {
        return made(APIMethodObjectRegistry::Instance().CreateObject(object));
    }
}

// Knows the type of the value and not the class, so that it is compiled for each type once.
template <class Value>
void drive(const std::string& name, std::shared_ptr<ATTRIBUTEValues> (*make)(), bool escapes,
           Value (*get)(const ATTRIBUTEValues&), void (*set)(ATTRIBUTEValues&, const Value&)) {
    const std::string sample = sampleOf(static_cast<const Value*>(nullptr));
    const auto from = make(), to = make();
    ASSERT_NE(to, nullptr);
    EXPECT_FALSE(to->IsAttributeSet(name));
    get(*to);  // an unset attribute can be read
    from->PutStringDirect(
        name, escapes && sample[0] != '<' ? STRINGUtil::EscapeString(sample, false) : sample);
    set(*to, get(*from));
    EXPECT_EQ(to->GetStringDirect(name), from->GetStringDirect(name));
    EXPECT_EQ(to->AllValues().size(), 1U);
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

#define ACCESSOR(XmlName)                                                                        \
    Accessor{#XmlName, Class::Get##XmlName##Attr(), [] {                                         \
                 using Value = decltype(std::declval<const Class&>().Get##XmlName());            \
                 drive<Value>(                                                                   \
                     #XmlName, makeFromRegistry<Class>, std::is_base_of_v<BASEApiMethod, Class>, \
                     [](const ATTRIBUTEValues& owner) {                                          \
                         return static_cast<const Class&>(owner).Get##XmlName();                 \
                     },                                                                          \
                     [](ATTRIBUTEValues& owner, const Value& value) {                            \
                         static_cast<Class&>(owner).Set##XmlName(argumentOf(value));             \
                     });                                                                         \
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
