#include "apiMgmt/apiStub/base/methodReturns/tarnResponseStatus.h"

TARNResponseStatus::~TARNResponseStatus() = default;

std::string TARNResponseStatus::GetDetailErrorMsg() const {
    return errorCode < 1 || errorMessages.empty() ? summary : errorMessages.front();
}

std::string TARNResponseStatus::GetSummaryErrorMsg() const {
    return summary.empty() ? GetDetailErrorMsg() : summary;
}
