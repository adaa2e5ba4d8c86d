// The chain of tables that joins two tables.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace lumora {

class TDSTable;
class TVCustomDBStructure;

class TDSPath {
public:
    explicit TDSPath(TVCustomDBStructure* structure) : structure_(structure) {}

    void AddTable(TDSTable* table) { tables_.push_back(table); }
    void DelTable(int index);
    void Assign(const TDSPath& path);
    int GetTableCount() const { return static_cast<int>(tables_.size()); }
    TDSTable* GetTable(int index) const; // EVDBStructError for a bad index
    TDSTable* GetStartPoint() const { return tables_.empty() ? nullptr : tables_.front(); }
    TDSTable* GetEndPoint() const { return tables_.empty() ? nullptr : tables_.back(); }
    bool Contains(const TDSTable* table) const;

private:
    friend class TJoinGraph;

    TVCustomDBStructure* structure_;
    std::vector<TDSTable*> tables_;
};

using TDSPathList = std::vector<std::unique_ptr<TDSPath>>;

// The tables of a model and their links, packed for searching. It holds until a table or link comes or goes.
class TJoinGraph {
public:
    explicit TJoinGraph(const std::vector<std::unique_ptr<TDSTable>>& tables);

    // Puts the shortest chain from one table to another into the path; among equally short ones the first in
    // the order of links. False, and the path as it was, when there is none.
    bool FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path);

private:
    bool Search(std::uint32_t from, std::uint32_t to);
    void NumberComponents();

    const std::vector<std::unique_ptr<TDSTable>>& tables_;
    std::vector<std::uint32_t> firstNeighbour_; // of table i; those of table i end where those of i + 1 begin
    std::vector<std::uint32_t> neighbours_;     // each once, in the order of the table's links
    std::vector<std::uint32_t> component_;
    // Of the search under way.
    std::vector<std::uint32_t> reached_; // the number of the last search that came here
    std::vector<std::uint32_t> cameFrom_;
    std::vector<std::uint32_t> queue_;
    std::uint32_t search_ = 0;
};

} // namespace lumora
