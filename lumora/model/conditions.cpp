#include "lumora/model/conditions.h"

#include "lumora/model/structure.h"

namespace lumora {

void TDSValue::SetValueObject(std::shared_ptr<TDSValueObject> object) {
    object_ = std::move(object);
}

void TDSValue::Assign(const TDSValue& other) {
    *this = other;
}

TDSCondition::TDSCondition(TVCustomDBStructure& structure) : structure_(structure) {}

TDSCondition::~TDSCondition() = default;

void TDSValue::SetDataType(TFieldType type) {
    if (type == dataType_)
        return;
    dataType_ = type;
    object_.reset();
}

void TDSCondition::SetID(int id) {
    id_ = id;
    structure_.ConditionKeysChanged();
}

void TDSCondition::SetSQLExpr(std::string text) {
    if (text == GetSQLExpr())
        return;
    pattern_ = TSQLPattern(text);
    template_.SetText(std::move(text));
    UpdateTables();
}

void TDSCondition::UpdateTables() {
    tables_.clear();
    structure_.ExcludeTablesBySQLExpr(GetSQLExpr(), tables_, nullptr);
}

void TDSCondition::SetDisplayFormat(std::string text) {
    if (text == displayFormat_)
        return;
    displayFormat_ = std::move(text);
    UpdateValueList();
}

void TDSCondition::UpdateValueList() {
    Values.clear();
    std::size_t start = 0;
    for (std::size_t at; (at = displayFormat_.find('@', start)) != std::string::npos; start = at + 1) {
        Values.emplace_back();
        Values.back().Text = displayFormat_.substr(start, at - start);
    }
}

std::string TDSCondition::GetCaption() const {
    if (Values.empty())
        return displayFormat_;
    std::string caption;
    for (const TDSValue& value : Values) {
        if (&value != &Values.front())
            caption += ' ';
        caption += value.Text;
    }
    return caption;
}

} // namespace lumora
