#include "apiMgmt/apiStub/base/apiObjects/base/csvText.h"

#include "apiMgmt/common/utils/stringUtil.h"

namespace {

// In the order in which they are replaced.
constexpr struct {
    const char* character;
    const char* escape;
} kEscapes[] = {{",", "--cm--"}, {"\n", "--nl--"}, {":", "--cl--"}};

}  // namespace

std::string CSVText::Escape(std::string value) {
    for (const auto& row : kEscapes) {
        STRINGUtil::ReplaceAll(value, row.character, row.escape);
    }
    return value;
}

std::string CSVText::Unescape(std::string value) {
    for (const auto& row : kEscapes) {
        STRINGUtil::ReplaceAll(value, row.escape, row.character);
    }
    return value;
}
