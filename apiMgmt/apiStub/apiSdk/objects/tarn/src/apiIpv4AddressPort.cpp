#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiIpv4AddressPort.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_METHOD_OBJECT(APIIpv4AddressPort);
