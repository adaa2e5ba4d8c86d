// A query in words.
#pragma once

#include <string>

namespace lumora {

class TFilterBracket;
class TQueryScreen;

// What is shown, for what, of which records and in which order: "Show the number of Orders for each Country,
// only Orders with Customers, sorted by Country. Choose records where all of the following apply: City is
// Oslo; any of the following apply (...)." Which tables take part, and which records their links leave out,
// is known of a query that was built and has not changed since. Empty when the query asks for nothing.
std::string QuerySentence(const TQueryScreen& screen);

// The enabled conditions alone; empty when there are none.
std::string ConditionSentence(const TQueryScreen& screen);

} // namespace lumora
