#include "lumora/model/tables.h"

#include "lumora/model/structure.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

TDSTable::TDSTable(TVCustomDBStructure& structure, std::string name, std::string caption)
    : structure_(structure), name_(std::move(name)), displayName_(std::move(caption)) {
    SetAlias(name_);
}

TDSTable::~TDSTable() = default;

void TDSTable::SetName(std::string name) {
    name_ = std::move(name);
    structure_.TableKeysChanged();
}

void TDSTable::SetDisplayName(std::string caption) {
    displayName_ = std::move(caption);
    structure_.TableKeysChanged();
}

void TDSTable::SetAlias(std::string alias) {
    std::replace(alias.begin(), alias.end(), ' ', '_');
    alias_ = std::move(alias);
    structure_.TableKeysChanged();
}

void TDSTable::SetHints(std::string hints) {
    hints_ = std::move(hints);
    structure_.TableKeysChanged();
}

void TDSTable::SetQuoted(bool quoted) {
    quoted_ = quoted;
    structure_.TableKeysChanged();
}

std::string TDSTable::GetSQLExpr(TNameQuoting quoting) const {
    std::string text;
    AppendSQLExpr(text, quoting);
    return text;
}

namespace {

// A name that the model's author has quoted already: "..." or "..."."...", inner quotes doubled.
bool IsWellQuoted(std::string_view name) {
    std::size_t at = 0;
    while (at < name.size() && name[at] == '"') {
        for (++at; at < name.size() && (name[at] != '"' || (at + 1 < name.size() && name[at + 1] == '"'));
             ++at)
            at += name[at] == '"' ? 1 : 0;
        if (at >= name.size())
            return false;
        if (++at == name.size())
            return true;
        if (name[at++] != '.')
            return false;
    }
    return false;
}

} // namespace

namespace {

// The parts of a well quoted name in the engine's own quote symbols.
void AppendRequoted(std::string& out, std::string_view name, TNameQuoting quoting) {
    while (!name.empty()) {
        std::size_t end = 1;
        while (name[end] != '"' || (end + 1 < name.size() && name[end + 1] == '"'))
            end += name[end] == '"' ? 2 : 1;
        TQuoteSymbols().Append(out, ReplaceText(name.substr(1, end - 1), "\"\"", "\""), quoting);
        name.remove_prefix(end + 1);
        if (!name.empty()) {
            out += '.';
            name.remove_prefix(1);
        }
    }
}

} // namespace

void TDSTable::AppendSQLExpr(std::string& out, TNameQuoting quoting) const {
    const bool quotedAlready = quoting.Doubled ? IsWellQuoted(name_) : !name_.empty() && name_.front() == '"';
    if (quotedAlready && !TQuoteSymbols().AreTaken(quoting))
        AppendRequoted(out, name_, quoting);
    else if (quoted_ && !name_.empty() && !quotedAlready)
        structure_.GetSQLFormats().Quotes().Append(out, name_, quoting);
    else
        out += name_;
    if (alias_ != name_) {
        out += ' ';
        AppendAlias(out, quoting);
    }
    if (!hints_.empty())
        out.append(" WITH ").append(hints_);
}

void TDSTable::AppendAlias(std::string& out, TNameQuoting quoting) const {
    if (quoting.Taken && IsWellQuoted(alias_) && !TQuoteSymbols().AreTaken(quoting))
        AppendRequoted(out, alias_, quoting);
    else
        out += alias_;
}

std::string TDSTable::GetCompoundName() const {
    return name_ + " - " + alias_;
}

TDSLink* TDSTable::LinkByTable(const TDSTable* table) const {
    for (TDSLink* const link : links_)
        if (link->Table1 == table || link->Table2 == table)
            return link;
    return nullptr;
}

TDSLink* TDSTable::LinkByTableAlias(std::string_view alias) const {
    for (TDSLink* const link : links_)
        if (link->Table1->GetAlias() == alias || link->Table2->GetAlias() == alias)
            return link;
    return nullptr;
}

std::string TDSTable::GetDesignPositions() const {
    return std::to_string(DesignRect.Left) + "," + std::to_string(DesignRect.Top) + "," +
           std::to_string(DesignRect.Right) + "," + std::to_string(DesignRect.Bottom);
}

void TDSTable::SetDesignPositions(std::string_view text) {
    int numbers[4] = {};
    std::size_t i = 0;
    for (const std::string_view piece : SplitText(text, ','))
        if (i < 4)
            numbers[i++] = XStrToInt(piece);
    DesignRect = {numbers[0], numbers[1], numbers[2], numbers[3]};
}

} // namespace lumora
