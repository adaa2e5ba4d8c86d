// What keeps a row from being part of a statement, told as soon as it is seen.
#pragma once

#include "lumora/screen/row_words.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TFilterCond;

enum TRowState : std::uint8_t {
    rsReady,
    rsUnfinished, // something is still to be chosen or entered
    rsWrong       // what is there will not do
};

struct TRowProblem {
    TRowState State = rsReady;
    TFilterRow* Row = nullptr;
    TWordRole Role = wrText; // the word that has the problem
    int Value = 0;           // which value, of a value word
    std::string Text;        // a sentence; empty when the row is ready

    explicit operator bool() const { return State != rsReady; }
};

// The problem of one word of the row, and the first one of all its words. Brackets have none. Whether the row
// is enabled does not matter.
TRowProblem WordProblem(const TQueryScreen& screen, TFilterRow& row, TWordRole role, int value = 0);
TRowProblem RowProblem(const TQueryScreen& screen, TFilterRow& row);
// What is odd about a row that is ready all the same; empty for nothing.
std::string RowRemark(const TFilterRow& row);
// The first problem of each row that is to be part of the statement: disabled rows, and those in disabled
// brackets, are left out.
std::vector<TRowProblem> PanelProblems(const TQueryScreen& screen);

// The reason why a text cannot be value `value` of the condition; empty when it can. An empty text can.
std::string ValueRefusal(const TFilterCond& condition, int value, std::string_view text);

} // namespace lumora
