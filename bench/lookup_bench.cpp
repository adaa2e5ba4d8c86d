// Look-ups in models of several sizes: the time must not grow with the model.
#include "bench_model.h"

#include "lumora/support/string_helpers.h"

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace lumora::bench {
namespace {

constexpr int FieldsPerTable = 20;

// A model of `tables` tables and some of its fields, picked at random: as many in each size, so that the
// processor's caches matter alike.
class TLookupModel {
public:
    explicit TLookupModel(benchmark::State& state) {
        const auto tables = static_cast<int>(state.range(0));
        FillModel(Model, {tables, FieldsPerTable, tables});
        std::mt19937 random(20260704);
        for (int i = 0; i < 128; ++i)
            Fields.push_back(
                Model.GetField(static_cast<int>(random() % static_cast<unsigned>(Model.GetFieldCount()))));
        state.counters["fields"] = Model.GetFieldCount();
    }

    TVDBStructure Model;
    std::vector<TDSField*> Fields;
};

// `keyOf` gives what a field is looked up by, `find` looks it up.
template <typename TKeyOf, typename TFind>
void Measure(benchmark::State& state, TKeyOf keyOf, TFind find) {
    const TLookupModel lookup(state);
    std::vector<decltype(keyOf(*lookup.Fields[0]))> keys;
    for (const TDSField* const field : lookup.Fields)
        keys.push_back(keyOf(*field));
    for (const auto& key : keys)
        if (!find(lookup.Model, key))
            return state.SkipWithError("a key was not found");
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(find(lookup.Model, keys[next++ % keys.size()]));
}

void TableByAlias(benchmark::State& state) {
    Measure(
        state, [](const TDSField& field) { return field.GetTable()->GetAlias(); },
        [](const TVDBStructure& model, const std::string& key) { return model.TableByName(tnAlias, key); });
}

void FieldByFullName(benchmark::State& state) {
    Measure(
        state, [](const TDSField& field) { return field.GetFullName(); },
        [](const TVDBStructure& model, const std::string& key) {
            return model.FieldByName(fnFullName, key);
        });
}

void FieldBySQLExpression(benchmark::State& state) {
    Measure(
        state, [](const TDSField& field) { return field.GetSQLExpr(); },
        [](const TVDBStructure& model, const std::string& key) { return model.FieldByName(fnSQLExpr, key); });
}

void FieldByID(benchmark::State& state) {
    Measure(
        state, [](const TDSField& field) { return field.GetID(); },
        [](const TVDBStructure& model, int key) { return model.FieldByID(key); });
}

// What a plain hash table takes, its keys folded beforehand, for a name that is folded at each look-up.
void FieldByFullName_Reference(benchmark::State& state) {
    const TLookupModel lookup(state);
    std::unordered_map<std::string, const TDSField*> fields;
    for (int i = 0; i < lookup.Model.GetFieldCount(); ++i)
        fields.emplace(LowerAscii(lookup.Model.GetField(i)->GetFullName()), lookup.Model.GetField(i));
    std::vector<std::string> keys;
    for (const TDSField* const field : lookup.Fields)
        keys.push_back(field->GetFullName());
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(fields.find(LowerAscii(keys[next++ % keys.size()]))->second);
}

BENCHMARK(TableByAlias)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FieldByFullName)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FieldBySQLExpression)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FieldByID)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(FieldByFullName_Reference)->Arg(10)->Arg(100)->Arg(1000);

} // namespace
} // namespace lumora::bench
