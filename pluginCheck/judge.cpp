#include "pluginCheck/judge.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string_view>

#include "host/include/soapRequestConf.h"
#include "host/serveGuard.h"
#include "host/soapPlugin.h"
#include "pluginCheck/exportedNames.h"
#include "pluginCheck/given.h"

namespace {

using Verdict = CheckResult::Verdict;

// Where the request's bytes come from and those of the reply go. The engine works on copies of the
// context, so it hangs on none.
struct Exchange {
    std::string_view unread = kPingRequest;
    std::string reply;
};
Exchange* current = nullptr;

std::size_t giveRequest(struct soap*, char* target, std::size_t room) {
    const std::size_t count = current->unread.copy(target, room);
    current->unread.remove_prefix(count);
    return count;
}

int takeReply(struct soap*, const char* data, std::size_t size) {
    current->reply.append(data, size);
    return SOAP_OK;
}

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

class Judge {
public:
    Judge(const std::string& path, const JudgeEvents& events) : m_path(path), m_events(events) {
        m_plugin->path = m_path.c_str();
    }

    void run() {
        for (const soapPluginLook* next = kSoapPluginLooks; next->subject != nullptr; ++next) {
            ask(next->subject);
            if (const char* reason = next->look(m_plugin.get())) {
                return tell(Verdict::Wrong, explain(reason));
            }
            tell(Verdict::Usable, next->fine);
        }
        judgeGenerated();
        judgeExports();
        judgePing();
    }

private:
    void ask(const std::string& question) {
        m_question = question;
        m_events.asks(question);
    }

    void tell(Verdict verdict, const std::string& words) {
        m_events.found({m_question, verdict, words});
    }

    static std::string explain(const std::string& reason) {
        // Names of the server's own functions begin so.
        return reason.find("undefined symbol: ap") == std::string::npos
                   ? reason
                   : reason + "; if the web server has it, only apachectl configtest can tell more";
    }

    // The slots behind the namespaces.
    void judgeGenerated() {
        ask("Generated functions");
        const auto& table = m_plugin->room.table;
        std::size_t missing = 0;
        for (std::size_t at = offsetof(apache_soap_interface, serializeHeader); at < sizeof(table);
             at += sizeof(void*)) {
            const char* slot = reinterpret_cast<const char*>(&table) + at;
            missing += std::all_of(slot, slot + sizeof(void*), [](char byte) { return byte == 0; });
        }
        tell(missing == 0 ? Verdict::Usable : Verdict::Odd,
             missing == 0 ? "all are in the table"
                          : std::to_string(missing) +
                                " slots are null; the module does not call "
                                "them, another of this interface may");
    }

    void judgeExports() {
        ask("Exported names");
        std::vector<std::string> others = exportedNames(m_path);
        const std::size_t all = others.size();
        std::string missing;
        std::istringstream patterns(kExportedNames);
        for (std::string pattern; patterns >> pattern;) {
            if (std::erase_if(others, [&pattern](const std::string& name) {
                    return ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
                }) == 0) {
                missing += " " + pattern;
            }
        }
        std::string words = std::to_string(all) + " names";
        words += missing.empty() ? "" : "; missing:" + missing;
        words += others.empty() ? ""
                                : "; " + std::to_string(others.size()) +
                                      " that are not of the interface, such as " + others.front();
        tell(missing.empty() && others.empty() ? Verdict::Usable : Verdict::Odd, words);
    }

    void judgePing() {
        ask(kPingQuestion);
        const apache_soap_interface& table = m_plugin->room.table;
        char address[] = "127.0.0.1";
        conn_rec connection{};
        connection.client_ip = connection.local_ip = address;
        request_rec request{};
        request.connection = &connection;
        request.useragent_ip = address;
        soapRequestConf conf{&request};
        Exchange exchange;
        current = &exchange;

        const std::unique_ptr<struct soap, Free> context(
            static_cast<struct soap*>(std::calloc(1, sizeof(struct soap))));
        soapSetUpContext(context.get(), &table, giveRequest, takeReply);
        int status = soapAttach(context.get(), &table, SOAP_REQUEST_CONF_ID, &conf);
        if (status != SOAP_OK) {
            return tell(Verdict::Wrong, "it takes no request configuration");
        }
        const char* type = nullptr;
        const bool came = soapServeGuarded(table.serve, context.get(), &status, &type) != 0;
        const auto [verdict, words] =
            came ? judgeReply(exchange.reply, status)
                 : std::pair(Verdict::Wrong,
                             std::string("an exception of type ") + type + " leaves it");
        tell(verdict, words);

        ask("End of the context");
        table.destroy(context.get());
        table.end(context.get());
        table.done(context.get());
        tell(Verdict::Usable, "freed");
    }

    static std::pair<Verdict, std::string> judgeReply(const std::string& reply, int status) {
        constexpr std::string_view kFault = "<faultstring>";
        if (reply.empty()) {
            return {Verdict::Wrong, "it writes no answer, its status is " + std::to_string(status)};
        }
        if (const std::size_t at = reply.find(kFault); at != std::string::npos) {
            const std::string fault = reply.substr(at + kFault.size());
            return {Verdict::Wrong,
                    "it answers with the fault " + fault.substr(0, fault.find('<'))};
        }
        if (reply.find("PingResponse") == std::string::npos || status != SOAP_OK) {
            return {Verdict::Wrong,
                    "what it writes is no answer to a Ping: " + std::to_string(reply.size()) +
                        " bytes, its status is " + std::to_string(status)};
        }
        return {Verdict::Usable, "answered, after it asked the array"};
    }

    const std::string m_path;
    const JudgeEvents& m_events;
    std::string m_question;
    // Zeroed, and too large for a stack.
    const std::unique_ptr<soapPlugin> m_plugin = std::make_unique<soapPlugin>();
};

}  // namespace

void judgePlugin(const std::string& path, const JudgeEvents& events) {
    Judge(path, events).run();
}
