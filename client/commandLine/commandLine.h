#pragma once

#include <CLI/CLI.hpp>

#include "client/report/report.h"

namespace client {

/// What the options that every subcommand shares say.
struct CommandLine {
    ServiceOptions service;
    Form form = Form::Human;
    Warnings warnings;  ///< Of the subcommand's options.
};

/// Declares the shared options. `line` must live until the command line was parsed.
void declareSharedOptions(CLI::App& app, CommandLine& line);

/// Checks that the shared options fit together. Raises std::invalid_argument with what is wrong.
void checkSharedOptions(const CommandLine& line);

}  // namespace client
