#include "lumora/model/structure.h"
#include "lumora/model/tables.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

TDSField::TDSField(TVCustomDBStructure& structure, int id, TVFieldKind kind)
    : structure_(structure), id_(id), kind_(kind) {}

TDSField::~TDSField() = default;

TDSValueEditor* TDSField::GetValueEditor() const {
    return editor_.get();
}

void TDSField::SetFieldName(std::string name) {
    if (kind_ == vfkVirtual)
        throw EVDBStructError(dseAssignVirtFldName);
    text_ = std::move(name);
    structure_.FieldKeysChanged();
}

void TDSField::SetSQLExpr(std::string expression) {
    if (kind_ == vfkData)
        throw EVDBStructError(dseAssignExpr);
    text_ = std::move(expression);
    tables_.clear();
    references_.clear();
    structure_.ExcludeTablesBySQLExpr(text_, tables_, &references_);
    structure_.FieldKeysChanged();
}

void TDSField::SetDisplayName(std::string caption) {
    displayName_ = std::move(caption);
    structure_.FieldKeysChanged();
}

void TDSField::SetTable(TDSTable* table) {
    tables_.clear();
    if (table)
        tables_.push_back(table);
    structure_.FieldKeysChanged();
}

void TDSField::SetQuoted(bool quoted) {
    quoted_ = quoted;
    structure_.FieldKeysChanged();
}

void TDSField::SetGroup(TDSFieldGroup* group) {
    structure_.RemoveFromGroup(*this);
    group_ = group;
    (group ? *group : structure_.rootGroup_).Fields.push_back(this);
}

std::string TDSField::GetSQLExpr(TNameQuoting quoting) const {
    std::string text;
    AppendSQLExpr(text, quoting);
    return text;
}

void TDSField::AppendSQLExpr(std::string& out, TNameQuoting quoting) const {
    if (kind_ == vfkVirtual) {
        out += text_;
        return;
    }
    if (const TDSTable* const table = GetTable(); table && !table->GetAlias().empty()) {
        if (quoting.Taken)
            table->AppendAlias(out, quoting);
        else
            out += table->GetAlias();
        out += '.';
    }
    if (quoted_)
        structure_.GetSQLFormats().Quotes().Append(out, text_, quoting);
    else
        out += text_;
}

std::string TDSField::GetFullName() const {
    std::string text;
    AppendFullName(text);
    return text;
}

void TDSField::AppendFullName(std::string& out) const {
    if (const TDSTable* const table = kind_ == vfkData ? GetTable() : nullptr)
        out.append(table->GetName()) += '.';
    out += text_;
}

std::string TDSField::GetCompoundName() const {
    return group_ ? group_->GroupName + "." + displayName_ : displayName_;
}

std::string TDSField::GetGroupByFields(TNameQuoting quoting) const {
    if (kind_ == vfkData)
        return GetSQLExpr(quoting);
    std::string text;
    for (const std::string& reference : references_) {
        if (!text.empty())
            text += ',';
        text += reference;
    }
    return text;
}

TDSOperator* TDSField::GetOperator(int index) const {
    if (index < 0 || index >= GetOperatCount())
        throw EVDBStructError(dseInvalidOperatorIndex, {std::to_string(index)});
    return operators_[static_cast<std::size_t>(index)];
}

void TDSField::AddAppliedOperators() {
    operators_.clear();
    for (int i = 0; i < structure_.GetOperatCount(); ++i)
        if (TDSOperator* const op = structure_.GetOperator(i); op->AppliedTypes.Contains(FieldType))
            operators_.push_back(op);
}

void TDSField::AddOperator(TDSOperator* op) {
    if (op && std::find(operators_.begin(), operators_.end(), op) == operators_.end())
        operators_.push_back(op);
}

void TDSField::AddOperatorByName(std::string_view name) {
    TDSOperator* const op = structure_.OperatorByName(name);
    if (!op)
        throw EVDBStructError(dseOperatorNotFound, {name});
    AddOperator(op);
}

void TDSField::DelOperator(int index) {
    RemoveOperator(GetOperator(index));
}

void TDSField::RemoveOperator(TDSOperator* op) {
    std::erase(operators_, op);
}

void TDSField::MoveOperat(int from, int to) {
    TDSOperator* const op = GetOperator(from);
    GetOperator(to);
    operators_.erase(operators_.begin() + from);
    operators_.insert(operators_.begin() + to, op);
}

std::string TDSField::ValueAsString(std::string_view value) const {
    return structure_.GetQuotedTypes().Contains(FieldType) ? QuoteText(value, '\'', '\'')
                                                           : std::string(value);
}

void TDSField::SetEditType(TDSEditType type) {
    if (type == editType_)
        return;
    editType_ = type;
    editor_ = MakeValueEditor(type, structure_);
}

void TDSField::SetListEditor(std::unique_ptr<TDSListEditor> editor) {
    editType_ = etList;
    editor_ = std::move(editor);
}

TDSFieldGroupList::TDSFieldGroupList() = default;

TDSFieldGroupList::~TDSFieldGroupList() = default;

int TDSFieldGroupList::Count() const {
    return static_cast<int>(groups_.size());
}

TDSFieldGroup* TDSFieldGroupList::GetGroup(int index) const {
    if (index < 0 || index >= Count())
        throw EVDBStructError(dseInvalidGroupIndex, {std::to_string(index)});
    return groups_[static_cast<std::size_t>(index)].get();
}

TDSFieldGroup* TDSFieldGroupList::Add(std::string name) {
    groups_.push_back(std::make_unique<TDSFieldGroup>());
    groups_.back()->GroupName = std::move(name);
    return groups_.back().get();
}

TDSFieldGroup* TDSFieldGroupList::AddGroup(std::string_view name, TDSField* field) {
    TDSFieldGroup* group = FindByName(name);
    if (!group)
        group = Add(std::string(name));
    if (field)
        field->SetGroup(group);
    return group;
}

TDSFieldGroup* TDSFieldGroupList::FindByName(std::string_view name) const {
    for (const auto& group : groups_)
        if (SameText(group->GroupName, name))
            return group.get();
    return nullptr;
}

TDSFieldGroup* TDSFieldGroupList::FindByField(const TDSField* field, int& index) const {
    for (const auto& group : groups_) {
        const auto found = std::find(group->Fields.begin(), group->Fields.end(), field);
        if (found != group->Fields.end()) {
            index = static_cast<int>(found - group->Fields.begin());
            return group.get();
        }
    }
    index = -1;
    return nullptr;
}

void TDSFieldGroupList::GetGroupNames(TStringList& names) const {
    names.Clear();
    for (const auto& group : groups_)
        names.Add(group->GroupName);
}

void TDSFieldGroupList::Delete(int index) {
    const TDSFieldList fields = GetGroup(index)->Fields;
    for (TDSField* const field : fields)
        field->SetGroup(nullptr);
    groups_.erase(groups_.begin() + index);
}

void TDSFieldGroupList::Clear() {
    while (!groups_.empty())
        Delete(Count() - 1);
}

} // namespace lumora
