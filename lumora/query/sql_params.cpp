#include "lumora/query/sql_params.h"

#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

TSQLParam::TSQLParam(TFilterCond& condition, int valueIndex)
    : condition_(condition), valueIndex_(valueIndex), dataType_(condition.GetValueType(valueIndex)) {}

std::string TSQLParam::GetFullValue() const {
    return ReplaceText(ValueFormat, "@v", Value);
}

TSQLParamList::TSQLParamList() = default;

TSQLParamList::~TSQLParamList() = default;

int TSQLParamList::Count() const {
    return static_cast<int>(params_.size());
}

TSQLParam* TSQLParamList::GetItem(int index) const {
    return params_[CheckedIndex(index, params_.size())].get();
}

TSQLParam* TSQLParamList::Add(std::unique_ptr<TSQLParam> param) {
    params_.push_back(std::move(param));
    return params_.back().get();
}

int TSQLParamList::IndexByCondition(const TFilterCond* condition, int valueIndex) const {
    for (int i = 0; i < Count(); ++i)
        if (&GetItem(i)->GetCondition() == condition && GetItem(i)->GetValueIndex() == valueIndex)
            return i;
    return -1;
}

int TSQLParamList::IndexByName(std::string_view name) const {
    for (int i = 0; i < Count(); ++i)
        if (SameText(GetItem(i)->Name, name))
            return i;
    return -1;
}

int TSQLParamList::IndexOf(const TSQLParam* param) const {
    for (int i = 0; i < Count(); ++i)
        if (GetItem(i) == param)
            return i;
    return -1;
}

void TSQLParamList::Delete(int index) {
    TSQLParam* const param = GetItem(index);
    param->GetCondition().ParamDeleted(param);
    params_.erase(params_.begin() + index);
}

void TSQLParamList::DeleteByCondition(const TFilterCond* condition) {
    for (int i = Count() - 1; i >= 0; --i)
        if (&GetItem(i)->GetCondition() == condition)
            Delete(i);
}

void TSQLParamList::Clear() {
    while (Count() > 0)
        Delete(Count() - 1);
}

} // namespace lumora
