#pragma once

#include <string>

namespace client {

/// Who calls. Each may be empty; a Ping needs none of them.
struct Credentials {
    std::string user;
    std::string password;
    std::string token;
};

/// How far a server is trusted. Paths name PEM files; empty ones are not used.
struct TlsOptions {
    std::string caFile;        ///< Authorities, in place of the system's own.
    std::string certFile;      ///< The client's certificate followed by its private key.
    std::string certPassword;  ///< Opens the private key.
    bool insecure = false;     ///< Accept any server.
};

/// How often a call is repeated that got no answer, or whose outcome is unknown.
struct RetryPlan {
    int times = 0;  ///< Besides the first call.
    double delaySeconds = 1;
    bool isForced = false;  ///< Also what may not be repeated; see mayBeRepeated.
};

/// How to reach the service and as whom.
struct ServiceOptions {
    std::string url = "http://127.0.0.1:8080/sanService";
    std::string userAgent = "sanctl";
    Credentials credentials;
    int connectSeconds = 10;  ///< To look the name up and connect, also over TLS.
    int timeoutSeconds = 30;  ///< For a whole call, connecting included.
    RetryPlan retry;
    TlsOptions tls;
    bool dump = false;  ///< Show the messages, secrets masked, on the error stream.
};

}  // namespace client
