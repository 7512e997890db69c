#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

struct ApiRequest;
class ArrayState;

/// Calls whose answers were lost, by what they are about: a digest of all that they said.
using LostCalls = std::map<std::string, std::size_t>;

/// What every cluster has to keep, whatever else a test expects of it.
struct ClusterRule {
    std::string_view name;
    std::string_view text;
    bool (*isBrokenBy)(const ApiRequest& request, ArrayState& state, const LostCalls& lost);
};
std::span<const ClusterRule> clusterRules();

/// Judges calls as they come, while it is known what the array holds.
///
///     broken = watch.brokenBy(request, state);    // before the command is run
///     watch.answered(request, wasLost);           // after
class RuleWatch {
public:
    /// The names of the rules that this call breaks.
    std::vector<std::string> brokenBy(const ApiRequest& request, ArrayState& state) const;
    /// `wasLost`: the array did the work, and the caller cannot know.
    void answered(const ApiRequest& request, bool wasLost);
    void clear() { m_lost.clear(); }

private:
    LostCalls m_lost;
};

}  // namespace sim
