#pragma once

#include <functional>

#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"

/// The error that a call raises; one without a text when it raises none.
inline APIMethodError errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const APIMethodError& failure) {
        return failure;
    }
    return APIMethodError(ErrorStateEnum::NoError, "", 0, "");
}
