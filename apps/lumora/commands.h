// What the program can do.
#pragma once

#include "apps/lumora/arguments.h"
#include "apps/lumora/standard_streams.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::cli {

struct Command {
    std::string_view name;
    std::vector<std::string_view> arguments; // their names; MODEL and QUERY are text files
    std::string_view summary;                // one line
    std::string_view details;                // more lines for the command's own help
    std::vector<OptionSpec> options;
    void (*run)(const Arguments& arguments, Output& output);
};

std::span<const Command> commands();
// Null when there is none of the name.
const Command* findCommand(std::string_view name);

// "usage: lumora ..." for one command, and for the program.
std::string usageLine(const Command& command);
std::string usageLine();
std::string helpText(const Command& command);
std::string helpText();

// UsageError when the command cannot take "-" where it stands, or stands twice.
void checkStandardInput(const Command& command, const Arguments& arguments);

// The options that every command with a query has; see QueryOptions.
std::vector<OptionSpec> queryOptionSpecs();

// The commands of files of their own: fill_command.cpp, run_command.cpp.
Command fillCommand();
Command runCommand();

} // namespace lumora::cli
