// What every unit shares: the exception base, the field kind, conversions of types and kinds to and from
// text, and two text-measuring functions.
#pragma once

#include "lumora/platform/enum_names.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/field_types.h"
#include "lumora/platform/text_metrics.h"
#include "lumora/support/lumora_error.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace lumora {

class TStringGrid;

enum TDBStructErrorCode : int {
    dseInvalidTableIndex = 1,
    dseInvalidLinkIndex,
    dseInvalidOperatorIndex,
    dseNoTable,
    dseNoPath,
    dseOperatorNotFound,
    dseAssignVirtFldName,
    dseAssignExpr,
    dseCantFindSection,
    dseCantFindFieldInTbl,
    dseDbInfoNotSpecified,
    dseInvalidFieldIndex,
    dseInvalidConditionIndex,
    dseInvalidGroupIndex
};

// A failure of the data model; the message belongs to the code.
class EVDBStructError : public EVLumoraError {
public:
    explicit EVDBStructError(TDBStructErrorCode code, std::initializer_list<std::string_view> arguments = {})
        : EVLumoraError(code, Message(MessageOf(code)), arguments) {}

private:
    static TMessageId MessageOf(TDBStructErrorCode code) {
        const int first = code < dseInvalidFieldIndex ? int{msgInvalidTableIndex} - dseInvalidTableIndex
                                                      : int{msgInvalidFieldIndex} - dseInvalidFieldIndex;
        return static_cast<TMessageId>(first + code);
    }
};

enum TVFieldKind : std::uint8_t {
    vfkData,   // a column of one table
    vfkVirtual // an SQL expression
};
template <>
struct TEnumNames<TVFieldKind> {
    static constexpr std::string_view Names[] = {"vfkData", "vfkVirtual"};
};

enum TValueKind : std::uint8_t { vkScalar, vkList, vkSubQuery };
template <>
struct TEnumNames<TValueKind> {
    static constexpr std::string_view Names[] = {"vkScalar", "vkList", "vkSubQuery"};
};

// Enumeration names; the inverses give -1 for an unknown name.
inline std::string_view FldTypeToStr(TFieldType type) {
    return EnumName(type);
}
inline int StrToFldType(std::string_view text) {
    return EnumOrdinal<TFieldType>(text);
}
inline std::string_view FldKindToStr(TVFieldKind kind) {
    return EnumName(kind);
}
inline int StrToFldKind(std::string_view text) {
    return EnumOrdinal<TVFieldKind>(text);
}
inline std::string_view ValueKindToStr(TValueKind kind) {
    return EnumName(kind);
}
inline int StrToValueKind(std::string_view text) {
    return EnumOrdinal<TValueKind>(text);
}

// Width and height in pixels of a text drawn with the font on the given window.
inline int lmTextWidth(const TTextMeasurer& window, const TFont& font, std::string_view text) {
    return window.TextExtent(font, text).Width;
}
inline int lmTextHeight(const TTextMeasurer& window, const TFont& font, std::string_view text) {
    return window.TextExtent(font, text).Height;
}

// Empties every cell of a row of the grid.
void EmptyGridRow(TStringGrid& grid, int row);

} // namespace lumora
