// The data layer's field types, in its order.
#pragma once

#include "lumora/platform/enum_names.h"
#include "lumora/platform/enum_set.h"

#include <cstdint>

namespace lumora {

enum TFieldType : std::uint8_t {
    ftUnknown,
    ftString,
    ftSmallint,
    ftInteger,
    ftWord,
    ftBoolean,
    ftFloat,
    ftCurrency,
    ftBCD,
    ftDate,
    ftTime,
    ftDateTime,
    ftBytes,
    ftVarBytes,
    ftAutoInc,
    ftBlob,
    ftMemo,
    ftGraphic,
    ftFmtMemo,
    ftParadoxOle,
    ftDBaseOle,
    ftTypedBinary,
    ftCursor,
    ftFixedChar,
    ftWideString,
    ftLargeint,
    ftADT,
    ftArray,
    ftReference,
    ftDataSet,
    ftOraBlob,
    ftOraClob,
    ftVariant,
    ftInterface,
    ftIDispatch,
    ftGuid
};

template <>
struct TEnumNames<TFieldType> {
    static constexpr std::string_view Names[] = {
        "ftUnknown",    "ftString",     "ftSmallint", "ftInteger",     "ftWord",      "ftBoolean",
        "ftFloat",      "ftCurrency",   "ftBCD",      "ftDate",        "ftTime",      "ftDateTime",
        "ftBytes",      "ftVarBytes",   "ftAutoInc",  "ftBlob",        "ftMemo",      "ftGraphic",
        "ftFmtMemo",    "ftParadoxOle", "ftDBaseOle", "ftTypedBinary", "ftCursor",    "ftFixedChar",
        "ftWideString", "ftLargeint",   "ftADT",      "ftArray",       "ftReference", "ftDataSet",
        "ftOraBlob",    "ftOraClob",    "ftVariant",  "ftInterface",   "ftIDispatch", "ftGuid"};
};

using TFieldTypes = TEnumSet<TFieldType>;

inline constexpr TFieldTypes NumberTypes = {ftSmallint, ftInteger, ftWord,    ftFloat,
                                            ftCurrency, ftBCD,     ftAutoInc, ftLargeint};

constexpr bool IsNumber(TFieldType type) {
    return NumberTypes.Contains(type);
}
constexpr bool IsDateOrTime(TFieldType type) {
    return type == ftDate || type == ftTime || type == ftDateTime;
}

} // namespace lumora
