#pragma once

#include <string>

/// The escapes that keep a value in its column: a comma is written "--cm--", a line feed
/// "--nl--", a colon "--cl--".
class CSVText {
public:
    static constexpr const char* kSeparator = ",";

    static std::string Escape(std::string value);
    static std::string Unescape(std::string value);
};
