#pragma once

#include "apiMgmt/apiStub/base/methodReturns/generalError.h"

/// The connection to the API manager failed: it could not be made, or broke before the whole
/// reply was read.
class APISocketError : public GENERALError {
public:
    APISocketError(const std::string& file, std::int32_t line, const std::string& message);
    ~APISocketError() override;
};
