#include "lumora/query/filter_rows.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/query/query.h"
#include "lumora/query/query_listener.h"
#include "lumora/query/query_result.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

// --- Rows.

TFilterRow::~TFilterRow() {
    BeginDestruction();
}

void TFilterRow::BeginDestruction() {
    if (destroying_)
        return;
    destroying_ = true;
    query_.RowDestroyed(*this);
}

std::string TFilterRow::GetRowID() const {
    if (!parent_)
        return {};
    return parent_->GetRowID() + std::to_string(index_ + 1) + ".";
}

int TFilterRow::GetDepth() const {
    if (type_ != frtBracket)
        return 0;
    const auto& bracket = static_cast<const TFilterBracket&>(*this);
    int deepest = 0;
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        deepest = std::max(deepest, bracket.GetRow(i)->GetDepth() + 1);
    return deepest;
}

int TFilterRow::GetRowNum() const {
    query_.EnsureRowNumbers();
    return rowNum_;
}

void TFilterRow::SetEnabled(bool enabled) {
    if (enabled == enabled_)
        return;
    enabled_ = enabled;
    query_.RowChanged(*this);
    if (parent_)
        parent_->AdjustEnabled();
    query_.QueryChanged();
}

void TFilterRow::SetHidden(bool hidden) {
    if (hidden == hidden_)
        return;
    hidden_ = hidden;
    query_.RowsChanged();
}

// --- Brackets.

TFilterBracket::~TFilterBracket() {
    BeginDestruction();
    while (!rows_.empty())
        rows_.pop_back();
}

void TFilterBracket::RaiseInvalidIndex(int index) {
    throw EVQueryPanelError(qpeInvalidIndex, {std::to_string(index)});
}

void TFilterBracket::SetLinkType(TFilterLinkType type) {
    if (type == linkType_)
        return;
    linkType_ = type;
    GetQuery().RowChanged(*this);
    GetQuery().QueryChanged();
}

TFilterRow* TFilterBracket::InsertRow(int index, std::unique_ptr<TFilterRow> row) {
    if (GetRowLevel() + 1 + row->GetDepth() > MaxRowLevel)
        throw EVQueryPanelError(qpeTooDeep, {std::to_string(MaxRowLevel)});
    TVQuery& query = GetQuery();
    const TRowRef<TFilterRow> inserted(row.get());
    PutIn(index, std::move(row));
    if (!GetEnabled())
        AdjustEnabled();
    query.RowsChanged();
    query.QueryChanged();
    return inserted.Get();
}

void TFilterBracket::PutIn(int index, std::unique_ptr<TFilterRow> row) {
    if (index < 0 || index > GetRowCount())
        index = GetRowCount();
    row->parent_ = this;
    SetLevels(*row, GetRowLevel() + 1);
    rows_.insert(rows_.begin() + index, std::move(row));
    RenumberFrom(index);
}

void TFilterBracket::TakeOut(int index, std::vector<std::unique_ptr<TFilterRow>>& taken) {
    taken.push_back(std::move(rows_[static_cast<std::size_t>(index)]));
    rows_.erase(rows_.begin() + index);
    RenumberFrom(index);
    taken.back()->parent_ = nullptr;
    taken.back()->index_ = 0;
    if (rows_.empty() && GetParent() && !GetQuery().KeepsEmptyBrackets())
        GetParent()->TakeOut(GetIndex(), taken);
}

void TFilterBracket::SetLevels(TFilterRow& row, int level) const {
    row.level_ = level;
    if (row.GetRowType() != frtBracket)
        return;
    for (const auto& child : static_cast<TFilterBracket&>(row).rows_)
        SetLevels(*child, level + 1);
}

void TFilterBracket::RenumberFrom(int index) {
    for (int i = index; i < GetRowCount(); ++i)
        rows_[static_cast<std::size_t>(i)]->index_ = i;
}

TFilterBracket* TFilterBracket::InsertNewBracket(int index) {
    return static_cast<TFilterBracket*>(InsertRow(index, std::make_unique<TFilterBracket>(GetQuery())));
}

TSimpleCond* TFilterBracket::InsertSimpleCondByNum(int number) {
    const int index = IndexForNewRow(number);
    return static_cast<TSimpleCond*>(InsertRow(index, std::make_unique<TSimpleCond>(GetQuery())));
}

TCustomCond* TFilterBracket::InsertCustomCondByNum(int number, TDSCondition* condition) {
    const int index = IndexForNewRow(number);
    return static_cast<TCustomCond*>(InsertRow(index, std::make_unique<TCustomCond>(GetQuery(), *condition)));
}

TSimpleCond* TFilterBracket::AddCond() {
    return static_cast<TSimpleCond*>(AddRow(std::make_unique<TSimpleCond>(GetQuery())));
}

TCustomCond* TFilterBracket::AddCustomCond(TDSCondition* condition) {
    return static_cast<TCustomCond*>(AddRow(std::make_unique<TCustomCond>(GetQuery(), *condition)));
}

