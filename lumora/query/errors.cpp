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
    case qpeNoTable:
        return msgNoTable;
    case qpeInvalidIndex:
        return msgInvalidIndex;
    }
    return msgQueryWasNotBuilt;
}

} // namespace

EVQueryPanelError::EVQueryPanelError(TQueryPanelErrorCode code,
                                     std::initializer_list<std::string_view> arguments)
    : EVLumoraError(code, Message(MessageOf(code)), arguments) {}

EVQueryPanelError::EVQueryPanelError(TQueryPanelErrorCode code,
                                     std::initializer_list<std::string_view> arguments, int line)
    : EVLumoraError(code,
                    FormatText(Message(MessageOf(code)), arguments) + "\r\nLine:" + std::to_string(line)) {}

} // namespace lumora
