// Operators: named SQL templates that compare a field with values.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/model/sql_pattern.h"
#include "lumora/model/sql_template.h"
#include "lumora/platform/field_types.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TVCustomDBStructure;

using TAppliedTypes = TFieldTypes;
using TQuotedTypes = TFieldTypes;

inline constexpr TFieldTypes LmCommonTypes = {ftString,   ftSmallint, ftInteger, ftWord, ftBoolean,
                                              ftFloat,    ftCurrency, ftBCD,     ftDate, ftTime,
                                              ftDateTime, ftAutoInc,  ftLargeint};
inline constexpr TFieldTypes LmStringTypes = {ftString, ftMemo, ftFmtMemo, ftWideString};
inline constexpr TFieldTypes LmUsedTypes =
    LmCommonTypes + TFieldTypes{ftMemo, ftFmtMemo, ftFixedChar, ftWideString};
inline constexpr TFieldTypes LmNullTestTypes = LmCommonTypes + TFieldTypes{ftMemo, ftFmtMemo};
inline constexpr TFieldTypes LmOrderedTypes = LmCommonTypes - TFieldTypes{ftBoolean};
inline constexpr TQuotedTypes DefaultQuotedTypes = {ftString, ftBoolean, ftDate,      ftTime,      ftDateTime,
                                                    ftMemo,   ftFmtMemo, ftFixedChar, ftWideString};

enum TExOperator : std::uint8_t { xoInList, xoBetween, xoStartsWith, xoContains };
template <>
struct TEnumNames<TExOperator> {
    static constexpr std::string_view Names[] = {"xoInList", "xoBetween", "xoStartsWith", "xoContains"};
};
using TExOperators = TEnumSet<TExOperator>;
inline constexpr TExOperators AllExOperators = {xoInList, xoBetween, xoStartsWith, xoContains};

class TDSOperator {
public:
    TDSOperator() : TDSOperator(nullptr) {}
    // `structure` is told when the name changes; none for an operator that no list holds.
    explicit TDSOperator(TVCustomDBStructure* structure);
    ~TDSOperator();
    TDSOperator(const TDSOperator&) = delete;
    TDSOperator& operator=(const TDSOperator&) = delete;

    const std::string& GetName() const { return name_; }
    void SetName(std::string name);
    // The SQL template; "@f" is the field, "@1", "@2", ... the values.
    const std::string& GetSQLName() const { return template_.GetText(); }
    void SetSQLName(std::string text);
    const TSQLTemplate& GetTemplate() const { return template_; }
    // The template as a pattern for conditions that are read back.
    const TSQLPattern& GetPattern() const { return pattern_; }
    // The number of values that the template takes.
    int GetParamCount() const { return template_.GetParamCount(); }

    std::string DisplayName;         // the caption, "is equal to"
    std::string ValFormat;           // shown between values
    TFieldType ExprType = ftUnknown; // of the values; ftUnknown: the field's
    TValueKind ValueKind = vkScalar;
    TAppliedTypes AppliedTypes = LmUsedTypes; // field types to which it applies by default

private:
    TVCustomDBStructure* structure_ = nullptr;
    std::string name_;
    TSQLTemplate template_;
    TSQLPattern pattern_;
};

// A default operator. Its caption is the default line of DefOperators.
struct TDefaultOperator {
    std::string_view Name;
    std::string_view Caption;
    std::string_view SQL;
    TAppliedTypes AppliedTypes;
    bool Extended;     // offered only while its group is on
    TExOperator Group; // when extended
};
std::span<const TDefaultOperator> DefaultOperators();

// Field types in ascending order, each followed by ","; unknown names are left out when read. Before model
// version 2.0 the items were ordinals.
std::string SaveAppliedTypes(TAppliedTypes types);
TAppliedTypes ReadAppliedTypes(std::string_view text, double version = 3.5);

} // namespace lumora
