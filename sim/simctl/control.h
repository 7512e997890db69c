#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "sim/text/jsonText.h"

namespace httplib {
class Client;
class Result;
}  // namespace httplib

namespace sim {

/// Where a simulator is asked.
struct ControlPlace {
    std::string socketPath;  // used unless there is a URL
    std::string url;         // "http://array-1:8081"
    std::string token;       // for the URL; may be empty
};

/// With the simulator's words.
class RefusedBySimulator : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Asks a running simulator. Every request throws std::runtime_error when none answers, and
/// RefusedBySimulator when it refuses. Paths stand below /api/v1.
class Control {
public:
    explicit Control(const ControlPlace& place);
    ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Json get(const std::string& path);
    Json post(const std::string& path, const Json& body);
    Json put(const std::string& path, const Json& body);
    Json remove(const std::string& path);

private:
    std::string m_where;
    std::unique_ptr<httplib::Client> m_client;

    Json read(const httplib::Result& result) const;
};

/// `text` as a value of a query.
std::string queryText(const std::string& text);

}  // namespace sim
