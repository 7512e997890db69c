#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/apiStub/base/filters/filterItem.h"

/// How the conditions of a list filter are joined.
enum class GETListFilterType : int {
    None = 0,  // an empty filter that was not parsed yet
    And = 1,
    Or = 2,
};

/// Restricts which objects a GetList method returns: conditions joined by one operator.
///
///     GETListFilter filter(GETListFilterType::Or);
///     filter.AddAttributeFilter("Name", FILTERType::Equal, "a");
///     filter.AddAttributeFilter("Size", FILTERType::Greater, "10");
///     filter.ToString();   // "or Name = a-Size > 10-"
class GETListFilter {
public:
    explicit GETListFilter(GETListFilterType type = GETListFilterType::None);
    GETListFilter(GETListFilterType type, std::vector<APIAttributeFilter> filters);

    /// Appends; conditions keep the order of the calls.
    void AddAttributeFilter(const std::string& name, FILTERType type, const std::string& value);
    void AddAttributeFilter(const APIAttributeFilter& filter);

    GETListFilterType GetType() const { return m_type; }
    const std::vector<APIAttributeFilter>& GetFilters() const { return m_filters; }
    std::size_t GetFilterCount() const { return m_filters.size(); }

    /// "and" or "or"; a filter without a type joins with "and".
    std::string GETListFilterTypeAsString() const;
    /// Ignores case; any other word than "or" joins with "and".
    static GETListFilterType ParseListFilterType(const std::string& text);

    std::string ToString() const;
    /// Replaces type and conditions by those of the text; false when it yields no condition.
    /// An empty piece, such as the one behind the final "-", is skipped; a piece that is no
    /// condition is kept as the default condition.
    bool Parse(const std::string& text);

    /// One record per condition, with the operator in the array's own numbering.
    std::vector<FILTERItem> GenerateFilterList() const;

private:
    GETListFilterType m_type;
    std::vector<APIAttributeFilter> m_filters;
};
