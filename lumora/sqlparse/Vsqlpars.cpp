#include "lumora/sqlparse/Vsqlpars.h"

#include "lumora/platform/string_list.h"
#include "lumora/sqlparse/sorted_names.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <string>

namespace lumora {

void TVSQLParser::SetSQL(const TStringList& lines) {
    SetSQLText(lines.GetText());
}

void TVSQLParser::SetSQLText(std::string_view text) {
    result_.source_ = text;
}

void TVSQLParser::Parse() {
    result_.Clear();
    tokens_.Read(result_.source_);
    at_ = tokens_.begin();
    ProcessSelect();
    ProcessFrom();
    if (Is(swWhere))
        ProcessWhere();
    if (Is(swGroup))
        ProcessGroupBy();
    if (Is(swOrder))
        ProcessOrderBy();
    if (strict_)
        CheckEnd();
}

void TVSQLParser::Fail(TMessageId message) const {
    throw ESQLParserError(message, Token().Line);
}
void TVSQLParser::FailWrong() const {
    Fail(msgWrongSQL);
}

void TVSQLParser::Refuse(const TSQLToken& token) const {
    throw ESQLParserError(msgCantBeKept, token.Line, token.Text());
}

void TVSQLParser::Must(TSQLWord word) {
    if (!Accept(word))
        FailWrong();
}

void TVSQLParser::Skip(char symbol) {
    while (Is(symbol))
        ++at_;
}

// The source between a token and the present one, every run of blanks and comments as one blank.
std::string_view TVSQLParser::TextFrom(const TSQLToken* first) {
    if (first == at_)
        return {};
    const auto length = static_cast<std::size_t>(at_[-1].End() - first->Begin);
    if (at_[-1].WideGaps == first->WideGaps)
        return {first->Begin, length};
    char* const text = result_.arena_.NewText(length);
    char* end = text;
    for (const TSQLToken* token = first; token != at_; ++token) {
        if (token != first && token->Begin != token[-1].End())
            *end++ = ' ';
        end = std::copy(token->Begin, token->End(), end);
    }
    return {text, static_cast<std::size_t>(end - text)};
}

// --- SELECT.

void TVSQLParser::ProcessSelect() {
    if (strict_ && Is(swWith))
        Refuse(Token());
    Must(swSelect);
    result_.Distinct = Accept(swDistinct);
    if (Accept('*')) {
        result_.SelectAll = result_.ResultFields.SelectAll = true;
        return;
    }
    do
        ResultField();
    while (Accept(','));
}

void TVSQLParser::ResultField() {
    const int line = Token().Line;
    const std::string_view expression = SQLExpression();
    if (expression.empty())
        FailWrong();
    TSQLResultField& field = result_.ResultFields.Add();
    field.Line = line;
    field.SetSQLExpr(expression);
    if (Accept(swAs))
        field.Alias = ProcessIdentifier();
}

std::string_view TVSQLParser::SQLExpression() {
    const TSQLToken* const first = at_;
    while (!AtEnd() && !Is(',') && !Is(')') && !Is(';')) {
        switch (at_->Word) {
        case swAs:
        case swSelect:
        case swFrom:
        case swJoin:
        case swWhere:
        case swOrder:
        case swGroup:
        case swBy:
            return TextFrom(first);
        case swOver:
            if (strict_)
                Refuse(Token());
            break;
        default:
            break;
        }
        Advance();
    }
    return TextFrom(first);
}

// An identifier, without its double quotes.
std::string_view TVSQLParser::ProcessIdentifier() {
    const TSQLToken& token = Token();
    if (token.Kind != tkIdentifier && token.Kind != tkQuotedIdentifier)
        FailWrong();
    ++at_;
    if (token.Kind == tkIdentifier)
        return token.Text();
    const std::string_view inner = token.Text().substr(1, token.Length - 2);
    return inner.find('"') == std::string_view::npos
               ? inner
               : result_.arena_.Join({ReplaceText(inner, "\"\"", "\"")});
}

// --- FROM.

void TVSQLParser::ProcessFrom() {
    Must(swFrom);
    do
        Table();
    while (Accept(','));
}

std::string_view TVSQLParser::DottedName() {
    if (HasRole(trClause | trJoinWord))
        FailWrong();
    std::string_view name = ProcessIdentifier();
    while (Accept('.'))
        name = result_.arena_.Join({name, ".", ProcessIdentifier()});
    return name;
}

void TVSQLParser::Table() {
    Skip('(');
    TSQLTable table;
    table.Line = Token().Line;
    const std::string_view name = DottedName();
    Skip(')');
    Accept(swAs);
    const bool noAlias = AtEnd() || Is(',') || HasRole(trClause | trJoinWord) || (strict_ && Is(swWith));
    if (!noAlias)
        table.Alias = ProcessIdentifier();
    AddTable(name, table);
    Skip(')');
    JoinedTables();
}

void TVSQLParser::AddTable(std::string_view name, TSQLTable& table) {
    table.SetTableName(name);
    result_.Tables.push_back(table);
    if (strict_)
        SkipHints();
}

// Table hints belong to the model's table.
void TVSQLParser::SkipHints() {
    if (!Accept(swWith))
        return;
    while (!AtEnd() && !Is(',') && !Is(')') && !Is(swOn) && !HasRole(trClause | trJoinWord))
        Advance();
}

void TVSQLParser::JoinedTables() {
    while (HasRole(trJoinWord)) {
        const int line = Token().Line;
        TSQLWord kind = at_->Word;
        if (kind == swJoin)
            kind = swInner;
        else
            ++at_;
        if (kind != swInner)
            Accept(swOuter);
        Must(swJoin);
        JoinedTable(kind, line);
        Skip(')');
    }
}

void TVSQLParser::JoinedTable(TSQLWord kind, int line) {
    TSQLTable table;
    table.Line = Token().Line;
    const std::string_view name = DottedName();
    Accept(swAs);
    if (!Is(swOn) && !(strict_ && Is(swWith)))
        table.Alias = ProcessIdentifier();
    AddTable(name, table);
    Must(swOn);
    TSQLBracket* const condition = BooleanBracket();
    if (strict_)
        result_.Joins.push_back({static_cast<int>(result_.Tables.size()) - 1, kind, condition, line});
}

// --- GROUP BY and ORDER BY.

void TVSQLParser::ProcessGroupBy() {
    Must(swGroup);
    Must(swBy);
    do {
        const TSQLToken* const first = at_;
        if (strict_) {
            while (!AtEnd() && !Is(',') && !Is(')') && !HasRole(trClause))
                Advance();
            if (first == at_)
                FailWrong();
            result_.GroupBy.push_back({TextFrom(first), first->Line});
        } else {
            ProcessIdentifier();
            if (!Accept('.'))
                FailWrong();
            ProcessIdentifier();
        }
    } while (Accept(','));
}

// Plainly the first item decides whether all are positions; strictly each speaks for itself.
void TVSQLParser::ProcessOrderBy() {
    Must(swOrder);
    Must(swBy);
    const bool byNumber = at_->Kind == tkNumber;
    TSortedNames names;
    int position = 0;
    do {
        TSQLResultField& field = (strict_ ? IsPosition() : byNumber) ? FieldByNumber() : FieldByName(names);
        field.SortOrder = ++position;
        SortingOf(field);
    } while (Accept(','));
}

// Plainly any word may stand behind an item, and "desc" alone means something.
void TVSQLParser::SortingOf(TSQLResultField& field) {
    field.Sorting = Is(swDesc) ? 2 : 1;
    if (strict_ ? Is(swAsc) || Is(swDesc) : !AtEnd() && !Is(','))
        ++at_;
}

// A whole number that no operator makes part of an expression.
bool TVSQLParser::IsPosition() const {
    const TSQLToken& next = Peek();
    const bool isAlone =
        next.Kind != tkSymbol || next.Symbol == ',' || next.Symbol == ')' || next.Symbol == ';';
    return isAlone && at_->Kind == tkNumber && std::to_string(XStrToInt(at_->Text())) == at_->Text();
}

TSQLResultField& TVSQLParser::FieldByNumber() {
    const int number = at_->Kind == tkNumber ? XStrToInt(at_->Text()) : 0;
    const bool isInteger = std::to_string(number) == at_->Text();
    if (!isInteger || number < 1 || number > result_.ResultFields.Count() || result_.SelectAll)
        FailWrong();
    ++at_;
    return result_.ResultFields.GetItem(number - 1);
}

// Names that differ in blanks are one name.
TSQLResultField& TVSQLParser::FieldByName(TSortedNames& names) {
    const TSQLToken* const first = at_;
    const std::string_view name = SortedName();
    if (result_.SelectAll) {
        TSQLResultField& field = result_.ResultFields.Add();
        field.Line = first->Line;
        field.SetSQLExpr(name);
        return field;
    }
    int index = names.Find(result_.ResultFields, name);
    if (index < 0 && strict_)
        index = result_.ResultFields.IndexByAlias(name);
    if (index < 0) {
        at_ = first;
        FailWrong();
    }
    return result_.ResultFields.GetItem(index);
}

std::string_view TVSQLParser::SortedName() {
    const TSQLToken* const first = at_;
    if (strict_) {
        while (!AtEnd() && !Is(',') && !Is(')') && !Is(swAsc) && !Is(swDesc) && !HasRole(trClause))
            Advance();
        if (first == at_)
            FailWrong();
    } else {
        ProcessIdentifier();
        if (Accept('.'))
            ProcessIdentifier();
    }
    return TextFrom(first);
}

void TVSQLParser::CheckEnd() {
    Skip(';');
    if (!AtEnd())
        Refuse(Token());
}

} // namespace lumora
