// Result fields: a query's output columns.
#pragma once

#include "lumora/model/sql_template.h"
#include "lumora/query/query.h"
#include "lumora/query/sql_options.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSField;
class TRFieldList;
enum TFieldNameMode : std::uint8_t;
class TSectionIndex;
class TSectionLines;
class TStringList;
using TDSFieldList = std::vector<TDSField*>;

// What a column is where records are grouped.
enum TColumnGrouping : std::uint8_t {
    cgAsNeeded, // its fields are grouped by when another column is a total
    cgKey,      // it is grouped by as it stands, total or none
    cgAny       // not grouped by: it shows any one record of the group
};

// A formula over data model fields, "@1" standing for the first of them. Owned by its list. Its changes tell
// the panel, once each. A bad index raises EVQueryPanelError here and in the list.
class TResultField {
public:
    explicit TResultField(TRFieldList& owner);
    ~TResultField();
    TResultField(const TResultField&) = delete;
    TResultField& operator=(const TResultField&) = delete;

    const TDSFieldList& GetFields() const { return fields_; }
    void AddDSField(TDSField* field);
    void SetDSField(int index, TDSField* field);
    // Takes field `index` out of the formula and out of the list; the placeholders behind it close up.
    void DelDSField(int index);

    const std::string& GetFormula() const { return formula_.GetText(); }
    // Fields that the new formula does not name are dropped.
    void SetFormula(const std::string& formula);
    const std::string& GetCaption() const { return caption_; }
    // Makes the alias anew from the caption.
    void SetCaption(const std::string& caption);
    const std::string& GetAlias() const { return alias_; }
    // Made unique in the list; empty: the column has no alias.
    void SetAlias(const std::string& alias);
    // As it was written, whether it is unique or not.
    void KeepAlias(const std::string& alias) { alias_ = alias; }
    TSortingType GetSorting() const { return sorting_; }
    // The first sorting of a field puts it behind all that are sorted.
    void SetSorting(TSortingType sorting);
    int GetSortOrder() const { return sortOrder_; }
    void SetSortOrder(int order);
    // A hidden column only sorts or groups.
    bool GetHidden() const { return hidden_; }
    void SetHidden(bool hidden);
    TColumnGrouping GetGrouping() const { return grouping_; }
    void SetGrouping(TColumnGrouping grouping);
    // The position from 1 among those that are shown, as GenerateNumbers found it.
    int GetNumber() const { return number_; }
    void SetNumber(int number) { number_ = number; }

    // The formula with the fields' SQL expressions, or with their captions in braces.
    std::string GetSQLExpr() const;
    void AppendSQLExpr(std::string& out) const;
    std::string GetExpression() const;
    // The SQL expression and " as " and the alias, when there is one.
    std::string GetSelectExpr() const;
    void AppendSelectExpr(std::string& out) const;
    std::string GetSQLAlias() const;
    std::string GetOrderName() const;
    // True when the SQL expression holds an aggregate function.
    bool GetAgregate() const;
    void GenerateAlias();
    // "C" and the position in the place of an alias that has characters beyond ASCII; tells nobody.
    void ReplaceForeignAlias();
    std::string GenerateCaption() const;
    // Takes a formula with captions in braces; names that are unknown become the model's placeholder field.
    void ProcessExpression(std::string_view expression);
    // Takes SQL text; it is stored lower-cased (but for string literals when the panel is strict), with the
    // fields that it names.
    void ProcessSQLExpr(std::string_view sql);

    void Assign(const TResultField& source);
    TVQuery* GetQueryPanel() const;
    const TVCustomDBStructure* GetDBStruct() const;
    TRFieldList& GetOwner() const { return owner_; }
    // An automation object of the host, stored and handed on.
    void* GetOleObject() const { return oleObject_; }
    void SetOleObject(void* object) { oleObject_ = object; }

private:
    friend class TRFieldList;

    template <typename TAppendField>
    void FillFormula(std::string& text, TAppendField appendField) const;
    bool TakeWholeWords(TFieldNameMode mode);
    void TakeOutField(std::size_t index);
    void TakeCaption(const std::string& caption);
    void SetUniqueAlias(const std::string& alias);
    void MakeAlias();
    void Changed() const;

