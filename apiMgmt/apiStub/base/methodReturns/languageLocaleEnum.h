#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// Language in which the API manager words its localized texts.
enum class LanguageLocaleEnum : int {
    English = 1,
    Chinese = 2,
    French = 3,
    German = 4,
    Japanese = 5,
    Korean = 6,
    Spanish = 7,
};

// The XML names are the five-character texts that a request's locale has too.
// clang-format off
inline constexpr ENUMIdStr<LanguageLocaleEnum> kLanguageLocaleRows[] = {
    {LanguageLocaleEnum::English,  "en_US", "English"},
    {LanguageLocaleEnum::Chinese,  "zh_CN", "Chinese (Simplified)"},
    {LanguageLocaleEnum::French,   "fr_FR", "French"},
    {LanguageLocaleEnum::German,   "de_DE", "German"},
    {LanguageLocaleEnum::Japanese, "ja_JP", "Japanese"},
    {LanguageLocaleEnum::Korean,   "ko_KR", "Korean"},
    {LanguageLocaleEnum::Spanish,  "es_ES", "Spanish"},
};
// clang-format on

inline constexpr ENUMIdStrList<LanguageLocaleEnum> gLanguageLocaleEnumIdStrList{
    kLanguageLocaleRows, LanguageLocaleEnum::English};
API_ENUM_LIST(LanguageLocaleEnum);
