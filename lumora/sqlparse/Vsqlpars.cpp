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
    tokens_.Read(result_.source_, strict_);
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
    throw ESQLParserError(message, PlaceOf(Token()));
}

void TVSQLParser::FailWrong(std::string_view expected) const {
    if (!strict_)
        Fail(msgWrongSQL);
    if (AtEnd())
        throw ESQLParserError(msgExpectedAtEnd, PlaceOf(Token()), {expected});
    throw ESQLParserError(msgExpectedBefore, PlaceOf(Token()), {expected, Token().Text()});
}

void TVSQLParser::Refuse(const TSQLToken& token) const {
    throw ESQLParserError(msgCantBeKept, PlaceOf(token), {token.Text()});
}

TTextPlace TVSQLParser::PlaceOf(const TSQLToken& token) const {
    return {token.Line, static_cast<int>(token.Begin - result_.source_.data()),
            static_cast<int>(token.Length)};
}

TTextPlace TVSQLParser::PlaceFrom(const TSQLToken* first) const {
    TTextPlace place = PlaceOf(*first);
    if (first != at_)
        place.Length = static_cast<int>(at_[-1].End() - first->Begin);
    return place;
}

void TVSQLParser::Must(TSQLWord word) {
    if (Accept(word))
        return;
    std::string expected(SQLWordText(word));
    for (char& c : expected)
        c = static_cast<char>(c - 'a' + 'A');
    FailWrong(expected);
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
    const TSQLToken* const first = at_;
    const std::string_view expression = SQLExpression();
    if (expression.empty())
        FailWrong("a column");
    TSQLResultField& field = result_.ResultFields.Add();
    field.Place = PlaceFrom(first);
    if (strict_ && TakeBareAlias(first, field))
        return;
    field.SetSQLExpr(expression);
    if (Accept(swAs))
        field.Alias = ProcessIdentifier();
}

// A name behind what is an expression without it.
bool TVSQLParser::TakeBareAlias(const TSQLToken* first, TSQLResultField& field) {
    if (Is(swAs) || at_ - first < 2)
        return false;
    const TSQLToken& before = at_[-2];
    const bool isName =
        (at_[-1].Kind == tkIdentifier || at_[-1].Kind == tkQuotedIdentifier) && at_[-1].Word == swNone;
    const bool endsBefore =
        before.Kind == tkSymbol ? before.Symbol == ')' : before.Word == swNone || before.Word == swEnd;
    if (!isName || !endsBefore)
        return false;
    --at_;
    field.SetSQLExpr(TextFrom(first));
    field.Alias = ProcessIdentifier();
    return true;
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
        FailWrong("a name");
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
    if (HasRole(trClause | trJoinWord) || (strict_ && (AtEnd() || Is('('))))
        FailWrong("a table name");
    std::string_view name = ProcessIdentifier();
    while (Accept('.'))
        name = result_.arena_.Join({name, ".", ProcessIdentifier()});
    return name;
}

void TVSQLParser::Table() {
    Skip('(');
    TSQLTable table;
    table.Place = PlaceOf(Token());
    const std::string_view name = DottedName();
    Skip(')');
    const bool hasAs = Accept(swAs);
    const bool ends = AtEnd() || Is(',') || HasRole(trClause | trJoinWord);
    if (strict_ ? hasAs || StandsAlias() : !ends)
        table.Alias = ProcessIdentifier();
    AddTable(name, table);
    Skip(')');
    JoinedTables();
}

// Strictly a word of SQL is no alias: it would be lost that it says something.
bool TVSQLParser::StandsAlias() const {
    return at_->Kind == tkQuotedIdentifier || (at_->Kind == tkIdentifier && at_->Word == swNone);
}

