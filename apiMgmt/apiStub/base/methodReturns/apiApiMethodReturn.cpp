#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_OBJECT(APIApiMethodReturn);
