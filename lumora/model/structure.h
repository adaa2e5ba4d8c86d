// The data model: what end users may query, and the component that holds it.
#pragma once

#include "lumora/metadata/Vdbinfo.h"
#include "lumora/model/conditions.h"
#include "lumora/model/join_path.h"
#include "lumora/model/links.h"
#include "lumora/model/model_listener.h"
#include "lumora/model/operators.h"
#include "lumora/model/sql_formats.h"
#include "lumora/model/tables.h"
#include "lumora/platform/component.h"
#include "lumora/platform/notice_list.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TModelIndexes;
class TVCustomDBStructure;

inline constexpr double CurrentModelVersion = 3.5;
inline constexpr std::string_view UnrecognizedFieldName = "Unrecognized field";
inline constexpr std::string_view UnrecognizedOperatorName = "Unrecognized operator";

// What tables and fields are looked up and listed by. Letter case is ignored, and in SQL expressions of
// fields blanks too.
enum TTableNameMode : std::uint8_t {
    tnName,
    tnAlias,
    tnDisplayName,
    tnCompoundName, // "name - alias"
    tnSQLText       // as FROM names the table
};
enum TFieldNameMode : std::uint8_t {
    fnText, // the column name or the expression
    fnDisplayName,
    fnFullName, // "table.column"
    fnSQLExpr
};

// Everything const may be called in many threads at once, and so may what is const of its tables, fields,
// links, operators and conditions; AddListener and RemoveListener too. Changing any of them, saving, GetPath,
// and filling or emptying a value editor needs to be alone. What a host changes for all models
// (FormatSettings, SetMessage, TSession::SetDefault) it changes before threads start.
class TVCustomDBStructure : public TComponent {
public:
    explicit TVCustomDBStructure(TComponent* owner = nullptr);
    ~TVCustomDBStructure() override;

    std::string_view ClassName() const override { return "TVCustomDBStructure"; }

    // --- Tables.
    int GetTableCount() const;
    TDSTable* GetTable(int index) const; // EVDBStructError for a bad index
    int IndexOfTable(const TDSTable* table) const;
    int AddTable(std::string name, std::string caption);
    // Takes the links that touch it along; fields and conditions lose the table.
    void DelTable(int index);
    // The first match, or none.
    TDSTable* TableByName(TTableNameMode mode, std::string_view text) const;
    void GetTableNames(TTableNameMode mode, TStringList& names) const;
    TDSTable* GetDefaultMainTable() const { return defaultMainTable_; }
    void SetDefaultMainTable(TDSTable* table) { defaultMainTable_ = table; }

    // --- Fields.
    int GetFieldCount() const;
    TDSField* GetField(int index) const; // EVDBStructError for a bad index
    // Needs a metadata provider, which gives a data field's type and size.
    int AddField(TVFieldKind kind, std::string text, std::string caption, TDSTable* table);
    void DelField(int index);
    // The first match, or none.
    TDSField* FieldByName(TFieldNameMode mode, std::string_view text) const;
    TDSField* FieldByID(int id) const;
    // Gives each field the ID that `idOf` tells, above 0, or the next one that is free.
    void RenumberFields(const std::function<int(const TDSField&)>& idOf);
    void GetFieldNames(TFieldNameMode mode, TStringList& names) const;
    // The fields, in order, whose SQL expression or full name may stand in a lower-cased formula as a whole:
    // those that do, and some that don't.
    std::vector<TDSField*> FieldsForFormula(TFieldNameMode mode, bool strict, std::string_view formula) const;
    // Stands for fields that a query names and the model does not know. In no list.
    TDSField* GetUnrecognizedField() const;

    TDSFieldGroupList& GetFieldGroups() { return fieldGroups_; }
    const TDSFieldGroupList& GetFieldGroups() const { return fieldGroups_; }
    const TDSFieldGroup& GetRootGroup() const { return rootGroup_; } // the fields of no group
    bool RootFieldsFirst = false; // ungrouped fields are listed before the groups

    // --- Links.
    int GetLinkCount() const;
    TDSLink* GetLink(int index) const; // EVDBStructError for a bad index
    int AddLinkByRef(std::unique_ptr<TDSLink> link);
    // Adds the link that a line "Orders-Customer:CustNo=CustNo,Region=Region" tells.
    int AddLinkByExpr(std::string_view text);
    void SaveLinksToStrings(TStringList& lines) const;
    void DelLink(int index);
    // The first link between two tables of these names (exact), in either direction; none when there is none.
    TDSLink* FindLink(std::string_view name1, std::string_view name2) const;

