#pragma once

#include "apiMgmt/apiStub/base/methodReturns/errorStateEnum.h"
#include "apiMgmt/apiStub/base/methodReturns/generalError.h"

class TARNResponseStatus;

/// An API method cannot be built, is not valid, or has failed on the array.
///
///     throw APIMethodError(ErrorStateEnum::InvalidRequest, kSource, __LINE__,
///                          "Required attribute Name not set");
class APIMethodError : public GENERALError {
public:
    APIMethodError(ErrorStateEnum errorState, const std::string& file, std::int32_t line,
                   const std::string& message);
    APIMethodError(ErrorStateEnum errorState, const std::string& file, std::int32_t line,
                   const std::string& message, const std::string& logMessage);
    /// With a localized message id and what fills its places, as GENERALError has it.
    [[gnu::format(printf, 7, 8)]] APIMethodError(const std::string& message,
                                                 ErrorStateEnum errorState, const std::string& file,
                                                 std::int32_t line, std::uint32_t localizedMsgId,
                                                 const char* format, ...);
    /// From the record in which the array reports a failure; the state is CommandFailed.
    APIMethodError(const TARNResponseStatus& status, const std::string& file, std::int32_t line);
    ~APIMethodError() override;

    /// The summary with the error code and its extension, or with the error state when there
    /// is no code.
    std::string GetLogMessage() const override;

    ErrorStateEnum GetErrorState() const { return m_errorState; }
    /// The array's own codes; 0 when there are none.
    std::int32_t GetErrorCode() const { return m_errorCode; }
    std::int32_t GetExtErrorCode1() const { return m_extErrorCode1; }
    std::uint32_t GetExtErrorCode2() const { return m_extErrorCode2; }
    const std::string& GetStatusText() const { return m_statusText; }

private:
    ErrorStateEnum m_errorState;
    std::int32_t m_errorCode = 0;
    std::int32_t m_extErrorCode1 = 0;
    std::uint32_t m_extErrorCode2 = 0;
    std::string m_statusText;
};

/// Writes GetLogMessage() and nothing around it.
std::ostream& operator<<(std::ostream& stream, const APIMethodError& error);
