// The values that filters compare.
#pragma once

#include "lumora/platform/field_types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumora {

enum TFilterValueKind : std::uint8_t {
    fvkNull,
    fvkText,
    fvkNumber, // a whole number or a decimal one
    fvkBoolean,
    fvkDate,
    fvkTime,
    fvkDateTime
};

struct TFilterValue {
    TFilterValueKind Kind = fvkNull;
    bool Whole = false;       // of a number: Integer holds it, not Number
    std::int64_t Integer = 0; // a whole number, 0 or 1, or milliseconds: since 1899-12-30 or of the day
    double Number = 0;
    std::string Text; // a text, or how a literal is spelt

    static TFilterValue OfText(std::string text);
    static TFilterValue OfInteger(std::int64_t number);
    static TFilterValue OfNumber(double number);
    static TFilterValue OfBoolean(bool value);
    static TFilterValue OfDate(std::int64_t days); // since 1899-12-30
    static TFilterValue OfTime(std::int64_t milliseconds);
    static TFilterValue OfDateTime(std::int64_t days, std::int64_t milliseconds);
};

struct TFilterOptions {
    bool CaseInsensitive = false;  // A to Z and a to z are the same
    bool NoPartialCompare = false; // "*" after = and <> is a character like any other
    // How dates and times are written (see FormatDateTime); empty: as the program reads them.
    std::string DateMask;
    std::string TimeMask;
    std::string DateTimeMask;
};

// What the values of a column are compared as; fvkNull where each is taken as it comes.
TFilterValueKind FilterKindOf(TFieldType type);
// "number", "date", ...
std::string_view FilterKindName(TFilterValueKind kind);

// The value as one of the kind (fvkNull: as it is); nothing when it is none. A null stays one.
std::optional<TFilterValue> ConvertFilterValue(const TFilterValue& value, TFilterValueKind kind,
                                               const TFilterOptions& options);
// Below, at or above 0. Text is read as what it is compared with; texts are compared byte by byte. Nothing
// for nulls and for what cannot be compared.
std::optional<int> CompareFilterValues(const TFilterValue& a, const TFilterValue& b,
                                       const TFilterOptions& options);

} // namespace lumora
