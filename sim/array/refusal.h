#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace sim {

/// Why the array does not do what it was asked for. A command raises it; the caller gets it as
/// a failed ApiMethodReturn.
class Refusal : public std::runtime_error {
public:
    /// `code`: a name of the array's error states; `error`: one sentence that says what is
    /// wrong; `detail`: what to do about it.
    Refusal(std::string code, const std::string& error, std::string detail)
        : std::runtime_error(error), m_code(std::move(code)), m_detail(std::move(detail)) {}

    const std::string& code() const { return m_code; }
    const std::string& detail() const { return m_detail; }

private:
    std::string m_code;
    std::string m_detail;
};

}  // namespace sim
