#pragma once

#include <cstdint>
#include <deque>
#include <fstream>
#include <string>
#include <vector>

#include "sim/exchanges/exchange.h"
#include "sim/text/jsonText.h"

namespace sim {

/// Which exchanges are asked for; an empty text asks for all.
struct ExchangeFilter {
    std::size_t last = 1000;
    std::uint64_t since = 0;  // only those with a higher id
    std::string command;      // its label, or its name alone
    std::string cluster;
    std::string outcome;  // how the outcome begins: "ok", "refused", "not run", "failed"
    std::string fault;    // the name of the fault that struck, or "*" for any
};

/// The last exchanges, for looking at; with a file, all of them, a line of JSON each.
class ExchangeLog {
public:
    static constexpr std::size_t kMaxKept = 1000;
    /// Longer documents are cut in memory; the file gets them whole.
    static constexpr std::size_t kMaxDocument = std::size_t{64} * 1024;

    /// An empty name keeps no file. Throws std::runtime_error when it cannot be written.
    explicit ExchangeLog(const std::string& file);

    void add(Exchange exchange);
    void clear();
    /// The last of those that the filter lets through, oldest first.
    std::vector<Exchange> select(const ExchangeFilter& filter) const;
    /// Whether every exchange above the id that came since the log was cleared is still here.
    bool isWholeSince(std::uint64_t id) const { return id >= m_lastDropped; }

private:
    std::deque<Exchange> m_exchanges;
    std::ofstream m_file;
    std::uint64_t m_lastDropped = 0;  // id of the last one for which there was no room
};

/// How much of the documents goes along.
enum class Documents { none, asTheyCame, alsoIndented };
Json toJson(const Exchange& exchange, Documents documents);

}  // namespace sim
