#include "lumora/reading/sql_joins.h"

#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query_result.h"
#include "lumora/sqlparse/Vscanner.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

// Two comparisons that differ only in blanks and letter case are one.
std::string KeyOf(const TSQLCondition& condition) {
    std::string key;
    AppendFoldedBlanks(key, condition.Left);
    AppendFoldedBlanks(key, condition.Operator);
    AppendFoldedBlanks(key, condition.Value);
    return key;
}

// The comparisons of a bracket that joins them all by "and"; false when it holds anything else.
bool CollectComparisons(const TSQLBracket& bracket, std::vector<std::string>& keys) {
    if (bracket.Negated || (bracket.Operator == "or" && bracket.GetCount() > 1))
        return false;
    for (const TSQLConditionNode* node = bracket.GetFirst(); node; node = node->GetNext()) {
        if (node->IsBracket()) {
            if (!CollectComparisons(static_cast<const TSQLBracket&>(*node), keys))
                return false;
        } else if (static_cast<const TSQLCondition*>(node)->Negated) {
            return false;
        } else {
            keys.push_back(KeyOf(static_cast<const TSQLCondition&>(*node)));
        }
    }
    return true;
}

// What the generator writes for a link is read by the parser that reads the statement, so both look alike.
std::vector<std::string> ComparisonsOf(const TDSLink& link, TSQLSyntax syntax) {
    std::vector<std::string> keys;
    TVSQLParser parser;
    parser.SetStrict(true);
    parser.SetSQLText("select * from t where " + link.GetSQLExpr(syntax, nqStrict));
    try {
        parser.Parse();
        CollectComparisons(*parser.GetResult().RootBracket, keys);
    } catch (const ESQLParserError&) {
        // A link that no statement can hold.
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

// A name as the parser gives it: without quotes around it, doubled ones inside as one.
std::string NameOf(const TToken& token) {
    const std::string_view name = token.Name();
    return token.Kind == tkQuotedIdentifier ? ReplaceText(name, "\"\"", "\"") : std::string(name);
}

// The same of a name with dots, and whatever stands behind it.
std::string NameIn(const std::string& text) {
    TVScanner scanner(text);
    std::string name = NameOf(scanner.Token());
    for (scanner.Next(); scanner.Token().IsSymbol('.'); scanner.Next())
        (name += '.') += NameOf(scanner.Next());
    return name;
}

// The table that is written under this name. In the model an alias may have quotes of its own.
TDSTable* TableByAlias(const TVCustomDBStructure& model, std::string_view alias) {
    if (TDSTable* const table = model.TableByName(tnAlias, alias))
        return table;
    for (int i = 0; i < model.GetTableCount(); ++i)
        if (const std::string& own = model.GetTable(i)->GetAlias(); own.find('"') != std::string::npos)
            if (SameText(NameIn(own), alias))
                return model.GetTable(i);
    return nullptr;
}

// The model's own name, or what the generator writes for it, in which quotes inside are doubled.
bool IsNameOf(const TDSTable& table, std::string_view name) {
    return SameText(ReplaceText(table.GetName(), "\"", ""), name) ||
           SameText(NameIn(table.GetSQLExpr(nqStrict)), name);
}

TDSTable* PartnerOf(const TDSLink& link, const TDSTable* table) {
    return link.Table1 == table ? link.Table2 : link.Table1;
}

// Which rows of the two tables a join keeps without a partner.
struct TKept {
    bool Table1 = false;
    bool Table2 = false;
    bool operator==(const TKept& other) const { return Table1 == other.Table1 && Table2 == other.Table2; }
};

TKept KeptByLink(const TDSLink& link, TSQLSyntax syntax) {
    if (syntax == ssSQL1)
        return {};
    const bool full = link.LinkType == ltOuterFull && syntax == ssSQL2;
    return {link.LinkType == ltOuterLeft || full, link.LinkType == ltOuterRight || full};
}

TKept KeptByJoin(const TDSLink& link, const TDSTable* joined, TSQLWord kind) {
    const bool joinedIsFirst = link.Table1 == joined;
    const bool keepsJoined = kind == swRight || kind == swFull;
    const bool keepsPartner = kind == swLeft || kind == swFull;
    return joinedIsFirst ? TKept{keepsJoined, keepsPartner} : TKept{keepsPartner, keepsJoined};
}

std::vector<std::string> GroupItems(std::string_view text) {
    std::vector<std::string> items;
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const char c = i < text.size() ? text[i] : ',';
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (c != ',' || (depth > 0 && i < text.size()))
            continue;
        if (std::string item = FoldBlanks(text.substr(start, i - start)); !item.empty())
            items.push_back(std::move(item));
        start = i + 1;
    }
    return items;
}

} // namespace

