// The query text: a query as sections of key=value lines, and back. Texts of any version are read.
#pragma once

#include "lumora/query/sql_options.h"

#include <string>
#include <string_view>

namespace lumora {

class TFilterCond;
class TVQuery;
class TStringList;
class TTitles;

// Writes the query's text into the list, behind the titles when they are given.
void WriteQueryText(TVQuery& query, TStringList& lines, const TTitles* titles = nullptr);
// Replaces the query by that of the text, then tells of it. An empty text is an empty query. `titles`, when
// given, take what the text has of them. EVQueryPanelError
// without a model and for a predefined condition that the model does not have, EConvertError for numbers that
// are none; the query then holds what was read so far, and nobody is told.
void ReadQueryText(TVQuery& query, const TStringList& lines, TTitles* titles = nullptr);

// A condition's value texts as a query text keeps them (dates as numbers, parameters by name), and the way
// back.
void SaveValues(const TFilterCond& condition, std::string& value1, std::string& value2);
void LoadValues(std::string_view value1, std::string_view value2, TFilterCond& condition);

// The options that a text keeps, as bits.
int SQLOptionsToInt(TSQLOptions options);
TSQLOptions IntToSQLOptions(int bits);

} // namespace lumora
