// The part of the parser that reads conditions: WHERE and what stands behind ON.
#include "lumora/platform/ascii.h"
#include "lumora/sqlparse/Vsqlpars.h"

namespace lumora {

void TVSQLParser::ProcessWhere() {
    Must(swWhere);
    result_.RootBracket = BooleanBracket();
}

// An expression as a bracket, which a single condition, or a negated group, stands in alone.
TSQLBracket* TVSQLParser::BooleanBracket() {
    const TSQLToken* const start = at_;
    TSQLConditionNode* const node = BooleanExpression();
    if (node->IsBracket() && !static_cast<TSQLBracket*>(node)->Negated)
        return static_cast<TSQLBracket*>(node);
    return NewBracket("and", node, start);
}

TSQLBracket* TVSQLParser::NewBracket(std::string_view op, TSQLConditionNode* first, const TSQLToken* start) {
    TSQLBracket* const bracket = result_.arena_.New<TSQLBracket>();
    bracket->Operator = op;
    bracket->Place = PlaceOf(*start);
    bracket->AddNode(first);
    return bracket;
}

// Terms separated by "or"; one alone is given as it is, without a bracket around it.
TSQLConditionNode* TVSQLParser::BooleanExpression() {
    const TSQLToken* const start = at_;
    TSQLConditionNode* const first = BooleanTerm();
    if (!Is(swOr))
        return first;
    TSQLBracket* const bracket = NewBracket("or", first, start);
    while (Accept(swOr))
        bracket->AddNode(BooleanTerm());
    return bracket;
}

TSQLConditionNode* TVSQLParser::BooleanTerm() {
    const TSQLToken* const start = at_;
    TSQLConditionNode* const first = BooleanFactor();
    if (!Is(swAnd))
        return first;
    TSQLBracket* const bracket = NewBracket("and", first, start);
    while (Accept(swAnd))
        bracket->AddNode(BooleanFactor());
    return bracket;
}

// Strictly, parentheses around a predicate without a comparison ("exists ...") are a group too.
bool TVSQLParser::OpensGroup() const {
    if (!Is('('))
        return false;
    if (HasRole(trGroup)) // strictly "(...) is not true" is a predicate of its own
        return !(strict_ && HasRole(trClosed) && at_[at_->Step].Word == swIs);
    if (!strict_ || !HasRole(trClosed) || Peek().Word == swSelect)
        return false;
    return EndsPredicate(at_[at_->Step]);
}

bool TVSQLParser::EndsPredicate(const TSQLToken& token) {
    return token.Kind == tkEnd || token.Word == swAnd || token.Word == swOr || token.Symbol == ')' ||
           (token.Roles & trClause);
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
    TSQLCondition* const condition = result_.arena_.New<TSQLCondition>();
    condition->Negated = negated;
    const TSQLToken* const first = at_;
    condition->Place = PlaceOf(*first);
    Comparison(*condition);
    condition->Place = PlaceFrom(first);
    return condition;
}

TSQLConditionNode* TVSQLParser::Negate(TSQLConditionNode* group) {
    bool& negated = group->IsBracket() ? static_cast<TSQLBracket*>(group)->Negated
                                       : static_cast<TSQLCondition*>(group)->Negated;
    negated = !negated;
    return group;
}

void TVSQLParser::Comparison(TSQLCondition& condition) {
    condition.Left = ConditionValue(trEndsValue | trEndsLeft, condition);
    if (condition.Left.empty())
        FailWrong("a condition");
    if (strict_ && EndsPredicate(Token()))
        return; // a predicate without a comparison
    if (Accept(swNot))
        condition.Negated = !condition.Negated;
    if (AtEnd() || HasRole(trClause))
        FailWrong("a comparison");
    const bool between = Is(swBetween);
    condition.Operator = TakeOperator();
    condition.Value = RightValue(condition);
    if (between)
        condition.Value = SecondValue(condition);
}

// Strictly "==" is "=", and "is distinct from" is one operator.
std::string_view TVSQLParser::TakeOperator() {
    const TSQLToken* const first = at_;
    const std::string_view text = OperatorText();
    ++at_;
    if (!strict_)
        return text;
    if (first->Symbol == '=')
        Accept('=');
    const bool isNot = Is(swNot) && Peek().Word == swDistinct;
    if (first->Word != swIs || (!Is(swDistinct) && !isNot))
        return text;
    at_ += isNot ? 2 : 1;
    Must(swFrom);
    return isNot ? "is not distinct from" : "is distinct from";
}

// In small letters.
std::string_view TVSQLParser::OperatorText() {
    if (at_->Word != swNone)
        return SQLWordText(at_->Word);
    return at_->Kind == tkSymbol ? at_->Text() : result_.arena_.Join({LowerAscii(at_->Text())});
}

std::string_view TVSQLParser::RightValue(TSQLCondition& condition) {
    const std::string_view value = ConditionValue(trEndsValue, condition);
    if (value.empty())
        FailWrong("a value");
    if (value.size() < 2 || value.front() != '"' || value.back() != '"' || strict_)
        return value;
    return result_.arena_.Join({"'", value.substr(1, value.size() - 2), "'"});
}

// Both values of BETWEEN. Mostly they stand so in the source.
std::string_view TVSQLParser::SecondValue(TSQLCondition& condition) {
    const std::string_view first = condition.Value;
    const TSQLToken& word = Token();
    Must(swAnd);
    const std::string_view second = RightValue(condition);
    const bool inSource = first.data() + first.size() == word.Begin - 1 && second.data() == word.End() + 1;
    if (inSource && std::string_view(word.Begin - 1, 5) == " and ")
        return {first.data(), first.size() + 5 + second.size()};
    return result_.arena_.Join({first, " and ", second});
}

// What stands before the next token outside parentheses that has one of the roles.
std::string_view TVSQLParser::ConditionValue(unsigned ends, TSQLCondition& condition) {
    const TSQLToken* const first = at_;
    if (Is('(') && Peek().Word == swSelect) {
        if (!HasRole(trClosed))
            Fail(msgLostBracket);
        condition.SubQuery = true;
    }
    ends |= strict_ ? trStrictOp : 0;
    while (!HasRole(ends) && !(HasRole(trJoinWord) && Peek().Symbol != '('))
        Advance();
    return TextFrom(first);
}

} // namespace lumora
