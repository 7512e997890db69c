#include "apiMgmt/apiStub/base/methodReturns/enumMaskMethodReturn.h"

#include "apiMgmt/common/utils/stringUtil.h"

ENUMMaskMethodReturn::ENUMMaskMethodReturn(bool successful, BASEApiMethod* method)
    : BASEApiMethodReturn(successful, method) {}

std::string ENUMMaskMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    return Element("ReturnEnumMask", STRINGUtil::EscapeString(m_value, false));
}

std::vector<std::string> ENUMMaskMethodReturn::GetEnumList(const std::string& mask) {
    static constexpr const char* kWhiteSpace = " \f\n\r\t\v";
    std::vector<std::string> names;
    std::size_t begin = mask.find_first_not_of(kWhiteSpace);
    while (begin != std::string::npos) {
        const std::size_t end = mask.find_first_of(kWhiteSpace, begin);
        names.push_back(mask.substr(begin, end - begin));
        begin = mask.find_first_not_of(kWhiteSpace, end);
    }
    return names;
}
