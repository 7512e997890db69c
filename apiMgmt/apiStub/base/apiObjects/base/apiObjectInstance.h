#pragma once

#include <memory>
#include <string>

class BASEApiObject;

/// A reference to one object of the management API.
///
///     APIObjectInstance("7", "TarnServer", "My Server").ToString()  // "7 TarnServer My Server"
class APIObjectInstance {
public:
    APIObjectInstance(std::string instanceId, std::string objectType, std::string instanceName);
    /// Refers to `object` by its InstanceId, ObjectType and InstanceName values.
    explicit APIObjectInstance(const BASEApiObject& object);

    const std::string& GetInstanceId() const { return m_instanceId; }
    const std::string& GetObjectType() const { return m_objectType; }
    const std::string& GetInstanceName() const { return m_instanceName; }

    /// True when it has an instance id and an object type; the name may be empty.
    bool IsValid() const;
    std::string ToString() const;
    /// A new instance from "ID TYPE NAME"; what is missing is empty, the name keeps its blanks.
    static std::unique_ptr<APIObjectInstance> ParseString(const std::string& text);

    bool operator==(const APIObjectInstance&) const = default;

private:
    std::string m_instanceId;
    std::string m_objectType;
    std::string m_instanceName;
};