    TRFieldList& owner_;
    TDSFieldList fields_;
    TSQLTemplate formula_;
    std::string caption_;
    std::string alias_;
    TSortingType sorting_ = stNoSort;
    int sortOrder_ = 0; // 0: none was given yet
    int number_ = 0;
    bool hidden_ = false;
    TColumnGrouping grouping_ = cgAsNeeded;
    void* oleObject_ = nullptr;
};

// What a text with such columns needs of its reader.
inline constexpr std::string_view NeedHidden = "HiddenColumns";
inline constexpr std::string_view NeedGrouping = "Grouping";

class TRFieldList {
public:
    // The panel may be none; then nobody is told of changes.
    TRFieldList(const TVCustomDBStructure* structure, TVQuery* panel);
    ~TRFieldList();

    int Count() const;
    TResultField* GetRField(int index) const;
    int IndexOf(const TResultField* field) const;
    TResultField* New(int index);
    TResultField* Add(const std::string& formula, const TDSFieldList& fields, const std::string& caption);
    TResultField* Insert(int index, const std::string& formula, const TDSFieldList& fields,
                         const std::string& caption);
    TResultField* InsertByExpression(int index, const std::string& caption, std::string_view expression,
                                     TSortingType sorting, int sortOrder);
    TResultField* AddByExpression(const std::string& caption, std::string_view expression,
                                  TSortingType sorting, int sortOrder);
    TResultField* InsertBySQLExpr(int index, const std::string& caption, std::string_view sql,
                                  TSortingType sorting, int sortOrder);
    TResultField* AddBySQLExpr(const std::string& caption, std::string_view sql, TSortingType sorting,
                               int sortOrder);
    void Delete(int index);
    void Move(int from, int to);
    void Clear();
    // The same without a notice, for whoever tells of the change himself.
    void Forget();
    // Another number than the last time when anything in the list has changed.
    unsigned GetVersion() const { return version_; }

    // Letter case is ignored. A field whose own alias or caption is asked for counts too.
    bool CheckUniqAlias(std::string_view alias) const;
    bool CheckUniqCaption(std::string_view caption) const;
    // The text itself, or the first of text + "1", "2", ... that is unique.
    std::string GetUniqAlias(const std::string& alias) const;
    std::string GetUniqCaption(const std::string& caption) const;
    void GenerateNumbers();
    void RegenerateAliases();
    int GetSortCount() const;
    bool HasHidden() const;
    bool HasGrouping() const; // other than as needed
    int NextSortOrder() const;
    void Assign(const TRFieldList& source);

    // The text form: "[RFields]" and one block for each field. Saving adds to the lines.
    void SaveToStrings(TStringList& lines) const;
    void LoadFromStrings(const TStringList& lines);
    void LoadFromSections(const TSectionIndex& sections);

    // Puts another model field in the place of one, or of all when `field` is none.
    void ReplaceDSField(const TDSField* field, TDSField* by);

    const TVCustomDBStructure* GetDBStruct() const { return structure_; }
    void SetDBStruct(const TVCustomDBStructure* structure) { structure_ = structure; }
    TVQuery* GetQueryPanel() const { return panel_; }
    bool Distinct = false;   // the statement that the fields were read from said so
    bool JustSorting = true; // the fields serve only to sort: the select list is "*"
    bool AutoAliases = true;
    bool QuoteAliases = false;
    bool ASCIIAliases = true;

private:
    friend class TResultField;

    TResultField* CreateRField(int index, const std::string& formula, const TDSFieldList& fields,
                               const std::string& caption);
    TResultField* FinishInsert(TResultField& field, TSortingType sorting, int sortOrder);
    void Changed();
    void LoadField(const TSectionLines& lines);

    const TVCustomDBStructure* structure_;
    TVQuery* panel_;
    std::vector<std::unique_ptr<TResultField>> fields_;
    unsigned version_ = 0;
};

} // namespace lumora
