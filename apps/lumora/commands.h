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
    std::string_view name;                   // one word, or the word of a group and one more
    std::vector<std::string_view> arguments; // their names; MODEL, QUERY and SQLFILE are text files
    std::string_view summary;                // one line
    std::string_view details;                // more lines for the command's own help
    std::vector<OptionSpec> options;
    void (*run)(const Arguments& arguments, Output& output);
};

std::span<const Command> commands();
// The command that the first word names, or the first two; null when there is none.
const Command* findCommand(std::span<const std::string> words);
// How many words name it.
std::size_t nameLength(const Command& command);
// Whether the word stands before the names of several commands.
bool isGroup(std::string_view word);

// "usage: lumora ..." for one command, and for the program.
std::string usageLine(const Command& command);
std::string usageLine();
std::string helpText(const Command& command);
// Of all commands, or of those of a group.
std::string helpText(std::string_view group = {});

// UsageError when the command cannot take "-" where it stands, or stands twice.
void checkStandardInput(const Command& command, const Arguments& arguments);

// The options that every command with a query has; see QueryOptions.
std::vector<OptionSpec> queryOptionSpecs();

// The commands of files of their own: fill_command.cpp, queries_commands.cpp, run_command.cpp.
Command fillCommand();
std::vector<Command> queriesCommands();
Command runCommand();

} // namespace lumora::cli