int TFilterBracket::IndexByRowNum(int number) const {
    for (int i = 0; i < GetRowCount(); ++i)
        if (GetRow(i)->GetRowNum() == number)
            return i;
    return -1;
}

int TFilterBracket::IndexForNewRow(int number) const {
    if (rows_.empty() || number < rows_.front()->GetRowNum())
        return 0;
    return number <= rows_.back()->GetRowNum() ? IndexByRowNum(number) : GetRowCount();
}

void TFilterBracket::DeleteRow(int index) {
    TVQuery& query = GetQuery();
    query.RowDeleting(*GetRow(index));
    std::vector<std::unique_ptr<TFilterRow>> gone;
    TakeOut(index, gone);
    query.FreeRows(std::move(gone));
    query.QueryChanged();
}

std::unique_ptr<TFilterRow> TFilterBracket::ExtractRow(int index) {
    CheckIndex(index);
    TVQuery& query = GetQuery();
    std::vector<std::unique_ptr<TFilterRow>> gone;
    TakeOut(index, gone);
    std::unique_ptr<TFilterRow> row = std::move(gone.front());
    query.FreeRows(std::move(gone));
    query.QueryChanged();
    return row;
}

// Nothing is told where there is nothing, so that a handler of changes may clear.
void TFilterBracket::ClearRows() {
    if (rows_.empty())
        return;
    TVQuery& query = GetQuery();
    query.FreeRows(std::move(rows_));
    query.QueryChanged();
}

TFilterRow* TFilterBracket::RowByID(std::string_view id) {
    const std::string own = GetRowID();
    if (id.substr(0, own.size()) != own)
        return nullptr;
    id.remove_prefix(own.size());
    TFilterRow* row = this;
    while (!id.empty()) {
        const std::size_t dot = id.find('.');
        if (dot == std::string_view::npos || row->GetRowType() != frtBracket)
            return nullptr;
        auto* const bracket = static_cast<TFilterBracket*>(row);
        const int position = XStrToInt(id.substr(0, dot));
        if (position < 1 || position > bracket->GetRowCount())
            return nullptr;
        row = bracket->GetRow(position - 1);
        id.remove_prefix(dot + 1);
    }
    return row;
}

TFilterCond* TFilterBracket::GetFirstCondition() const {
    for (const auto& row : rows_) {
        if (row->GetRowType() != frtBracket)
            return static_cast<TFilterCond*>(row.get());
        if (TFilterCond* const condition = static_cast<TFilterBracket*>(row.get())->GetFirstCondition())
            return condition;
    }
    return nullptr;
}

TFilterRow* TFilterBracket::GetLastRow() {
    TFilterRow* row = this;
    while (row->GetRowType() == frtBracket && static_cast<TFilterBracket*>(row)->GetRowCount() > 0)
        row = static_cast<TFilterBracket*>(row)->rows_.back().get();
    return row;
}

void TFilterBracket::EndUpdate() {
    if (--updating_ == 0)
        CheckIfAllDisabled();
}

void TFilterBracket::CheckIfAllDisabled() {
    const bool wasEnabled = GetEnabled();
    AdjustEnabled();
    if (GetEnabled() != wasEnabled)
        GetQuery().QueryChanged();
}

// Outwards as long as a bracket changes.
void TFilterBracket::AdjustEnabled() {
    for (TFilterBracket* bracket = this; bracket; bracket = bracket->GetParent()) {
        if (bracket->updating_ > 0 || GetQuery().GetState() == stLoading)
            return;
        const bool anyEnabled = std::any_of(bracket->rows_.begin(), bracket->rows_.end(),
                                            [](const auto& row) { return row->GetEnabled(); });
        if (bracket->enabled_ == anyEnabled)
            return;
        bracket->enabled_ = anyEnabled;
        GetQuery().RowChanged(*bracket);
    }
}

// --- Conditions.

TFilterCond::TFilterCond(TFilterRowType type, TVQuery& query) : TFilterRow(type, query) {}

TFilterCond::~TFilterCond() {
    BeginDestruction();
    if (slots_[0].Param || slots_[1].Param)
        GetQuery().GetQResult().DeleteParameters(this);
}

const TSQLTemplate* TFilterCond::GetTemplate() const {
    return nullptr;
}

int TFilterCond::GetValueCount() const {
    return 0;
}

std::string TFilterCond::GetSQLExpr() const {
    return GetTemplate() ? GetTemplate()->GetText() : std::string();
}

std::string TFilterCond::GetCaptionText() const {
    return {};
}

const TDSTableList& TFilterCond::GetTables() const {
    static const TDSTableList none;
    return none;
}

TValueKind TFilterCond::GetValueKind(int) const {
    return vkScalar;
}
TFieldType TFilterCond::GetValueType(int) const {
    return ftUnknown;
}
std::string TFilterCond::GetValueName(int) const {
    return {};
}
void TFilterCond::UpdateSQLParams(TStringList&) const {}

