// Masks of dates and times, taken apart for writing and reading alike.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace lumora {

struct TMaskItem {
    // The letter in lower case (minutes are 'n' however written), "/" or ":"; "'" for plain text.
    char Kind = '\'';
    std::size_t Count = 0;
    std::string_view Text; // the item as it stands in the mask, without quotes
    bool TwelveHours = false;
};

class TMaskScanner {
public:
    explicit TMaskScanner(std::string_view mask) : rest_(mask) {}

    // The next item; nothing at the mask's end.
    std::optional<TMaskItem> Next();

private:
    std::string_view Take(std::size_t size);
    TMaskItem TakeQuoted();
    TMaskItem TakeLetters(char letter);

    std::string_view rest_;
    char lastLetter_ = 0;
};

} // namespace lumora
