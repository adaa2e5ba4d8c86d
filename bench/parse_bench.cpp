// Reading SELECT statements: the parser beside a bare scan of the same tokens, and SQL to query.
#include "bench_model.h"

#include "lumora/lumora.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <benchmark/benchmark.h>

#include <random>

namespace lumora::bench {
namespace {

// A condition on a field, as a person would write it.
void AppendCondition(std::string& sql, const std::string& field, std::mt19937& random) {
    static const char* const tails[] = {" = 'North Star Ltd'", " <> 1250",      " >= 12.5", " like '%star%'",
                                        " between 10 and 250", " in (1, 2, 3)", " is null"};
    sql.append(field).append(tails[random() % std::size(tails)]);
}

// A tree of conditions, brackets nested eight deep.
void AppendConditions(std::string& sql, const std::vector<std::string>& fields, int count, int depth,
                      std::mt19937& random) {
    while (count > 0) {
        const int inside = depth > 0 && count > 3 ? std::max(2, count / 3) : 0;
        if (inside > 0) {
            sql += '(';
            AppendConditions(sql, fields, inside, depth - 1, random);
            sql += ')';
            count -= inside;
        } else {
            AppendCondition(sql, fields[random() % fields.size()], random);
            --count;
        }
        if (count > 0)
            sql += depth % 2 == 0 ? "\n  and " : " or ";
    }
}

std::string Statement(const std::vector<std::string>& fields, int conditions) {
    std::mt19937 random(7);
    std::string sql = "select " + fields[0] + " as Name, " + fields[1] + "\nfrom customers\nwhere ";
    AppendConditions(sql, fields, conditions, 8, random);
    return sql + "\norder by 1 desc";
}

const std::vector<std::string>& PlainFields() {
    static const std::vector<std::string> fields = {"customers.company", "customers.city", "customers.credit",
                                                    "customers.since", "customers.customer_id"};
    return fields;
}

// About 150 bytes, 1 KB and 100 KB.
constexpr int Sizes[] = {2, 28, 2000};

void Report(benchmark::State& state, const std::string& sql, int conditions) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sql.size()));
    state.SetItemsProcessed(state.iterations() * conditions);
    state.counters["text_bytes"] = static_cast<double>(sql.size());
}

void Parse(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    const std::string sql = Statement(PlainFields(), conditions);
    TVSQLParser parser;
    for (auto _ : state) {
        parser.SetSQLText(sql);
        parser.Parse();
        benchmark::DoNotOptimize(parser.GetResult().RootBracket->GetCount());
    }
    Report(state, sql, conditions);
}
BENCHMARK(Parse)->Arg(Sizes[0])->Arg(Sizes[1])->Arg(Sizes[2]);

void Parse_Reference(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    const std::string sql = Statement(PlainFields(), conditions);
    for (auto _ : state) {
        std::size_t tokens = 0;
        for (TVScanner scanner(sql); !scanner.AtEnd(); scanner.Next())
            ++tokens;
        benchmark::DoNotOptimize(tokens);
    }
    Report(state, sql, conditions);
}
BENCHMARK(Parse_Reference)->Arg(Sizes[0])->Arg(Sizes[1])->Arg(Sizes[2]);

// Onto models of 20 and 1,000 tables (400 and 20,000 fields), with 15 and 200 operators.
void ParseSQL(benchmark::State& state) {
    TVDBStructure model;
    FillModel(model, {static_cast<int>(state.range(0)), 20, 1500});
    for (int i = model.GetOperatCount(); i < state.range(1); ++i)
        model.AddOperator("Own" + std::to_string(i), "own", "@f own" + std::to_string(i) + " '@1'", "",
                          LmUsedTypes);
    std::vector<std::string> fields;
    for (int i = 0; i < 20; ++i)
        fields.push_back(model.GetField(i)->GetSQLExpr());
    const auto conditions = static_cast<int>(state.range(2));
    const TStringList sql(Statement(fields, conditions));
    TVQueryPanel panel;
    panel.SetDbStruct(&model);
    for (auto _ : state)
        panel.ParseSQL(sql);
    state.SetItemsProcessed(state.iterations() * conditions);
}
BENCHMARK(ParseSQL)->Args({20, 15, 28})->Args({1000, 200, 28})->Args({20, 15, 2000})->Args({1000, 200, 2000});

} // namespace
} // namespace lumora::bench
