// A query in words.
#pragma once

#include "lumora/lumora.h"

#include <QString>

namespace lumora::desk {

// What is shown, in which order, and of which records: "Show Customer and City, sorted by City. Choose
// records where all of the following apply: Country is equal to Norway."
QString querySentence(TVQueryPanel& panel);

// The lines of TVQueryPanel::GetQueryText, which are indented, as one sentence: "all of these apply: a; any
// of these apply (b; c)". Empty when no line stands below the first.
QString conditionSentence(const QStringList& lines);

} // namespace lumora::desk
