#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectInstance.h"

#include <utility>
#include <vector>

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiObject.h"
#include "apiMgmt/common/utils/stringUtil.h"

APIObjectInstance::APIObjectInstance(std::string instanceId, std::string objectType,
                                     std::string instanceName)
    : m_instanceId(std::move(instanceId)),
      m_objectType(std::move(objectType)),
      m_instanceName(std::move(instanceName)) {}

APIObjectInstance::APIObjectInstance(const BASEApiObject& object)
    : APIObjectInstance(object.GetInstanceId(), object.GetObjectType(), object.GetInstanceName()) {}

bool APIObjectInstance::IsValid() const {
    return !m_instanceId.empty() && !m_objectType.empty();
}

std::string APIObjectInstance::ToString() const {
    return m_instanceId + " " + m_objectType + " " + m_instanceName;
}

std::unique_ptr<APIObjectInstance> APIObjectInstance::ParseString(const std::string& text) {
    std::vector<std::string> pieces;
    STRINGUtil::SplitString(text, " ", pieces, 3);
    pieces.resize(3);
    return std::make_unique<APIObjectInstance>(pieces[0], pieces[1], pieces[2]);
}
