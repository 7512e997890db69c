// What the engine's functions of our own have to do like the engine's.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

namespace {

using wire::Context;

int failing = 0;

int attach(soap*, soap_plugin* plugin, void*) {
    plugin->id = "test";
    plugin->data = &failing;
    plugin->fcopy = [](soap*, soap_plugin*, soap_plugin*) { return failing; };
    plugin->fdelete = [](soap*, soap_plugin*) {};
    return SOAP_OK;
}

/// A context of which everything that a copy must not share is set.
Context usedContext() {
    Context context(soap_new1(SOAP_C_UTFSTRING | SOAP_IO_KEEPALIVE));
    soap_register_plugin_arg(context.get(), attach, nullptr);
    (void)soap_malloc(context.get(), 100);
    soap_set_local_namespaces(context.get());
    soap_set_attr(context.get(), "a", "b", 1);
    context->userid = "user";
    context->action = soap_strdup(context.get(), "action");
    std::strcpy(context->session_host, "host");
    std::strcpy(context->endpoint, "endpoint");
    context->buflen = 5;
    std::strcpy(context->buf, "rest");
    context->user = context.get();
    context->error = SOAP_EOM;
    return context;
}

// Where a copy holds pointers of its own, or what no reader looks at.
const struct {
    size_t begin, end;
} kOwn[] = {
    {offsetof(soap, local_namespaces), offsetof(soap, nlist)},
    {offsetof(soap, plugins), offsetof(soap, plugins) + sizeof(void*)},
    {offsetof(soap, buf) + 5, offsetof(soap, buf) + sizeof(soap::buf)},
    {offsetof(soap, mht), offsetof(soap, mht) + sizeof(soap::mht)},
};

TEST(LeanEngine, CopiesAContextAsTheEngineDoes) {
    const Context original = usedContext();
    const Context engines(soap_new());
    ASSERT_NE(nullptr, soap_copy_context(engines.get(), original.get()));
    alignas(soap) static std::byte room[sizeof(soap)];
    soap* const ours = new (room) soap(*original);
    size_t begin = 0;
    const auto compareTo = [&](size_t end) {
        EXPECT_EQ(0, std::memcmp(room + begin, reinterpret_cast<std::byte*>(engines.get()) + begin,
                                 end - begin))
            << "between " << begin << " and " << end;
    };
    for (const auto& own : kOwn) {
        compareTo(own.begin);
        begin = own.end;
    }
    compareTo(sizeof(soap));
    EXPECT_EQ(&failing, soap_lookup_plugin(ours, "test"));
    EXPECT_STREQ(original->local_namespaces[7].ns, ours->local_namespaces[7].ns);
    EXPECT_NE(original->local_namespaces, ours->local_namespaces);
    ours->~soap();
}

TEST(LeanEngine, CopyIsOfNoUseWhereThePlugInFails) {
    const Context original = usedContext();
    failing = SOAP_EOM;
    const soap copy(*original);
    failing = SOAP_OK;
    EXPECT_EQ(SOAP_NONE, copy.state);
}

TEST(LeanEngine, FollowsReferencesWhereTheyAreAskedFor) {
    const Context context(soap_new1(SOAP_C_UTFSTRING | SOAP_XML_GRAPH));
    for (const char* target : {"a", "b", "a"}) {
        std::istringstream text(
            "<s:AddHccToSan xmlns:s='urn:san-api:service'><sanId/><hccId/><hccKey/>"
            "<cfmIpAddresses href='#a'/><cfmIpAddresses id='" +
            std::string(target) +
            "'><ipAddress type='ipv4'/><port>1</port></cfmIpAddresses></s:AddHccToSan>");
        context->is = &text;
        SanApi::ns1__AddHccToSan message;
        const int outcome = SanApi::soap_read_ns1__AddHccToSan(context.get(), &message);
        if (*target == 'a') {
            ASSERT_EQ(SOAP_OK, outcome);
            EXPECT_EQ(message.cfmIpAddresses[0], message.cfmIpAddresses[1]);
        } else {
            EXPECT_EQ(SOAP_MISSING_ID, outcome);
        }
        soap_destroy(context.get());
        soap_end(context.get());
    }
}

}  // namespace
