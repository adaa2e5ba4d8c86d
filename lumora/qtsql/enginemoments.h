// Dates and times in the form in which an engine writes them.
#pragma once

#include "lumora/platform/field_types.h"
#include "lumora/qtsql/engine.h"

#include <QVariant>

#include <optional>
#include <string_view>

namespace lumora {

// What to bind for a text with more than the model's formats hold, as "run" prints it: microseconds, a zone,
// "infinity", a year BC, a time of more than a day. None when the text is nothing of the kind, or more than a
// column of the type keeps.
std::optional<QVariant> engineMoment(TFieldType type, std::string_view text, Engine engine);

} // namespace lumora
