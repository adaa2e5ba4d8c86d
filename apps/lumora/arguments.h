// The words of a command line: options and what they leave.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumora::cli {

// The command line asks for something that does not exist or leaves something out.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct OptionSpec {
    std::string_view name;      // with its "--"
    std::string_view valueName; // empty: the option is a switch
    std::string_view help;      // one or more lines
};

inline constexpr std::string_view helpOption = "--help";

class Arguments {
public:
    // Options stand anywhere, as "--name VALUE" or "--name=VALUE"; "--" ends them, and "-" is no option. What
    // is left is read against `names`. UsageError for an unknown option, a value that is missing or not
    // wanted, and for too few or too many arguments; nothing of that once "--help" was seen.
    Arguments(std::span<const std::string> words, std::span<const OptionSpec> options,
              std::span<const std::string_view> names);

    bool wantsHelp() const { return wantsHelp_; }
    const std::string& operator[](std::size_t i) const { return arguments_.at(i); }
    bool has(std::string_view option) const { return value(option) != nullptr; }
    // What was given last; null when the option was not given.
    const std::string* value(std::string_view option) const;
    // All values of an option that may be given more than once.
    std::vector<std::string_view> values(std::string_view option) const;

private:
    void addOption(std::span<const std::string> words, std::size_t& i, std::span<const OptionSpec> options);

    std::vector<std::string> arguments_;
    std::vector<std::pair<std::string_view, std::string>> options_; // names as the specs have them
    bool wantsHelp_ = false;
};

} // namespace lumora::cli
