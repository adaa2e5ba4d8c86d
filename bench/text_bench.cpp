// Reading and writing the texts of models and of queries.
#include "bench_inputs.h"
#include "bench_model.h"
#include "bench_query.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lumora::bench {
namespace {

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

void MeasurePlainRead(benchmark::State& state, const std::vector<std::string>& texts) {
    for (auto _ : state)
        for (const std::string& text : texts)
            benchmark::DoNotOptimize(ReadPlain(text).size());
    ReportRound(state, texts.size(), TotalBytes(texts), 0);
}

void MeasurePlainWrite(benchmark::State& state, const std::vector<std::string>& texts) {
    std::vector<std::vector<TPlainSection>> plain;
    for (const std::string& text : texts)
        plain.push_back(ReadPlain(text));
    for (auto _ : state)
        for (const std::vector<TPlainSection>& sections : plain)
            benchmark::DoNotOptimize(WritePlain(sections).size());
    ReportRound(state, texts.size(), TotalBytes(texts), 0);
}

// Writes each object in turn, again and again.
template <typename TObjects, typename TSave>
void MeasureWrite(benchmark::State& state, const TObjects& objects, TSave save) {
    TStringList lines;
    std::string text;
    std::size_t bytes = 0;
    for (const auto& object : objects) {
        save(*object, lines);
        bytes += lines.GetText().size();
    }
    for (auto _ : state)
        for (const auto& object : objects) {
            save(*object, lines);
            text = lines.GetText();
            benchmark::DoNotOptimize(text.data());
        }
    ReportRound(state, objects.size(), bytes, 0);
}

// --- Models.

constexpr std::size_t BytesOfTable = 20'000; // with 20 fields, as objects; as text a third of it

using TModels = std::vector<std::unique_ptr<TVDBStructure>>;

std::unique_ptr<TVDBStructure> MakeModel(int tables, int seed) {
    auto model = std::make_unique<TVDBStructure>();
    FillModel(*model,
              {tables, LargeModel.FieldsPerTable, tables * LargeModel.Links / LargeModel.Tables, 0, seed});
    return model;
}

const TModels& ModelsOf(int tables) {
    static TKeptInputs<TModels> kept;
    return kept.Of(tables, [tables] {
        TModels models;
        for (int i = InputCount(static_cast<std::size_t>(tables) * BytesOfTable); i > 0; --i)
            models.push_back(MakeModel(tables, i));
        return models;
    });
}

const std::vector<std::string>& ModelTexts(int tables) {
    static TKeptInputs<std::vector<std::string>> kept;
    return kept.Of(tables, [tables] {
        std::vector<std::string> texts;
        for (const auto& model : ModelsOf(tables))
            texts.push_back(model->GetStructString());
        return texts;
    });
}

void ReadModel(benchmark::State& state) {
    const std::vector<std::string>& texts = ModelTexts(static_cast<int>(state.range(0)));
    for (const std::string& text : texts) {
        TVDBStructure check;
        check.SetStructString(text);
        if (check.GetStructString() != text)
            return state.SkipWithError("the model does not read back as it was written");
    }
    for (auto _ : state)
        for (const std::string& text : texts) {
            TVDBStructure model;
            model.LoadFromStrings(TStringList(text));
            benchmark::DoNotOptimize(model.GetFieldCount());
        }
    ReportRound(state, texts.size(), TotalBytes(texts), 0);
}

void ReadModel_Reference(benchmark::State& state) {
    MeasurePlainRead(state, ModelTexts(static_cast<int>(state.range(0))));
}

void WriteModel(benchmark::State& state) {
    MeasureWrite(state, ModelsOf(static_cast<int>(state.range(0))),
                 [](TVDBStructure& model, TStringList& lines) { model.SaveToStrings(lines); });
}

void WriteModel_Reference(benchmark::State& state) {
    MeasurePlainWrite(state, ModelTexts(static_cast<int>(state.range(0))));
}

// --- Queries.

std::string QueryText(TVQueryPanel& panel) {
    TStringList lines;
    panel.SaveToStrings(lines);
    return lines.GetText();
}

const std::vector<std::string>& QueryTexts(int conditions) {
    static TKeptInputs<std::vector<std::string>> kept;
    return kept.Of(conditions, [conditions] {
        const TBenchPanels& queries = PanelsOf(conditions);
        // The first reading lays the titles out in sections; from then on the text stays as it is.
        TVQueryPanel reader;
        reader.SetDbStruct(queries.Panels.front()->GetDbStruct());
        std::vector<std::string> texts;
        for (const auto& panel : queries.Panels) {
            reader.LoadFromStrings(TStringList(QueryText(*panel)));
            texts.push_back(QueryText(reader));
        }
        return texts;
    });
}

void ReadQuery(benchmark::State& state) {
    const auto conditions = static_cast<int>(state.range(0));
    const std::vector<std::string>& texts = QueryTexts(conditions);
    TVQueryPanel panel;
    panel.SetDbStruct(PanelsOf(conditions).Panels.front()->GetDbStruct());
    for (const std::string& text : texts) {
        panel.LoadFromStrings(TStringList(text));
        if (QueryText(panel) != text)
            return state.SkipWithError("the query does not read back as it was written");
    }
    for (auto _ : state)
        for (const std::string& text : texts) {
            panel.LoadFromStrings(TStringList(text));
            benchmark::DoNotOptimize(panel.GetLastRow());
        }
    ReportRound(state, texts.size(), TotalBytes(texts), 0);
}

void ReadQuery_Reference(benchmark::State& state) {
    MeasurePlainRead(state, QueryTexts(static_cast<int>(state.range(0))));
}

void WriteQuery(benchmark::State& state) {
    MeasureWrite(state, PanelsOf(static_cast<int>(state.range(0))).Panels,
                 [](TVQueryPanel& panel, TStringList& lines) { panel.SaveToStrings(lines); });
}

void WriteQuery_Reference(benchmark::State& state) {
    MeasurePlainWrite(state, QueryTexts(static_cast<int>(state.range(0))));
}

[[maybe_unused]] const bool registered =
    RegisterInTurn({10, 100, 1000}, {{"ReadModel", ReadModel},
                                     {"ReadModel_Reference", ReadModel_Reference},
                                     {"WriteModel", WriteModel},
                                     {"WriteModel_Reference", WriteModel_Reference}}) &&
    RegisterInTurn({10, 1000, 10000}, {{"ReadQuery", ReadQuery},
                                       {"ReadQuery_Reference", ReadQuery_Reference},
                                       {"WriteQuery", WriteQuery},
                                       {"WriteQuery_Reference", WriteQuery_Reference}});

} // namespace
} // namespace lumora::bench
