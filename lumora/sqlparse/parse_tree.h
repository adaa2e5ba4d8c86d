// What the parser makes of a SELECT statement. Texts are views of the statement that the result keeps.
#pragma once

#include "lumora/platform/errors.h"
#include "lumora/sqlparse/parse_arena.h"
#include "lumora/sqlparse/parse_list.h"
#include "lumora/sqlparse/sql_words.h"
#include "lumora/support/text_place.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace lumora {

class TSQLBracket;

struct TSQLResultField {
    // Derives the field name: what stands behind the first ".", or all when a "(" stands before that.
    void SetSQLExpr(std::string_view text);

    std::string_view Alias;
    std::string_view FieldName;
    std::string_view SQLExpr;
    int Sorting = 0;   // 0 none, 1 ascending, 2 descending
    int SortOrder = 0; // position in ORDER BY, from 1
    TTextPlace Place;
};

class TSQLResultFieldList {
public:
    explicit TSQLResultFieldList(TParseArena& arena) : items_(arena) {}

    int Count() const { return static_cast<int>(items_.size()); }
    TSQLResultField& GetItem(int index) { return items_[CheckIndex(index, items_.size())]; }
    const TSQLResultField& GetItem(int index) const { return items_[CheckIndex(index, items_.size())]; }
    TSQLResultField& Add() { return items_.push_back({}); }
    void Clear();
    // The first field with that alias or expression, letter case ignored; -1 when there is none.
    int IndexByAlias(std::string_view alias) const;
    int IndexByExpr(std::string_view expression) const;

    bool SelectAll = false;

private:
    TParseList<TSQLResultField> items_;
};

struct TSQLTable {
    // Takes the name as alias too while there is none.
    void SetTableName(std::string_view name);

    std::string_view TableName;
    std::string_view Alias;
    bool HasAlias = false; // of its own, and not the table's name
    TTextPlace Place;
};

using TSQLTableList = TParseList<TSQLTable>;

// A node of the WHERE tree. Nodes are owned by the result.
class TSQLConditionNode {
public:
    bool IsBracket() const { return isBracket_; }
    TSQLBracket* GetParent() const { return parent_; }
    TSQLConditionNode* GetNext() const { return next_; } // in the parent; none for the last
    TTextPlace Place;

protected:
    explicit TSQLConditionNode(bool isBracket) : isBracket_(isBracket) {}

private:
    friend class TSQLBracket;

    TSQLBracket* parent_ = nullptr;
    TSQLConditionNode* next_ = nullptr;
    bool isBracket_;
};

class TSQLBracket : public TSQLConditionNode {
public:
    TSQLBracket() : TSQLConditionNode(true) {}

    void AddNode(TSQLConditionNode* node);
    TSQLConditionNode* GetFirst() const { return first_; }
    int GetCount() const { return count_; }
    // Puts the node of every bracket that holds just one in the bracket's place, all the way down.
    void DeleteEmptyBrackets();

    std::string_view Operator; // "or" or "and", which joins the nodes
    bool Negated = false;      // a strict parser found "not" before the bracket

private:
    TSQLConditionNode* first_ = nullptr;
    TSQLConditionNode* last_ = nullptr;
    int count_ = 0;
};

class TSQLCondition : public TSQLConditionNode {
public:
    TSQLCondition() : TSQLConditionNode(false) {}

    // "left operator value", in "not(...)" when negated.
    std::string GetSQLExpr() const;

    std::string_view Left;
    std::string_view Operator; // empty: a strict parser found a predicate without a comparison
    std::string_view Value;
    bool Negated = false;
    bool SubQuery = false; // the value is one
};

// A join of FROM, as a strict parser records it.
struct TSQLJoin {
    int Table = 0;                    // the joined table's index
    TSQLWord Kind = swInner;          // swInner, swLeft, swRight or swFull
    TSQLBracket* Condition = nullptr; // what stands behind ON
    TTextPlace Place;
};

class TVParserResult {
    TParseArena arena_; // nodes, lists, and texts that do not stand so in the statement; it outlives the rest

public:
    TVParserResult() = default;
    TVParserResult(const TVParserResult&) = delete;
    TVParserResult& operator=(const TVParserResult&) = delete;

    bool Distinct = false;
    bool SelectAll = false;
    TSQLResultFieldList ResultFields{arena_};
    TSQLTableList Tables{arena_};
    TSQLBracket* RootBracket = nullptr; // never none once parsed

    // Recorded by a strict parser only.
    TParseList<TSQLJoin> Joins{arena_};
    struct TGroupItem {
        std::string_view Text;
        TTextPlace Place;
    };
    TParseList<TGroupItem> GroupBy{arena_};
    // A plain parser marks result fields instead.
    struct TSortItem {
        std::string_view Text;
        bool Descending;
        TTextPlace Place;
    };
    TParseList<TSortItem> OrderBy{arena_};

    // The statement that the texts are views of, but for those that do not stand so in it.
    std::string_view GetSource() const { return source_; }
    // A text that lasts as long as the tree, for one that is put in the place of what was read.
    std::string_view KeepText(std::string_view text) { return arena_.Join({text}); }
    TSQLBracket* NewBracket() { return arena_.New<TSQLBracket>(); }

private:
    friend class TVSQLParser;

    void Clear();

    std::string source_;
};

} // namespace lumora
