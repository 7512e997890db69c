#include "client/commandLine/commandLine.h"

#include <cstdlib>
#include <stdexcept>

#include "client/commandLine/fieldOptions.h"
#include "client/commandLine/secretFile.h"

namespace client {

namespace {

constexpr int kMaxTimeout = 24 * 60 * 60;
constexpr int kMaxRetries = 1000;

void declareCaller(CLI::App& app, Credentials& credentials) {
    auto* user = app.add_option("--user", credentials.user, "Who calls")
                     ->type_name("NAME")
                     ->envname("SANCTL_USER");
    if (const char* value = std::getenv("SANCTL_PASSWORD"); value != nullptr) {
        credentials.password = value;
    }
    const auto takePassword = [&credentials](const std::string& path) {
        try {
            credentials.password = readSecret(path);
        } catch (const std::invalid_argument& failure) {
            throw CLI::ValidationError("--password-file", failure.what());
        }
    };
    app.add_option_function<std::string>(
           "--password-file", takePassword,
           "Its password: first line of this file, - for stdin (Env:SANCTL_PASSWORD)")
        ->type_name("FILE")
        ->needs(user);
    addSecretOption(
        app, "--token", "SANCTL_TOKEN",
        [&credentials](const std::string& value) { credentials.token = value; },
        "Token in place of user and password");
}

void declareTls(CLI::App& app, TlsOptions& tls) {
    const CLI::Validator existingFile = CLI::ExistingFile.description("");
    app.add_option("--cacert", tls.caFile, "Authorities that vouch for the server (PEM)")
        ->check(existingFile)
        ->type_name("FILE");
    app.add_option("--cert", tls.certFile,
                   "The client's certificate and private key (PEM; Env:SANCTL_CERT_PASSWORD)")
        ->check(existingFile)
        ->type_name("FILE");
    app.add_flag("--insecure", tls.insecure, "Accept any server certificate");
    if (const char* value = std::getenv("SANCTL_CERT_PASSWORD"); value != nullptr) {
        tls.certPassword = value;
    }
}

void declarePatience(CLI::App& app, ServiceOptions& service) {
    app.add_option("--connect-timeout", service.connectSeconds, "How long to wait for a connection")
        ->check(CLI::Range(1, kMaxTimeout).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--timeout", service.timeoutSeconds, "How long a whole call may take")
        ->check(CLI::Range(1, kMaxTimeout).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--retry", service.retry.times,
                   "Repeat a call that got no answer, or whose outcome is unknown, if that does no "
                   "harm")
        ->check(CLI::Range(0, kMaxRetries).description(""))
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--retry-delay", service.retry.delaySeconds, "Wait before each repetition")
        ->check(CLI::Range(0.0, static_cast<double>(kMaxTimeout)).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_flag("--force-retry", service.retry.isForced,
                 "Repeat also what the array may have done already");
}

}  // namespace

void declareSharedOptions(CLI::App& app, CommandLine& line) {
    app.add_option("--url", line.service.url, "Where the service is")
        ->type_name("URL")
        ->envname("SANCTL_URL")
        ->capture_default_str();
    declareCaller(app, line.service.credentials);
    declarePatience(app, line.service);
    declareTls(app, line.service.tls);
    const auto wantJson = [&line](std::int64_t /*count*/) { line.form = Form::Machine; };
    app.add_flag_function("--json", wantJson, "Results as JSON");
    app.add_flag("--dump", line.service.dump, "Show the messages on stderr, secrets masked");
}

void checkSharedOptions(const CommandLine& line) {
    const ServiceOptions& service = line.service;
    if (!service.url.starts_with("http://") && !service.url.starts_with("https://")) {
        throw std::invalid_argument("--url: '" + service.url +
                                    "' begins with no http:// or https://");
    }
    if (!service.credentials.user.empty() && service.credentials.password.empty()) {
        throw std::invalid_argument(
            "--user: a password is missing; give --password-file or SANCTL_PASSWORD");
    }
}

}  // namespace client
