#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "tests/apiMgmt/apiStub/base/errorOf.h"

namespace {

/// Compares each class of one kind with what its registry makes, which holds no other.
template <class Base, class Check>
void forEachClass(const std::string& kind, Check check) {
    const auto& registry = APIRegistryOf<Base>::Instance();
    std::vector<std::string> stated;
    std::vector<std::string> registered;
    for (const auto& [name, creator] : registry.GetCreators()) {
        registered.push_back(name);
    }
    for (const ClassFact& fact : allFacts()) {
        if (fact.kind != kind) {
            continue;
        }
        SCOPED_TRACE(fact.name);
        stated.push_back(fact.method.empty() ? fact.object
                                             : "API" + fact.object + fact.method + "Method");
        const std::unique_ptr<Base> made = registry.CreateObject(stated.back());
        if (made == nullptr) {
            continue;  // told below
        }
        EXPECT_EQ(made->GetObjectName(), fact.object);
        std::vector<std::string> rows;
        for (const BASEApiAttribute* attribute : made->GetAttributeList()) {
            rows.push_back(describeAttribute(*attribute));
            EXPECT_EQ(made->GetAttributeByName(attribute->GetXmlName())->GetXmlName(),
                      attribute->GetXmlName());
        }
        EXPECT_EQ(differenceFromFacts(fact.name, fact.listedRows, rows), "");
        check(*made, fact);
    }
    std::sort(stated.begin(), stated.end());
    EXPECT_EQ(
        differenceFromFacts("what is registered, " + kind + " by " + kind, stated, registered), "");
}

std::string requiredError(const BASEApiMethod& method) {
    return errorOf([&] { method.ValidateRequiredAttributes(); }).what();
}

TEST(SdkFacts, ObjectsAndRecordsHaveTheStatedAttributes) {
    forEachClass<BASEApiObject>("object", [](const auto&, const auto&) {});
    forEachClass<BASEApiMethodObject>("record", [](const auto&, const auto&) {});
}

TEST(SdkFacts, MethodsAreAsStated) {
    const auto server = APIObjectRegistry::Instance().CreateObject("TarnServer");
    forEachClass<BASEApiMethod>("method", [&](BASEApiMethod& method, const ClassFact& fact) {
        const bool async = fact.words.at("async")[0] == "true";
        EXPECT_EQ(method.GetMethodName(), fact.method);
        EXPECT_EQ(method.AsyncAllowed(), async);
        EXPECT_EQ(server->AsyncAllowed(fact.object, fact.method), async);
        EXPECT_EQ(std::to_string(static_cast<int>(method.GetMinUserPriv())),
                  fact.words.at("privilege")[0]);
        EXPECT_FALSE(method.IsAssociation());
        for (const std::string& name : fact.words.at("requires")) {
            EXPECT_EQ(requiredError(method), "Required attribute " + name + " not set");
            method.PutStringDirect(name, "");  // an empty text counts
        }
        EXPECT_EQ(requiredError(method), "");
        // Also what the class does not declare is written; only what it says unwritten is not.
        method.PutStringDirect("Undeclared", "");
        for (const AttributeFact& attribute : fact.attributes) {
            method.PutStringDirect(attribute.xmlName, "");
        }
        const std::string document = method.GetXMLString(false, true);
        for (const AttributeFact& attribute : fact.attributes) {
            EXPECT_EQ(document.find("<" + attribute.xmlName + ">") != std::string::npos,
                      attribute.listed);
        }
        EXPECT_NE(document.find("<Undeclared></Undeclared>"), std::string::npos);
    });
    EXPECT_FALSE(server->AsyncAllowed("TarnHostCache", "NoSuchMethod"));
}

template <class Association>
void checkAssociation(const ClassFact& fact) {
    SCOPED_TRACE(fact.name);
    const Association empty;
    EXPECT_EQ(empty.GetObjectName(), fact.object);
    EXPECT_EQ(empty.GetMethodName(), fact.method);
    EXPECT_FALSE(empty.AsyncAllowed());
    EXPECT_EQ(empty.GetMinUserPriv(), UserPrivilegeEnum::Reporter);
    EXPECT_TRUE(empty.IsAssociation());
    EXPECT_EQ(requiredError(empty), "InstanceID not specified for association [" + fact.object +
                                        "::" + fact.method + "]");
    EXPECT_EQ(requiredError(Association("101.5")), "");
    const Association fromMap(typename Association::ValueMap{{"InstanceId", "101.5"}});
    EXPECT_EQ(fromMap.GetInstanceId(), "101.5");
}

TEST(SdkFacts, AssociationsAreAsStated) {
    using HostCache = APITarnHostCache;
    using Server = APITarnServer;
    constexpr void (*kChecks[])(const ClassFact&) = {
        checkAssociation<HostCache::APITarnHostCacheServerListAssociation>,
        checkAssociation<Server::APITarnServerHostCacheAssociation>,
        checkAssociation<Server::APITarnServerStorageUsageAssociation>,
        checkAssociation<Server::APITarnServerTarnAssociation>,
        checkAssociation<Server::APITarnServerSaServerListAssociation>,
        checkAssociation<Server::APITarnServerPathListAssociation>,
        checkAssociation<Server::APITarnServerMappingProfileListAssociation>,
        checkAssociation<Server::APITarnServerMappingListAssociation>,
        checkAssociation<Server::APITarnServerHbaListAssociation>,
    };
    std::size_t checked = 0;
    for (const ClassFact& fact : allFacts()) {
        if (fact.kind == "association") {
            ASSERT_LT(checked, std::size(kChecks));
            kChecks[checked++](fact);
        }
    }
    EXPECT_EQ(checked, std::size(kChecks));
}

TEST(SdkEnumerations, TransportTypesAreBitsAndUnknownTextsAreUnknown) {
    const struct {
        const char *text, *display;
        int value;
    } cases[] = {
        {"Unknown", "Unknown", 1}, {"FibreChannel", "Fibre Channel", 2},
        {" iscsi ", "iSCSI", 4},   {"Sas", "SAS", 8},
        {"Token", "Unknown", 1},   {"", "Unknown", 1},
    };
    for (const auto& test : cases) {
        APINorvaneInterfaceInformation interface;
        interface.PutStringDirect("InterfaceType", test.text);
        const auto type = interface.GetInterfaceType();
        EXPECT_EQ(static_cast<int>(type), test.value) << test.text;
        EXPECT_EQ(gFrontEndTransportTypeEnumIdStrList.GetDisplayText(type), test.display);
    }
}

}  // namespace
