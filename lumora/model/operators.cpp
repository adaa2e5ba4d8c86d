#include "lumora/model/operators.h"

#include "lumora/model/indexes.h"
#include "lumora/model/structure.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

TDSOperator::TDSOperator(TVCustomDBStructure* structure) : structure_(structure) {}

TDSOperator::~TDSOperator() = default;

void TDSOperator::SetName(std::string name) {
    name_ = std::move(name);
    if (structure_)
        structure_->OperatorKeysChanged();
}

void TDSOperator::SetSQLName(std::string text) {
    pattern_ = TSQLPattern(text);
    template_.SetText(std::move(text));
}

std::span<const TDefaultOperator> DefaultOperators() {
    static constexpr TDefaultOperator operators[] = {
        {"Equal", "is equal to", "@f = '@1'", LmCommonTypes, false, xoInList},
        {"NotEqual", "is not equal to", "@f <> '@1'", LmCommonTypes, false, xoInList},
        {"LessThan", "is less than", "@f < '@1'", LmOrderedTypes, false, xoInList},
        {"LessOrEqual", "is less than or equal to", "@f <= '@1'", LmOrderedTypes, false, xoInList},
        {"GreaterThan", "is greater than", "@f >'@1'", LmOrderedTypes, false, xoInList},
        {"GreaterOrEqual", "is greater than or equal to", "@f >= '@1'", LmOrderedTypes, false, xoInList},
        {"IsNull", "is null", "@f is null", LmNullTestTypes, false, xoInList},
        {"InList", "is in list", "@f in (@1)", LmCommonTypes, true, xoInList},
        {"NotInList", "is not in list", "NOT (@f in (@1))", LmCommonTypes, true, xoInList},
        {"StartsWith", "starts with", "@f like '@1%'", LmStringTypes, true, xoStartsWith},
        {"NotStartsWith", "does not start with", "not(@f like '@1%')", LmStringTypes, true, xoStartsWith},
        {"Contains", "contains", "@f like '%@1%'", LmStringTypes, true, xoContains},
        {"NotContains", "does not contain", "not(@f like '%@1%')", LmStringTypes, true, xoContains},
        {"Between", "is between", "@f between '@1' and '@2'", LmOrderedTypes, true, xoBetween},
        {"NotBetween", "is not between", "NOT (@f between '@1' and '@2')", LmOrderedTypes, true, xoBetween},
    };
    return operators;
}

std::string SaveAppliedTypes(TAppliedTypes types) {
    std::string text;
    for (int i = 0; i < EnumCount<TFieldType>; ++i)
        if (types.Contains(static_cast<TFieldType>(i)))
            text.append(EnumName(static_cast<TFieldType>(i))) += ',';
    return text;
}

TAppliedTypes ReadAppliedTypes(std::string_view text, double version) {
    TAppliedTypes types;
    for (const std::string_view item : SplitText(text, ',')) {
        const int ordinal = version >= 2.0 ? StrToFldType(Trim(item)) : XStrToInt(item, -1);
        if (ordinal >= 0 && ordinal < 40)
            types.Include(static_cast<TFieldType>(ordinal));
    }
    return types;
}

// --- The operators of a model.

TDSOperator* TVCustomDBStructure::GetOperator(int index) const {
    if (index < 0 || index >= GetOperatCount())
        throw EVDBStructError(dseInvalidOperatorIndex, {std::to_string(index)});
    return operators_[static_cast<std::size_t>(index)].get();
}

void TVCustomDBStructure::InitOperator(TDSOperator& op, std::string_view name, std::string_view caption,
                                       std::string_view sql, std::string_view valFormat,
                                       TAppliedTypes appliedTypes) {
    op.SetName(std::string(name));
    op.DisplayName = caption;
    op.SetSQLName(std::string(sql));
    op.ValFormat = valFormat;
    op.AppliedTypes = appliedTypes;
}

int TVCustomDBStructure::AddOperator(std::string_view name, std::string_view caption, std::string_view sql,
                                     std::string_view valFormat, TAppliedTypes appliedTypes) {
    return AddUpdateOperator(false, name, caption, sql, valFormat, appliedTypes);
}

int TVCustomDBStructure::AddUpdateOperator(bool update, std::string_view name, std::string_view caption,
                                           std::string_view sql, std::string_view valFormat,
                                           TAppliedTypes appliedTypes) {
    int index = update ? OperatorIndexByName(name) : -1;
    if (index < 0) {
        operators_.push_back(std::make_unique<TDSOperator>(this));
        index = GetOperatCount() - 1;
    }
    InitOperator(*GetOperator(index), name, caption, sql, valFormat, appliedTypes);
    indexes_->UnrecognizedFieldStale = true;
    Changed();
    return index;
}

void TVCustomDBStructure::DelOperator(int index) {
    GetOperator(index);
    std::vector<std::unique_ptr<TDSOperator>> removed(1);
    removed[0].swap(operators_[static_cast<std::size_t>(index)]);
    operators_.erase(operators_.begin() + index);
    for (const auto& field : fields_)
        field->RemoveOperator(removed[0].get());
    OperatorsRemoved(removed);
}

void TVCustomDBStructure::DeleteOperatorByName(std::string_view name) {
    if (const int index = OperatorIndexByName(name); index >= 0)
        DelOperator(index);
}

