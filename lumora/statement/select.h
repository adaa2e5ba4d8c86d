// A SELECT as a small typed tree: what a query becomes before it is text.
//
//     TStatement statement;
//     TPredicate* const all = statement.NewBracket(false, false);
//     all->Members.Add(statement.NewLeaf("a.x > 1"));
//     statement.Select.Where = all;
//
// The query's builder makes it from rows and columns in one pass, TSQLPrinter writes it down. What must
// reason about a statement goes from tree to tree between the two. Nodes live in the statement's arena, their
// texts one behind the other in its buffer; both are gone at Clear and keep their memory for the next
// statement.
#pragma once

#include "lumora/platform/field_types.h"
#include "lumora/statement/arena.h"
#include "lumora/statement/join_kind.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSLink;
class TDSTable;
using TDSTableList = std::vector<TDSTable*>;

// A piece of the statement's text buffer.
struct TTextSpan {
    std::size_t Start = 0;
    std::size_t Length = 0;
};

// Nodes that follow one another.
template <typename T>
struct TNodeList {
    T* First = nullptr;
    T* Last = nullptr;

    bool Empty() const { return !First; }
    void Add(T* node) {
        (First ? Last->Next : First) = node;
        Last = node;
    }
};

// A constant or parameter within a leaf's text.
struct TLeafValue {
    TLeafValue* Next = nullptr;
    TTextSpan Text; // without quotes that stand in the template around it
    TFieldType Type = ftUnknown;
    int Number = 0; // which value of its condition, from 1
    bool IsParam = false;
};

// Of the tree of WHERE or of the conditions on groups: a leaf, or a bracket of members.
struct TPredicate {
    TPredicate* Next = nullptr; // the next member of the same bracket
    TNodeList<TPredicate> Members;
    bool IsBracket = false;
    bool Any = false;     // of a bracket: joined by OR instead of AND
    bool Negated = false; // of a bracket
    // Of a leaf.
    bool Parenthesized = false;
    TTextSpan Text;
    const TDSTableList* Tables = nullptr; // those that it names; the model's or the query's own list
    TNodeList<TLeafValue> Values;
};

struct TSelectColumn {
    TSelectColumn* Next = nullptr;
    TTextSpan Text; // with its alias, as it stands in the select list
};

struct TJoinedTable {
    TJoinedTable* Next = nullptr;
    const TDSTable* Table = nullptr;
    const TDSLink* Link = nullptr; // joins it to a table before it; none for the first
    TJoinKind Kind = jkInner;
};

struct TGroupItem {
    TGroupItem* Next = nullptr;
    TTextSpan Text;
};

struct TSortItem {
    TSortItem* Next = nullptr;
    TTextSpan Text; // with its direction
};

struct TSelect {
    bool Distinct = false;
    TNodeList<TSelectColumn> Columns; // none: "*"
    TNodeList<TJoinedTable> Tables;
    TPredicate* Where = nullptr; // none: no condition
    TNodeList<TGroupItem> GroupBy;
    TPredicate* Having = nullptr; // conditions on groups; nothing makes any yet
    TNodeList<TSortItem> OrderBy;
    int Limit = 0; // the first so many rows; 0: all
};

// Owns a tree.
class TStatement {
public:
    struct TMark {
        TArena::TMark Nodes;
        std::size_t Text = 0;
    };

    TSelect Select;
    std::string Text; // writers append to it
    TArena Nodes;

    std::string_view View(TTextSpan span) const {
        return std::string_view(Text.data() + span.Start, span.Length);
    }
    // From `start` to the end of the text.
    TTextSpan SpanFrom(std::size_t start) const { return {start, Text.size() - start}; }
    TTextSpan Append(std::string_view text) {
        Text.append(text);
        return SpanFrom(Text.size() - text.size());
    }

    TPredicate* NewBracket(bool any, bool negated) {
        TPredicate* const node = Nodes.New<TPredicate>();
        node->IsBracket = true;
        node->Any = any;
        node->Negated = negated;
        return node;
    }
    TPredicate* NewLeaf(std::string_view text) {
        TPredicate* const node = Nodes.New<TPredicate>();
        node->Text = Append(text);
        return node;
    }

    void Clear() {
        Select = {};
        Text.clear();
        Nodes.Clear();
    }
    TMark Mark() const { return {Nodes.Mark(), Text.size()}; }
    // Forgets nodes and text that were made since the mark; nothing in Select may refer to them any longer.
    void Rewind(const TMark& mark) {
        Nodes.Rewind(mark.Nodes);
        Text.resize(mark.Text);
    }
};

} // namespace lumora
