#include "apiMgmt/apiStub/base/filters/getListFilter.h"

#include <utility>

#include "apiMgmt/common/utils/stringUtil.h"

GETListFilter::GETListFilter(GETListFilterType type) : m_type(type) {}

GETListFilter::GETListFilter(GETListFilterType type, std::vector<APIAttributeFilter> filters)
    : m_type(type), m_filters(std::move(filters)) {}

void GETListFilter::AddAttributeFilter(const std::string& name, FILTERType type,
                                       const std::string& value) {
    m_filters.emplace_back(name, type, value);
}

void GETListFilter::AddAttributeFilter(const APIAttributeFilter& filter) {
    m_filters.push_back(filter);
}

std::string GETListFilter::GETListFilterTypeAsString() const {
    return m_type == GETListFilterType::Or ? "or" : "and";
}

GETListFilterType GETListFilter::ParseListFilterType(const std::string& text) {
    return STRINGUtil::Comparecase(text, "or") == 0 ? GETListFilterType::Or
                                                    : GETListFilterType::And;
}

std::string GETListFilter::ToString() const {
    std::string text = GETListFilterTypeAsString() + " ";
    for (const APIAttributeFilter& filter : m_filters) {
        text += filter.ToString() + "-";
    }
    return text;
}

bool GETListFilter::Parse(const std::string& text) {
    std::string rest = text;
    STRINGUtil::Trim(rest);
    const auto blank = rest.find(' ');
    m_type = ParseListFilterType(rest.substr(0, blank));
    m_filters.clear();

    rest = blank == std::string::npos ? std::string() : rest.substr(blank);
    STRINGUtil::Trim(rest);
    std::vector<std::string> pieces;
    STRINGUtil::SplitString(rest, "-", pieces, 0);
    for (std::string& piece : pieces) {
        STRINGUtil::Trim(piece);
        if (!piece.empty()) {
            m_filters.push_back(APIAttributeFilter::Parse(piece));
        }
    }
    return GetFilterCount() != 0;
}

std::vector<FILTERItem> GETListFilter::GenerateFilterList() const {
    std::vector<FILTERItem> items;
    items.reserve(m_filters.size());
    for (const APIAttributeFilter& filter : m_filters) {
        items.emplace_back(filter.GetName(), filter.GetValue(),
                           FILTERItem::GetTarnFilterType(filter.GetType()));
    }
    return items;
}
