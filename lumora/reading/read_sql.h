// A SELECT statement read into a query: its tables, columns, conditions and values found in the data model.
#pragma once

namespace lumora {

class TVQuery;
class TStringList;
class TTitles;

// Replaces the query by the statement's; nobody is told. Fields and operators that the model does not know
// become its placeholders; a strict query refuses what would not mean the same. `subQueryTitles`: what the
// query texts of sub-queries begin with; none: they have no titles. `level`: how many statements stand around
// this one. ESQLParserError, EVQueryPanelError; the query then holds what was read so far.
void ReadSQL(TVQuery& query, const TStringList& lines, const TTitles* subQueryTitles = nullptr,
             int level = 0);

} // namespace lumora
