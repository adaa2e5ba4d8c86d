// Building the SQL of a query: BuildQuery and GetSQL.
#include "bench_query.h"

#include <benchmark/benchmark.h>

namespace lumora::bench {
namespace {

void BuildSQL(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    TBenchQuery query(conditions);
    for (auto _ : state) {
        query.Panel.BuildQuery();
        benchmark::DoNotOptimize(query.Panel.GetQResult().GetSQL().Count());
    }
    state.SetItemsProcessed(state.iterations() * conditions);
}
BENCHMARK(BuildSQL)->Arg(10)->Arg(1000)->Arg(10000);

void BuildSQL_Reference(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    TBenchQuery query(conditions);
    query.Panel.BuildQuery();
    const TPlainQuery plain = MakePlainQuery(query.Panel);
    std::string text;
    AppendPlainQuery(text, plain);
    const std::string statement = query.Panel.GetQResult().GetSQL().GetText();
    if (statement.compare(0, text.size(), text) != 0)
        return state.SkipWithError("the reference writes another statement");
    for (auto _ : state) {
        text.clear();
        AppendPlainQuery(text, plain);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * conditions);
}
BENCHMARK(BuildSQL_Reference)->Arg(10)->Arg(1000)->Arg(10000);

} // namespace
} // namespace lumora::bench
