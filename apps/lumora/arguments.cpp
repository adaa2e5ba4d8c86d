#include "apps/lumora/arguments.h"

#include <algorithm>

namespace lumora::cli {

namespace {

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

} // namespace

Arguments::Arguments(std::span<const std::string> words, std::span<const OptionSpec> options,
                     std::span<const std::string_view> names) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (optionsEnded || word.size() < 2 || word[0] != '-')
            arguments_.push_back(word);
        else if (word == "--")
            optionsEnded = true;
        else
            addOption(words, i, options);
        if (wantsHelp_)
            return;
    }
    if (arguments_.size() < names.size())
        throw UsageError("Missing argument " + std::string(names[arguments_.size()]));
    if (arguments_.size() > names.size())
        throw UsageError("Surplus argument " + quoted(arguments_[names.size()]));
}

void Arguments::addOption(std::span<const std::string> words, std::size_t& i,
                          std::span<const OptionSpec> options) {
    const std::string_view word = words[i];
    const std::size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    if (word == helpOption) {
        wantsHelp_ = true;
        return;
    }
    const auto option =
        std::find_if(options.begin(), options.end(), [&](const OptionSpec& o) { return o.name == name; });
    if (option == options.end())
        throw UsageError("Unknown option " + quoted(name));
    std::string value;
    if (option->valueName.empty()) {
        if (equals != std::string_view::npos)
            throw UsageError("Option " + std::string(name) + " takes no value");
    } else if (equals != std::string_view::npos) {
        value = word.substr(equals + 1);
    } else if (i + 1 < words.size()) {
        value = words[++i];
    } else {
        throw UsageError("Option " + std::string(name) + " needs a value");
    }
    options_.emplace_back(option->name, std::move(value));
}

const std::string* Arguments::value(std::string_view option) const {
    const auto found = std::find_if(options_.rbegin(), options_.rend(),
                                    [&](const auto& given) { return given.first == option; });
    return found == options_.rend() ? nullptr : &found->second;
}

std::vector<std::string_view> Arguments::values(std::string_view option) const {
    std::vector<std::string_view> all;
    for (const auto& [name, value] : options_)
        if (name == option)
            all.push_back(value);
    return all;
}

} // namespace lumora::cli
