#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "client/call/messageParts.h"

namespace client {

/// Turns the members of one request into named options of its subcommand. The command line
/// writes straight into the message, which must live until it was sent.
class FieldOptions {
public:
    /// All are the caller's and outlive this object. `warnings` gets a sentence for each value
    /// that the service will not pass on as it is.
    FieldOptions(CLI::App& command, MessageParts& parts, std::vector<std::string>& warnings)
        : m_command(command), m_parts(parts), m_warnings(warnings) {}

    MessageParts& parts() { return m_parts; }

    void text(const char* name, std::string& member, const char* help);
    /// Calls `set` with the text when the option is given.
    void text(const char* name, const std::function<void(const std::string&)>& set,
              const char* help);
    /// Stays absent from the message when the option is not given.
    void optionalText(const char* name, std::string*& member, const char* help);
    /// A secret: see addSecretOption.
    void secret(const char* name, const char* variable, std::string& member, const char* help);
    void optionalSecret(const char* name, const char* variable, std::string*& member,
                        const char* help);
    /// Repeatable; each gives one item. The service passes on IPv4 addresses only; those of
    /// addressesNotPassedOn never reach the array.
    void addresses(const char* name, std::vector<SanApi::ns1__IpAddressPort*>& member,
                   const char* help);
    void addressesNotPassedOn(const char* name, std::vector<SanApi::ns1__IpAddressPort*>& member,
                              const char* help);
    void interfaces(const char* name, std::vector<SanApi::ns1__interfaceObject*>& member,
                    const char* help);

private:
    CLI::App& m_command;
    MessageParts& m_parts;
    std::vector<std::string>& m_warnings;
};

/// Three ways to give a secret, so that it need not stand on the command line: `name`, "NAME-file"
/// and the environment variable, which counts when neither option is given.
void addSecretOption(CLI::App& command, const std::string& name, const char* variable,
                     const std::function<void(const std::string&)>& set, const std::string& help);

}  // namespace client
