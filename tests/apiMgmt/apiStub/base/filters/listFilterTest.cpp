#include <gmock/gmock.h>

#include "apiMgmt/apiStub/base/filters/getListFilter.h"

namespace {

TEST(AttributeFilterText, OperatorsReadAndWrite) {
    // text, number, how it is written
    const std::tuple<const char*, int, const char*> rows[] = {
        {"=", 2, "="},       {"eq", 2, "="},    {">", 3, ">"},  {"gt", 3, ">"},  {">=", 4, ">="},
        {"gteq", 4, ">="},   {"<", 5, "<"},     {"lt", 5, "<"}, {"<=", 6, "<="}, {"lteq", 6, "<="},
        {"iqin", 7, "iqin"}, {"iqs", 8, "iqs"}, {"EQ", 0, ""},  {"", 0, ""},     {"!=", 0, ""},
    };
    for (const auto& [text, number, written] : rows) {
        EXPECT_EQ(APIAttributeFilter::GetFilterTypeFromString(text), FILTERType{number}) << text;
        EXPECT_EQ(APIAttributeFilter::GetFilterTypeAsString(FILTERType{number}), written) << text;
    }
    for (const int number : {-1, 1, 9}) {
        EXPECT_EQ(APIAttributeFilter::GetFilterTypeAsString(FILTERType{number}), "");
    }
}

TEST(AttributeFilterText, ReadsThreePieces) {
    const std::tuple<const char*, APIAttributeFilter, const char*> rows[] = {
        {"Name eq My-Volume", {"Name", FILTERType::Equal, "My-Volume"}, "Name = My&hy&Volume"},
        {"Name eq a&hy&b c", {"Name", FILTERType::Equal, "a-b c"}, "Name = a&hy&b c"},
        {"Name EQ a", {"Name", FILTERType::None, "a"}, "Name  a"},
        {"Name eq ", {"Name", FILTERType::Equal, ""}, "Name = "},
        {"Name eq", {}, "  "},
        {"", {}, "  "},
    };
    for (const auto& [text, filter, written] : rows) {
        EXPECT_EQ(APIAttributeFilter::Parse(text), filter) << text;
        EXPECT_EQ(filter.ToString(), written);
    }
}

TEST(ListFilterText, RoundTrips) {
    struct {
        const char* text;
        GETListFilterType type;
        std::size_t count;
        const char* written;
    } const rows[] = {
        {"or Name = a - Size > 10", GETListFilterType::Or, 2, "or Name = a-Size > 10-"},
        {"or Name = a-Size > 10-", GETListFilterType::Or, 2, "or Name = a-Size > 10-"},
        {"  OR A = 1", GETListFilterType::Or, 1, "or A = 1-"},
        {"AND A = 1", GETListFilterType::And, 1, "and A = 1-"},
        {"xor A = 1", GETListFilterType::And, 1, "and A = 1-"},
        {"and A = &hy&1-", GETListFilterType::And, 1, "and A = &hy&1-"},
        {"and junk-A = 1", GETListFilterType::And, 2, "and   -A = 1-"},
        {"or", GETListFilterType::Or, 0, "or "},
        {"or - - -", GETListFilterType::Or, 0, "or "},
        {"", GETListFilterType::And, 0, "and "},
    };
    for (const auto& row : rows) {
        GETListFilter filter(GETListFilterType::Or, {{"Gone", FILTERType::Equal, "1"}});
        EXPECT_EQ(filter.Parse(row.text), row.count > 0) << row.text;
        EXPECT_EQ(filter.GetType(), row.type) << row.text;
        EXPECT_EQ(filter.GetFilterCount(), row.count) << row.text;
        EXPECT_EQ(filter.ToString(), row.written) << row.text;
    }
}

TEST(ListFilterItems, CarryTheArraysOperators) {
    GETListFilter filter;
    EXPECT_EQ(filter.GetType(), GETListFilterType::None);
    for (const int type : {0, 2, 3, 4, 5, 6, 7, 8}) {
        filter.AddAttributeFilter("A", FILTERType{type}, "v");
    }
    std::string types;
    for (const FILTERItem& item : filter.GenerateFilterList()) {
        EXPECT_EQ(item.GetName() + item.GetValue(), "Av");
        types += item.GetTypeString() + ";";
        EXPECT_EQ(
            FILTERItem::GetFilterTypeFromString(FILTERItem::GetFilterTypeAsString(item.GetType())),
            item.GetType());
    }
    EXPECT_EQ(types,
              "Unknown;Equals;Greater Than;Greater Than Or Equal;Less Than;Less Than Or Equal;"
              "Contains;Starts With;");
}

}  // namespace
