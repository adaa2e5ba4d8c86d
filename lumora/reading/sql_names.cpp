#include "lumora/reading/sql_names.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/statement/dialects/dialect.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

// A name as the parser gives it: without quotes around it, doubled ones inside as one.
std::string NameOf(const TToken& token) {
    const std::string_view name = token.Name();
    return token.Kind == tkQuotedIdentifier ? ReplaceText(name, "\"\"", "\"") : std::string(name);
}

// The same of a name with dots, and whatever stands behind it.
std::string NameIn(const std::string& text) {
    TVScanner scanner(text);
    std::string name = NameOf(scanner.Token());
    for (scanner.Next(); scanner.Token().IsSymbol('.'); scanner.Next())
        (name += '.') += NameOf(scanner.Next());
    return name;
}

// The table that is written under this name. In the model an alias may have quotes of its own.
TDSTable* TableByAlias(const TVCustomDBStructure& model, std::string_view alias) {
    if (TDSTable* const table = model.TableByName(tnAlias, alias))
        return table;
    for (int i = 0; i < model.GetTableCount(); ++i)
        if (const std::string& own = model.GetTable(i)->GetAlias(); own.find('"') != std::string::npos)
            if (SameText(NameIn(own), alias))
                return model.GetTable(i);
    return nullptr;
}

std::string_view LastPart(std::string_view name) {
    return name.substr(name.rfind('.') + 1); // npos + 1 is 0
}

// Words of expressions that are no columns, whatever the model knows.
bool IsExpressionWord(std::string_view name) {
    static constexpr std::string_view words[] = {
        "and",      "as",           "between",      "binary",
        "boolean",  "bigint",       "case",         "cast",
        "char",     "collate",      "date",         "decimal",
        "distinct", "double",       "else",         "end",
        "escape",   "false",        "float",        "in",
        "int",      "is",           "integer",      "interval",
        "like",     "nocase",       "not",          "null",
        "or",       "numeric",      "precision",    "real",
        "rtrim",    "smallint",     "text",         "then",
        "time",     "timestamp",    "true",         "varchar",
        "when",     "current_date", "current_time", "current_timestamp"};
    return std::any_of(std::begin(words), std::end(words),
                       [name](std::string_view word) { return SameText(word, name); });
}

} // namespace

struct TSQLNames::TChain {
    std::vector<TToken> Parts;
    bool IsCall = false; // "(" follows

    // Begins at a name and goes behind the last part.
    explicit TChain(TVScanner& scanner) {
        Parts.push_back(scanner.Token());
        Advance(scanner);
        while (scanner.Token().IsSymbol('.')) {
            TVScanner ahead = scanner;
            Advance(ahead);
            if (!ahead.Token().IsName())
                break;
            Parts.push_back(ahead.Token());
            Advance(ahead);
            scanner = ahead;
        }
        IsCall = scanner.Token().IsSymbol('(');
    }
    static void Advance(TVScanner& scanner) {
        scanner.Next();
        scanner.TakeQuotedName();
    }

