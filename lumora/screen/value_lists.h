// The lists that a condition's values are chosen from.
#pragma once

#include "lumora/platform/drop_down.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSListEditor;
class TFilterCond;
class TQueryScreen;

// One text of many items, as SplitListValue reads it: items with a "," or blanks at an end, that begin with a
// double quote, or are empty stand in double quotes.
std::string JoinListValue(const std::vector<std::string>& items);

// The list that the values of the condition come from: the field's, unless the operator takes values of
// another type. None when the values are entered.
TDSListEditor* ValueListOf(const TFilterCond& condition);
// True when the list comes from a query that is yet to be run, or to be run again because the values that it
// depends on have changed.
bool NeedsQuery(TQueryScreen& screen, const TDSListEditor& list);
// Runs the list's query when it has one and NeedsQuery. EVDBStructError without a metadata provider, the
// provider's own failures; the list is then empty and will be asked for again.
void OpenList(TQueryScreen& screen, TDSListEditor& list);

// The items of a list in its order, or by caption under aoSortListData; those that value `value` of the
// condition holds are checked. Values that are not in the list are added for a list value.
std::vector<TDropDownItem> ListItems(const TQueryScreen& screen, const TFilterCond& condition, int value,
                                     const TDSListEditor& list);
std::vector<TDropDownItem> BooleanItems(const TFilterCond& condition, int value);

// The words for a value text: the captions of its items, or empty where no list is known to have them.
std::string CaptionOfValue(const TFilterCond& condition, int value, std::string_view text);
// False only when the values come from a list that is there and does not have the text, or one of its items.
bool IsInList(const TFilterCond& condition, int value, std::string_view text);

} // namespace lumora
