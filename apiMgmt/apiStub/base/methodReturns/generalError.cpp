#include "apiMgmt/apiStub/base/methodReturns/generalError.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "apiMgmt/common/utils/stringUtil.h"

namespace {

/// Walks a format and takes the argument of each conversion from the list.
class ArgListReader {
public:
    ArgListReader(const char* format, va_list args) : m_rest(format) { va_copy(m_args, args); }
    ~ArgListReader() { va_end(m_args); }
    ArgListReader(const ArgListReader&) = delete;
    ArgListReader& operator=(const ArgListReader&) = delete;

    /// False at the end of the format, or at a conversion that has no text form.
    bool Next(std::string& text) {
        while (*(m_rest += std::strcspn(m_rest, "%"))) {
            if (*++m_rest == '%') {
                ++m_rest;
                continue;
            }
            SkipSet("-+ #0'");
            Count();
            const bool limited = *m_rest == '.';
            if (limited) {
                ++m_rest;
            }
            const int precision = limited ? Count() : -1;
            const std::string_view size = SkipSet("hlqjzt");
            return *m_rest && Take(*m_rest++, size, precision, text);
        }
        return false;
    }

private:
    std::string_view SkipSet(const char* set) {
        const std::string_view skipped(m_rest, std::strspn(m_rest, set));
        m_rest += skipped.size();
        return skipped;
    }
    /// A width or a precision, which may stand among the arguments.
    int Count() {
        if (*m_rest == '*') {
            ++m_rest;
            return va_arg(m_args, int);
        }
        return std::atoi(std::string(SkipSet("0123456789")).c_str());
    }

    bool Take(char conversion, std::string_view size, int precision, std::string& text) {
        const bool wide = !size.empty() && size.front() != 'h';
        if (std::strchr("di", conversion)) {
            text = std::to_string(wide ? va_arg(m_args, long long) : va_arg(m_args, int));
        } else if (std::strchr("uxXo", conversion)) {
            text = std::to_string(wide ? va_arg(m_args, unsigned long long)
                                       : va_arg(m_args, unsigned int));
        } else if (std::strchr("eEfFgG", conversion)) {
            text = STRINGUtil::FormatStr("%g", va_arg(m_args, double));
        } else if (conversion == 'c') {
            text.assign(1, static_cast<char>(va_arg(m_args, int)));
        } else if (conversion == 'p') {
            text = STRINGUtil::FormatStr("%p", va_arg(m_args, void*));
        } else if (conversion == 's' && !wide) {
            text = Text(va_arg(m_args, const char*), precision);
        } else {
            return false;
        }
        return true;
    }
    static std::string Text(const char* argument, int precision) {
        if (!argument) {
            return {};
        }
        return precision < 0
                   ? std::string(argument)
                   : std::string(argument, strnlen(argument, static_cast<std::size_t>(precision)));
    }

    const char* m_rest;
    va_list m_args;
};

// The wide integers are all read as long long.
static_assert(sizeof(long) == sizeof(long long) && sizeof(std::size_t) == sizeof(long long) &&
              sizeof(std::intmax_t) == sizeof(long long));

}  // namespace

GENERALError::GENERALError(const std::string& file, std::int32_t line, const std::string& message)
    : GENERALError(file, line, message, std::string()) {}

GENERALError::GENERALError(const std::string& file, std::int32_t line, const std::string& message,
                           const std::string& logMessage)
    : std::runtime_error(message),
      m_message(message),
      m_file(file),
      m_line(line),
      m_logMessage(logMessage) {}

GENERALError::GENERALError(const std::string& message, const std::string& file, std::int32_t line,
                           std::uint32_t localizedMsgId)
    : std::runtime_error(message),
      m_message(message),
      m_file(file),
      m_line(line),
      m_localizedMsgId(localizedMsgId) {}

GENERALError::GENERALError(const std::string& message, const std::string& file, std::int32_t line,
                           std::uint32_t localizedMsgId, const char* format, ...)
    : GENERALError(message, file, line, localizedMsgId) {
    va_list args;
    va_start(args, format);
    SaveArgList(format, args);
    va_end(args);
}

void GENERALError::SaveArgList(const char* format, va_list args) {
    m_savedArgs.clear();
    if (!format) {
        return;
    }
    ArgListReader reader(format, args);
    for (std::string text; reader.Next(text);) {
        m_savedArgs.push_back(text);
    }
}

std::string GENERALError::GetLogMessage() const {
    return m_logMessage.empty() ? m_message : m_logMessage;
}

std::string GENERALError::GetMsgParameters() const {
    std::string parameters;
    for (std::size_t i = 0; i < m_savedArgs.size(); ++i) {
        parameters.append(i == 0 ? "" : "|").append(m_savedArgs[i]);
    }
    return parameters;
}

std::ostream& operator<<(std::ostream& stream, const GENERALError& error) {
    return stream << error.GetLogMessage();
}