    std::string Column() const { return NameOf(Parts.back()); }
    std::string Qualifier() const {
        std::string text;
        for (std::size_t i = 0; i + 1 < Parts.size(); ++i)
            text.append(i == 0 ? "" : ".").append(NameOf(Parts[i]));
        return text;
    }
    std::string_view Text() const {
        const char* const begin = Parts.front().Text.data();
        const std::string_view last = Parts.back().Text;
        return {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
    }
};

TSQLNames::TSQLNames(const TVQuery& query, TVParserResult& statement)
    : model_(*query.GetDbStruct()),
      dialect_(EffectiveDialect(query.GetDialect(), query.GetSQLSyntax(), query.GetStrict())),
      statement_(statement) {
    for (const TSQLTable& parsed : statement.Tables) {
        std::vector<TDSTable*> candidates = FindCandidates(parsed);
        if (candidates.empty())
            throw EVQueryPanelError(qpeNoTable, {parsed.TableName}, parsed.Place);
        TDSTable* const first = candidates.front();
        uses_.push_back({&parsed, first, std::move(candidates)});
    }
}

// --- Tables.

// The model's own name, or what the generator writes for it, in which quotes inside are doubled.
bool TSQLNames::IsNameOf(const TDSTable& table, std::string_view name) const {
    const std::string& own = table.GetName();
    if (SameText(own, name))
        return true;
    if (const std::string_view schema = dialect_.DefaultSchema;
        !schema.empty() && name.size() > schema.size() && name[schema.size()] == '.' &&
        SameText(name.substr(0, schema.size()), schema) && SameText(own, name.substr(schema.size() + 1)))
        return true;
    return own.find('"') != std::string::npos &&
           (SameText(ReplaceText(own, "\"", ""), name) || SameText(NameIn(table.GetSQLExpr(nqStrict)), name));
}

// The one that bears the statement's alias first, then the one that bears its own name.
std::vector<TDSTable*> TSQLNames::FindCandidates(const TSQLTable& parsed) const {
    std::vector<TDSTable*> found;
    for (int i = 0; i < model_.GetTableCount(); ++i)
        if (IsNameOf(*model_.GetTable(i), parsed.TableName))
            found.push_back(model_.GetTable(i));
    const TDSTable* const called = TableByAlias(model_, parsed.Alias);
    const auto rank = [called](const TDSTable* table) {
        return table == called ? 0 : SameText(table->GetAlias(), table->GetName()) ? 1 : 2;
    };
    std::stable_sort(found.begin(), found.end(),
                     [&rank](const TDSTable* a, const TDSTable* b) { return rank(a) < rank(b); });
    return found;
}

bool TSQLNames::AreOfModel() const {
    return std::all_of(uses_.begin(), uses_.end(),
                       [](const TUse& use) { return SameText(use.Parsed->Alias, use.Table->GetAlias()); });
}

bool TSQLNames::HasTablesOf(const TDSField& field) const {
    return std::all_of(field.GetTables().begin(), field.GetTables().end(), [this](const TDSTable* table) {
        return std::any_of(uses_.begin(), uses_.end(),
                           [table](const TUse& use) { return use.Table == table; });
    });
}

// An alias hides the table's name; without one its last part will do.
int TSQLNames::UseCalled(std::string_view qualifier) const {
    for (int i = 0; i < GetCount(); ++i)
        if (SameText(GetParsed(i).Alias, qualifier))
            return i;
    for (int i = 0; i < GetCount(); ++i)
        if (!GetParsed(i).HasAlias &&
            (SameText(LastPart(GetParsed(i).Alias), qualifier) || IsNameOf(*GetTable(i), qualifier)))
            return i;
    return -1;
}

// --- Columns.

// Its expression begins with the table's alias, so the model's index finds it.
TDSField* TSQLNames::FieldOf(const TDSTable& table, std::string_view column) const {
    const std::string start = table.GetAlias() + '.';
    std::string quoted = start;
    model_.GetSQLFormats().Quotes().Append(quoted, column, nqPlain);
    for (const std::string& text :
         {start + std::string(column), quoted, start + QuoteText(column, '"', '"')}) {
        TDSField* const field = model_.FieldByName(fnSQLExpr, text);
        const bool isColumn =
            field && (field->GetKind() == vfkVirtual ||
                      (field->GetTable() == &table && (SameText(field->GetFieldText(), column) ||
                                                       SameText(NameIn(field->GetFieldText()), column))));
        if (isColumn)
            return field;
    }
    return nullptr;
}

// A column that only a link names is one too.
bool TSQLNames::HasColumn(const TUse& use, std::string_view column) const {
    if (FieldOf(*use.Table, column))
        return true;
    for (const TDSLink* const link : use.Table->GetLinks())
        for (const std::string_view name : link->Table1 == use.Table ? link->Fields1 : link->Fields2)
            if (SameText(name, column))
                return true;
    return false;
}

// -1 for what is no column.
int TSQLNames::UseOf(const TChain& chain, const TTextPlace& place) const {
    const std::string column = chain.Column();
    if (chain.Parts.size() > 1) {
        const int use = UseCalled(chain.Qualifier());
        return use >= 0 && HasColumn(At(use), column) ? use : -1;
    }
    int found = -1;
    for (int i = 0; i < GetCount(); ++i) {
        if (!HasColumn(At(i), column))
            continue;
        if (found >= 0)
            throw EVQueryPanelError(qpeAmbiguousField, {column, GetParsed(found).Alias, GetParsed(i).Alias},
                                    place);
        found = i;
    }
    return found;
}

bool TSQLNames::FindColumn(std::string_view text, const TTextPlace& place, TSQLColumn& column) const {
    TVScanner scanner(text);
    scanner.TakeQuotedName();
    const TToken& first = scanner.Token();
    if (!first.IsName())
        return false;
    const TChain chain(scanner);
    for (const char symbol : {'(', '+', ')'})
        if (scanner.Token().IsSymbol(symbol)) {
            column.Optional = symbol == ')';
            scanner.Next();
        }
    if (!scanner.AtEnd())
        return false;
    column.Use = UseOf(chain, place);
    column.Name = chain.Column();
    return column.Use >= 0;
}

std::string TSQLNames::TextFor(const TChain& chain, const TTextPlace& place, bool texts,
                               std::vector<std::string>* unknown) const {
    if (chain.IsCall)
        return std::string(chain.Text());
    const TToken& name = chain.Parts.back();
    const bool isBare = chain.Parts.size() == 1;
    if (isBare && name.Kind == tkIdentifier && IsExpressionWord(name.Text))
        return std::string(name.Text);
    const int use = UseOf(chain, place);
    if (const TDSField* const field = use >= 0 ? FieldOf(*GetTable(use), chain.Column()) : nullptr)
        return field->GetSQLExpr(nqStrict);
    if (texts && use < 0 && isBare && name.Text[0] == '"' && dialect_.DoubleQuotedTexts)
        return QuoteText(chain.Column(), '\'', '\'');
    if (unknown)
        unknown->emplace_back(chain.Text());
    return std::string(chain.Text());
}

std::string_view TSQLNames::Rewrite(std::string_view text, const TTextPlace& place, bool texts,
                                    std::vector<std::string>* unknown) const {
    std::string rewritten;
    const char* taken = text.data(); // up to here
    TVScanner scanner(text);
    scanner.TakeQuotedName();
    while (!scanner.AtEnd()) {
        if (scanner.Token().Kind == tkIdentifier && SQLWordOf(scanner.Token().Text) == swSelect)
            return text; // its names are its own
        if (!scanner.Token().IsName()) {
            TChain::Advance(scanner);
            continue;
        }
        const TChain chain(scanner);
        const std::string_view found = chain.Text();
        const std::string replaced = TextFor(chain, place, texts, unknown);
        if (SameText(replaced, found))
            continue;
        rewritten.append(taken, found.data()).append(replaced);
        taken = found.data() + found.size();
    }
    if (taken == text.data())
        return text;
    rewritten.append(taken, text.data() + text.size());
    return statement_.KeepText(rewritten);
}

std::string_view TSQLNames::WithFields(std::string_view text, const TTextPlace& place,
                                       std::vector<std::string>& unknown) const {
    return Rewrite(text, place, false, &unknown);
}

std::string_view TSQLNames::WithFieldsAndTexts(std::string_view text, const TTextPlace& place) const {
    return Rewrite(text, place, true, nullptr);
}

} // namespace lumora
