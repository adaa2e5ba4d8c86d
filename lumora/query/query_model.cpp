// What becomes of a query when its model changes. What the model no longer knows is unrecognized.
#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/query_listener.h"
#include "lumora/query/query_result.h"
#include "lumora/query/query_rows.h"

namespace lumora {

// All conditions are right by now; each is told of unless a handler has removed it meanwhile.
void TVQuery::TellChanged(const std::vector<TFilterCond*>& conditions, TConditionChange change) {
    if (conditions.empty())
        return;
    const unsigned version = rowsVersion_;
    for (TFilterCond* const condition : conditions) {
        if (rowsVersion_ != version && !HasRow(condition))
            continue;
        RowChanged(*condition);
        if (state_ == stIdle)
            listener_->ConditionChanged(*condition, change);
    }
    QueryChanged();
}

void TVQuery::FieldRemoved(TDSField& field) {
    TDSField* const unrecognized = model_->GetUnrecognizedField();
    result_->GetResultFields().ReplaceDSField(&field, unrecognized);
    std::vector<TFilterCond*> changed;
    ForEachCondition([&](TFilterCond& condition) {
        if (condition.GetRowType() != frtSimpleCondition)
            return;
        auto& simple = static_cast<TSimpleCond&>(condition);
        if (simple.GetField() != &field)
            return;
        simple.field_ = unrecognized;
        changed.push_back(&simple);
    });
    TellChanged(changed, ccField);
}

void TVQuery::OperatorRemoved(TDSOperator& op) {
    std::vector<TFilterCond*> changed;
    ForEachCondition([&](TFilterCond& condition) {
        if (condition.GetRowType() != frtSimpleCondition)
            return;
        auto& simple = static_cast<TSimpleCond&>(condition);
        if (simple.GetOperator() != &op)
            return;
        simple.operator_ = model_->GetUnrecognizedOperator();
        changed.push_back(&simple);
    });
    TellChanged(changed, ccOperator);
}

void TVQuery::TableRemoved(TDSTable& table) {
    result_->ClearBuild();
    if (mainTable_ == &table)
        mainTable_ = nullptr;
}

// Deletes the conditions of which `refers` says so, as one change.
template <typename TRefers>
void TVQuery::DeleteConditions(TRefers refers) {
    std::vector<TFilterCond*> found;
    ForEachCondition([&](TFilterCond& condition) {
        if (refers(condition))
            found.push_back(&condition);
    });
    if (found.empty())
        return;
    std::vector<std::unique_ptr<TFilterRow>> gone;
    for (TFilterCond* const condition : found) {
        RowDeleting(*condition);
        condition->GetParent()->TakeOut(condition->GetIndex(), gone);
    }
    FreeRows(std::move(gone));
    QueryChanged();
}

void TVQuery::ConditionRemoved(TDSCondition& condition) {
    DeleteConditions([&](const TFilterCond& row) {
        return row.GetRowType() == frtCustomCondition &&
               static_cast<const TCustomCond&>(row).GetCondition() == &condition;
    });
}

// --- A whole model is replaced: the query keeps by ID and name what it refers to.

TVQuery::TFieldTarget TVQuery::TargetOf(const TDSField& field) {
    return {field.GetID(), field.GetFullName()};
}

void TVQuery::ModelReplacing() {
    conditionTargets_.clear();
    resultFieldTargets_.clear();
    ForEachCondition([&](TFilterCond& row) {
        if (row.GetRowType() == frtSimpleCondition) {
            auto& simple = static_cast<TSimpleCond&>(row);
            conditionTargets_.push_back(
                {&row, simple.GetField() ? TargetOf(*simple.GetField()) : TFieldTarget{},
                 simple.GetOperator() ? simple.GetOperator()->GetName() : std::string()});
            simple.field_ = model_->GetUnrecognizedField();
            simple.operator_ = model_->GetUnrecognizedOperator();
        } else {
            auto& custom = static_cast<TCustomCond&>(row);
            conditionTargets_.push_back(
                {&row, {custom.GetCondition() ? custom.GetCondition()->GetID() : 0, {}}, {}});
            custom.SetCondition(nullptr);
        }
    });
    TRFieldList& fields = result_->GetResultFields();
    for (int i = 0; i < fields.Count(); ++i) {
        resultFieldTargets_.emplace_back();
        for (const TDSField* const entry : fields.GetRField(i)->GetFields())
            resultFieldTargets_.back().push_back(TargetOf(*entry));
    }
    fields.ReplaceDSField(nullptr, model_->GetUnrecognizedField());
    result_->ClearBuild();
    mainTable_ = nullptr;
}

// A field that has moved bears its old name under another ID; one that was renamed keeps its ID.
TDSField* TVQuery::FindTarget(const TFieldTarget& target) const {
    TDSField* const field = model_->FieldByID(target.ID);
    if (field && field->GetFullName() == target.FullName)
        return field;
    TDSField* const namesake = model_->FieldByName(fnFullName, target.FullName);
    return namesake ? namesake : field;
}

void TVQuery::ModelReplaced() {
    for (const TConditionTarget& target : conditionTargets_) {
        if (target.Condition->GetRowType() == frtSimpleCondition) {
            auto& simple = static_cast<TSimpleCond&>(*target.Condition);
            TDSField* const field = FindTarget(target.Field);
            TDSOperator* const op = model_->OperatorByName(target.OperatorName);
            simple.field_ = field ? field : model_->GetUnrecognizedField();
            simple.operator_ = op ? op : model_->GetUnrecognizedOperator();
        } else {
            static_cast<TCustomCond&>(*target.Condition).SetCondition(model_->ConditionByID(target.Field.ID));
        }
    }
    TRFieldList& fields = result_->GetResultFields();
    for (std::size_t i = 0; i < resultFieldTargets_.size(); ++i)
        for (std::size_t entry = 0; entry < resultFieldTargets_[i].size(); ++entry)
            if (TDSField* const field = FindTarget(resultFieldTargets_[i][entry]))
                fields.GetRField(static_cast<int>(i))->SetDSField(static_cast<int>(entry), field);
    conditionTargets_.clear();
    resultFieldTargets_.clear();
    ModelKnown();
    listener_->ModelReplaced();
    DeleteConditions([](const TFilterCond& row) {
        return row.GetRowType() == frtCustomCondition && !static_cast<const TCustomCond&>(row).GetCondition();
    });
}

} // namespace lumora
