#include "lumora/query/errors.h"

namespace lumora {

namespace {

TMessageId MessageOf(TQueryPanelErrorCode code) {
    switch (code) {
    case qpeNoEnoughInfo:
        return msgNoEnoughInfo;
    case qpeWrongLink:
        return msgWrongLink;
    case qpeNoDBStruct:
        return msgDBStructureNotSpecified;
    case qpeInvalidFltrTitle:
        return msgInvalidFltrTitle;
    case qpeInvalidStrFmt:
        return msgInvalidStrFmt;
    case qpeUnrecognizedField:
        return msgUnrecognizedField;
    case qpeUnrecognizedOperator:
        return msgUnrecognizedOperator;
    case qpeQueryWasNotBuilt:
        return msgQueryWasNotBuilt;
    case qpeInvalidValue:
        return msgInvalidValue;
    case qpeUnknownCondition:
        return msgUnknownCondition;
    case qpeTooDeep:
        return msgTooDeep;
    case qpeCantBeKept:
        return msgCantBeKept;
    case qpeOtherJoin:
        return msgOtherJoin;
    case qpeCantSortDistinct:
        return msgCantSortDistinct;
    case qpeInvalidIndex:
        return msgInvalidIndex;
    case qpeCantSortByTotal:
        return msgCantSortByTotal;
    case qpeEmptyLink:
        return msgEmptyLink;
    case qpeNoTable:
        return msgNoTable;
    case qpeChangedMeanwhile:
        return msgChangedMeanwhile;
    case qpeNoPath:
        return msgNoPathBetween;
    case qpeAmbiguousField:
        return msgAmbiguousField;
    case qpeNoFreeAlias:
        return msgNoFreeAlias;
    case qpeNoShownTable:
        return msgNoShownTable;
    case qpeHiddenDistinct:
        return msgHiddenDistinct;
    }
    return msgQueryWasNotBuilt;
}

} // namespace

EVQueryPanelError::EVQueryPanelError(TQueryPanelErrorCode code,
                                     std::initializer_list<std::string_view> arguments)
    : EVLumoraError(code, Message(MessageOf(code)), arguments) {}

EVQueryPanelError::EVQueryPanelError(TQueryPanelErrorCode code,
                                     std::initializer_list<std::string_view> arguments,
                                     const TTextPlace& place)
    : EVLumoraError(code, FormatText(Message(MessageOf(code)), arguments) +
                              "\r\nLine:" + std::to_string(place.Line)),
      Place(place) {}

std::size_t CheckedIndex(int index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count)
        throw EVQueryPanelError(qpeInvalidIndex, {std::to_string(index)});
    return static_cast<std::size_t>(index);
}

} // namespace lumora
