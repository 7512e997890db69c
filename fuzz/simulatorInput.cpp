// Whatever a simulator is given: messages, and every kind of JSON, chosen by the first byte. What
// it refuses it refuses in words of its own, and then it goes on.

#include <stdexcept>

#include "fuzz/fuzzTarget.h"
#include "sim/protocol/access.h"
#include "sim/simulator/simulator.h"

namespace {

void readJson(sim::Simulator& simulator, char kind, const std::string& text) {
    const sim::Json json = sim::parseJson(text, "the input");
    switch (kind) {
        case 's':
            return simulator.setSeed(json);
        case 'f':
            simulator.addFault(json);
            return;
        case 'c':
            return simulator.addScenario(json);
        case 'v':
            simulator.verify(json);
            return;
        case 'r':
            return simulator.reset(json);
        case 't':
            return simulator.advanceClock(json);
        default:
            sim::Access(json, "the input");
    }
}

}  // namespace

void drive(std::string_view bytes) {
    static sim::Simulator simulator({}, [](const std::string&) {});
    const char kind = bytes.empty() ? 'm' : bytes.front();
    const std::string rest(bytes.substr(bytes.empty() ? 0 : 1));
    try {
        if (kind == 'm') {
            simulator.handle(rest);
        } else {
            readJson(simulator, kind, rest);
        }
    } catch (const std::runtime_error& failure) {
        require(std::string_view(failure.what()).find("json.exception") == std::string::npos);
    }
    require(simulator.state().contains("volumes"));
    simulator.reset(sim::Json{{"what", "faults"}});
}
