#pragma once

#include <span>
#include <string>
#include <string_view>

/// One row of an enumeration list.
template <class Enum>
struct ENUMIdStr {
    Enum id;
    const char* xmlName;      // what documents carry
    const char* displayText;  // what a person reads
};

/// The part of a list that does not depend on the enumeration.
namespace enumList {
/// True when `text` is a decimal number and nothing else; a number beyond int is clamped.
bool parseNumber(std::string_view text, int& number);
bool equalsIgnoringCase(std::string_view a, std::string_view b);
}  // namespace enumList

/// The items of an enumeration with look-up both ways. A constant without start-up code.
///
/// To add a list for an enumeration, beside the enumeration in its header:
///
///     enum class FilterTimeEnum : int { Other = 0, LastDay = 1 };
///     inline constexpr ENUMIdStr<FilterTimeEnum> kFilterTimeRows[] = {
///         {FilterTimeEnum::Other,   "Other",   "Other"},
///         {FilterTimeEnum::LastDay, "LastDay", "Last Day"},
///     };
///     inline constexpr ENUMIdStrList<FilterTimeEnum> gFilterTimeEnumIdStrList{
///         kFilterTimeRows, FilterTimeEnum::Other};
///     API_ENUM_LIST(FilterTimeEnum);   // lets attribute rows say ENUM<FilterTimeEnum>
///
/// A number without a row keeps its decimal text as its name and reads back as that number, so
/// the enumeration needs a fixed underlying type (": int").
template <class Enum>
class ENUMIdStrList {
    static_assert(
        requires { Enum{0}; }, "give the enumeration a fixed underlying type");

public:
    /// `rows` lives as long as the list; `fallback` is what a text that names nothing means.
    constexpr ENUMIdStrList(std::span<const ENUMIdStr<Enum>> rows, Enum fallback)
        : m_rows(rows), m_fallback(fallback) {}

    /// Names are compared ignoring case.
    Enum GetId(std::string_view xmlName) const {
        for (const auto& row : m_rows) {
            if (enumList::equalsIgnoringCase(row.xmlName, xmlName)) {
                return row.id;
            }
        }
        int number = 0;
        return enumList::parseNumber(xmlName, number) ? Enum{number} : m_fallback;
    }
    /// The item with that display text, ignoring case; the fallback when there is none.
    Enum GetIdFromDisplayText(std::string_view displayText) const {
        for (const auto& row : m_rows) {
            if (enumList::equalsIgnoringCase(row.displayText, displayText)) {
                return row.id;
            }
        }
        return m_fallback;
    }
    std::string GetXmlName(Enum id) const {
        const auto* row = Find(id);
        return row ? row->xmlName : std::to_string(static_cast<int>(id));
    }
    std::string GetDisplayText(Enum id) const {
        const auto* row = Find(id);
        return row ? row->displayText : std::to_string(static_cast<int>(id));
    }

    constexpr std::span<const ENUMIdStr<Enum>> GetRows() const { return m_rows; }

private:
    const ENUMIdStr<Enum>* Find(Enum id) const {
        for (const auto& row : m_rows) {
            if (row.id == id) {
                return &row;
            }
        }
        return nullptr;
    }

    std::span<const ENUMIdStr<Enum>> m_rows;
    Enum m_fallback;
};

/// Ties an enumeration to its list, which is named g<Enum>IdStrList.
#define API_ENUM_LIST(Enum)                                       \
    constexpr const ENUMIdStrList<Enum>& GetEnumIdStrList(Enum) { \
        return g##Enum##IdStrList;                                \
    }                                                             \
    static_assert(true)
