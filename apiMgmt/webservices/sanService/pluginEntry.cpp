#include "apiMgmt/webservices/sanService/pluginEntry.h"

#include <new>
#include <string>

#include "SanApiH.h"
#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "apiMgmt/webservices/sanService/processSetUp.h"
#include "apiMgmt/webservices/sanService/sanService.h"
#include "apiMgmt/webservices/sanService/serviceLog.h"

namespace {

// The management API is on this controller, and only there.
const std::string kApiMgrAddress = "127.0.0.1";

}  // namespace

int SANServiceHandler(soap* ctx) {
    setUpThread();
    SimpleLogger::open(ServiceLog::kIdentity);
    int result = SOAP_EOM;
    try {
        SANService service(*ctx, kApiMgrAddress, getApiMgrPort());
        ServiceLog::Write(ServiceLog::kServing);
        result = service.serve();
        ServiceLog::Write(ServiceLog::kServed);
    } catch (const std::bad_alloc&) {
        // There is no memory for a service object; the module answers for us.
    }
    SimpleLogger::close();
    return result;
}

void apache_default_soap_init(soap* soap) {
    soap_init(soap);
}

void apache_soap_soap_destroy(soap* soap) {
    soap_delete(soap, nullptr);
}

void apache_default_soap_end(soap* soap) {
    soap_end(soap);
}

void apache_default_soap_done(soap* soap) {
    soap_done(soap);
}

int apache_default_soap_register_plugin_arg(soap* soap,
                                            int (*create)(struct soap*, soap_plugin*, void*),
                                            void* arg) {
    return soap_register_plugin_arg(soap, create, arg);
}

void* apache_default_soap_lookup_plugin(soap* soap, const char* id) {
    return soap_lookup_plugin(soap, id);
}

void apache_init_soap_interface(apache_soap_interface* table) {
    setUpProcess();
    *table = apache_soap_interface{
        .length = APACHE_SOAP_LENGTH,
        .revision = APACHE_SOAP_REVISION,
        .init = apache_default_soap_init,
        .serve = SANServiceHandler,
        .destroy = apache_soap_soap_destroy,
        .end = apache_default_soap_end,
        .done = apache_default_soap_done,
        .registerPlugin = apache_default_soap_register_plugin_arg,
        .lookupPlugin = apache_default_soap_lookup_plugin,
        .reserved = nullptr,
        .namespaces = namespaces,
        .serializeHeader = soap_serializeheader,
        .putHeader = soap_putheader,
        .getHeader = soap_getheader,
        .fault = soap_fault,
        .serializeFault = soap_serializefault,
        .putFault = soap_putfault,
        .getFault = soap_getfault,
        .faultCode = soap_faultcode,
        .faultString = soap_faultstring,
        .faultDetail = soap_faultdetail,
        .markElement = SanApi::soap_markelement,
        .putElement = SanApi::soap_putelement,
        .getElement = SanApi::soap_getelement,
    };
}
