#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"

namespace {

using testing::HasSubstr;
using Values = BASEApiMethod::ValueMap;

/// The message id and text of the check of one value; id 0 when it passes.
template <class Check>
std::pair<unsigned, std::string> Judge(Check check) {
    try {
        check();
    } catch (const APIMethodError& error) {
        EXPECT_EQ(error.GetErrorState(), ErrorStateEnum::ParsingError);
        return {error.GetLocalizedMsgId(), error.what()};
    }
    return {0, ""};
}

TEST(SdkValidation, MethodsJudgeByTheirOwnDeclaration) {
    const struct {
        const char* key;
        const char* attribute;
        std::string value;
        unsigned id;
        const char* quoted;
    } cases[] = {
        {"TarnHostCacheRemoveHccFromSan", "HccId", "", 0, ""},
        {"TarnHostCacheRenameHccInSan", "Name", "", 10763, "\"Name\" was \"\" [0 characters"},
        {"TarnHostCacheMakeDataUnavailable", "HccId", "", 10763, "\"Norvane Cluster ID\""},
        {"TarnHostCacheSnapshotPrepareComplete", "SanId", "", 10763, "\"San Id\""},
        {"TarnHostCacheRemoveServer", "SanId", "", 10763, "\"Tarn Serial Number\""},
        {"TarnHostCacheFlushComplete", "SanOpaque", "", 10763, "\"San Opaque\""},
        {"TarnServerDelete", "ManagementApplication", std::string(128, 'x'), 0, ""},
        {"TarnServerDelete", "ManagementApplication", std::string(129, 'x'), 10764, "129"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(std::string(test.key) + " " + test.attribute);
        const auto method =
            APIMethodRegistry::Instance().CreateObject("API" + std::string(test.key) + "Method");
        ASSERT_NE(method, nullptr);
        method->PutStringDirect(test.attribute, test.value);
        const auto [id, text] = Judge([&] { method->ValidateAttributes(); });
        EXPECT_EQ(id, test.id);
        EXPECT_THAT(text, HasSubstr(test.quoted));
    }
}

TEST(SdkValidation, ObjectsAndRecordsHaveTheirBounds) {
    const struct {
        const BASEApiAttribute* attribute;
        std::string value;
        unsigned id;
        const char* quoted;
    } cases[] = {
        {APITarnServer::GetNameAttr(), std::string(96, 'x'), 0, ""},
        {APITarnServer::GetNameAttr(), std::string(97, 'x'), 10764, "no more than 96"},
        {APITarnServer::GetNameAttr(), "a>b", 10011, "these characters: <>&"},
        {APITarnServer::GetNotesAttr(), std::string(768, 'x'), 0, ""},
        {APITarnServer::GetNotesAttr(), std::string(769, 'x'), 10764, "\"Notes\""},
        {APITarnServer::GetMaximumPathCountAttr(), "-5000000000", 0, ""},
        {APITarnAdvancedMapping::GetPreferredLunAttr(), "0", 10760, "\"Preferred Lun\" was 0"},
        {APITarnAdvancedMapping::GetPreferredLunAttr(), "4095", 0, ""},
        {APITarnAdvancedMapping::GetPreferredLunAttr(), "4096", 10760,
         "greater than or equal to 1 and less than or equal to 4095"},
        {APIIpv4AddressPort::GetPortAttr(), "0", 0, ""},
        {APIIpv4AddressPort::GetPortAttr(), "-1", 10761, "\"Port\" was -1"},
        {APINorvaneScsiInformation::GetOriginalScsiSerialNumberAttr(), "", 0, ""},
        {APINorvaneScsiInformation::GetAliasScsiSerialNumberAttr(), "", 10763,
         "\"Alias Scsi Serial Number\""},
    };
    for (const auto& test : cases) {
        const auto [id, text] = Judge([&] { test.attribute->Validate(test.value); });
        EXPECT_EQ(id, test.id) << test.attribute->GetXmlName() << " " << test.value;
        EXPECT_THAT(text, HasSubstr(test.quoted));
    }
}

TEST(SdkRequest, OnlyDeclaredAttributesCanBeLeftOut) {
    const std::string stray = "<InstanceId>101.5</InstanceId><LiteObj>1</LiteObj>";
    const struct {
        const char* key;
        Values values;
        std::string written;
    } cases[] = {
        {"TarnHostCacheNewPrimaryCfmAddress",
         {{"HccId", "7"}, {"ManagementIpAddressList", "<Ipv4AddressPort/>"}},
         "<HccId>7</HccId>" + stray},
        {"TarnHostCacheCreateServerCluster",
         {{"AlertOnConnectivity", "True"}, {"Notes", ""}, {"Name", "n"}},
         stray + "<Name>n</Name><Notes></Notes>"},
        {"TarnServerMapToVolume",
         {{"Volume", "101.9 TarnVolume Data"}, {"Unlisted", "u"}},
         stray + "<Unlisted>u</Unlisted><Volume>101.9 TarnVolume Data</Volume>"},
        {"TarnHostCachePing", {}, stray},
    };
    for (const auto& test : cases) {
        const auto method =
            APIMethodRegistry::Instance().CreateObject("API" + std::string(test.key) + "Method");
        ASSERT_NE(method, nullptr);
        for (const auto& [name, value] : test.values)
            method->PutStringDirect(name, value);
        method->PutStringDirect("InstanceId", "101.5");
        method->SetLiteObjectRequest();
        EXPECT_THAT(method->GetXMLString(false, true),
                    HasSubstr("<Attributes>" + test.written + "</Attributes>"))
            << test.key;
    }
}

TEST(SdkRequest, RecordsTravelInsideTheirElement) {
    APIIpv4AddressPort address;
    address.SetIpv4Address("10.0.0.5");
    address.SetPort(3260);
    APIIpv4AddressPort wrong;
    wrong.SetIpv4Address("10.0.0.5<HccId>8</HccId>");

    APITarnHostCache::APITarnHostCacheAddHccToSanMethod method(Values{{"HccId", "7"}});
    method.SetHccName("<Node>");
    method.SetIpv4AddressPortList({&address, &wrong});
    EXPECT_EQ(method.GetXMLString(false, true),
              "<ApiMethod><CommandType>Method</CommandType><Object>TarnHostCache</Object>"
              "<Command>AddHccToSan</Command><Async>false</Async>"
              "<ObjectEncodeType>xml</ObjectEncodeType><Attributes><HccId>7</HccId>"
              "<HccName>&lt;Node&gt;</HccName><Ipv4AddressPortList><Ipv4AddressPort>"
              "<Ipv4Address>10.0.0.5</Ipv4Address><Port>3260</Port></Ipv4AddressPort>"
              "<Ipv4AddressPort><Ipv4Address>0.0.0.0</Ipv4Address></Ipv4AddressPort>"
              "</Ipv4AddressPortList></Attributes></ApiMethod>");
}

TEST(SdkEnumerations, TransportTypesAreBitsAndUnknownTextsAreUnknown) {
    APINorvaneInterfaceInformation interface;
    EXPECT_EQ(interface.GetInterfaceType(), FrontEndTransportTypeEnum::Unknown);
    const struct {
        const char* text;
        int value;
    } cases[] = {{"Unknown", 1}, {"FibreChannel", 2}, {" iscsi ", 4}, {"Sas", 8}, {"Token", 1}};
    for (const auto& test : cases) {
        interface.PutStringDirect("InterfaceType", test.text);
        EXPECT_EQ(static_cast<int>(interface.GetInterfaceType()), test.value) << test.text;
    }
    const auto& list = gFrontEndTransportTypeEnumIdStrList;
    EXPECT_EQ(list.GetDisplayText(FrontEndTransportTypeEnum::FibreChannel), "Fibre Channel");
    EXPECT_EQ(list.GetDisplayText(FrontEndTransportTypeEnum::Iscsi), "iSCSI");
    EXPECT_EQ(list.GetDisplayText(FrontEndTransportTypeEnum::Sas), "SAS");
}

}  // namespace
