// A plug-in that misbehaves in the way that ODD_PLUGIN names, to see that the module and
// sanPluginCheck stand it.
#include <unistd.h>

#include <unistd.h>

#include <cstdlib>
#include <deque>
#include <stdexcept>
#include <string>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "host/include/soapRequestReport.h"
#include "testbed/engineTable.h"

namespace {

const std::string kBehaviour = [] {
    const char* name = std::getenv("ODD_PLUGIN");
    return std::string(name != nullptr ? name : "");
}();

// Serves with the module's own context and leaves its traces in it.
int serveWithoutCopy(struct soap* context) {
    const std::string seen = context->user != nullptr ? "used" : "new";
    context->user = kBehaviour == "serves lightly" ? context : soap_malloc(context, 100000);
    context->fsend(context, seen.c_str(), seen.size());
    return SOAP_OK;
}

// Registers a plug-in of its own with the module's context, and says how many are there.
int serveAndRegister(struct soap* context) {
    soap_register_plugin_arg(
        context,
        [](struct soap*, soap_plugin* added, void*) {
            added->id = "odd";
            added->fdelete = [](struct soap*, soap_plugin*) {};
            return SOAP_OK;
        },
        nullptr);
    int registered = 0;
    for (const soap_plugin* next = context->plugins; next != nullptr; next = next->next) {
        ++registered;
    }
    struct soap copy(*context);
    ::usleep(20'000);  // so that calls at a time meet
    const std::string seen = std::to_string(registered);
    copy.fsend(&copy, seen.c_str(), seen.size());
    return SOAP_OK;
}

// Reports an operation of a new name with each request.
int serveAndReport(struct soap* context) {
    static std::deque<std::string> names;
    const auto* report =
        static_cast<const soapRequestReport*>(soap_lookup_plugin(context, SOAP_REQUEST_REPORT_ID));
    names.push_back("operation" + std::to_string(names.size()) +
                    std::string(names.size() * 2, 'x'));
    report->operation(names.back().c_str());
    report->lostLogLines(2);
    report->ended(SOAP_REFUSED_BY_ARRAY);
    return context->fsend(context, "reported", 8);
}

int serveOddly(struct soap* context) {
    if (kBehaviour == "reports") {
        return serveAndReport(context);
    }
    if (kBehaviour == "registers") {
        return serveAndRegister(context);
    }
    if (kBehaviour == "serves without a copy" || kBehaviour == "serves lightly") {
        return serveWithoutCopy(context);
    }
    if (kBehaviour == "throws") {
        throw std::runtime_error("words of the plug-in that nobody is to see");
    }
    if (kBehaviour == "throws midway") {
        context->fsend(context, "half a reply", 12);
        throw 42;
    }
    return kBehaviour == "fails silently" ? SOAP_EOM : SOAP_OK;
}

}  // namespace

PLUGIN_ENTRY void apache_init_soap_interface(apache_soap_interface* table) {
    fillEngineTable(*table, serveOddly);
    if (kBehaviour == "other length") {
        table->length = 192;
    } else if (kBehaviour == "other revision") {
        table->revision = 7;
    } else if (kBehaviour == "larger context") {
        table->init = [](struct soap* context) {
            soap_init(context);
            reinterpret_cast<char*>(context)[sizeof *context + 8] = 0;
        };
    } else if (kBehaviour == "smaller context") {
        table->init = [](struct soap* context) { context->state = SOAP_INIT; };
    } else if (kBehaviour == "reserved slot") {
        table->reserved = table;
    } else if (kBehaviour == "aborts") {
        std::abort();
    } else if (kBehaviour == "ends") {
        std::_Exit(7);
    } else if (kBehaviour == "hangs") {
        pause();
    } else if (kBehaviour == "no serve function") {
        table->serve = nullptr;
    }
}