void TFilterCond::SetValue(int value, const std::string& text) {
    TSlot& slot = Slot(value);
    if (slot.Param || slot.Text == text)
        return;
    slot.Text = text;
    slot.Caption.clear();
    GetQuery().ValueChanged(*this, value);
}

void TFilterCond::SetCaption(int value, const std::string& caption) {
    Slot(value).Caption = caption;
    GetQuery().RowChanged(*this);
}

void TFilterCond::SetValueIsParam(int value, bool isParam) {
    TSlot& slot = Slot(value);
    if (isParam == (slot.Param != nullptr))
        return;
    TVQuery& query = GetQuery();
    query.HoldParamNotices();
    if (isParam)
        slot.Param = query.GetQResult().AddParameter(*this, value);
    else
        query.GetQResult().DeleteParameter(slot.Param);
    query.RowChanged(*this);
    query.ReleaseParamNotices();
    query.QueryChanged();
}

void TFilterCond::ParamDeleted(const TSQLParam* param) {
    for (TSlot& slot : slots_)
        if (slot.Param == param)
            slot.Param = nullptr;
}

const TStringList& TFilterCond::GetSubQuery() const {
    static const TStringList none;
    return subQuery_ ? *subQuery_ : none;
}

void TFilterCond::SetSubQuery(const TStringList& lines) {
    subQuery_ = lines.Empty() ? nullptr : std::make_unique<TStringList>(lines);
}

// --- Simple conditions.

void TSimpleCond::SetField(TDSField* field) {
    if (field == field_)
        return;
    field_ = field;
    const auto& offered = field ? field->GetOperators() : std::vector<TDSOperator*>();
    if (std::find(offered.begin(), offered.end(), operator_) == offered.end())
        operator_ = offered.empty() ? nullptr : offered.front();
    GetQuery().ConditionChanged(*this, ccField);
}

void TSimpleCond::SetOperator(TDSOperator* op) {
    if (op == operator_)
        return;
    operator_ = op;
    GetQuery().ConditionChanged(*this, ccOperator);
}

const TSQLTemplate* TSimpleCond::GetTemplate() const {
    return operator_ ? &operator_->GetTemplate() : nullptr;
}

int TSimpleCond::GetValueCount() const {
    return operator_ ? operator_->GetParamCount() : 0;
}

TValueKind TSimpleCond::GetValueKind(int) const {
    return operator_ ? operator_->ValueKind : vkScalar;
}

std::string TSimpleCond::GetValueName(int) const {
    return field_ ? field_->GetDisplayName() : std::string();
}

const TDSTableList& TSimpleCond::GetTables() const {
    return field_ ? field_->GetTables() : TFilterCond::GetTables();
}

TFieldType TSimpleCond::GetExprType() const {
    if (operator_ && operator_->ExprType != ftUnknown)
        return operator_->ExprType;
    return field_ ? field_->FieldType : ftUnknown;
}

void TSimpleCond::UpdateSQLParams(TStringList& params) const {
    if (!field_ || !operator_)
        return;
    const bool equal = SameText(operator_->GetName(), "Equal");
    params.SetValue(field_->GetDisplayName(), equal ? field_->ValueAsString(GetValue(1)) : std::string());
}

const TStringList* TSimpleCond::GetCustomData() const {
    const auto* const editor =
        field_ ? dynamic_cast<const TDSCustomEditor*>(field_->GetValueEditor()) : nullptr;
    return editor ? &editor->CustomData : nullptr;
}

// --- Predefined conditions.

const TSQLTemplate* TCustomCond::GetTemplate() const {
    return condition_ ? &condition_->GetTemplate() : nullptr;
}

const TDSTableList& TCustomCond::GetTables() const {
    return condition_ ? condition_->GetTables() : TFilterCond::GetTables();
}

int TCustomCond::GetValueCount() const {
    return condition_ ? static_cast<int>(condition_->Values.size()) : 0;
}

std::string TCustomCond::GetCaptionText() const {
    return condition_ ? condition_->GetCaption() : std::string();
}

const TDSValue* TCustomCond::ValueSlot(int value) const {
    return value >= 1 && value <= GetValueCount() ? &condition_->Values[static_cast<std::size_t>(value - 1)]
                                                  : nullptr;
}

TValueKind TCustomCond::GetValueKind(int value) const {
    const TDSValue* const slot = ValueSlot(value);
    return slot ? slot->ValueKind : vkScalar;
}

TFieldType TCustomCond::GetValueType(int value) const {
    const TDSValue* const slot = ValueSlot(value);
    return slot ? slot->GetDataType() : ftUnknown;
}

std::string TCustomCond::GetValueName(int value) const {
    const TDSValue* const slot = ValueSlot(value);
    return slot ? std::string(Trim(slot->Text)) : std::string();
}

} // namespace lumora
