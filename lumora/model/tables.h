// Tables, their fields, and the groups that fields are shown in.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/model/date_storage.h"
#include "lumora/model/operators.h"
#include "lumora/model/sql_syntax.h"
#include "lumora/model/value_editors.h"
#include "lumora/platform/field_types.h"
#include "lumora/platform/rect.h"
#include "lumora/platform/string_list.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSField;
class TDSLink;
class TDSTable;
class TVCustomDBStructure;

using TDSTableList = std::vector<TDSTable*>;
using TDSFieldList = std::vector<TDSField*>;

// Owned by its model.
class TDSTable {
public:
    TDSTable(TVCustomDBStructure& structure, std::string name, std::string caption);
    TDSTable(const TDSTable&) = delete;
    TDSTable& operator=(const TDSTable&) = delete;
    ~TDSTable();

    const std::string& GetName() const { return name_; } // in the database
    void SetName(std::string name);
    const std::string& GetDisplayName() const { return displayName_; }
    void SetDisplayName(std::string caption);
    const std::string& GetAlias() const { return alias_; }
    void SetAlias(std::string alias); // blanks become "_"
    const std::string& GetHints() const { return hints_; }
    void SetHints(std::string hints); // written after " WITH "
    bool GetQuoted() const { return quoted_; }
    void SetQuoted(bool quoted);
    TVCustomDBStructure& GetStructure() const { return structure_; }

    // As FROM names the table: the name, the alias when it differs, the hints.
    std::string GetSQLExpr(TNameQuoting quoting = nqPlain) const;
    void AppendSQLExpr(std::string& out, TNameQuoting quoting) const;
    // The alias as columns name it.
    void AppendAlias(std::string& out, TNameQuoting quoting) const;
    std::string GetCompoundName() const;

    // The links that touch the table, in the order in which they came.
    const std::vector<TDSLink*>& GetLinks() const { return links_; }
    // The first link that joins the given table, or one of that alias (exact); null when there is none.
    TDSLink* LinkByTable(const TDSTable* table) const;
    TDSLink* LinkByTableAlias(std::string_view alias) const;

    // The rectangle in the structure designer; as text "left,top,right,bottom".
    TRect DesignRect;
    std::string GetDesignPositions() const;
    void SetDesignPositions(std::string_view text);

private:
    friend class TVCustomDBStructure;
    friend class TJoinGraph;

    TVCustomDBStructure& structure_;
    std::string name_;
    std::string displayName_;
    std::string alias_;
    std::string hints_;
    bool quoted_ = false;
    int graphIndex_ = -1;
    std::vector<TDSLink*> links_;
};

class TDSFieldGroup {
public:
    std::string GroupName;
    TDSFieldList Fields;
};

// Owned by its model.
class TDSField {
public:
    TDSField(TVCustomDBStructure& structure, int id, TVFieldKind kind);
    TDSField(const TDSField&) = delete;
    TDSField& operator=(const TDSField&) = delete;
    ~TDSField();

    int GetID() const { return id_; }
    TVFieldKind GetKind() const { return kind_; }
    // The column name or the SQL expression.
    const std::string& GetFieldText() const { return text_; }
    // EVDBStructError on a virtual field.
    void SetFieldName(std::string name);
    // EVDBStructError on a data field. Finds the tables and column references of the expression.
    void SetSQLExpr(std::string expression);
    const std::string& GetDisplayName() const { return displayName_; }
    void SetDisplayName(std::string caption);

    const TDSTableList& GetTables() const { return tables_; }
    TDSTable* GetTable() const { return tables_.empty() ? nullptr : tables_.front(); }
    void SetTable(TDSTable* table);
    // Of a virtual field: the columns that its expression names, "alias.column".
    const std::vector<std::string>& GetReferences() const { return references_; }

    TDSFieldGroup* GetGroup() const { return group_; } // none: the model's root group holds the field
    void SetGroup(TDSFieldGroup* group);

    bool GetQuoted() const { return quoted_; }
    void SetQuoted(bool quoted);

    std::string GetSQLExpr(TNameQuoting quoting = nqPlain) const;
    void AppendSQLExpr(std::string& out, TNameQuoting quoting) const;
    std::string GetFullName() const;
    void AppendFullName(std::string& out) const;
    std::string GetCompoundName() const;
    std::string GetGroupByFields(TNameQuoting quoting = nqPlain) const;

    // The operators offered for the field, in order.
    const std::vector<TDSOperator*>& GetOperators() const { return operators_; }
    int GetOperatCount() const { return static_cast<int>(operators_.size()); }
    TDSOperator* GetOperator(int index) const; // EVDBStructError for a bad index
    void AddAppliedOperators();                // exactly those that apply to the field's type
    void AddOperator(TDSOperator* op);
    void AddOperatorByName(std::string_view name); // EVDBStructError for an unknown name
    void DelOperator(int index);
    void RemoveOperator(TDSOperator* op);
    void MoveOperat(int from, int to);
    // The value as SQL text: quoted when the model quotes the field's type.
    std::string ValueAsString(std::string_view value) const;

    TDSEditType GetEditType() const { return editType_; }
    // Another type frees the editor and makes one of the new type.
    void SetEditType(TDSEditType type);
    TDSValueEditor* GetValueEditor() const;
    // The edit type becomes etList with this editor in place of a plain one.
    void SetListEditor(std::unique_ptr<TDSListEditor> editor);

    TFieldType FieldType = ftString;
    std::uint8_t UIC = 0; // kept for the user interface, as UIR
    bool UIR = true;
    int FieldSize = 0;
    TDateStorage Storage = dsAsType; // of days and moments; a strict query compares by it

private:
    friend class TVCustomDBStructure;
    friend class TModelReader;

    TVCustomDBStructure& structure_;
    int id_;
    TVFieldKind kind_;
    TDSEditType editType_ = etAuto;
    bool quoted_ = false;
    std::string text_;
    std::string displayName_;
    TDSFieldGroup* group_ = nullptr;
    TDSTableList tables_;
    std::vector<std::string> references_;
    std::vector<TDSOperator*> operators_;
    std::unique_ptr<TDSValueEditor> editor_;
};

// The named groups of a model.
class TDSFieldGroupList {
public:
    TDSFieldGroupList();
    ~TDSFieldGroupList();

    int Count() const;
    TDSFieldGroup* GetGroup(int index) const; // EVDBStructError for a bad index
    TDSFieldGroup* Add(std::string name = {});
    // Puts the field into the group of that name, which is made when there is none.
    TDSFieldGroup* AddGroup(std::string_view name, TDSField* field);
    TDSFieldGroup* FindByName(std::string_view name) const; // letter case ignored
    // The group that holds the field, and the field's index in it; null and -1 when none does.
    TDSFieldGroup* FindByField(const TDSField* field, int& index) const;
    void GetGroupNames(TStringList& names) const;
    // Frees the group; its fields go to the root group.
    void Delete(int index);
    void Clear();

private:
    std::vector<std::unique_ptr<TDSFieldGroup>> groups_;
};

} // namespace lumora
