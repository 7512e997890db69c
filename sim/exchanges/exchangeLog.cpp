#include "sim/exchanges/exchangeLog.h"

#include <sys/stat.h>

#include <algorithm>
#include <stdexcept>

#include "apiMgmt/common/text/documentText.h"

namespace sim {

namespace {

void cut(std::string& document) {
    if (document.size() > ExchangeLog::kMaxDocument) {
        document.resize(ExchangeLog::kMaxDocument);
        document += "... (cut)";
    }
}

bool hasCommand(const Exchange& exchange, const std::string& command) {
    return exchange.label == command || exchange.label.ends_with("::" + command);
}

bool letsThrough(const ExchangeFilter& filter, const Exchange& exchange) {
    return (filter.command.empty() || hasCommand(exchange, filter.command)) &&
           (filter.cluster.empty() || clusterOf(exchange) == filter.cluster) &&
           exchange.outcome.starts_with(filter.outcome) &&
           (filter.fault.empty() || exchange.fault == filter.fault ||
            (filter.fault == "*" && !exchange.fault.empty()));
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
        m_file << jsonText(toJson(exchange, Documents::asTheyCame)) << std::endl;
    }
    cut(exchange.request);
    cut(exchange.reply);
    for (auto& [name, value] : exchange.members) {
        cut(value);
    }
    m_exchanges.push_back(std::move(exchange));
    if (m_exchanges.size() > kMaxKept) {
        m_lastDropped = m_exchanges.front().id;
        m_exchanges.pop_front();
    }
}

void ExchangeLog::clear() {
    m_exchanges.clear();
    m_lastDropped = 0;
}

std::vector<Exchange> ExchangeLog::select(const ExchangeFilter& filter) const {
    std::vector<Exchange> found;
    for (auto exchange = m_exchanges.rbegin();
         exchange != m_exchanges.rend() && exchange->id > filter.since &&
         found.size() < filter.last;
         ++exchange) {
        if (letsThrough(filter, *exchange)) {
            found.push_back(*exchange);
        }
    }
    std::reverse(found.begin(), found.end());
    return found;
}

Json toJson(const Exchange& exchange, Documents documents) {
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
             {"cluster", clusterOf(exchange)},
             {"members", exchange.members},
             {"brokenRules", exchange.brokenRules},
             {"tookMicroseconds", exchange.took.count()}};
    if (documents != Documents::none) {
        out["request"] = exchange.request;
        out["reply"] = exchange.reply;
    }
    if (documents == Documents::alsoIndented) {
        out["requestIndented"] = text::indentXml(exchange.request);
        out["replyIndented"] = text::indentXml(exchange.reply);
    }
    return out;
}

}  // namespace sim
