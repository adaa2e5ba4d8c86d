// Words that are no names without quotes.
#pragma once

#include "lumora/qtsql/engine.h"

#include <string_view>

namespace lumora {

// Whether the engine reserves the word, in whatever case. SQLite's and PostgreSQL's words are taken together,
// and count for every engine: a name that is quoted without need means the same.
bool isReservedWord(Engine engine, std::string_view word);

} // namespace lumora
