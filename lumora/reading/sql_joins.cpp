#include "lumora/reading/sql_joins.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/query/query_result.h"
#include "lumora/query/shown_tables.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

bool IsConjunction(const TSQLBracket& bracket) {
    return !bracket.Negated && (bracket.Operator != "or" || bracket.GetCount() < 2);
}

std::string_view Mirrored(std::string_view op) {
    if (op.empty() || (op[0] != '<' && op[0] != '>') || op == "<>")
        return op;
    static constexpr std::string_view pairs[][2] = {{"<", ">"}, {"<=", ">="}, {">", "<"}, {">=", "<="}};
    for (const auto& [one, other] : pairs)
        if (op == one)
            return other;
    return op;
}

TJoinKind KindOf(TSQLWord word) {
    switch (word) {
    case swLeft:
        return jkLeft;
    case swRight:
        return jkRight;
    case swFull:
        return jkFull;
    default:
        return jkInner;
    }
}

bool SameSQL(std::string_view a, std::string_view b) {
    return FoldBlanks(a) == FoldBlanks(b);
}

// As the statement will say it: where joins stand in WHERE, not every kind can be.
TJoinKind WrittenKind(TJoinKind kind, TSQLSyntax syntax) {
    const bool isLost = syntax == ssSQL1 || (syntax == ssOracle && kind == jkFull);
    return isLost ? jkInner : kind;
}

} // namespace

TSQLJoins::TSQLJoins(TVQuery& query, TVParserResult& statement, TSQLNames& names)
    : query_(query),
      statement_(statement),
      names_(names),
      ons_(static_cast<std::size_t>(names.GetCount())),
      where_(statement.RootBracket) {
    for (const TSQLJoin& join : statement.Joins)
        ReadOn(join);
    ReadWhere();
    if (!Assign(0)) {
        tries_ = 0;
        for (int use = 0; use < names_.GetCount(); ++use)
            names_.SetTable(use, names_.GetCandidates(use).front());
        FindSteps();
        for (int use = 0; use < names_.GetCount(); ++use)
            if (!Reached(use))
                RefuseJoin(use);
        RefuseJoin(names_.GetCount() - 1);
    }
    DropRepeated();
    MakeWhere();
}

// A second use for which the model has no table of its own is told apart from one that is joined otherwise.
void TSQLJoins::RefuseJoin(int use) const {
    const TSQLTable& parsed = names_.GetParsed(use);
    int others = 0;
    for (int other = 0; other < names_.GetCount(); ++other)
        others += names_.GetTable(other) == names_.GetTable(use) ? 1 : 0;
    if (others > static_cast<int>(names_.GetCandidates(use).size()))
        throw EVQueryPanelError(qpeNoFreeAlias, {parsed.Alias, parsed.TableName}, parsed.Place);
    throw EVQueryPanelError(qpeOtherJoin, {parsed.Alias}, parsed.Place);
}

// --- Comparisons of columns.

bool TSQLJoins::IsPair(const TSQLCondition& condition, TPair& pair) const {
    if (condition.Negated || condition.SubQuery || condition.Operator.empty())
        return false;
    pair.Operator = condition.Operator;
    return names_.FindColumn(condition.Left, condition.Place, pair.Left) &&
           names_.FindColumn(condition.Value, condition.Place, pair.Right) && pair.Left.Use != pair.Right.Use;
}

// Brackets of "and" are opened where that takes nothing from how the others are grouped.
void TSQLJoins::Collect(TSQLConditionNode* node, std::vector<TPair>& pairs,
                        std::vector<TSQLConditionNode*>& others) {
    TPair pair;
    pair.Node = node;
    if (!node->IsBracket()) {
        if (IsPair(static_cast<const TSQLCondition&>(*node), pair))
            pairs.push_back(pair);
        else
            others.push_back(node);
        return;
    }
    const TSQLBracket& bracket = static_cast<const TSQLBracket&>(*node);
    std::vector<TPair> innerPairs;
    std::vector<TSQLConditionNode*> innerOthers;
    for (TSQLConditionNode* inner = IsConjunction(bracket) ? bracket.GetFirst() : nullptr; inner;
         inner = inner->GetNext())
        Collect(inner, innerPairs, innerOthers);
    if (innerPairs.empty()) {
        others.push_back(node);
        return;
    }
    pairs.insert(pairs.end(), innerPairs.begin(), innerPairs.end());
    others.insert(others.end(), innerOthers.begin(), innerOthers.end());
}

