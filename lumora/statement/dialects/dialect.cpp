#include "lumora/statement/dialects/dialect.h"

#include "lumora/support/string_helpers.h"

namespace lumora {

const TDialect& EffectiveDialect(TSQLDialect dialect, TSQLSyntax syntax, bool strict) {
    static constexpr const TDialect* dialects[] = {&StandardDialect, &SQLiteDialect, &PostgreSQLDialect,
                                                   &MySQLDialect, &OracleDialect};
    if (dialect == sdStandard && syntax == ssOracle)
        return strict ? OracleJoinsDialect : PlainOracleJoinsDialect;
    return *dialects[dialect];
}

std::string FillPattern(std::string_view pattern, std::initializer_list<std::string_view> operands) {
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const std::size_t operand =
            pattern[i] == '@' && i + 1 < pattern.size() ? static_cast<std::size_t>(pattern[i + 1] - '1') : 9;
        if (operand < operands.size()) {
            text.append(operands.begin()[operand]);
            ++i;
        } else {
            text += pattern[i];
        }
    }
    return text;
}

TNameQuoting QuotingOf(const TDialect& dialect, bool strict) {
    return {strict || dialect.NameQuotes, dialect.NameQuotes};
}

const TDateForm& DateFormOf(const TDialect& dialect, TFieldType type) {
    return type == ftDate ? dialect.Date : type == ftTime ? dialect.Time : dialect.DateTime;
}

bool NeedsHexText(const TDialect& dialect, std::string_view text) {
    return !dialect.HexText.empty() && text.find('\\') != std::string_view::npos;
}

void AppendTextLiteral(std::string& out, const TDialect& dialect, std::string_view text) {
    if (NeedsHexText(dialect, text)) {
        static constexpr char digits[] = "0123456789ABCDEF";
        out.append(dialect.HexText) += '\'';
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            (out += digits[byte >> 4]) += digits[byte & 15];
        }
    } else {
        out += '\'';
        AppendDoubled(out, text, '\'');
    }
    out += '\'';
}

void AppendEscapedPattern(std::string& out, const TDialect& dialect, std::string_view text) {
    for (const char c : text) {
        if (dialect.PatternSpecial.find(c) != std::string_view::npos)
            out += dialect.PatternEscape;
        out += c;
    }
}

} // namespace lumora
