// The choices that drop down from link words, fields and operators.
#pragma once

#include "lumora/platform/drop_down.h"
#include "lumora/query/filter_rows.h"

#include <vector>

namespace lumora {

class TVQueryPanel;

// Each item's Value is the name of a link type.
TDropDownContent LinkContent(const TVQueryPanel& panel, const TFilterBracket& bracket);
TDropDownContent AndOrContent(const TVQueryPanel& panel, const TFilterBracket& bracket);
// Each item's Value is the field's ID.
TDropDownContent FieldContent(TVQueryPanel& panel, const TSimpleCond& condition);
// Each item's Value is the operator's name.
TDropDownContent OperatorContent(const TSimpleCond& condition);

// The first item that is checked; -1 when none is.
int IndexOfChecked(const std::vector<TDropDownItem>& items);

} // namespace lumora
