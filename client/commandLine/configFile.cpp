#include "client/commandLine/configFile.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace client {

namespace {

struct Variable {
    std::string_view setting;
    const char* name;
};

// The settings that the environment has, too.
constexpr std::array kVariables = {
    Variable{"url", "SANCTL_URL"},
    Variable{"user", "SANCTL_USER"},
    Variable{"password-file", "SANCTL_PASSWORD"},
    Variable{"token", "SANCTL_TOKEN"},
    Variable{"token-file", "SANCTL_TOKEN"},
};

bool isInEnvironment(const std::string& setting) {
    return std::any_of(kVariables.begin(), kVariables.end(), [&](const Variable& variable) {
        return variable.setting == setting && std::getenv(variable.name) != nullptr;
    });
}

// Where the file is unless an option says so; empty without a home.
std::string defaultPath() {
    if (const char* folder = std::getenv("XDG_CONFIG_HOME"); folder != nullptr && *folder != 0) {
        return std::string(folder) + "/sanctl.ini";
    }
    const char* home = std::getenv("HOME");
    return home == nullptr ? "" : std::string(home) + "/.config/sanctl.ini";
}

// The parser ends each section with an item that only marks the end.
bool isSectionEnd(const CLI::ConfigItem& item) {
    return item.name == "--" || item.name == "++";
}

}  // namespace

ConfigFile::ConfigFile(CLI::App& app) : m_app(app) {
    m_app.set_config("--config", defaultPath(), "Settings, and those of named targets")
        ->type_name("FILE");
    m_target = m_app.add_option("--target", "Take the settings of this section of the file")
                   ->type_name("NAME")
                   ->configurable(false);
}

std::string ConfigFile::target() const {
    return m_target->count() == 0 ? "" : m_target->as<std::string>();
}

std::vector<CLI::ConfigItem> ConfigFile::from_config(std::istream& input) const {
    std::vector<CLI::ConfigItem> ofTarget;
    std::vector<CLI::ConfigItem> ofAll;
    for (CLI::ConfigItem& item : ConfigBase::from_config(input)) {
        const std::string section = item.parents.empty() ? "" : item.parents.front();
        if (!section.empty()) {
            m_targets.push_back(section);
        }
        if (isSectionEnd(item)) {
            continue;
        }
        checkSetting(item);
        const bool isOfTarget = !section.empty() && section == target();
        if ((isOfTarget || section.empty()) && !isOverruled(item, isOfTarget)) {
            item.parents.clear();
            (isOfTarget ? ofTarget : ofAll).push_back(std::move(item));
        }
    }
    // The parser keeps the first value of a setting, so the stronger one comes first.
    ofTarget.insert(ofTarget.end(), ofAll.begin(), ofAll.end());
    return ofTarget;
}

void ConfigFile::checkSetting(const CLI::ConfigItem& item) const {
    const CLI::Option* option = m_app.get_option_no_throw("--" + item.name);
    if (option == nullptr || !option->get_configurable()) {
        throw CLI::ConfigError("the configuration file has an unknown setting: " + item.fullname());
    }
}

bool ConfigFile::isOverruled(const CLI::ConfigItem& item, bool isOfTarget) const {
    if (!isOfTarget && isInEnvironment(item.name)) {
        return true;
    }
    const std::set<CLI::Option*> rivals = m_app.get_option("--" + item.name)->get_excludes();
    return std::any_of(rivals.begin(), rivals.end(),
                       [](const CLI::Option* rival) { return rival->count() > 0; });
}

void ConfigFile::checkTarget() const {
    if (m_target->count() > 0 &&
        std::find(m_targets.begin(), m_targets.end(), target()) == m_targets.end()) {
        throw CLI::ConfigError("--target: the configuration file has no section [" + target() +
                               "]");
    }
}

}  // namespace client
