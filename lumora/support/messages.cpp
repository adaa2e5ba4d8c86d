#include "lumora/support/messages.h"

#include <algorithm>
#include <vector>

namespace lumora {

namespace {

struct TMessageRecord {
    TMessageId Id;
    const char* RecordName;
    std::string Text;
};

std::vector<TMessageRecord>& Records() {
    static std::vector<TMessageRecord> records = {
        {msgDeleteGroup, "_SDeleteGroup", "Delete group?"},
        {msgClearStructure, "_SClearStructure", "Clear Structure?"},
        {msgNoTableFound, "_SSEENoTable", "Can't locate table"},
        {msgInvalidStrFmt, "_SQPEInvalidStrFmt", "Invalid string format"},
        {msgUnrecognizedField, "_SQPEUnrecognizedField", "Unrecognized field \"%s\""},
        {msgUnrecognizedOperator, "_SQPEUnrecognizedOperator", "Unrecognized operator \"%s\""},
        {msgQueryWasNotBuilt, "_SQPEQueryWasNotBuilt", "Query was not built properly"},
        {msgWrongSQL, "_SWrongSQL", "Wrong SQL statement"},
        {msgLostBracket, "_SLostBracket", "Lost bracket"},
        {msgStructureNotSpecified, "", "Structure is not specified"},
        {msgDbInfoComponentNotSpecified, "", "Database info component is not specified"},
        {msgDBStructureNotSpecified, "", "DBStructure is not specified"},
        {msgStructureEmpty, "", "Structure is empty"},
        {msgDeleteTable, "_SDeleteTable", "Delete table?"},
        {msgDeleteField, "_SDeleteField", "Delete field?"},
        {msgDeleteLink, "_SDeleteLink", "Delete Link?"},
        {msgDeleteOperator, "_SDeleteOperator", "Delete operator?"},
        {msgDeleteCondition, "_SDeleteCondition", "Delete condition?"},
        {msgDeleteAllOperators, "_SDeleteAllOperators", "Delete all operators?"},
        {msgAndWord, "_SAndWerb", "and"},
        {msgInvalidTableIndex, "_SDBSEInvalidTableIndex", "Invalid table index %d"},
        {msgInvalidLinkIndex, "_SDBSEInvalidLinkIndex", "Invalid link index %d"},
        {msgInvalidOperatorIndex, "_SDBSEInvalidOperatorIndex", "Invalid operator index %d"},
        {msgNoTable, "_SDBSENoTable", "No such table %s"},
        {msgNoPath, "_SDBSENoPath", "Can not find path between tables"},
        {msgOperatorNotFound, "_SDBSEOperatorNotFound", "Operator not found: %s"},
        {msgAssignVirtFldName, "_SDBSEAssignVirtFldName", "Can not assign field name to virtual field"},
        {msgAssignExpr, "_SDBSEAssignExpr", "Can not assign expression to data field"},
        {msgCantFindSection, "_SDBSECantFindSection", "Can not find section %s"},
        {msgCantFindFieldInTbl, "_SDBSECantFindFieldInTbl", "Can not find field \"%s\" in table \"%s\""},
        {msgDbInfoNotSpecified, "_SDBSEDbInfoNotSpecified", "DatabaseInfo is not specified"},
        {msgNoEnoughInfo, "_SQPENoEnoughInfo", "No enough information for building query"},
        {msgWrongLink, "_SQPEWrongLink", "Can't add result table: wrong link"},
        {msgNoDBStruct, "_SQPENoDBStruct", "DBStruct is not specified"},
        {msgInvalidFltrTitle, "_SQPEInvalidFltrTitle", "Invalid filter title"},
        {msgInvalidValue, "", "Invalid value \"%s\" for \"%s\""},
        {msgUnknownCondition, "", "Unrecognized condition %s"},
        {msgTooDeep, "", "Brackets are nested too deep (more than %d levels)"},
        {msgNoQueryBase, "", "Query \"%s\" does not belong to a query base"},
        {msgCantBeKept, "", "\"%s\" can not be kept in a query"},
        {msgOtherJoin, "", "\"%s\" is not joined as the data model joins it"},
        {msgQueryChanged, "", "Query \"%s\" was changed by someone else since it was read"},
        {msgQueryDeleted, "", "Query \"%s\" was deleted by someone else"},
        {msgQueryExists, "", "There is a query \"%s\" already"},
        {msgQueryNotRead, "", "Query \"%s\" could not be read before, so it is not overwritten"},
        {msgNoSuchQuery, "", "There is no query \"%s\""},
        {msgNoQueryText, "", "No panel gives the text of query \"%s\""},
        {msgNoQueryName, "", "A query needs a name"},
        {msgQueryNameTooLong, "", "The name \"%s\" is too long for a query"},
        {msgNewQueryName, "", "Query %d"},
        {msgNoDataSet, "", "DataSet is not specified"},
        {msgDataSetNotOpened, "", "DataSet is not opened"},
        {msgCantSortDistinct, "", "Distinct records can not be sorted by \"%s\""},
        {msgInvalidIndex, "", "Invalid index %d"},
        {msgInvalidFieldIndex, "", "Invalid field index %d"},
        {msgInvalidConditionIndex, "", "Invalid condition index %d"},
        {msgInvalidGroupIndex, "", "Invalid field group index %d"},
        {msgCantSortByTotal, "", "Whole records can not be sorted by the total \"%s\""},
        {msgEmptyLink, "", "The link between \"%s\" and \"%s\" joins no fields"},
        {msgChangedMeanwhile, "", "The query was changed while it was being built"},
        {msgAmbiguousField, "", "\"%s\" may be a column of \"%s\" or of \"%s\""},
        {msgNoFreeAlias, "", "The data model has no table for \"%s\", another use of \"%s\""},
        {msgNoShownTable, "", "The data model does not join \"%s\" any more as the query does"},
        {msgHiddenDistinct, "", "Distinct records can not be sorted by \"%s\", which is not shown"},
        {msgNumberOfRecords, "", "Number of records"},
        {msgExpectedBefore, "", "Expected %s before \"%s\""},
        {msgExpectedAtEnd, "", "Expected %s at the end"},
        {msgYes, "", "Yes"},
        {msgNo, "", "No"},
        {msgFirstValueGreater, "", "The first value is greater than the second"},
        {msgFieldPrompt, "", "<field>"},
        {msgOperatorPrompt, "", "<operator>"},
        {msgValuePrompt, "", "<value>"},
        {msgSubQueryPrompt, "", "<sub-query>"},
        {msgFieldUnknown, "", "The data model does not know the field"},
        {msgOperatorUnknown, "", "The data model does not know the operator for \"%s\""},
        {msgFieldMissing, "", "No field is chosen"},
        {msgOperatorMissing, "", "No operator is chosen for \"%s\""},
        {msgValueMissing, "", "\"%s\" has no value yet"},
        {msgSubQueryMissing, "", "\"%s\" has no sub-query yet"},
        {msgNotInList, "", "\"%s\" is not in the list"},
        {msgRowDisabled, "", "%s (disabled)"},
        {msgRowMenuName, "", "Menu of the row"},
        {msgRowCheckBoxName, "", "Row enabled"},
        {msgFieldName, "", "Field: %s"},
        {msgOperatorName, "", "Operator: %s"},
        {msgValueName, "", "Value: %s"},
        {msgLinkName, "", "Joined by: %s"},
        {msgRowPlace, "", "row %d of %d, in: %s"},
        {msgNoPathBetween, "", "No links of the data model lead from \"%s\" to \"%s\""},
        {msgCountCaption, "", "Number of %s"},
        {msgSumCaption, "", "Sum of %s"},
        {msgAverageCaption, "", "Average of %s"},
        {msgLeastCaption, "", "Least %s"},
        {msgGreatestCaption, "", "Greatest %s"},
        {msgCountWords, "", "the number of %s"},
        {msgSumWords, "", "the sum of %s"},
        {msgAverageWords, "", "the average of %s"},
        {msgLeastWords, "", "the least %s"},
        {msgGreatestWords, "", "the greatest %s"},
        {msgAnyOneOf, "", "any one %s"},
        {msgRecordsWord, "", "records"},
        {msgValuesOf, "", "values of %s"},
        {msgDifferentOnes, "", "different %s"},
        {msgPartOf, "", "%s of %s"},
        {msgExplained, "", "%s (%s)"},
        {msgLastOfList, "", "%s and %s"},
        {msgShow, "", "Show %s"},
        {msgForEach, "", "%s for each %s"},
        {msgAllFields, "", "all fields"},
        {msgAllFieldsOf, "", "all fields of %s"},
        {msgEachRowOnce, "", "each different row once"},
        {msgOnlyWith, "", "only %s with %s"},
        {msgAlsoWithout, "", "also %s without %s"},
        {msgSortedBy, "", "sorted by %s"},
        {msgDescending, "", "%s descending"},
        {msgChooseAll, "", "Choose all records"},
        {msgUnknownNeed, "", "The text needs \"%s\", which this version does not know"},
    };
    return records;
}

TMessageRecord* FindRecord(TMessageId id) {
    auto& records = Records();
    const auto found =
        std::lower_bound(records.begin(), records.end(), id,
                         [](const TMessageRecord& record, TMessageId sought) { return record.Id < sought; });
    return found != records.end() && found->Id == id ? &*found : nullptr;
}

} // namespace

const std::string& Message(TMessageId id) {
    static const std::string none;
    const TMessageRecord* const record = FindRecord(id);
    return record ? record->Text : none;
}

std::string_view MessageRecordName(TMessageId id) {
    const TMessageRecord* const record = FindRecord(id);
    return record ? record->RecordName : std::string_view();
}

void SetMessage(TMessageId id, std::string text) {
    if (TMessageRecord* const record = FindRecord(id))
        record->Text = std::move(text);
}

std::string FormatText(std::string_view format, std::initializer_list<std::string_view> arguments) {
    std::string text;
    auto argument = arguments.begin();
    for (std::size_t i = 0; i < format.size(); ++i) {
        const bool marker =
            format[i] == '%' && i + 1 < format.size() && (format[i + 1] == 's' || format[i + 1] == 'd');
        if (marker && argument != arguments.end()) {
            text.append(*argument++);
            ++i;
        } else {
            text += format[i];
        }
    }
    return text;
}

} // namespace lumora
