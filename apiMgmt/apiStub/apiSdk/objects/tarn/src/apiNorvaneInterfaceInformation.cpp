#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneInterfaceInformation.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_METHOD_OBJECT(APINorvaneInterfaceInformation);
