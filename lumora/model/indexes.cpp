#include "lumora/model/indexes.h"

namespace lumora {

namespace {

using TTableKeys = TTextKeys<TDSTable>;
using TFieldKeys = TTextKeys<TDSField>;

std::array<TLookup<TDSTable, TTableKeys>, 5> TableLookups() {
    using TLookup = lumora::TLookup<TDSTable, TTableKeys>;
    using TKey = std::string_view;
    return {TLookup(TTableKeys([](const TDSTable& t) -> TKey { return t.GetName(); })),
            TLookup(TTableKeys([](const TDSTable& t) -> TKey { return t.GetAlias(); })),
            TLookup(TTableKeys([](const TDSTable& t) -> TKey { return t.GetDisplayName(); })),
            TLookup(TTableKeys(
                [](const TDSTable& t) -> TKey { return KeyInTheMaking().append(t.GetCompoundName()); })),
            TLookup(TTableKeys([](const TDSTable& t) -> TKey {
                std::string& key = KeyInTheMaking();
                t.AppendSQLExpr(key, nqPlain);
                return key;
            }))};
}

std::array<TLookup<TDSField, TFieldKeys>, 4> FieldLookups() {
    using TLookup = lumora::TLookup<TDSField, TFieldKeys>;
    using TKey = std::string_view;
    return {TLookup(TFieldKeys([](const TDSField& f) -> TKey { return f.GetFieldText(); })),
            TLookup(TFieldKeys([](const TDSField& f) -> TKey { return f.GetDisplayName(); })),
            TLookup(TFieldKeys([](const TDSField& f) -> TKey {
                std::string& key = KeyInTheMaking();
                f.AppendFullName(key);
                return key;
            })),
            TLookup(TFieldKeys(
                [](const TDSField& f) -> TKey {
                    std::string& key = KeyInTheMaking();
                    f.AppendSQLExpr(key, nqPlain);
                    return key;
                },
                kfCaseAndBlanks))};
}

} // namespace

TModelIndexes::TModelIndexes()
    : TablesByName(TableLookups()),
      FieldsByName(FieldLookups()),
      FieldsByID(TNumberKeys<TDSField>([](const TDSField& field) { return field.GetID(); })),
      OperatorsByName(
          TTextKeys<TDSOperator>([](const TDSOperator& op) -> std::string_view { return op.GetName(); })),
      ConditionsByID(
          TNumberKeys<TDSCondition>([](const TDSCondition& condition) { return condition.GetID(); })) {}

TModelIndexes::~TModelIndexes() {
    ForgetJoinGraph();
    ForgetFieldWords();
}

const TJoinGraph& TModelIndexes::JoinGraph(const std::vector<std::unique_ptr<TDSTable>>& tables) const {
    if (const TJoinGraph* const graph = joinGraph_.load(std::memory_order_acquire))
        return *graph;
    const TShortLock lock(this);
    const TJoinGraph* graph = joinGraph_.load(std::memory_order_relaxed);
    if (!graph) {
        graph = new TJoinGraph(tables); // owned here
        joinGraph_.store(graph, std::memory_order_release);
    }
    return *graph;
}

void TModelIndexes::ForgetJoinGraph() {
    delete joinGraph_.exchange(nullptr, std::memory_order_relaxed);
}

const TFieldWords& TModelIndexes::FieldWords(const TVCustomDBStructure& model, TFieldNameMode mode,
                                             bool strict) const {
    std::atomic<const TFieldWords*>& kept = fieldWords_[mode == fnFullName ? 2 : strict ? 1 : 0];
    if (const TFieldWords* const words = kept.load(std::memory_order_acquire))
        return *words;
    auto made = std::make_unique<const TFieldWords>(model, mode, strict);
    const TFieldWords* before = nullptr;
    if (kept.compare_exchange_strong(before, made.get(), std::memory_order_acq_rel))
        return *made.release(); // owned here
    return *before;
}

void TModelIndexes::ForgetFieldWords() {
    for (auto& kept : fieldWords_)
        delete kept.exchange(nullptr, std::memory_order_relaxed);
}

} // namespace lumora
