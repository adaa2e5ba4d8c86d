// Reading and writing the text of a model and of a query.
#include "bench_model.h"
#include "bench_query.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace lumora::bench {
namespace {

TModelShape ShapeOf(int tables) {
    return {tables, LargeModel.FieldsPerTable, tables * LargeModel.Links / LargeModel.Tables};
}

// What a text comes to when every line is kept as it is: sections of owned keys and values.
struct TPlainSection {
    std::string Name;
    std::vector<std::pair<std::string, std::string>> Lines;
};

std::vector<TPlainSection> ReadPlain(std::string_view text) {
    std::vector<TPlainSection> sections(1);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty() && line.front() == '[') {
            sections.emplace_back();
            sections.back().Name = line;
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
            sections.back().Lines.emplace_back(line, std::string());
        else
            sections.back().Lines.emplace_back(line.substr(0, equals), line.substr(equals + 1));
    }
    return sections;
}

std::string WritePlain(const std::vector<TPlainSection>& sections) {
    std::string text;
    for (const TPlainSection& section : sections) {
        if (!section.Name.empty())
            text.append(section.Name).append("\n");
        for (const auto& [key, value] : section.Lines)
            text.append(key).append("=").append(value).append("\n");
    }
    return text;
}

void SetBytes(benchmark::State& state, const std::string& text) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
    state.counters["text_bytes"] = static_cast<double>(text.size());
}

void MeasurePlainRead(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadPlain(text).size());
    SetBytes(state, text);
}

void MeasurePlainWrite(benchmark::State& state, const std::string& text) {
    const std::vector<TPlainSection> sections = ReadPlain(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(WritePlain(sections).size());
    SetBytes(state, text);
}

// --- Models.

std::string ModelText(int tables) {
    TVDBStructure model;
    FillModel(model, ShapeOf(tables));
    return model.GetStructString();
}

void ReadModel(benchmark::State& state) {
    const std::string text = ModelText(static_cast<int>(state.range(0)));
    TVDBStructure check;
    check.SetStructString(text);
    if (check.GetStructString() != text)
        return state.SkipWithError("the model does not read back as it was written");
    for (auto _ : state) {
        TVDBStructure model;
        model.LoadFromStrings(TStringList(text));
        benchmark::DoNotOptimize(model.GetFieldCount());
    }
    SetBytes(state, text);
}
BENCHMARK(ReadModel)->Arg(100)->Arg(1000);

void ReadModel_Reference(benchmark::State& state) {
    MeasurePlainRead(state, ModelText(static_cast<int>(state.range(0))));
}
BENCHMARK(ReadModel_Reference)->Arg(100)->Arg(1000);

void WriteModel(benchmark::State& state) {
    TVDBStructure model;
    FillModel(model, ShapeOf(static_cast<int>(state.range(0))));
    TStringList lines;
    std::string text;
    for (auto _ : state) {
        model.SaveToStrings(lines);
        text = lines.GetText();
        benchmark::DoNotOptimize(text.data());
    }
    SetBytes(state, text);
}
BENCHMARK(WriteModel)->Arg(100)->Arg(1000);

void WriteModel_Reference(benchmark::State& state) {
    MeasurePlainWrite(state, ModelText(static_cast<int>(state.range(0))));
}
BENCHMARK(WriteModel_Reference)->Arg(100)->Arg(1000);

// --- Queries.

std::string QueryText(TVQueryPanel& panel) {
    TStringList lines;
    panel.SaveToStrings(lines);
    return lines.GetText();
}

void ReadQuery(benchmark::State& state) {
    TBenchQuery query(static_cast<int>(state.range(0)));
    TVQueryPanel panel;
    panel.SetDbStruct(&query.Model);
    // The first reading lays the titles out in sections; from then on the text stays as it is.
    panel.LoadFromStrings(TStringList(QueryText(query.Panel)));
    const std::string text = QueryText(panel);
    panel.LoadFromStrings(TStringList(text));
    if (QueryText(panel) != text)
        return state.SkipWithError("the query does not read back as it was written");
    for (auto _ : state) {
        panel.LoadFromStrings(TStringList(text));
        benchmark::DoNotOptimize(panel.GetLastRow());
    }
    SetBytes(state, text);
}
BENCHMARK(ReadQuery)->Arg(1000)->Arg(10000);

void ReadQuery_Reference(benchmark::State& state) {
    TBenchQuery query(static_cast<int>(state.range(0)));
    MeasurePlainRead(state, QueryText(query.Panel));
}
BENCHMARK(ReadQuery_Reference)->Arg(1000)->Arg(10000);

void WriteQuery(benchmark::State& state) {
    TBenchQuery query(static_cast<int>(state.range(0)));
    TStringList lines;
    std::string text;
    for (auto _ : state) {
        query.Panel.SaveToStrings(lines);
        text = lines.GetText();
        benchmark::DoNotOptimize(text.data());
    }
    SetBytes(state, text);
}
BENCHMARK(WriteQuery)->Arg(1000)->Arg(10000);

void WriteQuery_Reference(benchmark::State& state) {
    TBenchQuery query(static_cast<int>(state.range(0)));
    MeasurePlainWrite(state, QueryText(query.Panel));
}
BENCHMARK(WriteQuery_Reference)->Arg(1000)->Arg(10000);

} // namespace
} // namespace lumora::bench
