#pragma once

#include <initializer_list>
#include <map>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/attributeRow.h"
#include "apiMgmt/apiStub/base/apiObjects/base/attributeValues.h"
#include "apiMgmt/apiStub/base/apiObjects/base/userPrivilegeEnum.h"

class BASEApiMethodReturn;
class COMPObjectMethodReturn;
class METHODObjectMethodReturn;
struct APIHccReqHeader;
struct RESPErrorInfo;

namespace protoIPCMsg {
class GPBIPCMsg;
}

/// One call of the management API: make one, fill it, execute it once.
///
///     APITarnHostCache::APITarnHostCacheRemoveServerMethod method;
///     method.SetHccId("7");
///     method.SetHcnId("3");
///     std::unique_ptr<BASEApiMethodReturn> answer(method.Execute(&header, nullptr));
///
/// A class is a short table:
///
///     class APITarnHostCache::APITarnHostCacheRemoveServerMethod : public BASEApiMethod {
///         //         object         method        async  privilege
///         API_METHOD(TarnHostCache, RemoveServer, true,  Admin);
///         //            XML name  display name          kind    code bounds
///         API_ATTRIBUTE(HccId,    "Norvane Cluster ID", STRING, 20,  NoBounds);
///         API_ATTRIBUTE(HcnId,    "Norvane Server ID",  STRING, 20,  NoBounds);
///         API_ATTRIBUTE(SanId,    "Tarn Serial Number", STRING, 20,  AtLeast(1));
///         API_ATTRIBUTE_LIST(HccId, HcnId, SanId);
///         API_REQUIRED(HccId, HcnId);
///     };
///     API_REGISTER_METHOD(TarnHostCache, RemoveServer);   // in its .cpp
///
/// A typed setter stores the XML-escaped text and a typed getter undoes that, so no text can
/// break out of its element; PutStringDirect and rendering take texts as they are.
class BASEApiMethod : public ATTRIBUTEValues {
public:
    explicit BASEApiMethod(bool isAssociation = false);
    /// Starts with a copy of these texts, stored exactly as they are.
    explicit BASEApiMethod(const ValueMap& attributes, bool isAssociation = false);
    BASEApiMethod(const BASEApiMethod&) = delete;
    BASEApiMethod& operator=(const BASEApiMethod&) = delete;
    virtual ~BASEApiMethod();

    /// The command, such as "RemoveServer".
    virtual const std::string& GetMethodName() const = 0;
    /// The type of object that it acts on, such as "TarnHostCache".
    virtual const std::string& GetObjectName() const = 0;
    virtual bool AsyncAllowed() const;
    virtual UserPrivilegeEnum GetMinUserPriv() const;
    /// Empty unless a class has a list.
    virtual const APIAttributeList& GetAttributeList() const;
    /// The ApiMethod element of the request document: the stored values in byte order of their
    /// names, as they are stored.
    virtual std::string GetXMLString(bool async, bool xmlEncode) const;
    /// Throws APIMethodError at the first required attribute that is not set, in stated order.
    virtual void ValidateRequiredAttributes() const;
    /// Throws APIMethodError when none of a group of alternatives is set.
    virtual void ValidateRequiredOrAttributes() const;

    static const APIAttributeList& GetAttributeListStatic();

    /// True for a method that leads from an object to related ones.
    bool IsAssociation() const { return m_isAssociation; }
    /// The listed attribute with that XML name, or null.
    const BASEApiAttribute* GetAttributeByName(const std::string& name) const;

    /// Asks the API manager for reduced objects.
    void SetLiteObjectRequest();
    bool IsRequestLite() const;

    /// Checks every set value of the list, in list order, against its attribute's bounds; throws
    /// the attribute's APIMethodError.
    void ValidateAttributes() const;
    /// Whether ValidateAttributes skips the attribute of that name.
    bool CanIgnoreValidation(const std::string& name) const;

