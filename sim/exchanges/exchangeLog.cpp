#include "sim/exchanges/exchangeLog.h"

#include <sys/stat.h>

#include <stdexcept>

#include "sim/text/xmlText.h"

namespace sim {

namespace {

void cut(std::string& document) {
    if (document.size() > ExchangeLog::longestDocument) {
        document.resize(ExchangeLog::longestDocument);
        document += "... (cut)";
    }
}

}  // namespace

ExchangeLog::ExchangeLog(const std::string& file) {
    if (file.empty()) {
        return;
    }
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    m_file.open(file, std::ios::app);
    ::umask(before);
    if (!m_file) {
        throw std::runtime_error("cannot write " + file);
    }
}

void ExchangeLog::add(Exchange exchange) {
    if (m_file.is_open()) {
        m_file << jsonText(toJson(exchange, false)) << std::endl;
    }
    cut(exchange.request);
    cut(exchange.reply);
    m_exchanges.push_back(std::move(exchange));
    if (m_exchanges.size() > kept) {
        m_exchanges.pop_front();
    }
}

std::vector<Exchange> ExchangeLog::last(std::size_t count, std::uint64_t since) const {
    auto from = m_exchanges.end();
    while (from != m_exchanges.begin() && count > 0 && std::prev(from)->id > since) {
        --from;
        --count;
    }
    return {from, m_exchanges.end()};
}

Json toJson(const Exchange& exchange, bool indented) {
    Json out{{"id", exchange.id},
             {"time", utcTime(exchange.time)},
             {"summary", summaryLine(exchange)},
             {"command", exchange.label},
             {"clientAddress", exchange.clientAddress},
             {"schemaVersion", exchange.schemaVersion},
             {"hccId", exchange.hccId},
             {"credentials", exchange.credentials},
             {"authToken", exchange.authToken},
             {"blobs", exchange.blobNames},
             {"outcome", exchange.outcome},
             {"fault", exchange.fault},
             {"tookMicroseconds", exchange.took.count()},
             {"request", exchange.request},
             {"reply", exchange.reply}};
    if (indented) {
        out["requestIndented"] = indentXml(exchange.request);
        out["replyIndented"] = indentXml(exchange.reply);
    }
    return out;
}

}  // namespace sim
