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

// The engine's own, which ours stand in front of.
extern "C" {
int enginePeekElement(soap* context);
int engineEndElement(soap* context, const char* tag);
char* engineStringIn(soap* context, int flag, long least, long most, const char* pattern);
const char* engineValue(soap* context);
}

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

struct Readers {
    decltype(&enginePeekElement) peek;
    decltype(&engineEndElement) end;
    decltype(&engineStringIn) string;
    decltype(&engineValue) value;
};

/// All that a reader of elements sees of a text, element by element.
std::string readings(const Readers& read, const std::string& text, int flag) {
    const Context context(soap_new1(SOAP_C_UTFSTRING | SOAP_XML_TREE));
    std::istringstream in(text);
    std::ostringstream seen;
    context->is = &in;
    (void)soap_begin_recv(context.get());
    for (int element = 0; element < 6; ++element) {
        const int outcome = read.peek(context.get());
        seen << outcome << ' ' << context->tag << ' ' << context->body;
        for (const auto* each = context->attributes; each != nullptr; each = each->next) {
            seen << ' ' << each->name << each->visible
                 << (each->value != nullptr && each->visible != 0 ? each->value : "");
        }
        if (outcome == SOAP_OK) {
            context->peeked = 0;
        }
        if (outcome == SOAP_OK && context->body != 0) {
            ++context->level;
            const char* content = flag == 0 ? read.value(context.get())
                                            : read.string(context.get(), flag, 0, 5, nullptr);
            seen << " [" << (content != nullptr ? content : "none") << ']';
        }
        if (outcome != SOAP_OK || context->body != 0) {
            seen << ' ' << read.end(context.get(), nullptr) << ' ' << context->tag;
        }
        seen << ' ' << context->level << '\n';
    }
    return seen.str();
}

TEST(LeanEngine, ReadsElementsAsTheEngineDoes) {
    const Readers ours{soap_peek_element, soap_element_end_in, soap_string_in, soap_value};
    const Readers engines{enginePeekElement, engineEndElement, engineStringIn, engineValue};
    for (const char* text : {"<a>text</a><b/><c></c>",
                             "<a b='1' c=\"x y\"/><a b='2'> t </a>\n<a c='' b=\"22\" />",
                             "<a>12345</a>",
                             "<a>123456</a>",
                             "<a>a=/b</a>",
                             "<a>x&amp;y</a>",
                             "<a>x<b/>c</a>",
                             "<a\n>t\tu\r\n</a >",
                             "<a><?x y?>t</a>",
                             "<a/><!-- c --><a>t</a>",
                             "<a/><?x?><b/>",
                             "<a><![CDATA[t]]></a>",
                             "<a b='1'/><a b='1' b='2'/>",
                             "<a id='1' ref='#1'/><a id='2' ref=''/>",
                             "<a b='1'/><a b=c>t</a>",
                             "<a b='1'/><a b >t</a>",
                             "<a b='1'/><a b='1&lt;2>'>t</a>",
                             "<a n:b='1' xmlns:n='u'>t</a><a n:b='2'/>",
                             "<a b='1' xmlns='u'/><a b='2'/>",
                             "<a>t</b>",
                             "<a>t",
                             "<a",
                             "<a>\"'></a>",
                             "<\xC3\xA4>\xC3\xB6</\xC3\xA4>",
                             "< a>t</ a>",
                             "<a/ >",
                             "<1>t</1>"}) {
        for (const int flag : {0, 1, 4, 5}) {
            EXPECT_EQ(readings(engines, text, flag), readings(ours, text, flag)) << text << flag;
        }
    }
}

}  // namespace
