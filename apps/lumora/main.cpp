// lumora: data models and queries on the command line.

#include "apps/lumora/commands.h"
#include "apps/lumora/interruption.h"

#include <cstdio>
#include <exception>

namespace lumora::cli {

namespace {

enum ExitStatus : int { Success = 0, Failure = 1, BadUsage = 2 };

// One line, whatever the message holds.
void printError(std::string_view message) {
    std::string line = "lumora: ";
    for (std::size_t i = 0; i < message.size(); ++i) {
        if (message[i] == '\r' && i + 1 < message.size() && message[i + 1] == '\n')
            ++i;
        line += message[i] == '\r' || message[i] == '\n' ? ' ' : message[i];
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int refuse(const UsageError& error, const std::string& usage) {
    printError(error.what());
    std::fputs(usage.c_str(), stderr);
    return BadUsage;
}

void runCommandLine(const Command& command, std::span<const std::string> words, Output& output) {
    const Arguments arguments(words, command.options, command.arguments);
    if (arguments.wantsHelp()) {
        output.write(helpText(command));
        return;
    }
    checkStandardInput(command, arguments);
    command.run(arguments, output);
}

[[noreturn]] void refuseCommand(std::span<const std::string> words) {
    const bool inGroup = isGroup(words[0]);
    if (inGroup && words.size() == 1)
        throw UsageError("Missing command after \"" + words[0] + '"');
    const std::string& last = words[inGroup ? 1 : 0];
    throw UsageError((last[0] == '-' ? "Unknown option \"" : "Unknown command \"") +
                     (inGroup ? words[0] + ' ' + last : last) + '"');
}

// The command that the words begin with; none when they ask for help about several.
const Command* chooseCommand(std::span<const std::string> words) {
    if (words.empty())
        throw UsageError("Missing command");
    if (words[0] == helpOption || (words.size() > 1 && words[1] == helpOption && isGroup(words[0])))
        return nullptr;
    if (const Command* const command = findCommand(words))
        return command;
    refuseCommand(words);
}

int run(std::span<const std::string> words) {
    protectStandardStreams();
    std::string usage = usageLine();
    try {
        Output output;
        if (const Command* const command = chooseCommand(words)) {
            usage = usageLine(*command);
            runCommandLine(*command, words.subspan(nameLength(*command)), output);
        } else {
            output.write(words[0] == helpOption ? helpText() : helpText(words[0]));
        }
        output.finish();
        return Success;
    } catch (const UsageError& error) {
        return refuse(error, usage);
    } catch (const Interrupted& error) {
        printError(error.what());
        return Interrupted::exitStatus;
    } catch (const std::exception& error) {
        printError(error.what());
        return Failure;
    }
}

} // namespace

} // namespace lumora::cli

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    return lumora::cli::run(words);
}