    // --- Join paths.
    // The shortest chain between two tables given by alias. The path is the model's own, and the next call
    // overwrites it. EVDBStructError when a table is unknown or no chain joins them; the path then stays.
    const TDSPath& GetPath(std::string_view alias1, std::string_view alias2);
    const TDSPath& GetPath(const TDSTable& from, const TDSTable& to);
    // The same into a path of the caller's.
    void FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) const;
    // One step of a search path by path: true when the path's end has a link to the target; otherwise the
    // path extended by every neighbour that is not on it is appended to `newPaths`.
    bool CheckPath(const TDSPath& path, const TDSTable* target, TDSPathList& newPaths) const;
    // The tables that an expression names by alias before a "." and a name, each once, and those names with
    // their alias ("O.Qty") when `references` is given; both lists are added to.
    void ExcludeTablesBySQLExpr(std::string_view expression, TDSTableList& tables,
                                std::vector<std::string>* references) const;

    // --- Operators.
    int GetOperatCount() const;
    TDSOperator* GetOperator(int index) const; // EVDBStructError for a bad index
    int AddOperator(std::string_view name, std::string_view caption, std::string_view sql,
                    std::string_view valFormat, TAppliedTypes appliedTypes);
    // With `update`, an operator of that name is overwritten in place; its types of value stay.
    int AddUpdateOperator(bool update, std::string_view name, std::string_view caption, std::string_view sql,
                          std::string_view valFormat, TAppliedTypes appliedTypes);
    static void InitOperator(TDSOperator& op, std::string_view name, std::string_view caption,
                             std::string_view sql, std::string_view valFormat, TAppliedTypes appliedTypes);
    void DelOperator(int index);
    void DeleteOperatorByName(std::string_view name);
    void ClearOperators();
    // Letter case ignored; the old name "EqualTo" stands for "Equal". -1 or none when absent.
    int OperatorIndexByName(std::string_view name) const;
    TDSOperator* OperatorByName(std::string_view name) const;
    int IndexOfOperator(const TDSOperator* op) const;
    // The first operator whose template contains the text, letter case ignored.
    TDSOperator* OperatorByExpr(std::string_view text) const;
    void GetOperatorNames(TStringList& names) const;
    // Stands for operators that a query names and the model does not know. In no list.
    TDSOperator* GetUnrecognizedOperator() const;

    // Captions of the default operators, lines "Name=Caption".
    const TStringList& GetDefOperators() const { return defOperators_; }
    void SetDefOperators(const TStringList& lines);
    std::string GetDefOperator(std::string_view name) const { return std::string(defOperators_.Value(name)); }
    void LoadDefsOpertors();
    void MergeDefOperators();
    void AddDefOperators(bool update);
    TExOperators GetExOperators() const { return exOperators_; }
    void SetExOperators(TExOperators operators);
    void UpdateExOperators();
    void UpdateDefOperators();
    void UpdateOperatorCaption(std::string_view name, std::string_view caption);

    // Field types whose values are written in quotes.
    TQuotedTypes GetQuotedTypes() const { return quotedTypes_; }
    void SetQuotedTypes(TQuotedTypes types) { quotedTypes_ = types; }
    TSQLFormats& GetSQLFormats() { return sqlFormats_; }
    const TSQLFormats& GetSQLFormats() const { return sqlFormats_; }
    void SetSQLFormats(const TSQLFormats& formats) { sqlFormats_.Assign(formats); }

    // --- Predefined conditions.
    int GetConditionCount() const;
    TDSCondition* GetCondition(int index) const; // EVDBStructError for a bad index
    TDSCondition* AddCondition(int id, std::string displayFormat, std::string sqlExpr);
    void DelCondition(int index);
    int ConditionIndexByID(int id) const;
    TDSCondition* ConditionByID(int id) const;
    void GetConditionCaptions(TStringList& captions) const;

    // --- The model as a whole.
    // Deletes links, fields, tables, groups and conditions.
    void ClearStructure();
    void ClearTables(); // with their fields and links
    // Runs `change` between the notices that all items go and that new ones are there; a replacement within
    // another gives no notices of its own. What `change` raises is passed on.
    void ReplaceModel(const std::function<void()>& change);
    // True when the model has at most one field.
    bool GetEmpty() const { return GetFieldCount() <= 1; }
    double GetVersion() const { return version_; }
    // Tells OnChange, but not between BeginUpdate and its EndUpdate. Updates nest; their end tells nothing by
    // itself.
    void Changed();
    void BeginUpdate() { ++updates_; }
    void EndUpdate() { updates_ -= updates_ > 0 ? 1 : 0; }
    bool IsUpdating() const { return updates_ > 0; }
    std::function<void(TVCustomDBStructure& sender)> OnChange;
    // Not owned. A listener takes itself off before it goes.
    void AddListener(TModelListener& listener) const;
    void RemoveListener(TModelListener& listener) const;

    // --- Text.
    void SaveToStrings(TStringList& lines);
    // Replaces the whole model. When the text is refused, the model is as it was.
    void LoadFromStrings(const TStringList& lines);
    void SaveToFile(const std::string& fileName);
    void LoadFromFile(const std::string& fileName);
    std::string GetStructString();
    void SetStructString(std::string_view text);

    // --- Metadata.
    TVDBInfo* GetDatabaseInfo() const { return databaseInfo_; }
    void SetDatabaseInfo(TVDBInfo* provider);
    // Hands the database-specific lines to the provider.
    void UpdateDatabaseInfo();
    // The provider; EVDBStructError when there is none.
    TVDBInfo& CheckDatabaseInfo() const;
    // Fills the model from the provider: its tables, its links, the fields of each table.
    void RetriveDataModelInfo();
    const TStringList& GetDBSpecInfo() const { return dbSpecInfo_; }

    // Opens the structure editor, which a design environment provides; nothing happens without one.
    void EditStructure();
    std::function<void(TVCustomDBStructure& structure)> OnEditStructure;

    // Whether RetriveDataModelInfo takes the tables' fields too.
    bool GetAutoAddFields() const { return autoAddFields_; }
    void SetAutoAddFields(bool on) { autoAddFields_ = on; }

    // Whether the model is kept in the form.
    bool GetStoreStruct() const { return storeStruct_; }
    void SetStoreStruct(bool on) { storeStruct_ = on; }