    // What the typed accessors of attribute rows go through.
    std::string LoadText(const std::string& name) const;
    void StoreText(const std::string& name, const std::string& text);

    /// Builds the request, sends it, and reads the reply. The return is newly made and belongs to
    /// the caller. `blobs` (name to bytes) may be null. Throws APIMethodError when the request
    /// cannot be built and APISocketError when the exchange fails.
    BASEApiMethodReturn* Execute(const APIHccReqHeader* header,
                                 const std::map<std::string, std::string>* blobs) const;
    BASEApiMethodReturn* Execute(const std::string& sessionKey,
                                 const std::map<std::string, std::string>* blobs,
                                 const std::string& locale) const;
    void BuildGPBApiRequest(protoIPCMsg::GPBIPCMsg& request, const APIHccReqHeader* header,
                            const std::string& sessionKey,
                            const std::map<std::string, std::string>* blobs,
                            const std::string& locale) const;
    void SendRequestToAPIManager(const protoIPCMsg::GPBIPCMsg& request,
                                 protoIPCMsg::GPBIPCMsg& reply) const;
    /// Every fault of the reply becomes a failed return. The return belongs to the caller.
    BASEApiMethodReturn* ProcessResponse(const protoIPCMsg::GPBIPCMsg& reply) const;
    void ParseRespStatusNode(const parser::XMLElement* element, RESPErrorInfo& status) const;
    /// The returns below belong to the caller; null when their objects would cost too much.
    COMPObjectMethodReturn* ParseReturnApiObjectXML(const parser::XMLElement* element,
                                                    bool isArray) const;
    METHODObjectMethodReturn* ParseReturnApiMethodObjectXML(const parser::XMLElement* element,
                                                            bool isArray) const;

protected:
    using NameList = std::initializer_list<const char*>;

    /// Throws for the first of the names that is not set.
    void RequireAttributes(NameList names) const;
    /// Throws, naming all of them, when none is set.
    void RequireOneOf(NameList names) const;
    /// GetXMLString without the values of these names.
    std::string RenderXML(bool async, bool xmlEncode, NameList unwritten) const;

private:
    bool m_isAssociation;
};

/// What a method class states first: key facts and constructors.
#define API_METHOD(Object, Command, Async, Privilege) \
    API_METHOD_OF(BASEApiMethod, API##Object##Command##Method, Object, Command, Async, Privilege)

#define API_METHOD_OF(Base, Class, Object, Command, Async, Privilege) \
public:                                                               \
    Class() = default;                                                \
    explicit Class(const ValueMap& attributes) : Base(attributes) {}  \
    API_METHOD_NAMES(Object, Command);                                \
    bool AsyncAllowed() const override {                              \
        return Async;                                                 \
    }                                                                 \
    UserPrivilegeEnum GetMinUserPriv() const override {               \
        return UserPrivilegeEnum::Privilege;                          \
    }                                                                 \
    API_OWN_LIST()

#define API_METHOD_NAMES(Object, Command) \
    API_NAME(GetMethodName, #Command);    \
    API_NAME(GetObjectName, #Object)

/// The attributes that must be set, in the order in which they are checked. They need neither be
/// listed nor be declared.
#define API_REQUIRED(...)                                            \
public:                                                              \
    void ValidateRequiredAttributes() const override {               \
        RequireAttributes({API_FOR_EACH(API_NAME_OF, __VA_ARGS__)}); \
    }                                                                \
    static_assert(true)

/// Declared attributes that are not listed and are kept out of the request document.
#define API_UNWRITTEN(...)                                                            \
public:                                                                               \
    std::string GetXMLString(bool async, bool xmlEncode) const override {             \
        return RenderXML(async, xmlEncode, {API_FOR_EACH(API_NAME_OF, __VA_ARGS__)}); \
    }                                                                                 \
    static_assert(true)

#define API_NAME_OF(XmlName) #XmlName,
