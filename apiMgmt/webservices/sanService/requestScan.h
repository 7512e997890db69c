#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/include/soapBodyScan.h"

/// Looks at a request's bytes before the engine reads them, for what the engine would let pass:
/// characters that no document may hold (the engine hands them on, and a zero ends a text unseen),
/// entities that nobody defined, and shapes whose cost grows with their square. The shapes are
/// those of soapBodyScan, whether the host has looked for them or not.
///
///     RequestScan scan;
///     if (scan.add(piece) != nullptr) { ... }   // the text of the fault
///
/// Pieces are of any size and may end anywhere. A stream that does not begin as XML begins, such
/// as one with HTTP headers that the engine is to read, is only measured.
class RequestScan {
public:
    /// The longest request in bytes.
    static constexpr std::size_t kMaxBytes = std::size_t{128} * 1024;

    RequestScan();

    /// Takes the next bytes. Null, or why the request is refused: from then on, always the same.
    const char* add(std::string_view bytes);
    const char* refusal() const { return m_refusal; }
    std::size_t size() const { return m_size; }

private:
    enum class Form : std::uint8_t { Unknown, Document, Other };

    std::string_view withoutBegin(std::string_view bytes);
    std::size_t legalSize(std::string_view bytes);
    bool takeMultibyte(unsigned char byte);

    const char* m_refusal = nullptr;
    std::size_t m_size = 0;
    std::size_t m_bytesToCome = 0;  // of the character that began
    std::uint32_t m_codePoint = 0;
    std::uint32_t m_lowest = 0;
    Form m_form = Form::Unknown;
    soapBodyScan m_shape;
};
