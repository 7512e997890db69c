#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Looks at a request's bytes before the engine reads them, for what the engine would let pass:
/// characters that no document may hold (the engine hands them on, and a zero ends a text unseen),
/// entities that nobody defined, and shapes whose cost grows with their square.
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
    /// Elements may be nested so deep, unknown ones included; the envelope is the first level.
    static constexpr std::size_t kMaxLevels = 64;
    /// More than any client sends in an element and in a request.
    static constexpr std::size_t kMaxAttributesOfElement = 64;
    static constexpr std::size_t kMaxAttributes = 4096;

    /// Takes the next bytes. Null, or why the request is refused: from then on, always the same.
    const char* add(std::string_view bytes);
    const char* refusal() const { return m_refusal; }
    std::size_t size() const { return m_size; }

private:
    enum class State : std::uint8_t {
        Begin,
        Unread,
        Text,
        Less,      // <
        Bang,      // <!
        BangDash,  // <!-
        Comment,
        Section,      // of character data
        Instruction,  // <?
        StartTag,
        EndTag,
        Value,      // of an attribute
        Reference,  // &
        EntityName,
        Number,  // &#
        DecimalDigits,
        HexDigits,
    };

    void look(std::string_view bytes);
    void step(unsigned char byte);
    void begin(unsigned char byte);
    void beginMultibyte(unsigned char byte);
    void continueMultibyte(unsigned char byte);
    void inMarkup(unsigned char byte);
    void inStartTag(unsigned char byte);
    void inReference(unsigned char byte);
    void beginReference() {
        m_outside = m_state;
        m_state = State::Reference;
    }
    void digit(unsigned char byte, unsigned base);
    void require(bool holds, const char* refusal) {
        if (!holds && m_refusal == nullptr) {
            m_refusal = refusal;
        }
    }

    const char* m_refusal = nullptr;
    std::size_t m_size = 0;
    std::size_t m_level = 0;
    std::size_t m_attributes = 0;
    std::size_t m_attributesOfElement = 0;
    State m_state = State::Begin;
    State m_outside = State::Text;  // of the reference: text or value
    unsigned char m_quote = 0;
    std::array<unsigned char, 2> m_before{};  // the last two bytes, the later one first
    std::size_t m_bytesToCome = 0;            // of the character that began
    std::uint32_t m_codePoint = 0;
    std::uint32_t m_lowest = 0;
    std::array<char, 4> m_entity{};
    std::size_t m_entitySize = 0;
};
