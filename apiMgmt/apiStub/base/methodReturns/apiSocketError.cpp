#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"

APISocketError::APISocketError(const std::string& file, std::int32_t line,
                               const std::string& message)
    : GENERALError(file, line, message) {}

APISocketError::~APISocketError() = default;
