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

/// How to reach the service and as whom.
struct ServiceOptions {
    std::string url = "http://127.0.0.1:8080/sanService";
    Credentials credentials;
    int timeoutSeconds = 30;  ///< For the connection, each silence and each whole message.
    TlsOptions tls;
    bool dump = false;  ///< Show the messages, secrets masked, on the error stream.
};

}  // namespace client