void TVCustomDBStructure::ClearOperators() {
    std::vector<std::unique_ptr<TDSOperator>> removed;
    removed.swap(operators_);
    for (const auto& field : fields_)
        field->operators_.clear();
    OperatorsRemoved(removed);
}

// They are freed when everybody has been told, so that it does not matter what handlers do.
void TVCustomDBStructure::OperatorsRemoved(const std::vector<std::unique_ptr<TDSOperator>>& removed) {
    OperatorKeysChanged();
    unrecognizedField_->operators_.clear();
    indexes_->UnrecognizedFieldStale = true;
    for (const auto& op : removed)
        listeners_.ForEach([&](TModelListener& listener) { listener.OperatorRemoved(*op); });
    Changed();
}

TDSOperator* TVCustomDBStructure::OperatorByName(std::string_view name) const {
    return indexes_->OperatorsByName.Find(operators_, name == "EqualTo" ? "Equal" : name);
}

int TVCustomDBStructure::OperatorIndexByName(std::string_view name) const {
    return IndexOfOperator(OperatorByName(name));
}

int TVCustomDBStructure::IndexOfOperator(const TDSOperator* op) const {
    for (int i = 0; i < GetOperatCount(); ++i)
        if (operators_[static_cast<std::size_t>(i)].get() == op)
            return i;
    return -1;
}

TDSOperator* TVCustomDBStructure::OperatorByExpr(std::string_view text) const {
    for (const auto& op : operators_)
        if (FindNoCase(op->GetSQLName(), text) != std::string_view::npos)
            return op.get();
    return nullptr;
}

void TVCustomDBStructure::GetOperatorNames(TStringList& names) const {
    names.Clear();
    for (const auto& op : operators_)
        names.Add(op->GetName());
}

TDSField* TVCustomDBStructure::GetUnrecognizedField() const {
    if (indexes_->UnrecognizedFieldStale.load(std::memory_order_acquire)) {
        const TShortLock lock(&indexes_->UnrecognizedFieldStale);
        if (indexes_->UnrecognizedFieldStale.load(std::memory_order_relaxed))
            unrecognizedField_->AddAppliedOperators();
        indexes_->UnrecognizedFieldStale.store(false, std::memory_order_release);
    }
    return unrecognizedField_.get();
}

// --- The default operators.

void TVCustomDBStructure::LoadDefsOpertors() {
    defOperators_.Clear();
    for (const TDefaultOperator& op : DefaultOperators())
        defOperators_.AddPair(op.Name, op.Caption);
}

void TVCustomDBStructure::MergeDefOperators() {
    for (const TDefaultOperator& op : DefaultOperators())
        if (defOperators_.Value(op.Name).empty())
            defOperators_.AddPair(op.Name, op.Caption);
}

namespace {

std::string_view ValFormatOf(const TDefaultOperator& op) {
    return op.Extended && op.Group == xoBetween ? std::string_view(Message(msgAndWord)) : std::string_view();
}

} // namespace

void TVCustomDBStructure::AddDefOperators(bool update) {
    for (const TDefaultOperator& op : DefaultOperators()) {
        if (op.Extended && !exOperators_.Contains(op.Group))
            continue;
        const int index = AddUpdateOperator(update, op.Name, GetDefOperator(op.Name), op.SQL, ValFormatOf(op),
                                            op.AppliedTypes);
        if (op.Extended && op.Group == xoInList)
            GetOperator(index)->ValueKind = vkList;
    }
}

void TVCustomDBStructure::SetExOperators(TExOperators operators) {
    if (operators == exOperators_)
        return;
    exOperators_ = operators;
    ChangeAsOne([this] {
        UpdateExOperators();
        UpdateDefOperators();
    });
}

void TVCustomDBStructure::UpdateExOperators() {
    for (const TDefaultOperator& op : DefaultOperators()) {
        if (!op.Extended)
            continue;
        if (!exOperators_.Contains(op.Group)) {
            DeleteOperatorByName(op.Name);
            continue;
        }
        const int index = AddUpdateOperator(true, op.Name, GetDefOperator(op.Name), op.SQL, ValFormatOf(op),
                                            op.AppliedTypes);
        if (op.Group == xoInList)
            GetOperator(index)->ValueKind = vkList;
    }
    ExOperatorsUpdated();
}

// NotInList and NotBetween are neither refreshed nor deleted here, and nothing of xoStartsWith is deleted:
// UpdateExOperators deletes whole groups.
void TVCustomDBStructure::UpdateDefOperators() {
    for (const TDefaultOperator& op : DefaultOperators()) {
        const bool second = op.Name == "NotInList" || op.Name == "NotBetween";
        if (!op.Extended || (exOperators_.Contains(op.Group) && !second))
            UpdateOperatorCaption(op.Name, GetDefOperator(op.Name));
        else if (!exOperators_.Contains(op.Group) && op.Group != xoStartsWith && !second)
            DeleteOperatorByName(op.Name);
    }
}

void TVCustomDBStructure::UpdateOperatorCaption(std::string_view name, std::string_view caption) {
    if (TDSOperator* const op = OperatorByName(name))
        op->DisplayName = caption;
}

} // namespace lumora
