#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// How the objects of a reply are written.
enum class ObjectReturnEncodeEnum : int {
    Xml = 1,
    Csv = 2,      // header and data
    CsvData = 3,  // data alone
};

// clang-format off
inline constexpr ENUMIdStr<ObjectReturnEncodeEnum> kObjectReturnEncodeRows[] = {
    {ObjectReturnEncodeEnum::Xml,     "Xml",     "XML"},
    {ObjectReturnEncodeEnum::Csv,     "Csv",     "CSV"},
    {ObjectReturnEncodeEnum::CsvData, "CsvData", "CSV Without Header"},
};
// clang-format on

inline constexpr ENUMIdStrList<ObjectReturnEncodeEnum> gObjectReturnEncodeEnumIdStrList{
    kObjectReturnEncodeRows, ObjectReturnEncodeEnum::Xml};
API_ENUM_LIST(ObjectReturnEncodeEnum);
