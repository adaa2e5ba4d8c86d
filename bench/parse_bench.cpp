// Reading SELECT statements: the parser beside the bare scan of the same tokens, the scanner beside a
// table-driven lexer, and SQL to query.
#include "bench_inputs.h"
#include "bench_model.h"
#include "bench_statements.h"
#include "plain_lexer.h"

#include "lumora/lumora.h"
#include "lumora/sqlparse/Vsqlpars.h"

namespace lumora::bench {
namespace {

const std::vector<std::string>& Statements(int conditions) {
    static TKeptInputs<std::vector<std::string>> kept;
    return kept.Of(conditions, [conditions] { return MakeStatements(PlainNames(), conditions); });
}

template <typename TRead>
void MeasureStatements(benchmark::State& state, TRead read) {
    const auto conditions = static_cast<std::size_t>(state.range(0));
    const std::vector<std::string>& statements = Statements(static_cast<int>(conditions));
    for (auto _ : state)
        for (const std::string& sql : statements)
            benchmark::DoNotOptimize(read(sql));
    ReportRound(state, statements.size(), TotalBytes(statements), statements.size() * conditions);
}

int ParseWith(TVSQLParser& parser, const std::string& sql) {
    parser.SetSQLText(sql);
    parser.Parse();
    return parser.GetResult().RootBracket->GetCount();
}

std::size_t CountTokens(const std::string& sql) {
    std::size_t tokens = 0;
    for (TVScanner scanner(sql); !scanner.AtEnd(); scanner.Next())
        ++tokens;
    return tokens;
}

void Parse(benchmark::State& state) {
    TVSQLParser parser;
    MeasureStatements(state, [&parser](const std::string& sql) { return ParseWith(parser, sql); });
}

void ParseFresh(benchmark::State& state) {
    MeasureStatements(state, [](const std::string& sql) {
        TVSQLParser parser;
        return ParseWith(parser, sql);
    });
}

void Scan(benchmark::State& state) {
    MeasureStatements(state, CountTokens);
}

void ScanByTable(benchmark::State& state) {
    for (const std::string& sql : Statements(static_cast<int>(state.range(0))))
        if (CountTokensByTable(sql) != CountTokens(sql))
            return state.SkipWithError("the table finds other tokens");
    MeasureStatements(state, [](const std::string& sql) { return CountTokensByTable(sql); });
}

// By conditions; statements of about 150 bytes, 1 KB and 72 KB.
[[maybe_unused]] const bool registered = RegisterInTurn(
    {2, 24, 2000},
    {{"Parse", Parse}, {"ParseFresh", ParseFresh}, {"Scan", Scan}, {"ScanByTable", ScanByTable}});

// Onto models of 20 and 1,000 tables (400 and 20,000 fields), with 15 and 200 operators.
void ParseSQL(benchmark::State& state) {
    TVDBStructure model;
    FillModel(model, {static_cast<int>(state.range(0)), 20, 1500});
    for (int i = model.GetOperatCount(); i < state.range(1); ++i)
        model.AddOperator("Own" + std::to_string(i), "own", "@f own" + std::to_string(i) + " '@1'", "",
                          LmUsedTypes);
    std::vector<std::string> names;
    for (int i = 0; i < 20; ++i)
        names.push_back(model.GetField(i)->GetSQLExpr());
    const auto conditions = static_cast<std::size_t>(state.range(2));
    std::vector<TStringList> statements;
    std::size_t bytes = 0;
    for (const std::string& sql : MakeStatements(names, static_cast<int>(conditions))) {
        statements.emplace_back(sql);
        bytes += sql.size();
    }
    TVQueryPanel panel;
    panel.SetDbStruct(&model);
    for (auto _ : state)
        for (const TStringList& sql : statements)
            panel.ParseSQL(sql);
    ReportRound(state, statements.size(), bytes, statements.size() * conditions);
}
BENCHMARK(ParseSQL)
    ->ArgNames({"tables", "operators", "conditions"})
    ->Args({20, 15, 24})
    ->Args({1000, 200, 24})
    ->Args({20, 15, 2000})
    ->Args({1000, 200, 2000});

} // namespace
} // namespace lumora::bench
