#include "lumora/querytext/line_breaks.h"

#include "lumora/model/Lmglobal.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"

namespace lumora {

namespace {

bool HasBreaks(const TFilterCond& condition) {
    for (const int value : {1, 2})
        if (condition.GetValueKind(value) != vkSubQuery && !condition.GetValueIsParam(value) &&
            condition.GetValue(value).find_first_of("\r\n") != std::string::npos)
            return true;
    return false;
}

} // namespace

bool KeepsBreaks(const TFilterRow& row) {
    if (!row.GetQuery().GetStrict())
        return false;
    if (row.GetRowType() != frtBracket)
        return HasBreaks(static_cast<const TFilterCond&>(row));
    const auto& bracket = static_cast<const TFilterBracket&>(row);
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        if (KeepsBreaks(*bracket.GetRow(i)))
            return true;
    return false;
}

std::string EscapeBreaks(std::string_view text) {
    std::string escaped;
    for (const char c : text)
        if (c == '\n' || c == '\r' || c == '\\')
            (escaped += '\\') += c == '\n' ? 'n' : c == '\r' ? 'r' : '\\';
        else
            escaped += c;
    return escaped;
}

std::string UnescapeBreaks(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 1 < text.size();
        i += isEscape ? 1 : 0;
        plain += !isEscape ? text[i] : text[i] == 'n' ? '\n' : text[i] == 'r' ? '\r' : text[i];
    }
    return plain;
}

} // namespace lumora
