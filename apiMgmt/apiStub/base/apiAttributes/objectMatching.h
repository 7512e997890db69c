#pragma once

class APIAttributeFilter;
class APIObjectInstance;

/// Whether a reference passes a condition: its instance id, its instance name or its whole text
/// form matches as MatchesText says.
bool MatchesInstance(const APIAttributeFilter& filter, const APIObjectInstance& instance);
