// Changes that a user makes in a condition: each is one change of the query, whatever comes with it.
#pragma once

#include "lumora/query/sql_options.h"

#include <string>

namespace lumora {

class TDSField;
class TDSOperator;
class TFilterCond;
class TQueryScreen;
class TSimpleCond;
class TStringList;

// Set the field or the operator, and keep the values as far as they fit: a list keeps the items that the new
// field's list has, one value becomes a list of one and the other way round, and what would be no value is
// dropped. Whoever hears of the change may delete the condition.
void ChangeField(TQueryScreen& screen, TSimpleCond& condition, TDSField& field);
void ChangeOperator(TQueryScreen& screen, TSimpleCond& condition, TDSOperator& op);
// Sets a value with the words for it (empty: the value itself), then fires OnSetValue.
void ChangeValue(TQueryScreen& screen, TFilterCond& condition, int value, const std::string& text,
                 const std::string& caption);
// Puts a confirmed sub-query in: its query text, SQL and options.
void ChangeSubQuery(TQueryScreen& screen, TFilterCond& condition, int value, const TStringList& lines,
                    const std::string& sql, TSQLOptions options);
// An empty value becomes the default that the field's text editor has.
void TakeDefaultValue(TSimpleCond& condition);

} // namespace lumora