void TSQLJoins::ReadOn(const TSQLJoin& join) {
    TOn& on = ons_[static_cast<std::size_t>(join.Table)];
    on.Exists = true;
    on.Kind = join.Kind;
    hasRight_ = hasRight_ || join.Kind == swRight || join.Kind == swFull;
    if (!IsConjunction(*join.Condition))
        on.Others.push_back(join.Condition);
    else
        for (TSQLConditionNode* node = join.Condition->GetFirst(); node; node = node->GetNext())
            Collect(node, on.Pairs, on.Others);
}

void TSQLJoins::ReadWhere() {
    const TSQLBracket& root = *statement_.RootBracket;
    if (names_.GetCount() > 1 && IsConjunction(root))
        for (TSQLConditionNode* node = root.GetFirst(); node; node = node->GetNext())
            Collect(node, wherePairs_, whereOthers_);
}

// --- Tables of the model for the uses.

// Tries the candidates of this use and those behind it until links join them all.
bool TSQLJoins::Assign(int use) {
    if (use == names_.GetCount())
        return ++tries_ < 5000 && FindSteps();
    for (TDSTable* const table : names_.GetCandidates(use)) {
        bool isTaken = false;
        for (int other = 0; other < use; ++other)
            isTaken = isTaken || names_.GetTable(other) == table;
        if (isTaken)
            continue;
        names_.SetTable(use, table);
        if (Assign(use + 1))
            return true;
    }
    return false;
}

bool TSQLJoins::Reached(int use) const {
    return std::any_of(steps_.begin(), steps_.end(), [use](const TStep& step) { return step.Use == use; });
}

// From the first table on, so that each link joins a table to one that is joined already. Inner and left
// joins give the same rows in any such order; others keep the statement's.
bool TSQLJoins::FindSteps() {
    steps_.assign(1, {0, nullptr, jkInner});
    for (TOn& on : ons_)
        for (TPair& pair : on.Pairs)
            pair.Used = false;
    for (TPair& pair : wherePairs_)
        pair.Used = false;
    while (static_cast<int>(steps_.size()) < names_.GetCount())
        if (!JoinNext(hasRight_))
            return false;
    return true;
}

bool TSQLJoins::JoinNext(bool inOrder) {
    for (int use = 1; use < names_.GetCount(); ++use) {
        if (Reached(use))
            continue;
        const TOn& on = ons_[static_cast<std::size_t>(use)];
        if (on.Exists && on.Kind != swInner ? JoinByOwnOn(use) : JoinByAnyPair(use))
            return true;
        if (inOrder)
            return false;
    }
    return false;
}

// An outer join is the link and nothing else.
bool TSQLJoins::JoinByOwnOn(int use) {
    TOn& on = ons_[static_cast<std::size_t>(use)];
    std::vector<TPair*> pairs;
    std::vector<TPair*> used;
    for (TPair& pair : on.Pairs)
        pairs.push_back(&pair);
    TDSLink* const link = FindLink(use, pairs, used);
    if (!link || !on.Others.empty() || used.size() != pairs.size())
        return false;
    for (TPair* const pair : used)
        pair->Used = true;
    steps_.push_back({use, link, KindOf(on.Kind)});
    return true;
}

// What stands behind the ON of inner joins, and in WHERE, holds together. Where a join keeps rows of the
// table that it joins, each has its own ON alone.
bool TSQLJoins::JoinByAnyPair(int use) {
    std::vector<TPair*> pairs;
    std::vector<TPair*> used;
    for (TOn& on : ons_)
        for (TPair& pair : on.Pairs)
            if (on.Kind == swInner && (!hasRight_ || &on == &ons_[static_cast<std::size_t>(use)]))
                pairs.push_back(&pair);
    for (TPair& pair : wherePairs_)
        if (!hasRight_)
            pairs.push_back(&pair);
    TDSLink* const link = FindLink(use, pairs, used);
    if (!link)
        return false;
    TJoinKind kind = jkInner;
    for (const TPair* const pair : used) {
        const bool isLeft = pair->Left.Use == use;
        const TSQLColumn& own = isLeft ? pair->Left : pair->Right;
        const TSQLColumn& partner = isLeft ? pair->Right : pair->Left;
        kind = own.Optional ? jkLeft : partner.Optional ? jkRight : kind;
    }
    // With marks WHERE filters when all are joined, which JOIN clauses can't say of more tables.
    if (kind == jkRight && names_.GetCount() > 2 && query_.GetSQLSyntax() != ssOracle)
        return false;
    for (TPair* const pair : used)
        pair->Used = true;
    steps_.push_back({use, link, kind});
    return true;
}

