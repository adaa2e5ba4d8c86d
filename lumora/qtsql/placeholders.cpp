#include "lumora/qtsql/placeholders.h"

#include "lumora/sqlparse/Vscanner.h"

namespace lumora {

std::vector<Placeholder> findPlaceholders(std::string_view sql) {
    std::vector<Placeholder> found;
    std::size_t colon = std::string_view::npos; // where a single colon stands that was the token before
    std::size_t end = 0;                        // of the token before
    bool afterColon = false;
    for (TVScanner scanner(sql); !scanner.AtEnd(); scanner.Next()) {
        const TToken& token = scanner.Token();
        const auto position = static_cast<std::size_t>(token.Text.data() - sql.data());
        const bool adjacent = position == end;
        if (token.Kind == tkIdentifier && adjacent && colon != std::string_view::npos)
            found.push_back({token.Text, colon});
        const bool isColon = token.IsSymbol(':');
        colon = isColon && !(afterColon && adjacent) ? position : std::string_view::npos;
        afterColon = isColon;
        end = position + token.Text.size();
    }
    return found;
}

} // namespace lumora
