#pragma once

#include <functional>
#include <string>

#include "apiCheck/verdict.h"

/// What becomes of the judgement while it goes on: a question that is asked now, and its result.
struct JudgeEvents {
    std::function<void(const std::string& question)> asks;
    std::function<void(const CheckResult& result)> found;
};

/// Loads the plug-in into this process, looks at it and lets it serve a Ping. It stays loaded, and
/// may do to the process what it likes.
void judgePlugin(const std::string& path, const JudgeEvents& events);

/// The question of the Ping.
inline constexpr const char* kPingQuestion = "Ping";