void TVSQLParser::AddTable(std::string_view name, TSQLTable& table) {
    table.HasAlias = !table.Alias.empty();
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
    while (HasRole(trJoinWord) || (strict_ && Is(swCross))) {
        const TTextPlace place = PlaceOf(Token());
        TSQLWord kind = at_->Word;
        if (kind == swJoin)
            kind = swInner;
        else
            ++at_;
        if (kind != swInner && kind != swCross)
            Accept(swOuter);
        Must(swJoin);
        JoinedTable(kind, place);
        Skip(')');
    }
    if (strict_ && Is(swNatural))
        Refuse(Token());
}

// Strictly an inner join may be without a condition: WHERE or a later join has it, as where tables are listed
// with commas.
void TVSQLParser::JoinedTable(TSQLWord kind, const TTextPlace& place) {
    TSQLTable table;
    table.Place = PlaceOf(Token());
    const std::string_view name = DottedName();
    const bool hasAs = Accept(swAs);
    if (strict_ ? hasAs || StandsAlias() : !Is(swOn))
        table.Alias = ProcessIdentifier();
    AddTable(name, table);
    if (strict_ && Is(swUsing))
        Refuse(Token());
    const bool mayDoWithout = strict_ && (kind == swInner || kind == swCross);
    if (mayDoWithout && !Is(swOn))
        return;
    Must(swOn);
    TSQLBracket* const condition = BooleanBracket();
    if (strict_)
        result_.Joins.push_back({static_cast<int>(result_.Tables.size()) - 1,
                                 kind == swCross ? swInner : kind, condition, place});
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
                FailWrong("a column");
            result_.GroupBy.push_back({TextFrom(first), PlaceFrom(first)});
        } else {
            ProcessIdentifier();
            if (!Accept('.'))
                FailWrong("a column");
            ProcessIdentifier();
        }
    } while (Accept(','));
}

// The first item decides whether all are positions. A strict parser leaves it to the reader what they name.
void TVSQLParser::ProcessOrderBy() {
    Must(swOrder);
    Must(swBy);
    if (strict_) {
        do
            SortItem();
        while (Accept(','));
        return;
    }
    const bool byNumber = at_->Kind == tkNumber;
    TSortedNames names;
    int position = 0;
    do {
        TSQLResultField& field = byNumber ? FieldByNumber() : FieldByName(names);
        field.SortOrder = ++position;
        // Any word may stand behind an item, and "desc" alone means something.
        field.Sorting = Is(swDesc) ? 2 : 1;
        at_ += !AtEnd() && !Is(',') ? 1 : 0;
    } while (Accept(','));
}

void TVSQLParser::SortItem() {
    const TSQLToken* const first = at_;
    const std::string_view text = SortedName();
    const TTextPlace place = PlaceFrom(first);
    const bool descending = Accept(swDesc);
    if (!descending)
        Accept(swAsc);
    result_.OrderBy.push_back({text, descending, place});
}

TSQLResultField& TVSQLParser::FieldByNumber() {
    const int number = at_->Kind == tkNumber ? XStrToInt(at_->Text()) : 0;
    const bool isInteger = std::to_string(number) == at_->Text();
    if (!isInteger || number < 1 || number > result_.ResultFields.Count() || result_.SelectAll)
        FailWrong("a column");
    ++at_;
    return result_.ResultFields.GetItem(number - 1);
}

// Names that differ in blanks are one name.
TSQLResultField& TVSQLParser::FieldByName(TSortedNames& names) {
    const TSQLToken* const first = at_;
    const std::string_view name = SortedName();
    if (result_.SelectAll) {
        TSQLResultField& field = result_.ResultFields.Add();
        field.Place = PlaceFrom(first);
        field.SetSQLExpr(name);
        return field;
    }
    const int index = names.Find(result_.ResultFields, name);
    if (index < 0) {
        at_ = first;
        FailWrong("a column");
    }
    return result_.ResultFields.GetItem(index);
}

std::string_view TVSQLParser::SortedName() {
    const TSQLToken* const first = at_;
    if (strict_) {
        while (!AtEnd() && !Is(',') && !Is(')') && !Is(swAsc) && !Is(swDesc) && !HasRole(trClause))
            Advance();
        if (first == at_)
            FailWrong("a column");
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
