#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The record in which the array reports how a command went.
class TARNResponseStatus {
public:
    TARNResponseStatus() = default;
    TARNResponseStatus(const TARNResponseStatus&) = default;
    TARNResponseStatus& operator=(const TARNResponseStatus&) = default;
    virtual ~TARNResponseStatus();

    /// The first of the error messages; the summary when there is none or nothing failed.
    std::string GetDetailErrorMsg() const;
    /// The summary; the first of the error messages when something failed without a summary.
    std::string GetSummaryErrorMsg() const;
    void DumpInfo() const {}

    std::int32_t errorCode = 0;  // 1 or more: the command failed
    std::int32_t extErrorCode1 = 0;
    std::int32_t reserved = 0;
    std::int32_t extErrorCode2 = 0;
    std::vector<std::string> errorMessages;
    std::string summary;
    std::string statusText;
    std::string furtherText;
};
