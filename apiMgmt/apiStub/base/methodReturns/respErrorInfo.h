#pragma once

#include <string>

#include "apiMgmt/apiStub/base/methodReturns/errorStateEnum.h"

/// The status of one reply, as its ApiMethodReturn element tells it.
struct RESPErrorInfo {
    bool successful = false;
    ErrorStateEnum errorState{};  ///< 0 in a successful status
    std::string error;
    std::string localizedError;
    std::string errorDetail;
};
