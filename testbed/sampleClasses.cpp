#include "testbed/sampleClasses.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_METHOD_OBJECT(APISampleRecord);
API_REGISTER_OBJECT(APIThing);
API_REGISTER_OBJECT(APISample);
API_REGISTER_METHOD(Sample, Add);
API_REGISTER_METHOD(Sample, GetList);
