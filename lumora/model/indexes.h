// What a model keeps to answer quickly, made when it is first needed.
#pragma once

#include "lumora/model/field_words.h"
#include "lumora/model/join_graph.h"
#include "lumora/model/lookup.h"
#include "lumora/model/structure.h"

#include <array>
#include <atomic>

namespace lumora {

// Of one model. What is const may be asked in many threads at once.
class TModelIndexes {
public:
    TModelIndexes();
    ~TModelIndexes();

    // Numbers the tables when it is made.
    const TJoinGraph& JoinGraph(const std::vector<std::unique_ptr<TDSTable>>& tables) const;
    void ForgetJoinGraph();

    // Holds until a field comes, goes or changes its name. SQL expressions plain or strict, or full names.
    const TFieldWords& FieldWords(const TVCustomDBStructure& model, TFieldNameMode mode, bool strict) const;
    void ForgetFieldWords();

    std::array<TLookup<TDSTable, TTextKeys<TDSTable>>, 5> TablesByName; // by TTableNameMode
    std::array<TLookup<TDSField, TTextKeys<TDSField>>, 4> FieldsByName; // by TFieldNameMode
    TLookup<TDSField, TNumberKeys<TDSField>> FieldsByID;
    TLookup<TDSOperator, TTextKeys<TDSOperator>> OperatorsByName;
    TLookup<TDSCondition, TNumberKeys<TDSCondition>> ConditionsByID;
    std::atomic<bool> UnrecognizedFieldStale{true}; // its operators are to be found anew

private:
    mutable std::atomic<const TJoinGraph*> joinGraph_{nullptr};
    mutable std::atomic<const TFieldWords*> fieldWords_[3] = {};
};

} // namespace lumora
