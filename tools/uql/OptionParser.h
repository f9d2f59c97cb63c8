// What the command lines of all of uql's commands have in common.
#pragma once

#include "Options.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// What `uql: MESSAGE` on standard error and exit status 2 come from.
Options Misuse(const std::string& message);

/// A text for standard output: help or version.
Options Show(std::string text);

/// Gives a command's parser its help, whose parts stand in this order: usage, the parser's description, the options,
/// notes.
void AddHelp(CLI::App& app, const char* usage, const char* notes);

/// Lets the parser read the arguments. What it has to say is in `outcome` if it returns false.
bool Parse(CLI::App& app, std::vector<std::string> arguments, Options& outcome);

/// The options that give a query, and the inputs behind it.
void AddQueryOptions(CLI::App& app, QueryOptions& query);

/// Parse for a command with a query: the first argument that is no option and no option's value, unless an option gives
/// it. False with the mistake in `outcome` also where options contradict each other.
bool ParseWithQuery(CLI::App& app, std::vector<std::string> arguments, QueryOptions& query, Options& outcome);

/// What is wrong with the use of --props, --var and their like; empty: nothing.
std::string FindConflict(const QueryOptions& options);

/// --resolution.
CLI::Option* AddResolutionOption(CLI::App& app, std::optional<double>& resolution);

/// The options that say what a query is evaluated with. After parsing, `noUnits` says that settings.resolution is to be
/// reset.
void AddEngineOptions(CLI::App& app, EngineSettings& settings, bool& noUnits);

} // namespace OrvUQL::Tool
