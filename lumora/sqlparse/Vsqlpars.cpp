#include "lumora/sqlparse/Vsqlpars.h"

#include "lumora/platform/ascii.h"
#include "lumora/support/string_helpers.h"

#include <unordered_map>

namespace lumora {

void TVSQLParser::SetSQLText(std::string_view text) {
    result_.source_ = text;
}

void TVSQLParser::Parse() {
    result_.Clear();
    at_ = 0;
    ReadTokens();
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

// --- Tokens.

// All tokens are read first, and each parenthesis is told where it is closed; so the parser can look ahead
// without reading anything twice.
void TVSQLParser::ReadTokens() {
    tokens_.clear();
    std::vector<std::int32_t> open;
    const char* end = result_.source_.data();
    bool afterDot = false;
    for (TVScanner scanner(result_.source_);; scanner.Next()) {
        const TToken& token = scanner.Token();
        const auto gap = token.Text.data() - end;
        const bool isWord = token.Kind == tkIdentifier && !afterDot;
        const TSQLWord word = isWord ? SQLWordOf(token.Text) : swNone;
        const std::uint8_t roles = token.Kind == tkSymbol || word != swNone ? RolesOf(token, word) : 0;
        at_ = tokens_.size();
        tokens_.push_back({token.Text, token.Line, -1, token.Kind, word, roles,
                           gap == 0 || (gap == 1 && *end == ' '), false});
        end = token.Text.data() + token.Text.size();
        afterDot = false;
        if (token.Kind == tkEnd)
            break;
        if (token.Kind == tkUnclosed)
            FailWrong();
        if (token.Kind != tkSymbol && word == swNone)
            continue;
        const char symbol = token.Kind == tkSymbol ? token.Text[0] : '\0';
        afterDot = symbol == '.';
        if (symbol == '(' || word == swCase)
            OpenPair(open);
        else if (symbol == ')' || word == swEnd)
            ClosePair(open, word == swEnd);
        else if ((roles & trComparison) && !open.empty())
            tokens_[static_cast<std::size_t>(open.back())].Group = true;
    }
    tokens_.back().Roles = trEndsValue;
    if (tokens_.size() > 1)
        tokens_.back().Line =
            tokens_[tokens_.size() - 2].Line; // an error at the end bears the last token's line
    at_ = 0;
}

std::uint8_t TVSQLParser::RolesOf(const TToken& token, TSQLWord word) {
    switch (word) {
    case swLike:
    case swIn:
    case swIs:
    case swBetween:
        return trComparison | trEndsValue;
    case swAnd:
    case swOr:
        return trEndsValue;
    case swNot:
        return trEndsLeft;
    case swJoin:
    case swInner:
    case swLeft:
    case swRight:
    case swFull:
        return trJoinWord;
    case swNone:
        break;
    default:
        return BeginsClause(word) ? trEndsValue : 0;
    }
    switch (token.Text[0]) {
    case '=':
    case '<':
    case '>':
        return trComparison | trEndsValue;
    case '!':
        return token.Text.size() == 2 ? trComparison | trEndsValue : 0;
    case ',':
    case ')':
    case ';':
        return trEndsValue;
    default:
        return 0;
    }
}

void TVSQLParser::OpenPair(std::vector<std::int32_t>& open) {
    if (open.size() == MaxSQLNesting)
        FailWrong();
    open.push_back(static_cast<std::int32_t>(at_));
}

void TVSQLParser::ClosePair(std::vector<std::int32_t>& open, bool isCase) {
    while (!isCase && !open.empty() && tokens_[static_cast<std::size_t>(open.back())].Word == swCase)
        open.pop_back(); // a CASE without its END
    if (open.empty() || (isCase && tokens_[static_cast<std::size_t>(open.back())].Word != swCase))
        return;
    TParseToken& opener = tokens_[static_cast<std::size_t>(open.back())];
    const bool isSelect = tokens_[static_cast<std::size_t>(open.back()) + 1].Word == swSelect;
    open.pop_back();
    opener.Match = static_cast<std::int32_t>(at_);
    opener.Group = opener.Group && !isCase && !isSelect;
    if (opener.Group && !open.empty())
        tokens_[static_cast<std::size_t>(open.back())].Group = true;
}

void TVSQLParser::Fail(TMessageId message) const {
    throw ESQLParserError(message, Token().Line);
}
void TVSQLParser::FailWrong() const {
    Fail(msgWrongSQL);
}

void TVSQLParser::Refuse(const TParseToken& token) const {
    throw ESQLParserError(msgCantBeKept, token.Line, token.Text);
}

bool TVSQLParser::Accept(TSQLWord word) {
    const bool found = Is(word);
    at_ += found ? 1 : 0;
    return found;
}

bool TVSQLParser::Accept(char symbol) {
    const bool found = Is(symbol);
    at_ += found ? 1 : 0;
    return found;
}

void TVSQLParser::Must(TSQLWord word) {
    if (!Accept(word))
        FailWrong();
}

void TVSQLParser::Skip(char symbol) {
    while (Is(symbol))
        ++at_;
}

void TVSQLParser::Advance() {
    if (Token().Match >= 0)
        at_ = static_cast<std::size_t>(Token().Match) + 1;
    else if (Is('('))
        at_ = tokens_.size() - 1; // it is never closed
    else if (!AtEnd())
        ++at_;
}

// The source between a token and the present one, every run of blanks and comments as one blank.
std::string_view TVSQLParser::TextFrom(std::size_t first) {
    if (first == at_)
        return {};
    bool tidy = true;
    for (std::size_t i = first + 1; i < at_; ++i)
        tidy = tidy && tokens_[i].Tidy;
    const std::string_view last = tokens_[at_ - 1].Text;
    const char* const begin = tokens_[first].Text.data();
    if (tidy)
        return {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
    std::string text(tokens_[first].Text);
    for (std::size_t i = first + 1; i < at_; ++i) {
        if (tokens_[i].Text.data() != tokens_[i - 1].Text.data() + tokens_[i - 1].Text.size())
            text += ' ';
        text += tokens_[i].Text;
    }
    return result_.Keep(std::move(text));
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
    const std::size_t first = at_;
    while (!AtEnd() && !Is(',') && !Is(')') && !Is(';')) {
        switch (Token().Word) {
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
    const TParseToken& token = Token();
    if (token.Kind != tkIdentifier && token.Kind != tkQuotedIdentifier)
        FailWrong();
    ++at_;
    if (token.Kind == tkIdentifier)
        return token.Text;
    const std::string_view inner = token.Text.substr(1, token.Text.size() - 2);
    return inner.find('"') == std::string_view::npos ? inner : result_.Keep(ReplaceText(inner, "\"\"", "\""));
}

// --- FROM.

void TVSQLParser::ProcessFrom() {
    Must(swFrom);
    do
        Table();
    while (Accept(','));
}

std::string_view TVSQLParser::DottedName() {
    if (IsClauseWord() || IsJoinWord())
        FailWrong();
    std::string_view name = ProcessIdentifier();
    while (Accept('.'))
        name = result_.Keep(std::string(name) + "." + std::string(ProcessIdentifier()));
    return name;
}

void TVSQLParser::Table() {
    Skip('(');
    TSQLTable table;
    table.Line = Token().Line;
    const std::string_view name = DottedName();
    Skip(')');
    Accept(swAs);
    const bool noAlias = AtEnd() || Is(',') || IsJoinWord() || IsClauseWord() || (strict_ && Is(swWith));
    if (!noAlias)
        table.Alias = ProcessIdentifier();
    table.SetTableName(name);
    result_.Tables.push_back(table);
    if (strict_)
        SkipHints();
    Skip(')');
    JoinedTables();
}

// Table hints belong to the model's table.
void TVSQLParser::SkipHints() {
    if (!Accept(swWith))
        return;
    while (!AtEnd() && !Is(',') && !Is(')') && !Is(swOn) && !IsJoinWord() && !IsClauseWord())
        Advance();
}

void TVSQLParser::JoinedTables() {
    while (IsJoinWord()) {
        const int line = Token().Line;
        TSQLWord kind = Token().Word;
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
    table.SetTableName(name);
    result_.Tables.push_back(table);
    if (strict_)
        SkipHints();
    Must(swOn);
    TSQLBracket* const condition = BooleanBracket();
    if (strict_)
        result_.Joins.push_back({static_cast<int>(result_.Tables.size()) - 1, kind, condition, line});
}

// --- WHERE.

void TVSQLParser::ProcessWhere() {
    Must(swWhere);
    result_.RootBracket = BooleanBracket();
}

// An expression as a bracket, which a single condition, or a negated group, stands in alone.
TSQLBracket* TVSQLParser::BooleanBracket() {
    const int line = Token().Line;
    TSQLConditionNode* const node = BooleanExpression();
    if (node->IsBracket() && !static_cast<TSQLBracket*>(node)->Negated)
        return static_cast<TSQLBracket*>(node);
    return NewBracket("and", node, line);
}

TSQLBracket* TVSQLParser::NewBracket(const char* op, TSQLConditionNode* first, int line) {
    TSQLBracket* const bracket = result_.brackets_.New();
    bracket->Operator = op;
    bracket->Line = line;
    bracket->AddNode(first);
    return bracket;
}

// Terms separated by "or"; one alone is given as it is, without a bracket around it.
TSQLConditionNode* TVSQLParser::BooleanExpression() {
    const int line = Token().Line;
    TSQLConditionNode* const first = BooleanTerm();
    if (!Is(swOr))
        return first;
    TSQLBracket* const bracket = NewBracket("or", first, line);
    while (Accept(swOr))
        bracket->AddNode(BooleanTerm());
    return bracket;
}

TSQLConditionNode* TVSQLParser::BooleanTerm() {
    const int line = Token().Line;
    TSQLConditionNode* const first = BooleanFactor();
    if (!Is(swAnd))
        return first;
    TSQLBracket* const bracket = NewBracket("and", first, line);
    while (Accept(swAnd))
        bracket->AddNode(BooleanFactor());
    return bracket;
}

// Strictly, parentheses around a predicate without a comparison ("exists ...") are a group too.
bool TVSQLParser::OpensGroup() const {
    if (!Is('(') || Token().Group)
        return Is('(');
    if (!strict_ || Token().Match < 0 || Peek().Word == swSelect)
        return false;
    return EndsPredicate(tokens_[static_cast<std::size_t>(Token().Match) + 1]);
}

bool TVSQLParser::EndsPredicate(const TParseToken& token) const {
    return token.Kind == tkEnd || token.Word == swAnd || token.Word == swOr || token.Text == ")" ||
           IsClauseWord(token);
}

TSQLConditionNode* TVSQLParser::BooleanFactor() {
    if (!OpensGroup())
        return Condition(false);
    ++at_;
    TSQLConditionNode* const node = BooleanExpression();
    if (!Accept(')'))
        Fail(msgLostBracket);
    return node;
}

TSQLConditionNode* TVSQLParser::Condition(bool negated) {
    while (Accept(swNot))
        negated = !negated;
    if (OpensGroup()) {
        ++at_;
        TSQLConditionNode* node = strict_ ? BooleanExpression() : Condition(negated);
        if (strict_ && negated)
            node = Negate(node);
        if (!Accept(')'))
            Fail(msgLostBracket);
        return node;
    }
    TSQLCondition* const condition = result_.conditions_.New();
    condition->Line = Token().Line;
    condition->Negated = negated;
    Comparison(*condition);
    return condition;
}

TSQLConditionNode* TVSQLParser::Negate(TSQLConditionNode* group) {
    bool& negated = group->IsBracket() ? static_cast<TSQLBracket*>(group)->Negated
                                       : static_cast<TSQLCondition*>(group)->Negated;
    negated = !negated;
    return group;
}

void TVSQLParser::Comparison(TSQLCondition& condition) {
    condition.Left = ConditionValue(true, condition);
    if (condition.Left.empty())
        FailWrong();
    if (strict_ && EndsPredicate(Token()))
        return; // a predicate without a comparison
    if (Accept(swNot))
        condition.Negated = !condition.Negated;
    if (AtEnd() || IsClauseWord())
        FailWrong();
    const bool between = Is(swBetween);
    const std::string_view text = Token().Text;
    bool lower = true;
    for (const char c : text)
        lower = lower && LowerAscii(c) == c;
    condition.Operator = lower ? text : result_.Keep(LowerAscii(text));
    ++at_;
    const std::string_view first = RightValue(condition);
    condition.Value = first;
    if (!between)
        return;
    Must(swAnd);
    const std::string_view second = RightValue(condition);
    const std::string_view whole(first.data(), first.size() + 5 + second.size());
    const std::string& source = result_.source_;
    const bool inSource = first.data() >= source.data() && second.data() == first.data() + first.size() + 5 &&
                          second.data() + second.size() <= source.data() + source.size();
    condition.Value = inSource && whole.substr(first.size(), 5) == " and "
                          ? whole
                          : result_.Keep(std::string(first) + " and " + std::string(second));
}

std::string_view TVSQLParser::RightValue(TSQLCondition& condition) {
    const std::string_view value = ConditionValue(false, condition);
    if (value.empty())
        FailWrong();
    if (value.size() < 2 || value.front() != '"' || value.back() != '"' || strict_)
        return value;
    return result_.Keep("'" + std::string(value.substr(1, value.size() - 2)) + "'");
}

// What stands before the next comparison, "and", "or" or clause outside parentheses.
std::string_view TVSQLParser::ConditionValue(bool isLeft, TSQLCondition& condition) {
    const std::size_t first = at_;
    if (Is('(') && Peek().Word == swSelect) {
        if (Token().Match < 0)
            Fail(msgLostBracket);
        condition.SubQuery = true;
    }
    while (!EndsValue(isLeft))
        Advance();
    return TextFrom(first);
}

bool TVSQLParser::EndsValue(bool isLeft) const {
    const std::uint8_t roles = Token().Roles;
    if (roles == 0)
        return false;
    if (roles & (isLeft ? trEndsValue | trEndsLeft : trEndsValue))
        return true;
    return (roles & trJoinWord) && !Peek().Text.starts_with('(');
}

// --- GROUP BY and ORDER BY.

void TVSQLParser::ProcessGroupBy() {
    Must(swGroup);
    Must(swBy);
    do {
        const std::size_t first = at_;
        const int line = Token().Line;
        if (strict_) {
            while (!AtEnd() && !Is(',') && !Is(')') && !IsClauseWord())
                Advance();
            if (first == at_)
                FailWrong();
            result_.GroupBy.push_back({TextFrom(first), line});
        } else {
            ProcessIdentifier();
            if (!Accept('.'))
                FailWrong();
            ProcessIdentifier();
        }
    } while (Accept(','));
}

void TVSQLParser::ProcessOrderBy() {
    Must(swOrder);
    Must(swBy);
    const bool byNumber = Token().Kind == tkNumber;
    std::unordered_map<std::string, int> fieldsByExpr;
    for (int i = 0; !byNumber && i < result_.ResultFields.Count(); ++i)
        fieldsByExpr.try_emplace(FoldBlanks(result_.ResultFields.GetItem(i).SQLExpr), i);
    int position = 0;
    do {
        TSQLResultField& field = byNumber ? FieldByNumber() : FieldByName(fieldsByExpr);
        field.Sorting = 1;
        field.SortOrder = ++position;
        if (AtEnd() || Is(',') || (strict_ && !Is(swAsc) && !Is(swDesc)))
            continue;
        if (Is(swDesc))
            field.Sorting = 2;
        ++at_;
    } while (Accept(','));
}

TSQLResultField& TVSQLParser::FieldByNumber() {
    const int number = Token().Kind == tkNumber ? XStrToInt(Token().Text) : 0;
    const bool isInteger = std::to_string(number) == Token().Text;
    if (!isInteger || number < 1 || number > result_.ResultFields.Count())
        FailWrong();
    ++at_;
    return result_.ResultFields.GetItem(number - 1);
}

// Names that differ in blanks are one name.
TSQLResultField& TVSQLParser::FieldByName(std::unordered_map<std::string, int>& fieldsByExpr) {
    const std::size_t first = at_;
    const int line = Token().Line;
    if (strict_) {
        while (!AtEnd() && !Is(',') && !Is(')') && !Is(swAsc) && !Is(swDesc) && !IsClauseWord())
            Advance();
        if (first == at_)
            FailWrong();
    } else {
        ProcessIdentifier();
        if (Accept('.'))
            ProcessIdentifier();
    }
    const std::string_view name = TextFrom(first);
    if (result_.SelectAll) {
        TSQLResultField& field = result_.ResultFields.Add();
        field.Line = line;
        field.SetSQLExpr(name);
        return field;
    }
    const auto found = fieldsByExpr.find(FoldBlanks(name));
    int index = found == fieldsByExpr.end() ? -1 : found->second;
    if (index < 0 && strict_)
        index = result_.ResultFields.IndexByAlias(name);
    if (index < 0) {
        at_ = first;
        FailWrong();
    }
    return result_.ResultFields.GetItem(index);
}

void TVSQLParser::CheckEnd() {
    Skip(';');
    if (!AtEnd())
        Refuse(Token());
}

} // namespace lumora
