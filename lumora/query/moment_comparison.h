// A condition that compares a column of moments with days, or with moments that it keeps more exactly.
#pragma once

#include "lumora/model/comparison_form.h"
#include "lumora/query/moment_column.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TSimpleCond;
class TVCustomDBStructure;

// Such values are stretches of time, so "=" becomes ">= and <", and every other comparison follows suit.
class TMomentComparison {
public:
    // A value that stands in the text that was appended.
    struct TWrittenValue {
        std::size_t Start;
        std::size_t End;
        int Number;
    };

    // EVQueryPanelError for a value that is none, or is finer than the column.
    TMomentComparison(const TSimpleCond& condition, const TVCustomDBStructure& model,
                      const TDialect& dialect);

    // Whether the condition has to be written by Append; otherwise its template says it.
    bool IsNeeded() const { return isNeeded_; }
    // `field`: the column as the statement names it.
    void Append(std::string& out, std::string_view field, std::vector<TWrittenValue>& written) const;

private:
    using TStretch = TMomentColumn::TStretch;
    class TWriter;

    void ReadValues(const TSimpleCond& condition);
    void ReadValue(const TSimpleCond& condition, int value, std::string_view text);

    TMomentColumn column_;
    const std::vector<TComparisonPiece>& pieces_;
    std::vector<TStretch> first_; // of value 1; several for a list
    std::vector<TStretch> second_;
    bool isNeeded_ = false;
};

} // namespace lumora
