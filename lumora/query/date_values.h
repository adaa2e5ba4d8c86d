// Date and time values: between the user's formats and those of the SQL.
#pragma once

#include "lumora/model/sql_formats.h"
#include "lumora/model/sql_syntax.h"
#include "lumora/platform/field_types.h"
#include "lumora/platform/formats.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumora {

struct TDialect;

// A value in the user's format as the dialect writes it, between the quotes of the template unless the
// dialect has literals of its own. EConvertError when the text is no date or time.
void AppendDateValue(std::string& out, const TSQLFormats& formats, TFieldType type, std::string_view text,
                     const TDialect& dialect);
void AppendDateValue(std::string& out, const TSQLFormats& formats, TFieldType type, TDateTime value,
                     const TDialect& dialect);
// The same in standard SQL: in the model's format for the type. Under ssOracle a call of TO_DATE: with its
// arguments in double quotes and the date alone, or, `strict`, a literal that holds the time too.
std::string DateValueToSQL(const TSQLFormats& formats, TFieldType type, std::string_view text,
                           TSQLSyntax syntax, bool strict);
// A value in the model's format for the type, or in a call of TO_DATE as above; nothing when it is none.
std::optional<TReadDateTime> ReadSQLDate(const TSQLFormats& formats, TFieldType type, std::string_view text);
// The same as the user's text: the time alone for a time, otherwise the date-time text. EConvertError as
// above.
std::string DateValueFromSQL(const TSQLFormats& formats, TFieldType type, std::string_view text);

} // namespace lumora
