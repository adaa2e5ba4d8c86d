#include "lumora/query/field_by_sql.h"

#include "lumora/model/structure.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

TDSField* FieldBySQL(const TVCustomDBStructure& model, std::string_view sql, bool strict) {
    TDSField* const field = model.FieldByName(fnSQLExpr, sql);
    if (!strict)
        return field;
    const auto isWrittenSo = [sql](const TDSField& candidate) {
        return FoldBlanks(candidate.GetSQLExpr(nqStrict)) == FoldBlanks(sql);
    };
    const std::string quote(1, model.GetSQLFormats().Quotes().Close);
    if (sql.find(quote + quote) == std::string_view::npos)
        return field;
    if (field && isWrittenSo(*field))
        return field;
    TDSField* const quoted = model.FieldByName(fnSQLExpr, ReplaceText(sql, quote + quote, quote));
    return quoted && isWrittenSo(*quoted) ? quoted : nullptr;
}

} // namespace lumora
