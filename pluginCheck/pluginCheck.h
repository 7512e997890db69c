#pragma once

#include <string>
#include <vector>

#include "apiCheck/verdict.h"

struct PluginCheckPlan {
    std::string path;         ///< Of the plug-in.
    int timeoutSeconds = 10;  ///< For each question.
};

/// Looks at a plug-in as the web server's module does, and lets it serve a Ping with an array of
/// the check's own. The plug-in runs in a process of its own, so that what it does there, a crash
/// included, becomes a result. Raises std::system_error when there is no process or no port.
std::vector<CheckResult> checkPlugin(const PluginCheckPlan& plan);
