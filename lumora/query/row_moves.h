// Moving rows within the tree.
#pragma once

namespace lumora {

class TFilterBracket;
class TFilterRow;
class TVQuery;

// Before row `Index` of a bracket, as the bracket is now; at the end when there is no such row.
struct TRowTarget {
    TFilterBracket* Bracket = nullptr;
    int Index = 0;
};

// True when `row` is the bracket or stands somewhere in it.
bool IsWithin(const TFilterRow* row, const TFilterRow& bracket);

// Moves a row, with all rows in it, to another place. It stays the same object. A bracket that is left empty
// goes where the query removes such. False, and nothing happened, when the row is there already, is the root
// or would stand in itself. EVQueryPanelError when brackets would nest too deep; the tree is then as it was.
bool MoveRow(TVQuery& query, TFilterRow& row, TRowTarget target);

// Where the keyboard moves a row: before or behind its neighbour, out of its bracket to right behind it, to
// the end of the bracket before it. No bracket when it cannot go there.
TRowTarget TargetUp(const TFilterRow& row);
TRowTarget TargetDown(const TFilterRow& row);
TRowTarget TargetLeft(const TFilterRow& row);
TRowTarget TargetRight(const TFilterRow& row);

} // namespace lumora
