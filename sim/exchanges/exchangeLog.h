#pragma once

#include <cstdint>
#include <deque>
#include <fstream>
#include <string>
#include <vector>

#include "sim/exchanges/exchange.h"
#include "sim/text/jsonText.h"

namespace sim {

/// The last exchanges, for looking at; with a file, all of them, a line of JSON each.
class ExchangeLog {
public:
    static constexpr std::size_t kept = 1000;
    /// Longer documents are cut in memory; the file gets them whole.
    static constexpr std::size_t longestDocument = std::size_t{64} * 1024;

    /// An empty name keeps no file. Throws std::runtime_error when it cannot be written.
    explicit ExchangeLog(const std::string& file);

    void add(Exchange exchange);
    void clear() { m_exchanges.clear(); }
    /// The last `count` exchanges with an id above `since`, oldest first.
    std::vector<Exchange> last(std::size_t count, std::uint64_t since) const;

private:
    std::deque<Exchange> m_exchanges;
    std::ofstream m_file;
};

/// With `indented`, also the documents laid out for reading.
Json toJson(const Exchange& exchange, bool indented);

}  // namespace sim
