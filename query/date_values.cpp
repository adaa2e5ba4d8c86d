#include "query/date_values.h"

#include "platform/errors.h"
#include "platform/formats.h"

namespace lumora {

namespace {

std::string OracleLiteral(TFieldType type, TDateTime value) {
    struct TForm {
        const char* Mask;
        const char* OracleMask;
    };
    const TForm form = type == ftDate   ? TForm{"dd-mm-yyyy", "dd-mm-yyyy"}
                       : type == ftTime ? TForm{"hh:nn:ss", "hh24:mi:ss"}
                                        : TForm{"dd-mm-yyyy hh:nn:ss", "dd-mm-yyyy hh24:mi:ss"};
    static const TFormatSettings iso; // the separators of the mask are meant as they stand
    return "TO_DATE('" + FormatDateTime(form.Mask, value, iso) + "', '" + form.OracleMask + "')";
}

} // namespace

std::string DateValueToSQL(const TSQLFormats& formats, TFieldType type, std::string_view text,
                           TSQLSyntax syntax, bool strict) {
    const TDateTime value = StrToDateTime(text);
    if (syntax != ssOracle)
        return FormatDateTime(formats.MaskFor(type), value);
    if (strict)
        return OracleLiteral(type, value);
    return "TO_DATE(\"" + FormatDateTime("dd-mm-yyyy", value) + "\", \"dd-mm-yyyy\")";
}

std::string DateValueFromSQL(const TSQLFormats& formats, TFieldType type, std::string_view text) {
    const std::optional<TDateTime> value = TryParseDateTime(text, formats.MaskFor(type));
    if (!value)
        throw EConvertError("\"" + std::string(text) + "\" is not a valid date and time");
    return DateTimeToStr(*value);
}

} // namespace lumora
