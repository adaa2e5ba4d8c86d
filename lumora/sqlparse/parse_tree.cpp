#include "lumora/sqlparse/parse_tree.h"

#include "lumora/platform/ascii.h"

namespace lumora {

void TSQLResultField::SetSQLExpr(std::string_view text) {
    SQLExpr = text;
    const std::size_t dot = text.find('.');
    FieldName = dot == std::string_view::npos || text.find('(') < dot ? text : text.substr(dot + 1);
}

void TSQLResultFieldList::Clear() {
    items_.clear();
    SelectAll = false;
}

int TSQLResultFieldList::IndexByAlias(std::string_view alias) const {
    for (int i = 0; i < Count(); ++i)
        if (SameText(GetItem(i).Alias, alias))
            return i;
    return -1;
}

int TSQLResultFieldList::IndexByExpr(std::string_view expression) const {
    for (int i = 0; i < Count(); ++i)
        if (SameText(GetItem(i).SQLExpr, expression))
            return i;
    return -1;
}

void TSQLTable::SetTableName(std::string_view name) {
    TableName = name;
    if (Alias.empty())
        Alias = name;
}

void TSQLBracket::AddNode(TSQLConditionNode* node) {
    node->parent_ = this;
    node->next_ = nullptr;
    (last_ ? last_->next_ : first_) = node;
    last_ = node;
    ++count_;
}

void TSQLBracket::DeleteEmptyBrackets() {
    TSQLConditionNode** place = &first_;
    for (TSQLConditionNode* node = first_; node; node = node->next_) {
        TSQLConditionNode* const next = node->next_;
        while (node->isBracket_) {
            auto* const bracket = static_cast<TSQLBracket*>(node);
            if (bracket->count_ != 1 || bracket->Negated)
                break;
            node = bracket->first_;
        }
        node->parent_ = this;
        node->next_ = next;
        *place = node;
        place = &node->next_;
        last_ = node;
        if (node->isBracket_)
            static_cast<TSQLBracket*>(node)->DeleteEmptyBrackets();
    }
}

std::string TSQLCondition::GetSQLExpr() const {
    std::string text(Negated ? "not(" : "");
    text.append(Left);
    if (!Operator.empty())
        text.append(" ").append(Operator).append(" ").append(Value);
    return Negated ? text + ")" : text;
}

void TVParserResult::Clear() {
    Distinct = SelectAll = false;
    ResultFields.Clear();
    Tables.clear();
    Joins.clear();
    GroupBy.clear();
    OrderBy.clear();
    arena_.Clear();
    RootBracket = arena_.New<TSQLBracket>();
}

} // namespace lumora