TSQLJoins::TSQLJoins(TVQuery& query, const TVParserResult& statement)
    : query_(query), model_(*query.GetDbStruct()), statement_(statement), where_(statement.RootBracket) {
    FindTables();
    ReadJoinClauses();
    ReadJoinsInWhere();
}

void TSQLJoins::RefuseJoin(const TJoined& joined) const {
    throw EVQueryPanelError(qpeOtherJoin, {joined.Table->GetAlias()}, joined.Place);
}

void TSQLJoins::FindTables() {
    for (const TSQLTable& parsed : statement_.Tables) {
        TDSTable* const table = TableByAlias(model_, parsed.Alias);
        if (!table || !IsNameOf(*table, parsed.TableName))
            throw EVQueryPanelError(qpeNoTable, {parsed.TableName}, parsed.Place);
        tables_.push_back({table, nullptr, swInner, parsed.Place});
        if (Find(table) != &tables_.back())
            RefuseJoin(tables_.back());
    }
}

const TSQLJoins::TJoined* TSQLJoins::Find(const TDSTable* table) const {
    for (const TJoined& joined : tables_)
        if (joined.Table == table)
            return &joined;
    return nullptr;
}

// --- JOIN clauses.

void TSQLJoins::ReadJoinClauses() {
    for (const TSQLJoin& join : statement_.Joins) {
        TJoined& joined = tables_[static_cast<std::size_t>(join.Table)];
        joined.Kind = join.Kind;
        joined.Place = join.Place;
        std::vector<std::string> keys;
        if (!CollectComparisons(*join.Condition, keys))
            RefuseJoin(joined);
        std::sort(keys.begin(), keys.end());
        for (TDSLink* const link : joined.Table->GetLinks()) {
            const TJoined* const partner = Find(PartnerOf(*link, joined.Table));
            if (!joined.Link && partner && partner < &joined && ComparisonsOf(*link, ssSQL2) == keys)
                joined.Link = link;
        }
        if (!joined.Link)
            RefuseJoin(joined);
    }
}

// --- Joins in WHERE.

// Tables that are listed with commas are joined by comparisons that hold together with all other conditions.
void TSQLJoins::ReadJoinsInWhere() {
    const bool allJoined =
        std::all_of(tables_.begin() + 1, tables_.end(), [](const TJoined& joined) { return joined.Link; });
    if (allJoined)
        return;
    const std::vector<TSQLConditionNode*> nodes = NodesOfWhere();
    std::unordered_set<std::string> comparisons;
    const TSQLBracket& root = *statement_.RootBracket;
    for (TSQLConditionNode* const node : nodes)
        if (root.Operator == "and" && !root.Negated && !node->IsBracket() &&
            !static_cast<TSQLCondition*>(node)->Negated)
            comparisons.insert(KeyOf(*static_cast<TSQLCondition*>(node)));
    const std::unordered_set<std::string> all = comparisons;
    JoinFromFirstTable(comparisons);
    rest_.Operator = root.Operator;
    for (TSQLConditionNode* const node : nodes) {
        const std::string key = node->IsBracket() ? std::string() : KeyOf(*static_cast<TSQLCondition*>(node));
        if (key.empty() || all.count(key) == comparisons.count(key))
            rest_.AddNode(node);
    }
    where_ = &rest_;
    if (rest_.GetCount() == 1 && rest_.GetFirst()->IsBracket())
        where_ = static_cast<const TSQLBracket*>(rest_.GetFirst());
}

// The nodes of WHERE. The comparisons of a link with several pairs may stand in a bracket of their own, which
// is opened.
std::vector<TSQLConditionNode*> TSQLJoins::NodesOfWhere() {
    std::unordered_set<std::string> linkKeys;
    for (const TJoined& joined : tables_)
        for (const TDSLink* const link : joined.Table->GetLinks())
            if (Find(PartnerOf(*link, joined.Table)))
                for (const TSQLSyntax form : {ssOracle, ssSQL1}) {
                    const std::vector<std::string> keys = ComparisonsOf(*link, form);
                    linkKeys.insert(keys.begin(), keys.end());
                }
    std::vector<TSQLConditionNode*> nodes;
    for (TSQLConditionNode* node = statement_.RootBracket->GetFirst(); node; node = node->GetNext()) {
        std::vector<std::string> keys;
        const bool isLink = node->IsBracket() && CollectComparisons(static_cast<TSQLBracket&>(*node), keys) &&
                            std::all_of(keys.begin(), keys.end(),
                                        [&](const std::string& key) { return linkKeys.count(key) > 0; });
        if (!isLink)
            nodes.push_back(node);
        for (TSQLConditionNode* inner = isLink ? static_cast<TSQLBracket*>(node)->GetFirst() : nullptr; inner;
             inner = inner->GetNext())
            nodes.push_back(inner);
    }
    return nodes;
}

