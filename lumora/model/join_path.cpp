#include "lumora/model/join_path.h"

#include "lumora/model/structure.h"
#include "lumora/sqlparse/Vscanner.h"

#include <algorithm>

namespace lumora {

void TDSPath::DelTable(int index) {
    GetTable(index);
    tables_.erase(tables_.begin() + index);
}

void TDSPath::Assign(const TDSPath& path) {
    structure_ = path.structure_;
    tables_ = path.tables_;
}

TDSTable* TDSPath::GetTable(int index) const {
    if (index < 0 || index >= GetTableCount())
        throw EVDBStructError(dseInvalidTableIndex, {std::to_string(index)});
    return tables_[static_cast<std::size_t>(index)];
}

bool TDSPath::Contains(const TDSTable* table) const {
    return std::find(tables_.begin(), tables_.end(), table) != tables_.end();
}

namespace {

TDSTable* Neighbour(const TDSLink& link, const TDSTable* table) {
    return link.Table1 == table ? link.Table2 : link.Table1;
}

} // namespace

TJoinGraph::TJoinGraph(const std::vector<std::unique_ptr<TDSTable>>& tables) : tables_(tables) {
    const std::size_t count = tables.size();
    for (std::size_t i = 0; i < count; ++i)
        tables[i]->graphIndex_ = static_cast<int>(i);
    std::vector<std::size_t> seenBy(count, count); // the last table that has this one as a neighbour already
    firstNeighbour_.reserve(count + 1);
    for (std::size_t i = 0; i < count; ++i) {
        firstNeighbour_.push_back(static_cast<std::uint32_t>(neighbours_.size()));
        for (const TDSLink* const link : tables[i]->GetLinks()) {
            const auto neighbour = static_cast<std::size_t>(Neighbour(*link, tables[i].get())->graphIndex_);
            if (seenBy[neighbour] == i)
                continue;
            seenBy[neighbour] = i;
            neighbours_.push_back(static_cast<std::uint32_t>(neighbour));
        }
    }
    firstNeighbour_.push_back(static_cast<std::uint32_t>(neighbours_.size()));
    reached_.assign(count, 0);
    cameFrom_.resize(count);
    queue_.resize(count);
    NumberComponents();
}

// Tables of different components are joined by no chain; that is known without a search.
void TJoinGraph::NumberComponents() {
    constexpr std::uint32_t none = ~0u;
    component_.assign(tables_.size(), none);
    std::vector<std::uint32_t> open;
    for (std::uint32_t start = 0; start < tables_.size(); ++start) {
        if (component_[start] != none)
            continue;
        component_[start] = start;
        open.push_back(start);
        while (!open.empty()) {
            const std::uint32_t table = open.back();
            open.pop_back();
            for (std::uint32_t i = firstNeighbour_[table]; i < firstNeighbour_[table + 1]; ++i)
                if (component_[neighbours_[i]] == none) {
                    component_[neighbours_[i]] = start;
                    open.push_back(neighbours_[i]);
                }
        }
    }
}

// Breadth first, each table reached once. A table is reached first on the chain that the search path by path
// would make first: chains of one length are made in the order of their links, and every part of a shortest
// chain is one.
bool TJoinGraph::Search(std::uint32_t from, std::uint32_t to) {
    if (component_[from] != component_[to])
        return false;
    ++search_;
    if (search_ == 0) { // the numbers have been used up
        std::fill(reached_.begin(), reached_.end(), 0);
        search_ = 1;
    }
    reached_[from] = search_;
    queue_[0] = from;
    std::uint32_t end = 1;
    for (std::uint32_t at = 0; at < end; ++at) {
        const std::uint32_t table = queue_[at];
        for (std::uint32_t i = firstNeighbour_[table]; i < firstNeighbour_[table + 1]; ++i) {
            const std::uint32_t neighbour = neighbours_[i];
            if (neighbour == to) { // before the test below: the search may lead back to its start
                queue_[0] = table;
                return true;
            }
            if (reached_[neighbour] == search_)
                continue;
            reached_[neighbour] = search_;
            cameFrom_[neighbour] = table;
            queue_[end++] = neighbour;
        }
    }
    return false;
}

bool TJoinGraph::FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) {
    const auto start = static_cast<std::uint32_t>(from.graphIndex_);
    if (!Search(start, static_cast<std::uint32_t>(to.graphIndex_)))
        return false;
    std::vector<TDSTable*>& tables = path.tables_;
    tables.clear();
    tables.push_back(tables_[static_cast<std::size_t>(to.graphIndex_)].get());
    for (std::uint32_t table = queue_[0]; table != start; table = cameFrom_[table])
        tables.push_back(tables_[table].get());
    tables.push_back(tables_[start].get());
    std::reverse(tables.begin(), tables.end());
    return true;
}

// --- Paths of a model.

const TDSPath& TVCustomDBStructure::GetPath(std::string_view alias1, std::string_view alias2) const {
    const TDSTable* const from = TableByName(tnAlias, alias1);
    if (!from)
        throw EVDBStructError(dseNoTable, {alias1});
    const TDSTable* const to = TableByName(tnAlias, alias2);
    if (!to)
        throw EVDBStructError(dseNoTable, {alias2});
    return GetPath(*from, *to);
}

const TDSPath& TVCustomDBStructure::GetPath(const TDSTable& from, const TDSTable& to) const {
    if (!graph_)
        graph_ = std::make_unique<TJoinGraph>(tables_);
    if (!graph_->FindPath(from, to, path_))
        throw EVDBStructError(dseNoPath);
    return path_;
}

bool TVCustomDBStructure::CheckPath(const TDSPath& path, const TDSTable* target,
                                    TDSPathList& newPaths) const {
    const TDSTable* const end = path.GetEndPoint();
    if (!end)
        return false;
    for (const TDSLink* const link : end->GetLinks()) {
        TDSTable* const neighbour = Neighbour(*link, end);
        if (neighbour == target)
            return true;
        if (path.Contains(neighbour))
            continue;
        newPaths.push_back(std::make_unique<TDSPath>(nullptr));
        newPaths.back()->Assign(path);
        newPaths.back()->AddTable(neighbour);
    }
    return false;
}

void TVCustomDBStructure::ExcludeTablesBySQLExpr(std::string_view expression, TDSTableList& tables,
                                                 std::vector<std::string>* references) const {
    TVScanner scanner(expression);
    while (!scanner.AtEnd()) {
        const TToken alias = scanner.Token();
        scanner.Next();
        if (!alias.IsName() || !scanner.Token().IsSymbol('.'))
            continue;
        const TToken field = scanner.Next();
        TDSTable* const table = field.IsName() ? TableByName(tnAlias, alias.Name()) : nullptr;
        if (!table)
            continue;
        if (std::find(tables.begin(), tables.end(), table) == tables.end())
            tables.push_back(table);
        if (references)
            references->push_back(std::string(alias.Text) + "." + std::string(field.Text));
    }
}

} // namespace lumora
