// The condition tree: brackets, whose rows one boolean link joins, and conditions.
#pragma once

#include "lumora/query/row_types.h"
#include "lumora/query/sql_options.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSCondition;
class TDSField;
class TDSOperator;
class TDSTable;
class TVQuery;
class TSQLParam;
class TSQLTemplate;
class TStringList;
class TDSValue;
enum TFieldType : std::uint8_t;
enum TValueKind : std::uint8_t;
using TDSTableList = std::vector<TDSTable*>;

// Brackets do not nest deeper than this; so no walk over the tree can use up the stack.
inline constexpr int MaxRowLevel = 2000;

class TFilterBracket;

class TFilterRow {
public:
    TFilterRow(const TFilterRow&) = delete;
    TFilterRow& operator=(const TFilterRow&) = delete;
    virtual ~TFilterRow();

    TFilterRowType GetRowType() const { return type_; }
    TVQuery& GetQuery() const { return query_; }
    TFilterBracket* GetParent() const { return parent_; } // none for the root
    int GetIndex() const { return index_; }               // in the parent; 0 for the root

    // The path in the tree: the parent's, the position from 1 and "."; empty for the root.
    std::string GetRowID() const;
    int GetRowLevel() const { return level_; }
    // How many levels of rows stand below this one.
    int GetDepth() const;
    // The line in the panel: rows are numbered in display order over the whole tree, the root is 0.
    int GetRowNum() const;
    void SetRowNum(int number) { rowNum_ = number; }

    // A disabled row is kept and contributes nothing to the SQL.
    bool GetEnabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    bool GetHidden() const { return hidden_; }
    void SetHidden(bool hidden);
    bool IsDestroying() const { return destroying_; }

protected:
    TFilterRow(TFilterRowType type, TVQuery& query) : query_(query), type_(type) {}
    // To be called first by the destructors of descendants.
    void BeginDestruction();

private:
    friend class TFilterBracket;

    TVQuery& query_;
    TFilterBracket* parent_ = nullptr;
    int index_ = 0;
    int level_ = 0;
    int rowNum_ = 0;
    TFilterRowType type_;
    bool enabled_ = true;
    bool hidden_ = false;
    bool destroying_ = false;
};

class TFilterCond;
class TSimpleCond;
class TCustomCond;

class TFilterBracket : public TFilterRow {
public:
    explicit TFilterBracket(TVQuery& query) : TFilterRow(frtBracket, query) {}
    ~TFilterBracket() override;

    TFilterLinkType GetLinkType() const { return linkType_; }
    void SetLinkType(TFilterLinkType type);

    int GetRowCount() const { return static_cast<int>(rows_.size()); }
    TFilterRow* GetRow(int index) const { // EVQueryPanelError for a bad index
        CheckIndex(index);
        return rows_[static_cast<std::size_t>(index)].get();
    }
    int IndexOf(const TFilterRow* row) const { return row && row->parent_ == this ? row->index_ : -1; }

    // Inserts a row before position i (at the end when i is no position). EVQueryPanelError when brackets
    // would nest too deep; the row is then freed and the tree as it was. These return none when whoever was
    // told of the row has removed it.
    TFilterRow* InsertRow(int index, std::unique_ptr<TFilterRow> row);
    TFilterRow* AddRow(std::unique_ptr<TFilterRow> row) { return InsertRow(GetRowCount(), std::move(row)); }
    TFilterBracket* InsertNewBracket(int index);
    TFilterBracket* InsertNewBracketByNum(int number) { return InsertNewBracket(IndexForNewRow(number)); }
    TSimpleCond* InsertSimpleCondByNum(int number);
    TCustomCond* InsertCustomCondByNum(int number, TDSCondition* condition);
    TFilterBracket* AddNewBracket() { return InsertNewBracket(GetRowCount()); }
    TSimpleCond* AddCond();
    TCustomCond* AddCustomCond(TDSCondition* condition);

    // Position of the row of that number; -1 when it is not one of the bracket's own rows.
    int IndexByRowNum(int number) const;
    int IndexForNewRow(int number) const;
    // A bracket that is left empty may go with its last row, so nothing of this bracket may be touched
    // afterwards. EVQueryPanelError for a bad index.
    void DeleteRow(int index);
    // Takes a row out without freeing it.
    std::unique_ptr<TFilterRow> ExtractRow(int index);
    void ClearRows();

    // The row of the subtree that has the identifier; none when there is none.
    TFilterRow* RowByID(std::string_view id);
    // The first condition in display order, and the last row of the subtree (this bracket when it is empty).
    TFilterCond* GetFirstCondition() const;
    TFilterRow* GetLastRow();
    int GetLastRowNum() { return GetLastRow()->GetRowNum(); }

    void BeginUpdate() { ++updating_; }
    void EndUpdate();
    // An enabled bracket whose rows are all disabled disables itself, and the other way round.
    void CheckIfAllDisabled();

private:
    friend class TFilterRow;
    friend class TVQuery;
    friend class TRowMover;

