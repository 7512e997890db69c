#include "sim/control/apiRoutes.h"

#include <httplib.h>

#include <array>
#include <cstdint>

#include "sim/control/openApi.h"
#include "sim/protocol/command.h"
#include "sim/simulator/simulator.h"

namespace sim {

namespace {

using httplib::Request;

std::uint64_t numberFrom(const std::string& text, const char* name) {
    if (text.empty() || text.size() > 18 ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        throw std::runtime_error(std::string("\"") + name + "\" has to be a number");
    }
    return std::stoull(text);
}

std::uint64_t numberIn(const Request& request, const char* name, std::uint64_t fallback) {
    return request.has_param(name) ? numberFrom(request.get_param_value(name), name) : fallback;
}

ExchangeFilter filterIn(const Request& request) {
    ExchangeFilter filter;
    filter.last = numberIn(request, "last", filter.last);
    filter.since = numberIn(request, "since", 0);
    filter.command = request.get_param_value("command");
    filter.cluster = request.get_param_value("cluster");
    filter.outcome = request.get_param_value("outcome");
    filter.fault = request.get_param_value("fault");
    return filter;
}

Documents documentsIn(const Request& request) {
    const std::string wanted = request.get_param_value("documents");
    if (wanted == "none") {
        return Documents::none;
    }
    if (!wanted.empty() && wanted != "indented") {
        throw std::runtime_error("\"documents\" has to be none or indented");
    }
    return wanted.empty() ? Documents::asTheyCame : Documents::alsoIndented;
}

Json bodyOf(const Request& request) {
    return parseJson(request.body, "the request");
}

Json done() {
    return Json::object();
}

Json index(Simulator& /*simulator*/, const Request& /*request*/) {
    Json out = Json::array();
    for (const ApiRoute& route : apiRoutes()) {
        out.push_back(std::string(route.method) + " " + kApiRoot + route.path);
    }
    return Json{{"requests", std::move(out)}};
}

Json rules() {
    Json out = Json::array();
    for (const ClusterRule& rule : clusterRules()) {
        out.push_back({{"name", rule.name}, {"text", rule.text}});
    }
    return out;
}

using Sim = Simulator&;
using Req = const Request&;

// To add a request: give it a row, and describe it in openapi.json; a test holds one against the
// other.
// clang-format off
constexpr std::array kRoutes = {
    ApiRoute{"GET",    "",              index},
    ApiRoute{"GET",    "/openapi.json", [](Sim, Req) { return parseJson(std::string(openApi()), "openapi.json"); }},
    ApiRoute{"GET",    "/state",        [](Sim simulator, Req) { return simulator.state(); }},
    ApiRoute{"GET",    "/seed",         [](Sim simulator, Req) { return simulator.seed(); }},
    ApiRoute{"PUT",    "/seed",         [](Sim simulator, Req request) { simulator.setSeed(bodyOf(request)); return done(); }},
    ApiRoute{"GET",    "/exchanges",    [](Sim simulator, Req request) { return simulator.exchanges(filterIn(request), documentsIn(request)); }},
    ApiRoute{"GET",    "/commands",     [](Sim, Req) { return Json(commandNames()); }},
    ApiRoute{"GET",    "/faultKinds",   [](Sim, Req) { return faultKinds(); }},
    ApiRoute{"GET",    "/faults",       [](Sim simulator, Req) { return simulator.faults(); }},
    ApiRoute{"POST",   "/faults",       [](Sim simulator, Req request) { return simulator.addFault(bodyOf(request)); }},
    ApiRoute{"DELETE", "/faults/{id}",  [](Sim simulator, Req request) {
        if (!simulator.removeFault(numberFrom(request.matches[1], "id"))) {
            throw NotFound("there is no fault of that id");
        }
        return done();
    }},
    ApiRoute{"POST",   "/scenarios",    [](Sim simulator, Req request) { simulator.addScenario(bodyOf(request)); return done(); }},
    ApiRoute{"POST",   "/reset",        [](Sim simulator, Req request) { simulator.reset(bodyOf(request)); return done(); }},
    ApiRoute{"GET",    "/clock",        [](Sim simulator, Req) { return simulator.clock(); }},
    ApiRoute{"POST",   "/clock",        [](Sim simulator, Req request) { simulator.advanceClock(bodyOf(request)); return simulator.clock(); }},
    ApiRoute{"GET",    "/rules",        [](Sim, Req) { return rules(); }},
    ApiRoute{"POST",   "/verify",       [](Sim simulator, Req request) { return simulator.verify(bodyOf(request)); }},
    ApiRoute{"GET",    "/recording",    [](Sim simulator, Req request) { return simulator.recording(filterIn(request)); }},
};
// clang-format on

}  // namespace

std::span<const ApiRoute> apiRoutes() {
    return kRoutes;
}

}  // namespace sim
