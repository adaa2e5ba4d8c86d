// Building the SQL of queries: BuildQuery and GetSQL.
#include "bench_inputs.h"
#include "bench_query.h"

namespace lumora::bench {
namespace {

void BuildSQL(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    const TBenchQueries& queries = QueriesOf(conditions);
    for (auto _ : state)
        for (const auto& query : queries.Queries) {
            query->BuildQuery();
            benchmark::DoNotOptimize(query->GetQResult().GetSQL().Count());
        }
    ReportRound(state, queries.Queries.size(), 0,
                queries.Queries.size() * static_cast<std::size_t>(conditions));
}

// None when a plain query writes another statement.
std::vector<TPlainQuery> PlainQueries(const TBenchQueries& queries) {
    std::vector<TPlainQuery> plain;
    std::string text;
    for (const auto& query : queries.Queries) {
        query->BuildQuery();
        plain.push_back(MakePlainQuery(*query));
        text.clear();
        AppendPlainQuery(text, plain.back());
        if (query->GetQResult().GetSQL().GetText().compare(0, text.size(), text) != 0)
            return {};
    }
    return plain;
}

void BuildSQL_Reference(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    const std::vector<TPlainQuery> queries = PlainQueries(QueriesOf(conditions));
    if (queries.empty())
        return state.SkipWithError("the reference writes another statement");
    std::string text;
    for (auto _ : state)
        for (const TPlainQuery& query : queries) {
            text.clear();
            AppendPlainQuery(text, query);
            benchmark::DoNotOptimize(text.data());
        }
    ReportRound(state, queries.size(), 0, queries.size() * static_cast<std::size_t>(conditions));
}

[[maybe_unused]] const bool registered =
    RegisterInTurn({10, 1000, 10000}, {{"BuildSQL", BuildSQL}, {"BuildSQL_Reference", BuildSQL_Reference}});

} // namespace
} // namespace lumora::bench
