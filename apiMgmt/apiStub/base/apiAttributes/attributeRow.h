#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/attributeKinds.h"
#include "apiMgmt/apiStub/base/apiAttributes/forEach.h"
#include "apiMgmt/apiStub/base/apiAttributes/neverDestroyed.h"

/// One row declares one attribute of an object, record or method, inside its class:
///
///     //            XML name       display name    kind                  code bounds
///     API_ATTRIBUTE(Name,          "Name",         STRING,               20,  AtLeast(1));
///     API_ATTRIBUTE(Notes,         "Notes",        STRING,               20,  NoBounds);
///     API_ATTRIBUTE(FilterTime,    "Filter Time",  ENUM<FilterTimeEnum>, 25);
///     API_ATTRIBUTE_LIST(Name, Notes, FilterTime);
///
/// and gives GetNameAttr (the descriptor, built on first use, never destroyed), GetName and
/// SetName. Kinds are those of attributeKinds.h, bounds those of attributeBounds.h: NoBounds,
/// AtLeast(min), Between(min, max), and for STRING .Forbidding("<>&") behind any of them. INT,
/// STRING and NAME need bounds; on any other kind they do not compile.
#define API_ATTRIBUTE(...) API_ATTRIBUTE_AS(, __VA_ARGS__)

/// The same, where a base declares the two accessors as pure (GETLISTApiMethod).
#define API_ATTRIBUTE_OVERRIDE(...) API_ATTRIBUTE_AS(override, __VA_ARGS__)

#define API_ATTRIBUTE_AS(Override, XmlName, DisplayName, Kind, Code, ...)                       \
public:                                                                                         \
    static const apiKind::Kind::Attribute* Get##XmlName##Attr() {                               \
        using namespace apiKind; /* NOLINT(google-build-using-namespace): bounds of the row */  \
        static const NEVERDestroyed<apiKind::Kind::Attribute> attribute([] {                    \
            return apiKind::Kind::Make(#XmlName, DisplayName, Code __VA_OPT__(, ) __VA_ARGS__); \
        });                                                                                     \
        return &attribute.Get();                                                                \
    }                                                                                           \
    apiKind::Kind::Value Get##XmlName() const Override {                                        \
        return apiKind::Load<apiKind::Kind>(*this, *Get##XmlName##Attr());                      \
    }                                                                                           \
    void Set##XmlName(apiKind::Kind::Argument value) Override {                                 \
        apiKind::Store<apiKind::Kind>(*this, *Get##XmlName##Attr(), value);                     \
    }                                                                                           \
    static_assert(true)

/// The class's attribute list: these attributes, in this order.
#define API_ATTRIBUTE_LIST(...)                                                             \
public:                                                                                     \
    static const APIAttributeList& GetAttributeListStatic() {                               \
        static const NEVERDestroyed<APIAttributeList> list(                                 \
            [] { return APIAttributeList{API_FOR_EACH(API_DESCRIPTOR_OF, __VA_ARGS__)}; }); \
        return list.Get();                                                                  \
    }                                                                                       \
    static_assert(true)

/// The same, followed by the whole list of `Base`.
#define API_ATTRIBUTE_LIST_THEN(Base, ...)                                         \
public:                                                                            \
    static const APIAttributeList& GetAttributeListStatic() {                      \
        static const NEVERDestroyed<APIAttributeList> list([] {                    \
            return apiKind::Joined({API_FOR_EACH(API_DESCRIPTOR_OF, __VA_ARGS__)}, \
                                   Base::GetAttributeListStatic());                \
        });                                                                        \
        return list.Get();                                                         \
    }                                                                              \
    static_assert(true)

/// The whole list of `Base`, followed by these attributes.
#define API_ATTRIBUTE_LIST_AFTER(Base, ...)                                         \
public:                                                                             \
    static const APIAttributeList& GetAttributeListStatic() {                       \
        static const NEVERDestroyed<APIAttributeList> list([] {                     \
            return apiKind::Joined(Base::GetAttributeListStatic(),                  \
                                   {API_FOR_EACH(API_DESCRIPTOR_OF, __VA_ARGS__)}); \
        });                                                                         \
        return list.Get();                                                          \
    }                                                                               \
    static_assert(true)

#define API_DESCRIPTOR_OF(XmlName) Get##XmlName##Attr(),

/// A static function that returns one fixed text.
#define API_STATIC_TEXT(Function, Text)                                                  \
    static const std::string& Function() {                                               \
        static const NEVERDestroyed<std::string> text([] { return std::string(Text); }); \
        return text.Get();                                                               \
    }                                                                                    \
    static_assert(true)

/// The name of a class, of the class itself and of each of its objects.
#define API_NAME(Function, Text)                   \
    API_STATIC_TEXT(Function##Static, Text);       \
    const std::string& Function() const override { \
        return Function##Static();                 \
    }                                              \
    static_assert(true)

/// The attribute list of a class is that of each of its objects.
#define API_OWN_LIST()                                          \
    const APIAttributeList& GetAttributeList() const override { \
        return GetAttributeListStatic();                        \
    }                                                           \
    static_assert(true)

namespace apiKind {

template <class Kind, class Owner>
typename Kind::Value Load(const Owner& owner, const typename Kind::Attribute& attribute) {
    if constexpr (Kind::kIsMarkup) {
        return Kind::Parse(attribute, owner.GetStringDirect(attribute.GetXmlName()));
    } else {
        return Kind::Parse(attribute, owner.LoadText(attribute.GetXmlName()));
    }
}

template <class Kind, class Owner>
void Store(Owner& owner, const typename Kind::Attribute& attribute, typename Kind::Argument value) {
    if constexpr (Kind::kIsMarkup) {
        owner.PutStringDirect(attribute.GetXmlName(), Kind::Print(attribute, value));
    } else {
        owner.StoreText(attribute.GetXmlName(), Kind::Print(attribute, value));
    }
}

inline APIAttributeList Joined(APIAttributeList first, const APIAttributeList& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace apiKind
