#include "host/serveGuard.h"

#include <cxxabi.h>

#include <typeinfo>

int soapServeGuarded(int (*serve)(struct soap*), struct soap* context, int* status,
                     const char** type) {
    try {
        *status = serve(context);
        return 1;
    } catch (const abi::__forced_unwind&) {
        throw;  // the thread is being cancelled, which must not be stopped
    } catch (...) {
        const std::type_info* info = abi::__cxa_current_exception_type();
        *type = info ? info->name() : "unknown";
        return 0;
    }
}
