#include "client/commandLine/fieldOptions.h"

#include <cstdlib>
#include <stdexcept>

#include "apiMgmt/common/text/legalXmlText.h"
#include "client/commandLine/secretFile.h"

namespace client {

namespace {

// What the parser reports as wrong usage.
template <class Action>
void asUsageError(const std::string& option, Action action) {
    try {
        action();
    } catch (const std::invalid_argument& failure) {
        throw CLI::ValidationError(option, failure.what());
    }
}

// Calls `take` with each value of a repeatable option that has one value each time.
void addRepeatable(CLI::App& command, const char* name, const char* form,
                   std::function<void(const std::string&)> take, const std::string& help) {
    const auto takeAll = [name, take](const std::vector<std::string>& values) {
        asUsageError(name, [&] { std::for_each(values.begin(), values.end(), take); });
    };
    command.add_option_function<std::vector<std::string>>(name, takeAll, help + ", repeatable")
        ->allow_extra_args(false)
        ->type_name(form);
}

void checkText(const std::string& where, const std::string& value) {
    if (text::legalXmlText(value) != value) {
        throw std::invalid_argument(where + ": no UTF-8, or a character that XML forbids");
    }
}

}  // namespace

void FieldOptions::text(const char* name, std::string& member, const char* help) {
    m_command.add_option(name, member, help)->required();
}

void FieldOptions::text(const char* name, const std::function<void(const std::string&)>& set,
                        const char* help) {
    m_command.add_option_function<std::string>(name, set, help);
}

void FieldOptions::optionalText(const char* name, std::string*& member, const char* help) {
    text(
        name, [&parts = m_parts, &member](const std::string& value) { member = parts.text(value); },
        help);
}

void FieldOptions::secret(const char* name, const char* variable, std::string& member,
                          const char* help) {
    addSecretOption(
        m_command, name, variable, [&member](const std::string& value) { member = value; }, help);
    // Names no option that would put the secret on a command line.
    m_command.callback([ways = std::string(name) + "-file or " + variable, &member] {
        if (member.empty()) {
            throw CLI::RequiredError(ways);
        }
    });
}

void FieldOptions::optionalSecret(const char* name, const char* variable, std::string*& member,
                                  const char* help) {
    addSecretOption(
        m_command, name, variable,
        [&parts = m_parts, &member](const std::string& value) { member = parts.text(value); },
        help);
}

void FieldOptions::addresses(const char* name, std::vector<SanApi::ns1__IpAddressPort*>& member,
                             const char* help) {
    addRepeatable(
        m_command, name, "IP:PORT",
        [name, &parts = m_parts, &warnings = m_warnings, &member](const std::string& value) {
            const Address address = parseAddress(value);
            if (address.type != SanApi::ns1__InetAddressType__ipv4) {
                warnings.push_back(std::string(name) + " " + value +
                                   ": is no IPv4 address; the service makes it 0.0.0.0");
            }
            member.push_back(parts.address(address));
        },
        help);
}

void FieldOptions::addressesNotPassedOn(const char* name,
                                        std::vector<SanApi::ns1__IpAddressPort*>& member,
                                        const char* help) {
    addRepeatable(
        m_command, name, "IP:PORT",
        [&parts = m_parts, &member](const std::string& value) {
            member.push_back(parts.address(parseAddress(value)));
        },
        help);
}

void FieldOptions::interfaces(const char* name, std::vector<SanApi::ns1__interfaceObject*>& member,
                              const char* help) {
    addRepeatable(
        m_command, name, "ID[:fc|iscsi]",
        [&parts = m_parts, &member](const std::string& value) {
            member.push_back(parts.interface(parseInterface(value)));
        },
        help);
}

void addSecretOption(CLI::App& command, const std::string& name, const char* variable,
                     const std::function<void(const std::string&)>& set, const std::string& help) {
    if (const char* value = std::getenv(variable); value != nullptr) {
        checkText(variable, value);
        set(value);
    }
    auto* plain =
        command.add_option_function<std::string>(name, set, help + " (Env:" + variable + ")");
    const std::string fileName = name + "-file";
    const auto takeFile = [fileName, set](const std::string& path) {
        asUsageError(fileName, [&] {
            const std::string secret = readSecret(path);
            checkText(path, secret);
            set(secret);
        });
    };
    command
        .add_option_function<std::string>(fileName, takeFile,
                                          "The same: first line of this file, - for stdin")
        ->type_name("FILE")
        ->excludes(plain);
}

}  // namespace client
