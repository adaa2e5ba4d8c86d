// Predefined conditions: named SQL predicates with a display format in which "@" marks the places of values.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/model/sql_pattern.h"
#include "lumora/model/sql_template.h"
#include "lumora/platform/field_types.h"

#include <memory>
#include <string>
#include <vector>

namespace lumora {

class TDSTable;
class TVCustomDBStructure;
using TDSTableList = std::vector<TDSTable*>;

// What a value slot holds for whoever edits it.
class TDSValueObject {
public:
    virtual ~TDSValueObject() = default;
};

// One value slot.
class TDSValue {
public:
    TFieldType GetDataType() const { return dataType_; }
    // Another type frees the value object.
    void SetDataType(TFieldType type);
    TDSValueObject* GetValueObject() const { return object_.get(); }
    void SetValueObject(std::shared_ptr<TDSValueObject> object);
    // Copies type, kind, text and the reference to the value object.
    void Assign(const TDSValue& other);

    TValueKind ValueKind = vkScalar;
    std::string Text; // the piece of the display format before the value

private:
    TFieldType dataType_ = ftString;
    std::shared_ptr<TDSValueObject> object_;
};

using TDSValueList = std::vector<TDSValue>;

class TDSCondition {
public:
    explicit TDSCondition(TVCustomDBStructure& structure);
    ~TDSCondition();

    int GetID() const { return id_; }
    void SetID(int id);
    const std::string& GetSQLExpr() const { return template_.GetText(); }
    void SetSQLExpr(std::string text);
    const TSQLTemplate& GetTemplate() const { return template_; }
    // The predicate as a pattern for conditions that are read back.
    const TSQLPattern& GetPattern() const { return pattern_; }
    const std::string& GetDisplayFormat() const { return displayFormat_; }
    void SetDisplayFormat(std::string text);
    // Makes the value slots anew from the display format.
    void UpdateValueList();
    // The display format, or the texts before the values joined with blanks.
    std::string GetCaption() const;
    // The tables that the predicate names by alias.
    const TDSTableList& GetTables() const { return tables_; }
    // Finds the tables anew, after the model's tables have changed.
    void UpdateTables();

    TDSValueList Values;

private:
    TVCustomDBStructure& structure_;
    int id_ = 0;
    TSQLTemplate template_;
    TSQLPattern pattern_;
    std::string displayFormat_;
    TDSTableList tables_;
};

} // namespace lumora
