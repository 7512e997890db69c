#pragma once

#include <string>
#include <vector>

/// What one question to an API manager showed.
struct APICheckResult {
    enum class Verdict {
        Usable,
        Odd,     ///< The service can live with it; a maker should know.
        Wrong,   ///< The service could not use the reply.
        Silent,  ///< Nobody listens, or nobody answers in time.
    };

    std::string question;  ///< Such as "Ping".
    Verdict verdict = Verdict::Usable;
    std::string words;  ///< What came and, when it is wrong, why.
};

struct APICheckPlan {
    int port = 35000;
    int timeoutSeconds = 10;  ///< For each question. One without an answer keeps its thread.
    std::string credentials;  ///< user:password
};

/// Asks the API manager at 127.0.0.1 through the API stub: Ping, GetList and Get of the objects
/// that the service knows, a call that has to be refused, and calls without an identity. Nothing
/// on the array is changed. Ends after the first question when nobody listens.
std::vector<APICheckResult> checkApiManager(const APICheckPlan& plan);
