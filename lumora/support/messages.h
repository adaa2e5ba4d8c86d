// The package's message table: every text that an exception or a question carries. The English texts are
// defaults; a host may put others in their place.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace lumora {

enum TMessageId : int {
    msgDeleteGroup = 65488,
    msgClearStructure = 65489,
    msgNoTableFound = 65490,
    msgInvalidStrFmt = 65504,
    msgUnrecognizedField = 65505,
    msgUnrecognizedOperator = 65506,
    msgQueryWasNotBuilt = 65507,
    msgWrongSQL = 65508,
    msgLostBracket = 65509,
    msgStructureNotSpecified = 65510,
    msgDbInfoComponentNotSpecified = 65511,
    msgDBStructureNotSpecified = 65512,
    msgStructureEmpty = 65513,
    msgDeleteTable = 65514,
    msgDeleteField = 65515,
    msgDeleteLink = 65516,
    msgDeleteOperator = 65517,
    msgDeleteCondition = 65518,
    msgDeleteAllOperators = 65519,
    msgAndWord = 65520,
    msgInvalidTableIndex = 65521,
    msgInvalidLinkIndex = 65522,
    msgInvalidOperatorIndex = 65523,
    msgNoTable = 65524,
    msgNoPath = 65525,
    msgOperatorNotFound = 65526,
    msgAssignVirtFldName = 65527,
    msgAssignExpr = 65528,
    msgCantFindSection = 65529,
    msgCantFindFieldInTbl = 65530,
    msgDbInfoNotSpecified = 65531,
    msgNoEnoughInfo = 65532,
    msgWrongLink = 65533,
    msgNoDBStruct = 65534,
    msgInvalidFltrTitle = 65535,
    // Beyond the resource table.
    msgInvalidValue = 65536,
    msgUnknownCondition,
    msgTooDeep,
    msgNoQueryBase,
    msgCantBeKept,
    msgOtherJoin,
    msgQueryChanged,
    msgQueryDeleted,
    msgQueryExists,
    msgQueryNotRead,
    msgNoSuchQuery,
    msgNoQueryText,
    msgNoQueryName,
    msgQueryNameTooLong,
    msgNewQueryName,
    msgNoDataSet,
    msgDataSetNotOpened,
    msgCantSortDistinct,
    msgInvalidIndex,
    msgInvalidFieldIndex,
    msgInvalidConditionIndex,
    msgInvalidGroupIndex,
    msgCantSortByTotal,
    msgEmptyLink,
    msgChangedMeanwhile,
    msgAmbiguousField,
    msgNoFreeAlias,
    msgNoShownTable,
    msgHiddenDistinct,
    msgNumberOfRecords,
    msgExpectedBefore,
    msgExpectedAtEnd,
    // On screen.
    msgYes,
    msgNo,
    msgFieldPrompt,
    msgOperatorPrompt,
    msgValuePrompt,
    msgSubQueryPrompt,
    msgFieldUnknown,
    msgOperatorUnknown,
    msgFieldMissing,
    msgOperatorMissing,
    msgValueMissing,
    msgSubQueryMissing,
    msgNotInList,
    msgRowDisabled,
    msgRowMenuName,
    msgRowCheckBoxName,
    msgFieldName,
    msgOperatorName,
    msgValueName,
    msgLinkName,
    msgRowPlace,
    msgNoPathBetween,
    // The query in words.
    msgCountCaption,
    msgSumCaption,
    msgAverageCaption,
    msgLeastCaption,
    msgGreatestCaption,
    msgCountWords,
    msgSumWords,
    msgAverageWords,
    msgLeastWords,
    msgGreatestWords,
    msgAnyOneOf,
    msgRecordsWord,
    msgValuesOf,
    msgDifferentOnes,
    msgPartOf,
    msgExplained,
    msgLastOfList,
    msgShow,
    msgForEach,
    msgAllFields,
    msgAllFieldsOf,
    msgEachRowOnce,
    msgOnlyWith,
    msgAlsoWithout,
    msgSortedBy,
    msgDescending,
    msgChooseAll,
    msgUnknownNeed
};

// The text of a message; a reference that is valid until the message is set.
const std::string& Message(TMessageId id);
// The record name of a message ("_SDeleteGroup"); empty for the few that have none.
std::string_view MessageRecordName(TMessageId id);
// Puts a translated text in the place of the default; unknown ids are ignored. Before threads start.
void SetMessage(TMessageId id, std::string text);

// Replaces each "%s" and "%d" of the format, in order, by an argument.
std::string FormatText(std::string_view format, std::initializer_list<std::string_view> arguments);

} // namespace lumora
