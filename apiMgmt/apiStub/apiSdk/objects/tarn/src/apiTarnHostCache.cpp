#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"

API_REGISTER_OBJECT(APITarnHostCache);

API_REGISTER_METHOD(TarnHostCache, Get);
API_REGISTER_METHOD(TarnHostCache, GetList);
API_REGISTER_METHOD(TarnHostCache, AddHccToSan);
API_REGISTER_METHOD(TarnHostCache, RemoveHccFromSan);
API_REGISTER_METHOD(TarnHostCache, AddServer);
API_REGISTER_METHOD(TarnHostCache, RemoveServer);
API_REGISTER_METHOD(TarnHostCache, HccAttachVolume);
API_REGISTER_METHOD(TarnHostCache, HccDetachVolume);
API_REGISTER_METHOD(TarnHostCache, MakeDataAvailable);
API_REGISTER_METHOD(TarnHostCache, MakeDataUnavailable);
API_REGISTER_METHOD(TarnHostCache, FlushComplete);
API_REGISTER_METHOD(TarnHostCache, SnapshotPrepareComplete);
API_REGISTER_METHOD(TarnHostCache, NewPrimaryCfmAddress);
API_REGISTER_METHOD(TarnHostCache, RenameHccInSan);
API_REGISTER_METHOD(TarnHostCache, CreateServerCluster);
API_REGISTER_METHOD(TarnHostCache, Ping);
API_REGISTER_METHOD(TarnHostCache, Delete);
