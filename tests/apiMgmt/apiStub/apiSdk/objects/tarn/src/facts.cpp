#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <typeinfo>

#include "apiMgmt/apiStub/base/apiAttributes/attributeKinds.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr std::size_t kUnlistedColumn = 7;

AttributeFact readAttribute(const std::string& line) {
    std::vector<std::string> columns;
    STRINGUtil::SplitString(line, "|", columns);
    for (std::string& column : columns) {
        STRINGUtil::Trim(column);
    }
    AttributeFact fact;
    fact.xmlName = columns.front();
    fact.listed = columns.size() <= kUnlistedColumn;
    columns.resize(kUnlistedColumn);
    for (const std::string& column : columns) {
        fact.row += column + "|";
    }
    return fact;
}

ClassFact readClass(const std::string& line) {
    static const std::set<std::string> keys = {"then", "after", "async", "privilege", "requires"};
    ClassFact fact;
    std::string key;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        if (keys.contains(word)) {
            fact.words.try_emplace(key = word);
        } else if (word != "-") {
            fact.words[key].push_back(word);
        }
    }
    std::vector<std::string> names = fact.words[""];
    for (const std::string& name : names) {
        fact.name += (fact.name.empty() ? "" : " ") + name;
    }
    names.resize(3);
    fact.kind = names[0];
    fact.object = names[1];
    fact.method = names[2];
    return fact;
}

std::vector<ClassFact> readFacts() {
    std::ifstream file(FACTS_FILE);
    std::vector<ClassFact> facts;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() == ' ') {
            facts.back().attributes.push_back(readAttribute(line));
        } else {
            facts.push_back(readClass(line));
        }
    }
    return facts;
}

/// By the class's name, which the ABI of this platform writes with its length before it.
std::string kindOf(const BASEApiAttribute& attribute) {
    const std::string name = typeid(attribute).name();
    const std::size_t begin = name.find_first_not_of("0123456789");
    return name.substr(begin, name.find("ApiAttribute") - begin);
}

void addRows(const ClassFact& fact, const std::string& where, std::vector<std::string>& rows) {
    const auto base = fact.words.find(where);
    for (const ClassFact& other : allFacts()) {
        if (base != fact.words.end() && other.object == base->second[0] && other.method.empty()) {
            for (const std::string& row : listedRows(other)) {
                rows.push_back(row);
            }
        }
    }
}

}  // namespace

const std::vector<ClassFact>& allFacts() {
    static const std::vector<ClassFact> facts = readFacts();
    return facts;
}

std::vector<std::string> listedRows(const ClassFact& fact) {
    std::vector<std::string> rows;
    addRows(fact, "after", rows);
    for (const AttributeFact& attribute : fact.attributes) {
        if (attribute.listed) {
            rows.push_back(attribute.row);
        }
    }
    addRows(fact, "then", rows);
    return rows;
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
