#pragma once

#include <map>
#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/neverDestroyed.h"

class BASEApiMethod;
class BASEApiMethodObject;
class BASEApiObject;

/// Finds a class from its name. Filled during static initialisation and only read afterwards, so
/// look-ups take no lock.
///
///     APIObjectRegistry::Instance().CreateObject("TarnServer")   // null when unknown
template <class Base, class Key, class Creator>
class APIObjectFactory {
public:
    /// The one registry of this kind; it is never destroyed.
    static APIObjectFactory& Instance() {
        static NEVERDestroyed<APIObjectFactory> instance([] { return APIObjectFactory(); });
        return instance.Get();
    }

    /// False, and nothing changes, when the key is taken: the first registration wins.
    bool Register(const Key& key, Creator creator) {
        return m_creators.emplace(key, creator).second;
    }
    /// The creation function, null when the key is unknown.
    Creator Find(const Key& key) const {
        const auto entry = m_creators.find(key);
        return entry == m_creators.end() ? nullptr : entry->second;
    }
    /// A new object; null when the key is unknown.
    std::unique_ptr<Base> CreateObject(const Key& key) const {
        const Creator creator = Find(key);
        return std::unique_ptr<Base>(creator ? creator() : nullptr);
    }

    const std::map<Key, Creator>& GetCreators() const { return m_creators; }

private:
    APIObjectFactory() = default;

    std::map<Key, Creator> m_creators;
};

template <class Base>
using APICreator = Base* (*)();

template <class Base>
using APIRegistryOf = APIObjectFactory<Base, std::string, APICreator<Base>>;

/// By object name, such as "TarnServer".
using APIObjectRegistry = APIRegistryOf<BASEApiObject>;
/// By "API" + object name + method name + "Method".
using APIMethodRegistry = APIRegistryOf<BASEApiMethod>;
/// By the record's object name, such as "Ipv4AddressPort".
using APIMethodObjectRegistry = APIRegistryOf<BASEApiMethodObject>;
