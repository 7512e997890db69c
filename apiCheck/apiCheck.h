#pragma once

#include <string>
#include <vector>

#include "apiCheck/verdict.h"

struct APICheckPlan {
    int port = 35000;
    int timeoutSeconds = 10;  ///< For each question. One without an answer keeps its thread.
    std::string credentials;  ///< user:password
};

/// Asks the API manager at 127.0.0.1 through the API stub: Ping, GetList and Get of the objects
/// that the service knows, a call that has to be refused, and calls without an identity. Nothing
/// on the array is changed. Ends after the first question when nobody listens.
std::vector<CheckResult> checkApiManager(const APICheckPlan& plan);
