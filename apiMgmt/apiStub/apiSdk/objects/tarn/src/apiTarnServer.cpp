#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnServer.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_OBJECT(APITarnServer);

API_REGISTER_METHOD(TarnServer, Get);
API_REGISTER_METHOD(TarnServer, GetList);
API_REGISTER_METHOD(TarnServer, Delete);
API_REGISTER_METHOD(TarnServer, MapToVolume);
API_REGISTER_METHOD(TarnServer, GetHistoricalStorageUsage);
API_REGISTER_METHOD(TarnServer, GetHistoricalIoUsage);
API_REGISTER_METHOD(TarnServer, AddManagementLock);
API_REGISTER_METHOD(TarnServer, RemoveManagementLock);
