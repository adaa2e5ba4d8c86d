#include "lumora/model/join_graph.h"

#include "lumora/model/structure.h"

#include <algorithm>

namespace lumora {

TJoinGraph::TJoinGraph(const std::vector<std::unique_ptr<TDSTable>>& tables) : tables_(tables) {
    const std::size_t count = tables.size();
    for (std::size_t i = 0; i < count; ++i)
        tables[i]->graphIndex_ = static_cast<int>(i);
    std::vector<std::size_t> seenBy(count, count); // the last table that has this one as a neighbour already
    firstNeighbour_.reserve(count + 1);
    for (std::size_t i = 0; i < count; ++i) {
        firstNeighbour_.push_back(static_cast<std::uint32_t>(neighbours_.size()));
        for (const TDSLink* const link : tables[i]->GetLinks()) {
            const auto neighbour = static_cast<std::size_t>(link->Neighbour(tables[i].get())->graphIndex_);
            if (seenBy[neighbour] == i)
                continue;
            seenBy[neighbour] = i;
            neighbours_.push_back(static_cast<std::uint32_t>(neighbour));
        }
    }
    firstNeighbour_.push_back(static_cast<std::uint32_t>(neighbours_.size()));
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

// What a thread's searches write, kept for its memory.
class TJoinGraph::TSearch {
public:
    // The one of this thread, made ready for a search among so many tables.
    static TSearch& Begin(std::size_t tables) {
        thread_local TSearch search;
        if (search.reached_.size() < tables) {
            search.reached_.resize(tables, 0);
            search.cameFrom_.resize(tables);
            search.queue_.resize(tables);
        }
        if (++search.number_ == 0) { // the numbers have been used up
            std::fill(search.reached_.begin(), search.reached_.end(), 0);
            search.number_ = 1;
        }
        return search;
    }

    // Breadth first, each table reached once. A table is reached first on the chain that the search path by
    // path would make first: chains of one length are made in the order of their links, and every part of a
    // shortest chain is one. The table before the last of the chain; none without a chain.
    std::uint32_t Run(const TJoinGraph& graph, std::uint32_t from, std::uint32_t to) {
        reached_[from] = number_;
        queue_[0] = from;
        std::uint32_t end = 1;
        for (std::uint32_t at = 0; at < end; ++at) {
            const std::uint32_t table = queue_[at];
            for (std::uint32_t i = graph.firstNeighbour_[table]; i < graph.firstNeighbour_[table + 1]; ++i) {
                const std::uint32_t neighbour = graph.neighbours_[i];
                if (neighbour == to) // before the test below: the search may lead back to its start
                    return table;
                if (reached_[neighbour] == number_)
                    continue;
                reached_[neighbour] = number_;
                cameFrom_[neighbour] = table;
                queue_[end++] = neighbour;
            }
        }
        return None;
    }
    std::uint32_t CameFrom(std::uint32_t table) const { return cameFrom_[table]; }

    static constexpr std::uint32_t None = ~0u;

private:
    std::vector<std::uint32_t> reached_; // the number of the last search that came here
    std::vector<std::uint32_t> cameFrom_;
    std::vector<std::uint32_t> queue_;
    std::uint32_t number_ = 0;
};

bool TJoinGraph::FindPath(const TDSTable& from, const TDSTable& to, TDSPath& path) const {
    const auto start = static_cast<std::uint32_t>(from.graphIndex_);
    const auto target = static_cast<std::uint32_t>(to.graphIndex_);
    if (component_[start] != component_[target])
        return false;
    TSearch& search = TSearch::Begin(tables_.size());
    const std::uint32_t last = search.Run(*this, start, target);
    if (last == TSearch::None)
        return false;
    std::vector<TDSTable*>& tables = path.tables_;
    tables.clear();
    tables.push_back(tables_[target].get());
    for (std::uint32_t table = last; table != start; table = search.CameFrom(table))
        tables.push_back(tables_[table].get());
    tables.push_back(tables_[start].get());
    std::reverse(tables.begin(), tables.end());
    return true;
}

} // namespace lumora
