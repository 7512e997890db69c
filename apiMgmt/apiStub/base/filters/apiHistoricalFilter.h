#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"
#include "apiMgmt/apiStub/base/filters/filterTimeEnum.h"

/// The time range of a historical query. The flags are passed through to the array.
class APIHistoricalFilter : public BASEApiMethodObject {
    API_METHOD_OBJECT(HistoricalFilter);
    // clang-format off
    //            XML name        display name        kind                  code bounds
    API_ATTRIBUTE(EndTime,        "End Time",         DATETIME,             25);
    API_ATTRIBUTE(FilterTime,     "Filter Time",      ENUM<FilterTimeEnum>, 25);
    API_ATTRIBUTE(MaxCountReturn, "Max Count Return", INT,                  20,  NoBounds);
    API_ATTRIBUTE(StartTime,      "Start Time",       DATETIME,             25);
    API_ATTRIBUTE(UseCurrent,     "Use Current",      BOOLEAN,              25);
    API_ATTRIBUTE(UseEndOfDay,    "Use End Of Day",   BOOLEAN,              25);
    API_ATTRIBUTE(UseStartOfDay,  "Use Start Of Day", BOOLEAN,              25);
    // clang-format on
    API_ATTRIBUTE_LIST(EndTime, FilterTime, MaxCountReturn, StartTime, UseCurrent, UseEndOfDay,
                       UseStartOfDay);
};
