#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiObject.h"
#include "apiMgmt/apiStub/base/methodReturns/errorStateList.h"
#include "apiMgmt/apiStub/base/methodReturns/languageLocaleEnum.h"

/// The status part of a reply: its ApiMethodReturn element, and the base of every method return.
class APIApiMethodReturn : public BASEApiObject {
    API_OBJECT(ApiMethodReturn);
    // clang-format off
    //            XML name            display name            kind                          code bounds
    API_ATTRIBUTE(Error,              "Error",                STRING,                       25,  AtLeast(0));
    API_ATTRIBUTE(ErrorCode,          "Error Code",           ENUM<ErrorStateEnum>,         25);
    API_ATTRIBUTE(ErrorDetail,        "Error Detail",         STRING,                       25,  AtLeast(0));
    API_ATTRIBUTE(Locale,             "Locale",               ENUM<LanguageLocaleEnum>,     25);
    API_ATTRIBUTE(LocalizedError,     "Localized Error",      STRING,                       25,  AtLeast(0));
    API_ATTRIBUTE(ReturnObjectEncode, "Return Object Encode", ENUM<ObjectReturnEncodeEnum>, 25);
    API_ATTRIBUTE(Successful,         "Successful",           BOOLEAN,                      25);
    API_ATTRIBUTE(WarningList,        "Warning List",         STRINGARRAY,                  25);
    // clang-format on
    // The only list that begins with its base's.
    API_ATTRIBUTE_LIST_AFTER(BASEApiObject, Error, ErrorCode, ErrorDetail, Locale, LocalizedError,
                             ReturnObjectEncode, Successful, WarningList);
};
