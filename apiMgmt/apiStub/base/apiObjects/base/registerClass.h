#pragma once

#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"

/// Enters a class into the registry of its base; one line per class, in the class's own file:
///
///     API_REGISTER_OBJECT(APITarnServer);              // key "TarnServer"
///     API_REGISTER_METHOD_OBJECT(APIIpv4AddressPort);  // key "Ipv4AddressPort"
///     API_REGISTER_METHOD(TarnServer, Get);  // APITarnServer::APITarnServerGetMethod, key
///                                            // "APITarnServerGetMethod"
template <class Base, class Derived, class Key>
class REGISTERClass {
public:
    /// A new object of the derived class, which the caller owns.
    static Base* Create() { return std::make_unique<Derived>().release(); }
    /// True when the class was entered, false when an earlier one holds the key.
    static bool Enter(const Key& key) {
        return APIObjectFactory<Base, Key, APICreator<Base>>::Instance().Register(key, &Create);
    }
};

/// What a registration line defines: its construction enters the class. Not a template, and
/// nothing in it names a type of the standard library: its objects' names in the symbol table
/// are to stay free of compiler tags.
class APIRegistration {
public:
    explicit APIRegistration(bool /*entered*/) {}
};

#define API_REGISTER_AS(Base, Class, Name, Key, ...)        \
    extern const APIRegistration api##Name __VA_ARGS__;     \
    const APIRegistration api##Name {                       \
        REGISTERClass<Base, Class, std::string>::Enter(Key) \
    }

#define API_REGISTER_OBJECT(Class) \
    API_REGISTER_AS(BASEApiObject, Class, Class, Class::GetObjectNameStatic())

#define API_REGISTER_METHOD_OBJECT(Class) \
    API_REGISTER_AS(BASEApiMethodObject, Class, Class, Class::GetObjectNameStatic())

/// A method's registration object leaves the shared object under its plain name.
#define API_REGISTER_METHOD(Object, Command)                                       \
    API_REGISTER_AS(BASEApiMethod, API##Object::API##Object##Command##Method,      \
                    API##Object##Command##Method, "API" #Object #Command "Method", \
                    __attribute__((visibility("default"))))
