// Parameters: condition values that the statement leaves open under a name.
#pragma once

#include "lumora/platform/field_types.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TFilterCond;

class TSQLParam {
public:
    // The parameter for a condition's value 1 or 2; takes its type from the condition.
    TSQLParam(TFilterCond& condition, int valueIndex);

    TFilterCond& GetCondition() const { return condition_; }
    int GetValueIndex() const { return valueIndex_; }
    TFieldType GetDataType() const { return dataType_; }
    // The value pattern with every "@v" replaced by the value.
    std::string GetFullValue() const;

    std::string Name;    // stands behind ":" in the statement
    std::string Caption; // shown to users
    std::string Value;
    std::string ValueFormat = "@v"; // the value pattern; refreshed by every build

private:
    TFilterCond& condition_;
    int valueIndex_;
    TFieldType dataType_;
};

// Owns the parameters of a query, in the order in which they were made. A condition whose parameter is
// deleted is told so.
class TSQLParamList {
public:
    TSQLParamList();
    ~TSQLParamList();

    int Count() const;
    TSQLParam* GetItem(int index) const; // EVQueryPanelError for a bad index, as Delete
    TSQLParam* Add(std::unique_ptr<TSQLParam> param);
    // The first parameter of a condition's value, or of a name (letter case ignored); -1 when there is none.
    int IndexByCondition(const TFilterCond* condition, int valueIndex) const;
    int IndexByName(std::string_view name) const;
    int IndexOf(const TSQLParam* param) const;
    void Delete(int index);
    void DeleteByCondition(const TFilterCond* condition);
    void Clear();

private:
    std::vector<std::unique_ptr<TSQLParam>> params_;
};

} // namespace lumora
