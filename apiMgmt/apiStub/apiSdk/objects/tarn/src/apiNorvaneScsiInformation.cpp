#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_METHOD_OBJECT(APINorvaneScsiInformation);
