// The shortest chain of links between two tables of a large model.
#include "bench_model.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace lumora::bench {
namespace {

using TPair = std::pair<int, int>;

// Pairs of tables: both on the mainland, or the second on the island that no link leads to.
std::vector<TPair> TablePairs(bool joined) {
    std::mt19937 random(20260703);
    const auto mainland = static_cast<unsigned>(DenseModel.Tables - DenseModel.IslandTables);
    std::vector<TPair> pairs;
    for (int i = 0; i < 1024; ++i) {
        const auto from = static_cast<int>(random() % mainland);
        const auto to = static_cast<int>(joined ? random() % mainland : mainland + random() % 100);
        pairs.emplace_back(from, to);
    }
    return pairs;
}

void MeasurePath(benchmark::State& state, bool joined) {
    TVDBStructure model;
    FillModel(model, DenseModel);
    std::vector<std::pair<std::string, std::string>> names;
    for (const auto& [from, to] : TablePairs(joined))
        names.emplace_back(model.GetTable(from)->GetAlias(), model.GetTable(to)->GetAlias());
    std::size_t next = 0;
    std::size_t found = 0;
    for (auto _ : state) {
        const auto& [from, to] = names[next++ % names.size()];
        try {
            benchmark::DoNotOptimize(model.GetPath(from, to).GetTableCount());
            ++found;
        } catch (const EVDBStructError&) {
            benchmark::ClobberMemory();
        }
    }
    if (found != (joined ? next : 0))
        state.SkipWithError("a path was to be found for every pair or for none");
    state.counters["links"] = model.GetLinkCount();
}

void GetPath(benchmark::State& state) {
    MeasurePath(state, true);
}
BENCHMARK(GetPath);

void GetPath_None(benchmark::State& state) {
    MeasurePath(state, false);
}
BENCHMARK(GetPath_None);

// Breadth-first search over the links packed into two arrays, by table number.
class TPackedGraph {
public:
    explicit TPackedGraph(const TVDBStructure& model) : first_(1, 0) {
        for (int i = 0; i < model.GetTableCount(); ++i) {
            const TDSTable* const table = model.GetTable(i);
            for (const TDSLink* const link : table->GetLinks())
                neighbours_.push_back(
                    model.IndexOfTable(link->Table1 == table ? link->Table2 : link->Table1));
            first_.push_back(neighbours_.size());
        }
        cameFrom_.resize(first_.size());
        queue_.resize(first_.size());
    }

    // The number of tables on the chain; 0 when there is none.
    int PathLength(int from, int to) {
        std::fill(cameFrom_.begin(), cameFrom_.end(), -1);
        cameFrom_[Index(from)] = from;
        queue_[0] = from;
        std::size_t end = 1;
        for (std::size_t at = 0; at < end; ++at) {
            const int table = queue_[at];
            if (table == to)
                return ChainLength(from, to);
            for (std::size_t i = first_[Index(table)]; i < first_[Index(table) + 1]; ++i) {
                const int neighbour = neighbours_[i];
                if (cameFrom_[Index(neighbour)] >= 0)
                    continue;
                cameFrom_[Index(neighbour)] = table;
                if (neighbour == to)
                    return ChainLength(from, to);
                queue_[end++] = neighbour;
            }
        }
        return 0;
    }

private:
    static std::size_t Index(int table) { return static_cast<std::size_t>(table); }

    int ChainLength(int from, int to) const {
        int length = 1;
        for (; to != from; to = cameFrom_[Index(to)])
            ++length;
        return length;
    }

    std::vector<std::size_t> first_;
    std::vector<int> neighbours_;
    std::vector<int> cameFrom_;
    std::vector<int> queue_;
};

void MeasureReference(benchmark::State& state, bool joined) {
    TVDBStructure model;
    FillModel(model, DenseModel);
    TPackedGraph graph(model);
    const std::vector<TPair> pairs = TablePairs(joined);
    for (const auto& [from, to] : pairs)
        if (joined && from != to && // from a table to itself the model finds the shortest loop
            graph.PathLength(from, to) !=
                model.GetPath(*model.GetTable(from), *model.GetTable(to)).GetTableCount())
            return state.SkipWithError("the reference finds chains of other lengths");
    std::size_t next = 0;
    for (auto _ : state) {
        const auto& [from, to] = pairs[next++ % pairs.size()];
        benchmark::DoNotOptimize(graph.PathLength(from, to));
    }
}

void GetPath_Reference(benchmark::State& state) {
    MeasureReference(state, true);
}
BENCHMARK(GetPath_Reference);

void GetPath_None_Reference(benchmark::State& state) {
    MeasureReference(state, false);
}
BENCHMARK(GetPath_None_Reference);

} // namespace
} // namespace lumora::bench
