// Failures of a query and of the panel that holds it.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/support/text_place.h"

#include <initializer_list>
#include <string_view>

namespace lumora {

enum TQueryPanelErrorCode : int {
    qpeNoEnoughInfo = 1,
    qpeWrongLink = 2,
    qpeNoDBStruct = 3,
    qpeInvalidFltrTitle = 4,
    qpeInvalidStrFmt = 5,
    qpeUnrecognizedField = 6,
    qpeUnrecognizedOperator = 7,
    qpeQueryWasNotBuilt = 8,
    qpeInvalidValue = 9,
    qpeUnknownCondition = 10,
    qpeTooDeep = 11,
    qpeCantBeKept = 12,
    qpeOtherJoin = 13,
    qpeNoTable = 14,
    qpeCantSortDistinct = 15,
    qpeInvalidIndex = 16,
    qpeCantSortByTotal = 17,
    qpeEmptyLink = 18,
    qpeChangedMeanwhile = 19,
    qpeNoPath = 20,
    qpeAmbiguousField = 21,
    qpeNoFreeAlias = 22,
    qpeNoShownTable = 23,
    qpeHiddenDistinct = 24
};

class EVQueryPanelError : public EVLumoraError {
public:
    explicit EVQueryPanelError(TQueryPanelErrorCode code,
                               std::initializer_list<std::string_view> arguments = {});
    // With a line break, "Line:" and the line of the statement at the end of the message.
    EVQueryPanelError(TQueryPanelErrorCode code, std::initializer_list<std::string_view> arguments,
                      const TTextPlace& place);

    const TTextPlace Place; // in the statement that was read; line 0: there is none
};

// The index as a place in a list; EVQueryPanelError "Invalid index" when the list has no such place.
std::size_t CheckedIndex(int index, std::size_t count);

} // namespace lumora
