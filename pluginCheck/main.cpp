// Looks at a plug-in as the web server's module does, and says what is wrong with it.
#include <CLI/CLI.hpp>
#include <filesystem>

#include "pluginCheck/pluginCheck.h"

namespace {

constexpr int kMaxTimeout = 3600;

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "Loads a SOAP plug-in without a web server, judges it as the module mod_gsoap does, lets "
        "it\n"
        "serve a Ping with an array of its own, and says in words what is wrong.",
        "sanPluginCheck");
    PluginCheckPlan plan;
    app.add_option("PATH", plan.path, "The plug-in, such as libsanService.so")
        ->required()
        ->check(CLI::ExistingFile.description(""));
    app.add_option("--timeout", plan.timeoutSeconds, "How long each question may take")
        ->check(CLI::Range(1, kMaxTimeout).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.set_version_flag("--version", PROGRAM_VERSION);
    app.footer("Exit status: 0 it can be used, 1 it cannot, 3 no answer, 64 wrong usage.");
    runCheckProgram(app, argc, argv, [&plan] {
        plan.path = std::filesystem::absolute(plan.path);
        return checkPlugin(plan);
    });
}