// A link to a table that is joined already, all of whose columns are compared.
TDSLink* TSQLJoins::FindLink(int use, const std::vector<TPair*>& pairs, std::vector<TPair*>& used) const {
    const TDSTable* const table = names_.GetTable(use);
    for (TDSLink* const link : table->GetLinks())
        for (const TStep& step : steps_) {
            if (link->Neighbour(table) != names_.GetTable(step.Use) || link->Table1 == link->Table2)
                continue;
            const bool isFirst = link->Table1 == table;
            used.clear();
            for (int i = 0; i < link->Fields1.Count() && i < link->Fields2.Count(); ++i) {
                const std::string_view op =
                    i < link->Operators.Count() ? link->Operators[i] : std::string_view("=");
                TPair* const pair =
                    isFirst ? FindPair(use, link->Fields1[i], op, step.Use, link->Fields2[i], pairs)
                            : FindPair(step.Use, link->Fields1[i], op, use, link->Fields2[i], pairs);
                if (pair)
                    used.push_back(pair);
            }
            if (!used.empty() && static_cast<int>(used.size()) == link->Fields1.Count())
                return link;
        }
    return nullptr;
}

TSQLJoins::TPair* TSQLJoins::FindPair(int use, std::string_view column, std::string_view op, int partner,
                                      std::string_view partnerColumn,
                                      const std::vector<TPair*>& pairs) const {
    const auto is = [](const TSQLColumn& found, int wanted, std::string_view name) {
        return found.Use == wanted && SameText(found.Name, name);
    };
    for (TPair* const pair : pairs) {
        if (pair->Used)
            continue;
        if (SameSQL(pair->Operator, op) && is(pair->Left, use, column) &&
            is(pair->Right, partner, partnerColumn))
            return pair;
        if (SameSQL(pair->Operator, Mirrored(op)) && is(pair->Left, partner, partnerColumn) &&
            is(pair->Right, use, column))
            return pair;
    }
    return nullptr;
}

// --- WHERE.

// The same comparison once more says nothing where the join is an inner one.
void TSQLJoins::DropRepeated() {
    for (TPair& pair : wherePairs_)
        pair.Used = pair.Used || Repeats(pair);
    for (TOn& on : ons_)
        for (TPair& pair : on.Pairs)
            pair.Used = pair.Used || (on.Kind == swInner && Repeats(pair));
}

bool TSQLJoins::Repeats(const TPair& pair) const {
    if (pair.Operator != "=" || pair.Left.Optional || pair.Right.Optional)
        return false;
    for (const TStep& step : steps_)
        if (step.Link && step.Kind == jkInner &&
            (IsPairOf(*step.Link, pair.Left, pair.Right) || IsPairOf(*step.Link, pair.Right, pair.Left)))
            return true;
    return false;
}

// Whether the link compares the first column, of its first table, with the second one by "=".
bool TSQLJoins::IsPairOf(const TDSLink& link, const TSQLColumn& first, const TSQLColumn& second) const {
    if (names_.GetTable(first.Use) != link.Table1 || names_.GetTable(second.Use) != link.Table2)
        return false;
    for (int i = 0; i < link.Fields1.Count() && i < link.Fields2.Count(); ++i)
        if (SameText(link.Fields1[i], first.Name) && SameText(link.Fields2[i], second.Name))
            return i < link.Operators.Count() && link.Operators[i] == "=";
    return false;
}

