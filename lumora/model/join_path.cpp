#include "lumora/model/join_path.h"

#include "lumora/model/indexes.h"
#include "lumora/model/structure.h"
#include "lumora/sqlparse/Vscanner.h"

#include <algorithm>

namespace lumora {

TDSPath::TDSPath(TVCustomDBStructure* structure) : structure_(structure) {}

void TDSPath::AddTable(TDSTable* table) {
    tables_.push_back(table);
}

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

// --- Paths of a model.

const TDSPath& TVCustomDBStructure::GetPath(std::string_view alias1, std::string_view alias2) {
    const TDSTable* const from = TableByName(tnAlias, alias1);
    if (!from)
        throw EVDBStructError(dseNoTable, {alias1});
    const TDSTable* const to = TableByName(tnAlias, alias2);
    if (!to)
        throw EVDBStructError(dseNoTable, {alias2});
    return GetPath(*from, *to);
}

const TDSPath& TVCustomDBStructure::GetPath(const TDSTable& from, const TDSTable& to) {
    FindPath(from, to, path_);
    return path_;
}

void TVCustomDBStructure::FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) const {
    for (const TDSTable* const table : {&from, &to})
        if (&table->GetStructure() != this)
            throw EVDBStructError(dseNoTable, {table->GetAlias()});
    if (!indexes_->JoinGraph(tables_).FindPath(from, to, path))
        throw EVDBStructError(dseNoPath);
}

bool TVCustomDBStructure::CheckPath(const TDSPath& path, const TDSTable* target,
                                    TDSPathList& newPaths) const {
    const TDSTable* const end = path.GetEndPoint();
    if (!end)
        return false;
    for (const TDSLink* const link : end->GetLinks()) {
        TDSTable* const neighbour = link->Neighbour(end);
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