// From the first table on, so that each link joins a table to one that is joined already.
void TSQLJoins::JoinFromFirstTable(std::unordered_set<std::string>& comparisons) {
    std::unordered_set<const TDSTable*> reached = {tables_.front().Table};
    for (bool progress = true; progress;) {
        progress = false;
        for (TJoined& joined : tables_) {
            const bool isNew = reached.count(joined.Table) == 0 &&
                               (joined.Link ? reached.count(PartnerOf(*joined.Link, joined.Table)) > 0
                                            : FindLinkInWhere(joined, reached, comparisons));
            if (isNew)
                reached.insert(joined.Table);
            progress = progress || isNew;
        }
    }
    for (const TJoined& joined : tables_)
        if (reached.count(joined.Table) == 0)
            RefuseJoin(joined);
}

// Takes the comparisons of a link between the table and one that is joined already.
bool TSQLJoins::FindLinkInWhere(TJoined& joined, const std::unordered_set<const TDSTable*>& reached,
                                std::unordered_set<std::string>& comparisons) const {
    for (const TSQLSyntax form : {ssOracle, ssSQL1}) {
        for (TDSLink* const link : joined.Table->GetLinks()) {
            const std::vector<std::string> keys = ComparisonsOf(*link, form);
            const bool found = !keys.empty() && reached.count(PartnerOf(*link, joined.Table)) > 0 &&
                               std::all_of(keys.begin(), keys.end(), [&](const std::string& key) {
                                   return comparisons.count(key) > 0;
                               });
            if (!found)
                continue;
            for (const std::string& key : keys)
                comparisons.erase(key);
            joined.Link = link;
            const TKept kept = KeptByLink(*link, form);
            const bool keepsJoined = link->Table1 == joined.Table ? kept.Table1 : kept.Table2;
            const bool keepsPartner = link->Table1 == joined.Table ? kept.Table2 : kept.Table1;
            joined.Kind = keepsJoined ? swRight : keepsPartner ? swLeft : swInner;
            return true;
        }
    }
    return false;
}

// --- The query against the statement.

void TSQLJoins::CheckAgainstQuery() {
    const TJoined* difference = &tables_.front();
    try {
        query_.BuildQuery();
        difference = FirstDifference();
    } catch (const EVQueryPanelError& error) {
        if (error.Code != qpeNoEnoughInfo)
            throw;
    }
    if (difference && !query_.GetMainTable()) {
        // The statement may begin with a table that nothing in it names first.
        query_.SetMainTableName(tables_.front().Table->GetName());
        query_.BuildQuery();
        difference = FirstDifference();
    }
    if (difference)
        RefuseJoin(*difference);
    CheckGroupBy();
}

// Inner joins may stand in any order. Where one keeps rows without a partner, the order of JOIN clauses
// matters; so does the order of tables for "*".
const TSQLJoins::TJoined* TSQLJoins::FirstDifference() const {
    const TSQLSyntax syntax = query_.GetSQLSyntax();
    const TRTableList& made = query_.GetQResult().GetResultTables();
    bool ordered = statement_.SelectAll;
    for (const TJoined& joined : tables_) {
        const int at = made.IndexOf(joined.Table);
        if (at < 0)
            return &joined;
        ordered = ordered || (joined.Kind != swInner && !statement_.Joins.empty() && tables_.size() > 2);
    }
    if (made.Count() != static_cast<int>(tables_.size()))
        return &tables_.back();
    for (std::size_t i = 0; i < tables_.size(); ++i)
        if (ordered && made.GetItem(static_cast<int>(i)).Table != tables_[i].Table)
            return &tables_[i];
    for (int i = 1; i < made.Count(); ++i) {
        const TDSLink* const link = made.GetItem(i).Link;
        const auto same = std::find_if(tables_.begin(), tables_.end(),
                                       [link](const TJoined& joined) { return joined.Link == link; });
        if (same == tables_.end())
            return Find(made.GetItem(i).Table);
        if (!(KeptByJoin(*link, same->Table, same->Kind) == KeptByLink(*link, syntax)))
            return &*same;
    }
    return nullptr;
}

void TSQLJoins::CheckGroupBy() const {
    std::vector<std::string> wanted;
    for (const TVParserResult::TGroupItem& item : statement_.GroupBy)
        for (std::string& part : GroupItems(item.Text))
            wanted.push_back(std::move(part));
    std::vector<std::string> made = GroupItems(query_.GetQResult().GroupBy);
    for (auto* const items : {&wanted, &made}) {
        std::sort(items->begin(), items->end());
        items->erase(std::unique(items->begin(), items->end()), items->end());
    }
    if (wanted != made)
        throw EVQueryPanelError(qpeCantBeKept, {"GROUP BY"},
                                statement_.GroupBy.empty() ? tables_.front().Place
                                                           : statement_.GroupBy.front().Place);
}

} // namespace lumora
