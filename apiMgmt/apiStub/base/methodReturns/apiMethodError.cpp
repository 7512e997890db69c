#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"

#include "apiMgmt/apiStub/base/methodReturns/tarnResponseStatus.h"
#include "apiMgmt/common/utils/stringUtil.h"

APIMethodError::APIMethodError(ErrorStateEnum errorState, const std::string& file,
                               std::int32_t line, const std::string& message)
    : GENERALError(file, line, message), m_errorState(errorState) {}

APIMethodError::APIMethodError(ErrorStateEnum errorState, const std::string& file,
                               std::int32_t line, const std::string& message,
                               const std::string& logMessage)
    : GENERALError(file, line, message, logMessage), m_errorState(errorState) {}

APIMethodError::APIMethodError(const std::string& message, ErrorStateEnum errorState,
                               const std::string& file, std::int32_t line,
                               std::uint32_t localizedMsgId, const char* format, ...)
    : GENERALError(message, file, line, localizedMsgId), m_errorState(errorState) {
    va_list args;
    va_start(args, format);
    SaveArgList(format, args);
    va_end(args);
}

APIMethodError::APIMethodError(const TARNResponseStatus& status, const std::string& file,
                               std::int32_t line)
    : GENERALError(file, line, status.GetSummaryErrorMsg(), status.GetDetailErrorMsg()),
      m_errorState(ErrorStateEnum::CommandFailed),
      m_errorCode(status.errorCode),
      m_extErrorCode1(status.extErrorCode1),
      m_extErrorCode2(static_cast<std::uint32_t>(status.extErrorCode2)),
      m_statusText(status.statusText) {}

APIMethodError::~APIMethodError() = default;

std::string APIMethodError::GetLogMessage() const {
    const std::string summary = GENERALError::GetLogMessage();
    if (m_errorCode < 1) {
        return STRINGUtil::FormatStr("Error state[%d], Summary[%s]", static_cast<int>(m_errorState),
                                     summary.c_str());
    }
    // The second part stands first: that is how the array prints the pair.
    return STRINGUtil::FormatStr("Error code[%d], extErrorCode[%u:%d], Summary[%s]", m_errorCode,
                                 m_extErrorCode2, m_extErrorCode1, summary.c_str());
}

std::ostream& operator<<(std::ostream& stream, const APIMethodError& error) {
    return stream << error.GetLogMessage();
}
