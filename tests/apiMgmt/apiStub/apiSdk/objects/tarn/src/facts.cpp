#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

#include <algorithm>
#include <sstream>
#include <typeinfo>

#include "apiMgmt/apiStub/base/apiAttributes/attributeKinds.h"

namespace {

/// By the class's name, which the ABI of this platform writes with its length before it.
std::string kindOf(const BASEApiAttribute& attribute) {
    const std::string name = typeid(attribute).name();
    const std::size_t begin = name.find_first_not_of("0123456789");
    return name.substr(begin, name.find("ApiAttribute") - begin);
}

}  // namespace

const std::vector<ClassFact>& allFacts() {
    static const std::vector<ClassFact> facts = {
#include "factRows.inc"
    };
    return facts;
}

std::string differenceFromFacts(const std::string& name, const std::vector<std::string>& stated,
                                const std::vector<std::string>& found) {
    std::ostringstream out;
    const auto without = [&out](const auto& rows, const auto& others, const char* words) {
        for (const std::string& row : rows) {
            if (std::find(others.begin(), others.end(), row) == others.end()) {
                out << words << row << '\n';
            }
        }
    };
    without(stated, found, "  the code lacks:  ");
    without(found, stated, "  the facts lack:  ");
    if (out.str().empty() && stated != found) {
        out << "  the same rows in another order; the code's first: " << found.front() << '\n';
    }
    return out.str().empty() ? "" : name + " is not as " FACTS_FILE " states:\n" + out.str();
}

std::string describeAttribute(const BASEApiAttribute& attribute) {
    using Number = INTApiAttribute::INTAttributeProperties;
    using Text = STRINGApiAttribute::STRINGAttributeProperties;
    const auto& properties = attribute.GetProperties();
    std::ostringstream row;
    row << attribute.GetXmlName() << '|' << attribute.GetDisplayName() << '|' << kindOf(attribute)
        << '|' << properties.GetCode() << '|';
    if (const auto* number = dynamic_cast<const Number*>(&properties)) {
        row << number->GetMinimum() << '|' << number->GetMaximum() << '|';
    } else if (const auto* text = dynamic_cast<const Text*>(&properties)) {
        row << text->GetMinimumLength() << '|' << text->GetMaximumLength() << '|'
            << text->GetForbidden();
    } else {
        row << "||";
    }
    row << (properties.GetFirstFlag() || properties.GetSecondFlag() ? "|flagged" : "|");
    return row.str();
}
