// The tables of a model and their links, packed for searching.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace lumora {

class TDSPath;
class TDSTable;

// It holds until a table or link comes or goes. Searches may run in many threads at once.
class TJoinGraph {
public:
    // Numbers the tables.
    explicit TJoinGraph(const std::vector<std::unique_ptr<TDSTable>>& tables);

    // Puts the shortest chain from one table to another into the path; among equally short ones the first in
    // the order of links. False, and the path as it was, when there is none.
    bool FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) const;

private:
    class TSearch;

    void NumberComponents();

    const std::vector<std::unique_ptr<TDSTable>>& tables_;
    std::vector<std::uint32_t> firstNeighbour_; // of table i; those of table i end where those of i + 1 begin
    std::vector<std::uint32_t> neighbours_;     // each once, in the order of the table's links
    std::vector<std::uint32_t> component_;
};

} // namespace lumora