// What the ON of an inner join says besides may stand in WHERE, unless a later join adds rows without it.
std::vector<TSQLConditionNode*> TSQLJoins::RestOfOns() const {
    std::vector<TSQLConditionNode*> rest;
    for (int use = 0; use < names_.GetCount(); ++use) {
        const TOn& on = ons_[static_cast<std::size_t>(use)];
        const std::size_t before = rest.size();
        for (const TPair& pair : on.Pairs)
            if (!pair.Used)
                rest.push_back(pair.Node);
        rest.insert(rest.end(), on.Others.begin(), on.Others.end());
        if (rest.size() > before && hasRight_)
            RefuseJoin(use);
    }
    return rest;
}

std::vector<TSQLConditionNode*> TSQLJoins::RestOfWhere(bool isOpened) const {
    std::vector<TSQLConditionNode*> rest;
    if (!IsConjunction(*statement_.RootBracket)) {
        rest.push_back(statement_.RootBracket);
    } else if (isOpened) {
        for (const TPair& pair : wherePairs_)
            if (!pair.Used)
                rest.push_back(pair.Node);
        rest.insert(rest.end(), whereOthers_.begin(), whereOthers_.end());
    } else {
        for (TSQLConditionNode* node = statement_.RootBracket->GetFirst(); node; node = node->GetNext())
            rest.push_back(node);
    }
    return rest;
}

void TSQLJoins::MakeWhere() {
    const std::vector<TSQLConditionNode*> ofOns = RestOfOns();
    const bool anyUsed =
        std::any_of(wherePairs_.begin(), wherePairs_.end(), [](const TPair& pair) { return pair.Used; });
    if (ofOns.empty() && !anyUsed)
        return;
    TSQLBracket* const root = statement_.NewBracket();
    root->Operator = "and";
    root->Place = statement_.RootBracket->Place;
    for (TSQLConditionNode* const node : RestOfWhere(anyUsed))
        root->AddNode(node);
    for (TSQLConditionNode* const node : ofOns)
        root->AddNode(node);
    where_ = root;
    if (root->GetCount() == 1 && root->GetFirst()->IsBracket())
        where_ = static_cast<const TSQLBracket*>(root->GetFirst());
}

// --- The query against the statement.

void TSQLJoins::MakeQueryAgree(bool exactly) {
    const auto builtAgrees = [this] {
        try {
            query_.BuildQuery();
            return Agrees();
        } catch (const EVQueryPanelError& error) {
            if (error.Code != qpeNoEnoughInfo)
                throw;
        } catch (const EVDBStructError& error) {
            if (error.Code != dseNoPath)
                throw;
        }
        return false;
    };
    if (builtAgrees() && !exactly)
        return;
    query_.SetOwnMainTable(names_.GetTable(0)->GetAlias());
    if (builtAgrees() && !exactly)
        return;
    TShownTableList shown;
    for (const TStep& step : steps_)
        if (step.Link)
            shown.push_back(ShownTable(*names_.GetTable(step.Use), *step.Link, step.Kind));
    query_.SetShownTables(std::move(shown));
    if (!builtAgrees())
        RefuseJoin(names_.GetCount() - 1);
}

// "*" shows columns in the order of tables, and joins that keep rows of the table that they join depend on
// it.
bool TSQLJoins::SameOrder(const TRTableList& made) const {
    for (int i = 0; i < made.Count(); ++i)
        if (made.GetItem(i).Table !=
            names_.GetTable(statement_.SelectAll ? i : steps_[static_cast<std::size_t>(i)].Use))
            return false;
    return true;
}

bool TSQLJoins::Agrees() const {
    const TRTableList& made = query_.GetQResult().GetResultTables();
    if (made.Count() != static_cast<int>(steps_.size()) || made.GetItem(0).Table != names_.GetTable(0))
        return false;
    const TSQLSyntax syntax = query_.GetSQLSyntax();
    bool ordered = statement_.SelectAll || hasRight_;
    for (const TStep& step : steps_) {
        const int at = made.IndexOf(names_.GetTable(step.Use));
        if (at < 0 || made.GetItem(at).Link != step.Link ||
            WrittenKind(made.GetItem(at).Kind, syntax) != step.Kind)
            return false;
        ordered = ordered || step.Kind == jkRight || step.Kind == jkFull;
    }
    return !ordered || SameOrder(made);
}

} // namespace lumora
