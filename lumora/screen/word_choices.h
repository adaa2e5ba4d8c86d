// The choices that drop down from link words, fields and operators.
#pragma once

#include "lumora/platform/drop_down.h"

#include <vector>

namespace lumora {

class TDSField;
class TFilterBracket;
class TQueryScreen;
class TSimpleCond;
class TVCustomDBStructure;

// Each item's Value is the name of a link type.
TDropDownContent LinkContent(const TQueryScreen& screen, const TFilterBracket& bracket);
TDropDownContent AndOrContent(const TQueryScreen& screen, const TFilterBracket& bracket);
// The fields that have operators, and the condition's own. Each item's Value is the field's ID.
TDropDownContent FieldContent(TQueryScreen& screen, const TSimpleCond& condition);
// Each item's Value is the operator's name.
TDropDownContent OperatorContent(const TSimpleCond& condition);
// The field that a new condition begins with: the first one that is offered; none in a model without fields.
TDSField* FirstOfferedField(const TVCustomDBStructure& model);

// The first item that is checked; -1 when none is.
int IndexOfChecked(const std::vector<TDropDownItem>& items);

} // namespace lumora
