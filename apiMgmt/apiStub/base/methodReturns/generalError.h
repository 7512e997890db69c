#pragma once

#include <cstdarg>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

/// A fault inside the API stub; the base of all that it throws. what() is the message.
class GENERALError : public std::runtime_error {
public:
    GENERALError(const std::string& file, std::int32_t line, const std::string& message);
    /// `logMessage` says more than `message` to those who read the log.
    GENERALError(const std::string& file, std::int32_t line, const std::string& message,
                 const std::string& logMessage);
    /// `localizedMsgId` names a text in the catalogue of messages, and `format` with its
    /// arguments holds what that text's places are filled with; a null format holds none.
    [[gnu::format(printf, 6, 7)]] GENERALError(const std::string& message, const std::string& file,
                                               std::int32_t line, std::uint32_t localizedMsgId,
                                               const char* format, ...);
    ~GENERALError() override = default;

    /// What to write to the log: the log message, or the message when there is none.
    virtual std::string GetLogMessage() const;

    const std::string& GetMessageText() const { return m_message; }
    const std::string& GetSourceFile() const { return m_file; }
    std::int32_t GetSourceLine() const { return m_line; }
    std::uint32_t GetLocalizedMsgId() const { return m_localizedMsgId; }
    /// The arguments of the formatted constructor, one text each.
    const std::vector<std::string>& GetSavedArgList() const { return m_savedArgs; }
    /// The same joined by "|", the form in which the catalogue takes them.
    std::string GetMsgParameters() const;

protected:
    /// For the formatted constructors of derived classes, which cannot pass their "..." on.
    GENERALError(const std::string& message, const std::string& file, std::int32_t line,
                 std::uint32_t localizedMsgId);
    /// Keeps each argument that the format names, in its plain text form: numbers in decimal
    /// without padding, texts up to their precision. A null format keeps nothing.
    [[gnu::format(printf, 2, 0)]] void SaveArgList(const char* format, va_list args);

private:
    std::string m_message;
    std::string m_file;
    std::int32_t m_line;
    std::uint32_t m_localizedMsgId = 0;
    std::string m_logMessage;
    std::vector<std::string> m_savedArgs;
};

/// Writes GetLogMessage() and nothing around it.
std::ostream& operator<<(std::ostream& stream, const GENERALError& error);
