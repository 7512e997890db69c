#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <typeindex>
#include <unordered_map>

#include "apiMgmt/apiStub/base/apiAttributes/attributeKinds.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr std::size_t kUnlistedColumn = 7;

AttributeFact ReadAttribute(const std::string& line) {
    std::vector<std::string> columns;
    STRINGUtil::SplitString(line, "|", columns);
    for (std::string& column : columns)
        STRINGUtil::Trim(column);
    AttributeFact fact;
    fact.xmlName = columns.front();
    fact.listed = columns.size() <= kUnlistedColumn;
    columns.resize(kUnlistedColumn);
    for (const std::string& column : columns)
        fact.row += column + "|";
    return fact;
}

ClassFact ReadClass(const std::string& line) {
    std::istringstream words(line);
    ClassFact fact;
    words >> fact.kind >> fact.object;
    fact.name = fact.kind + " " + fact.object;
    if (fact.kind == "method" || fact.kind == "association") {
        words >> fact.method;
        fact.name += " " + fact.method;
    }
    for (std::string word; words >> word;) {
        if (word == "then")
            words >> fact.then;
        else if (word == "after")
            words >> fact.after;
        else if (word == "async")
            words >> std::boolalpha >> fact.async;
        else if (word == "privilege")
            words >> fact.privilege;
        else if (word == "requires")
            while (words >> word)
                if (word != "-")
                    fact.required.push_back(word);
    }
    return fact;
}

std::vector<ClassFact> ReadFacts() {
    std::ifstream file(FACTS_FILE);
    if (!file)
        throw std::runtime_error("cannot read " FACTS_FILE);
    std::vector<ClassFact> facts;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#')
            continue;
        if (line.front() == ' ')
            facts.back().attributes.push_back(ReadAttribute(line));
        else
            facts.push_back(ReadClass(line));
    }
    return facts;
}

std::string KindOf(const BASEApiAttribute& attribute) {
#define KIND(Name) \
    { typeid(Name##ApiAttribute), #Name }
    static const std::unordered_map<std::type_index, std::string> kinds = {
        // clang-format off
        KIND(BOOLEAN), KIND(DATETIME), KIND(ENUM), KIND(ENUMMASK), KIND(GETLISTFILTER),
        KIND(INSTANCEID), KIND(INT), KIND(IPV4ADDRESS), KIND(METHODOBJECT),
        KIND(METHODOBJECTARRAY), KIND(NAME), KIND(OBJECT), KIND(OBJECTARRAY), KIND(STRING),
        KIND(STRINGARRAY),
        // clang-format on
    };
    return kinds.at(typeid(attribute));
}

std::string BoundsOf(const BASEApiAttribute& attribute) {
    const auto& properties = attribute.GetProperties();
    using Number = INTApiAttribute::INTAttributeProperties;
    using Text = STRINGApiAttribute::STRINGAttributeProperties;
    if (const auto* number = dynamic_cast<const Number*>(&properties))
        return STRINGUtil::FormatStr("%lld|%lld|", static_cast<long long>(number->GetMinimum()),
                                     static_cast<long long>(number->GetMaximum()));
    if (const auto* text = dynamic_cast<const Text*>(&properties))
        return STRINGUtil::FormatStr(
            "%lld|%lld|%s", static_cast<long long>(text->GetMinimumLength()),
            static_cast<long long>(text->GetMaximumLength()), text->GetForbidden().c_str());
    return "||";
}

std::vector<std::string> RowsOf(const std::string& base) {
    for (const ClassFact& fact : AllFacts())
        if (fact.object == base && fact.method.empty())
            return ListedRows(fact);
    return {};
}

}  // namespace

const std::vector<ClassFact>& AllFacts() {
    static const std::vector<ClassFact> facts = ReadFacts();
    return facts;
}

std::vector<std::string> ListedRows(const ClassFact& fact) {
    std::vector<std::string> rows = RowsOf(fact.after);
    for (const AttributeFact& attribute : fact.attributes)
        if (attribute.listed)
            rows.push_back(attribute.row);
    for (const std::string& row : RowsOf(fact.then))
        rows.push_back(row);
    return rows;
}

std::string DescribeAttribute(const BASEApiAttribute& attribute) {
    const auto& properties = attribute.GetProperties();
    const bool flagged = properties.GetFirstFlag() || properties.GetSecondFlag();
    return STRINGUtil::FormatStr("%s|%s|%s|%d|%s|%s", attribute.GetXmlName().c_str(),
                                 attribute.GetDisplayName().c_str(), KindOf(attribute).c_str(),
                                 properties.GetCode(), BoundsOf(attribute).c_str(),
                                 flagged ? "flagged" : "");
}
