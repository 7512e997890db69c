#include "tests/apiMgmt/apiStub/base/testClasses.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_OBJECT(APIThing);
API_REGISTER_OBJECT(APIOther);
API_REGISTER_METHOD_OBJECT(APIRecord);
