#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace client {

/// The configuration file: settings for every call at its top, and below the name of each target
/// in brackets those for that target. A setting is a shared option without its hyphens.
///
/// A setting is taken from the first of these that has it: the command line, the section of the
/// target, the environment, the top of the file, the default.
class ConfigFile : public CLI::ConfigBase {
public:
    /// Declares --config and --target. The app is the caller's and outlives the object, which is
    /// to be handed to it after all shared options were declared.
    explicit ConfigFile(CLI::App& app);

    /// Raises CLI::ParseError for an unknown setting.
    std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;

    /// Raises CLI::ParseError when the target that is asked for was in no file. To be called
    /// once the command line was parsed.
    void checkTarget() const;

private:
    std::string target() const;
    void checkSetting(const CLI::ConfigItem& item) const;
    bool isOverruled(const CLI::ConfigItem& item, bool isOfTarget) const;

    CLI::App& m_app;
    CLI::Option* m_target;
    mutable std::vector<std::string> m_targets;  // that the file has
};

}  // namespace client
