#include "lumora/qtsql/tablename.h"

#include "lumora/support/string_helpers.h"

#include <optional>
#include <vector>

namespace lumora {

namespace {

std::string quotedIfNeeded(Engine engine, std::string_view name) {
    return needsQuotes(engine, name) ? quotedName(name) : std::string(name);
}

// The parts of "a.b", each perhaps in quotes; none when the text is not made like that.
std::optional<std::vector<std::string>> splitName(std::string_view text) {
    std::vector<std::string> parts;
    std::size_t at = 0;
    do {
        std::string part;
        if (at < text.size() && text[at] == '"') {
            bool closed = false;
            for (++at; at < text.size() && !closed; ++at) {
                closed = text[at] == '"' && (at + 1 == text.size() || text[at + 1] != '"');
                at += text[at] == '"' && !closed ? 1 : 0;
                if (!closed)
                    part += text[at];
            }
            if (!closed || (at < text.size() && text[at] != '.'))
                return std::nullopt;
        } else {
            part = text.substr(at, text.find('.', at) - at);
            at += part.size();
        }
        if (part.empty())
            return std::nullopt;
        parts.push_back(std::move(part));
    } while (at++ < text.size());
    return parts;
}

} // namespace

std::string quotedName(std::string_view name) {
    std::string text(1, '"');
    AppendDoubled(text, name, '"');
    return text += '"';
}

std::string toModelName(Engine engine, const TableName& table) {
    if (!table.schema.empty())
        return quotedIfNeeded(engine, table.schema) + '.' + quotedIfNeeded(engine, table.name);
    const bool looksQualified = table.name.find('.') != std::string::npos || table.name.starts_with('"');
    return looksQualified ? quotedName(table.name) : table.name;
}

TableName fromModelName(std::string_view text) {
    const std::optional<std::vector<std::string>> parts = splitName(text);
    if (!parts || parts->size() > 2)
        return {{}, std::string(text)};
    return parts->size() == 1 ? TableName{{}, parts->front()} : TableName{parts->front(), parts->back()};
}

} // namespace lumora