protected:
    void AssignTo(TPersistent& dest) const override;
    void Notification(TComponent* component, TOperation operation) override;
    void Loaded() override;
    void DefineProperties(TFiler& filer) override;

    // Runs a change of several steps, which is told once.
    void ChangeAsOne(const std::function<void()>& change);
    // The extended operators have their own templates again.
    virtual void ExOperatorsUpdated() {}
    // A field for a column, in the root group and with the operators of its type, without telling of it.
    TDSField& AddDataField(int id, const TDBFieldInfo& info, TDSTable& table);
    static std::string DefaultCaptionLines(); // the default of the property DefOperators

    TStringList storedStruct_; // the model text of a form, until everything is loaded

private:
    friend class TDSCondition;
    friend class TDSField;
    friend class TDSOperator;
    friend class TDSTable;
    friend class TModelReader;

    // Items tell of changes that look-ups must know.
    void TableKeysChanged();
    void FieldKeysChanged();
    void OperatorKeysChanged();
    void OperatorsRemoved(const std::vector<std::unique_ptr<TDSOperator>>& removed);
    void ConditionKeysChanged();
    void LinksChanged();

    void WriteText(TStringList& lines) const;
    TDSField* AppendField(int id, TVFieldKind kind);
    int NewFieldID();
    void FindLargestFieldID();
    void RemoveFromGroup(TDSField& field);
    void RemoveLink(std::size_t index);
    void ClearTableItems();
    void ClearItems();
    void AnnounceReplacing();
    void AnnounceReplaced();

    std::vector<std::unique_ptr<TDSTable>> tables_;
    std::vector<std::unique_ptr<TDSField>> fields_;
    std::vector<std::unique_ptr<TDSLink>> links_;
    std::vector<std::unique_ptr<TDSOperator>> operators_;
    std::vector<std::unique_ptr<TDSCondition>> conditions_;
    int largestFieldID_ = 0;
    int freeFieldID_ = 1; // where the search for a free ID goes on, once the largest has been used
    TDSFieldGroupList fieldGroups_;
    TDSFieldGroup rootGroup_;
    std::unique_ptr<TDSField> unrecognizedField_;
    std::unique_ptr<TDSOperator> unrecognizedOperator_;
    TDSTable* defaultMainTable_ = nullptr;

    TStringList defOperators_;
    TExOperators exOperators_ = AllExOperators;
    TQuotedTypes quotedTypes_ = DefaultQuotedTypes;
    TSQLFormats sqlFormats_;

    TVDBInfo* databaseInfo_ = nullptr;
    TStringList dbSpecInfo_;
    bool autoAddFields_ = true;
    double version_ = CurrentModelVersion;
    int updates_ = 0;
    bool storeStruct_ = true;
    int replacing_ = 0; // replacements that are going on, one within another
    mutable TNoticeList<TModelListener> listeners_;

    TDSPath path_;
    std::unique_ptr<TModelIndexes> indexes_;
};

// The model as it is placed on forms.
class TVDBStructure : public TVCustomDBStructure {
public:
    explicit TVDBStructure(TComponent* owner = nullptr);
    ~TVDBStructure() override;

    std::string_view ClassName() const override { return "TVDBStructure"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    const std::string& GetHelpFileName() const { return helpFileName_; }
    void SetHelpFileName(const std::string& name) { helpFileName_ = name; }
    int GetSEHelpContext() const { return seHelpContext_; }
    void SetSEHelpContext(int context) { seHelpContext_ = context; }
    const std::string& GetInitialSEPath() const { return initialSEPath_; }
    void SetInitialSEPath(const std::string& path) { initialSEPath_ = path; }

    std::function<void(TVDBStructure& sender)> OnSEHelpClick;

private:
    std::string helpFileName_;
    int seHelpContext_ = 0;
    std::string initialSEPath_;
};

} // namespace lumora
