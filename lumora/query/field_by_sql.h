// The field that a piece of SQL names.
#pragma once

#include <string_view>

namespace lumora {

class TDSField;
class TVCustomDBStructure;

// The first field whose SQL expression the text is, letter case and blanks ignored; none when there is none.
// In a strict query, quote symbols inside of names are doubled.
TDSField* FieldBySQL(const TVCustomDBStructure& model, std::string_view sql, bool strict);

} // namespace lumora