    void CheckIndex(int index) const {
        if (index < 0 || index >= GetRowCount())
            RaiseInvalidIndex(index);
    }
    [[noreturn]] static void RaiseInvalidIndex(int index);
    // Puts a row in, or takes one out with the brackets that are left empty, without telling anyone.
    void PutIn(int index, std::unique_ptr<TFilterRow> row);
    void TakeOut(int index, std::vector<std::unique_ptr<TFilterRow>>& taken);
    void AdjustEnabled();
    void RenumberFrom(int index);
    void SetLevels(TFilterRow& row, int level) const;

    TFilterLinkType linkType_ = fltAll;
    int updating_ = 0;
    std::vector<std::unique_ptr<TFilterRow>> rows_;
};

// A condition with up to two value texts; value k is the first for k = 1 and the second for every other k.
class TFilterCond : public TFilterRow {
public:
    ~TFilterCond() override;

    // What the condition hands to the generator.
    virtual const TSQLTemplate* GetTemplate() const;
    virtual const TDSTableList& GetTables() const;
    virtual int GetValueCount() const;
    virtual TValueKind GetValueKind(int value) const;
    virtual TFieldType GetValueType(int value) const;
    virtual std::string GetValueName(int value) const;
    std::string GetSQLExpr() const;
    // What an error message calls the condition.
    virtual std::string GetCaptionText() const;
    // Keeps the name=value lines that value lists from SQL take their parameters from.
    virtual void UpdateSQLParams(TStringList& params) const;

    const std::string& GetValue(int value) const { return Slot(value).Text; }
    // Does nothing while the value is a parameter. The caption of another value is not kept.
    void SetValue(int value, const std::string& text);
    const std::string& GetCaption(int value) const { return Slot(value).Caption; }
    void SetCaption(int value, const std::string& caption);
    TSQLParam* GetParam(int value) const { return Slot(value).Param; }
    void SetParam(int value, TSQLParam* param) { Slot(value).Param = param; }
    bool GetValueIsParam(int value) const { return GetParam(value) != nullptr; }
    // Makes a parameter for the value, or deletes the one there is.
    void SetValueIsParam(int value, bool isParam);
    void ParamDeleted(const TSQLParam* param);

    const std::string& GetHint() const { return hint_; } // of the first value
    void SetHint(std::string hint) { hint_ = std::move(hint); }
    // The query text of the value, when it is a sub-query.
    const TStringList& GetSubQuery() const;
    void SetSubQuery(const TStringList& lines);
    TSQLOptions GetSubQueryOptions() const { return subQueryOptions_; }
    void SetSubQueryOptions(TSQLOptions options) { subQueryOptions_ = options; }

protected:
    TFilterCond(TFilterRowType type, TVQuery& query);

private:
    struct TSlot {
        std::string Text;
        std::string Caption;
        TSQLParam* Param = nullptr;
    };

    TSlot& Slot(int value) { return slots_[value == 1 ? 0 : 1]; }
    const TSlot& Slot(int value) const { return slots_[value == 1 ? 0 : 1]; }

    TSlot slots_[2];
    std::string hint_;
    std::unique_ptr<TStringList> subQuery_;
    TSQLOptions subQueryOptions_;
};

// A field, an operator and the values.
class TSimpleCond : public TFilterCond {
public:
    explicit TSimpleCond(TVQuery& query) : TFilterCond(frtSimpleCondition, query) {}

    TDSField* GetField() const { return field_; }
    // Takes the field's first operator when the field does not offer the present one.
    void SetField(TDSField* field);
    TDSOperator* GetOperator() const { return operator_; }
    void SetOperator(TDSOperator* op);

    const TSQLTemplate* GetTemplate() const override;
    const TDSTableList& GetTables() const override;
    int GetValueCount() const override;
    TValueKind GetValueKind(int value) const override;
    TFieldType GetValueType(int) const override { return GetExprType(); }
    std::string GetValueName(int value) const override;
    std::string GetCaptionText() const override { return GetValueName(1); }
    void UpdateSQLParams(TStringList& params) const override;
    // The operator's own type of value, or the field's.
    TFieldType GetExprType() const;
    // The data of the host's own value editor; null when the field has another editor.
    const TStringList* GetCustomData() const;

private:
    friend class TVQuery;

    TDSField* field_ = nullptr;
    TDSOperator* operator_ = nullptr;
};

// A predefined condition of the data model.
class TCustomCond : public TFilterCond {
public:
    TCustomCond(TVQuery& query, TDSCondition& condition)
        : TFilterCond(frtCustomCondition, query), condition_(&condition) {}

    // None only while the model is being replaced.
    TDSCondition* GetCondition() const { return condition_; }
    void SetCondition(TDSCondition* condition) { condition_ = condition; }

    const TSQLTemplate* GetTemplate() const override;
    const TDSTableList& GetTables() const override;
    int GetValueCount() const override;
    TValueKind GetValueKind(int value) const override;
    TFieldType GetValueType(int value) const override;
    std::string GetValueName(int value) const override;
    std::string GetCaptionText() const override;

private:
    const TDSValue* ValueSlot(int value) const;

    TDSCondition* condition_;
};

} // namespace lumora
