// What a condition and a field take, with everything that belongs to them. The figures are counters; the
// times are of making the objects.
#include "bench_model.h"
#include "bench_query.h"
#include "counting_new.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace lumora::bench {
namespace {

// Values, captions, the row's place in its bracket and the brackets themselves are all shared out.
void MemoryOfCondition(benchmark::State& state) {
    constexpr int conditions = 10000;
    double bytes = 0;
    for (auto _ : state) {
        TVDBStructure model;
        FillModel(model, {12, 20, 16});
        TVQueryPanel panel;
        panel.SetDbStruct(&model);
        panel.Activate();
        const TMemoryCounter counter;
        FillQuery(panel.GetQuery(), conditions);
        bytes = static_cast<double>(counter.LiveBytes());
    }
    state.counters["bytes_per_condition"] = bytes / conditions;
}
BENCHMARK(MemoryOfCondition)->Unit(benchmark::kMillisecond);

std::int64_t SizeOf(const TStringList& lines) {
    return static_cast<std::int64_t>(lines.GetText().size());
}

// The characters that the model's author wrote for the field.
std::int64_t OwnTexts(const TDSField& field) {
    std::int64_t size =
        static_cast<std::int64_t>(field.GetFieldText().size() + field.GetDisplayName().size());
    const TDSValueEditor* const editor = field.GetValueEditor();
    if (const auto* const text = dynamic_cast<const TDSTextEditor*>(editor))
        size += static_cast<std::int64_t>(text->DefValue.size() + text->EditMask.size());
    else if (const auto* const sql = dynamic_cast<const TDSSQLEditor*>(editor))
        size += SizeOf(sql->SQL);
    else if (const auto* const list = dynamic_cast<const TDSListEditor*>(editor))
        size += SizeOf(list->Items) + SizeOf(list->Values);
    else if (const auto* const custom = dynamic_cast<const TDSCustomEditor*>(editor))
        size += SizeOf(custom->CustomData);
    return size;
}

std::string TextOf(const TModelShape& shape) {
    TVDBStructure model;
    FillModel(model, shape);
    return model.GetStructString();
}

std::int64_t LoadedBytes(const std::string& text, bool lookUp, std::int64_t* ownTexts) {
    const TStringList lines(text);
    const TMemoryCounter counter;
    TVDBStructure model;
    model.LoadFromStrings(lines);
    if (lookUp) // so that every index is there
        for (const TFieldNameMode mode : {fnText, fnDisplayName, fnFullName, fnSQLExpr})
            benchmark::DoNotOptimize(model.FieldByName(mode, "Name"));
    const std::int64_t bytes = counter.LiveBytes();
    for (int i = 0; ownTexts && i < model.GetFieldCount(); ++i)
        *ownTexts += OwnTexts(*model.GetField(i));
    return bytes;
}

// A model with its fields less the same model without them.
void MemoryOfField(benchmark::State& state) {
    const bool lookUp = state.range(0) != 0;
    TModelShape bare = LargeModel;
    bare.FieldsPerTable = 0;
    const std::string withFields = TextOf(LargeModel);
    const std::string without = TextOf(bare);
    double bytes = 0;
    std::int64_t ownTexts = 0;
    for (auto _ : state) {
        ownTexts = 0;
        bytes = static_cast<double>(LoadedBytes(withFields, lookUp, &ownTexts) -
                                    LoadedBytes(without, lookUp, nullptr));
    }
    const double fields = LargeModel.Tables * LargeModel.FieldsPerTable;
    state.counters["bytes_per_field"] = bytes / fields;
    state.counters["own_texts"] = static_cast<double>(ownTexts) / fields;
    state.counters["beside_texts"] = (bytes - static_cast<double>(ownTexts)) / fields;
}
BENCHMARK(MemoryOfField)->ArgName("indexes")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace lumora::bench
