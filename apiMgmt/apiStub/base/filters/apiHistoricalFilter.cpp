#include "apiMgmt/apiStub/base/filters/apiHistoricalFilter.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_METHOD_OBJECT(APIHistoricalFilter);
