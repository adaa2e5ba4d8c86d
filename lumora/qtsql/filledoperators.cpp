#include "lumora/qtsql/filledoperators.h"

#include "lumora/platform/ascii.h"
#include "lumora/support/messages.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace lumora {

namespace {

// What a field is to people.
enum Kind : unsigned {
    kText = 1,
    kPadded = 2, // a text of fixed length, which some engines fill up with blanks
    kNumber = 4,
    kDay = 8, // and moments
    kTime = 16,
    kTruth = 32,
    kReference = 64, // keys, identifiers
    kOther = 128,    // a type of the engine's own, compared as it compares
    kUncomparable = 256,
    kSeconds = 512, // moments as numbers since 1970
    kMilliseconds = 1024,
    kAllText = kText | kPadded,
    kMoment = kDay | kSeconds | kMilliseconds,
    kOrdered = kAllText | kNumber | kOther,
    kSame = kOrdered | kTime | kTruth | kReference, // compared by "is"
    kComparable = kSame | kMoment
};

// How the template comes from the table's text.
enum Form { fAsIs, fLike, fNotLike, fYear, fMonth };

struct FilledOperator {
    std::string_view name;
    std::string_view caption;
    Form form;
    std::string_view field; // of fLike and the like: what stands for the field
    std::string_view text;  // the template, or the pattern
    unsigned kinds;
    TValueKind valueKind = vkScalar;
};

// In the order in which they are offered. What says "not" holds for a field without a value too. A field may
// be offered only one of those with the same caption.
constexpr FilledOperator operators[] = {
    {"Equal", "is", fAsIs, "", "@f = '@1'", kSame},
    {"NotEqual", "is not", fAsIs, "", "(@f <> '@1' or @f is null)", kSame},
    {"On", "is on", fAsIs, "", "@f = '@1'", kMoment},
    {"NotOn", "is not on", fAsIs, "", "(@f <> '@1' or @f is null)", kMoment},
    {"Contains", "contains", fLike, "@f", "'%@1%'", kAllText},
    {"NotContains", "does not contain", fNotLike, "@f", "'%@1%'", kAllText},
    {"StartsWith", "starts with", fLike, "@f", "'@1%'", kAllText},
    {"NotStartsWith", "does not start with", fNotLike, "@f", "'@1%'", kAllText},
    {"EndsWith", "ends with", fLike, "@f", "'%@1'", kText},
    {"NotEndsWith", "does not end with", fNotLike, "@f", "'%@1'", kText},
    {"EndsWithPadded", "ends with", fLike, "rtrim(@f)", "'%@1'", kPadded},
    {"NotEndsWithPadded", "does not end with", fNotLike, "rtrim(@f)", "'%@1'", kPadded},
    {"Before", "is before", fAsIs, "", "@f < '@1'", kMoment | kTime},
    {"After", "is after", fAsIs, "", "@f > '@1'", kMoment | kTime},
    {"OnOrBefore", "is on or before", fAsIs, "", "@f <= '@1'", kMoment},
    {"OnOrAfter", "is on or after", fAsIs, "", "@f >= '@1'", kMoment},
    {"AtOrBefore", "is at or before", fAsIs, "", "@f <= '@1'", kTime},
    {"AtOrAfter", "is at or after", fAsIs, "", "@f >= '@1'", kTime},
    {"LessThan", "is less than", fAsIs, "", "@f < '@1'", kOrdered},
    {"LessOrEqual", "is less than or equal to", fAsIs, "", "@f <= '@1'", kOrdered},
    {"GreaterThan", "is greater than", fAsIs, "", "@f > '@1'", kOrdered},
    {"GreaterOrEqual", "is greater than or equal to", fAsIs, "", "@f >= '@1'", kOrdered},
    {"Between", "is between", fAsIs, "", "@f between '@1' and '@2'", kOrdered | kMoment | kTime},
    {"NotBetween", "is not between", fAsIs, "", "(@f not between '@1' and '@2' or @f is null)",
     kOrdered | kMoment | kTime},
    {"InYear", "is in the year", fYear, "@f", "@1", kDay},
    {"InYearOfSeconds", "is in the year", fYear, "@f, 'unixepoch'", "@1", kSeconds},
    {"InYearOfMilliseconds", "is in the year", fYear, "@f / 1000.0, 'unixepoch'", "@1", kMilliseconds},
    {"InMonth", "is in the month (1 to 12)", fMonth, "@f", "@1", kDay},
    {"InMonthOfSeconds", "is in the month (1 to 12)", fMonth, "@f, 'unixepoch'", "@1", kSeconds},
    {"InMonthOfMilliseconds", "is in the month (1 to 12)", fMonth, "@f / 1000.0, 'unixepoch'", "@1",
     kMilliseconds},
    {"InList", "is one of", fAsIs, "", "@f in (@1)", kComparable, vkList},
    {"NotInList", "is none of", fAsIs, "", "(@f not in (@1) or @f is null)", kComparable, vkList},
    {"IsEmpty", "is empty", fAsIs, "", "(@f is null or @f = '')", kAllText},
    {"IsNotEmpty", "is not empty", fAsIs, "", "@f <> ''", kAllText},
    {"IsNull", "is empty", fAsIs, "", "@f is null", (kComparable & ~kAllText) | kUncomparable},
    {"IsNotNull", "is not empty", fAsIs, "", "@f is not null", (kComparable & ~kAllText) | kUncomparable},
    {"HasNoValue", "has no value", fAsIs, "", "@f is null", kAllText},
    {"HasValue", "has a value", fAsIs, "", "@f is not null", kAllText},
    {"OtherThan", "has a value other than", fAsIs, "", "@f <> '@1'", kComparable},
    {"MatchesPattern", "matches the pattern", fAsIs, "", "@f like '@1'", kAllText},
    {"EqualToQuery", "is the result of a query", fAsIs, "", "@f = (@1)", kSame, vkSubQuery},
    {"LessThanQuery", "is less than the result of a query", fAsIs, "", "@f < (@1)", kOrdered, vkSubQuery},
    {"LessOrEqualToQuery", "is less than or equal to the result of a query", fAsIs, "", "@f <= (@1)",
     kOrdered, vkSubQuery},
    {"GreaterThanQuery", "is greater than the result of a query", fAsIs, "", "@f > (@1)", kOrdered,
     vkSubQuery},
    {"GreaterOrEqualToQuery", "is greater than or equal to the result of a query", fAsIs, "", "@f >= (@1)",
     kOrdered, vkSubQuery},
    {"InQuery", "is one of the records of a query", fAsIs, "", "@f in (@1)", kComparable, vkSubQuery},
    {"NotInQuery", "is none of the records of a query", fAsIs, "", "(@f in (@1)) is not true", kComparable,
     vkSubQuery},
};

const FilledOperator* find(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(operators), std::end(operators),
                     [name](const FilledOperator& op) { return SameText(op.name, name); });
    return found == std::end(operators) ? nullptr : found;
}

// Empty for what the dialect cannot say.
std::string templateOf(const FilledOperator& op, const TDialect& dialect) {
    switch (op.form) {
    case fAsIs:
        return std::string(op.text);
    case fLike:
        return FillPattern(dialect.CaseBlindLike, {op.field, op.text}).append(dialect.PatternClause);
    case fNotLike:
        return "(not (" +
               FillPattern(dialect.CaseBlindLike, {op.field, op.text}).append(dialect.PatternClause) +
               ") or @f is null)";
    case fYear:
    case fMonth:
        break;
    }
    const std::string_view part = op.form == fYear ? dialect.Part.Year : dialect.Part.Month;
    return part.empty() ? std::string() : FillPattern(part, {op.field}).append(" = ").append(op.text);
}

// The types to which the operator applies by default.
TAppliedTypes typesOf(unsigned kinds) {
    static constexpr std::pair<unsigned, TFieldTypes> types[] = {
        {kText, LmStringTypes},       {kPadded, {ftFixedChar}}, {kNumber, NumberTypes},
        {kDay, {ftDate, ftDateTime}}, {kTime, {ftTime}},        {kTruth, {ftBoolean}},
        {kReference, {ftGuid}},       {kUncomparable, {ftBlob}}};
    TAppliedTypes applied;
    for (const auto& [kind, of] : types)
        if (kinds & kind)
            applied = applied + of;
    return applied;
}

const TDefaultOperator* defaultOperator(std::string_view name) {
    for (const TDefaultOperator& op : DefaultOperators())
        if (op.Name == name)
            return &op;
    return nullptr;
}

// None where the host has switched its group off.
std::optional<std::string> captionOf(const TVCustomDBStructure& model, const FilledOperator& op) {
    const TDefaultOperator* const known = defaultOperator(op.name);
    if (known && known->Extended && !model.GetExOperators().Contains(known->Group))
        return std::nullopt;
    std::string caption = model.GetDefOperator(op.name);
    return caption.empty() || (known && caption == known->Caption) ? std::string(op.caption) : caption;
}

Kind kindOf(const TDSField& field, Comparison comparison, bool isReference) {
    if (comparison == Comparison::None)
        return kUncomparable;
    if (isReference)
        return kReference;
    switch (field.FieldType) {
    case ftDate:
    case ftDateTime:
        return field.Storage == dsEpochSeconds        ? kSeconds
               : field.Storage == dsEpochMilliseconds ? kMilliseconds
                                                      : kDay;
    case ftTime:
        return kTime;
    case ftBoolean:
        return kTruth;
    case ftGuid:
        return kReference;
    case ftFixedChar:
        return kPadded;
    default:
        return IsNumber(field.FieldType) ? kNumber : comparison == Comparison::Text ? kText : kOther;
    }
}

// An operator that the host has added to the model. What is for texts alone looks for parts of them.
bool hostOffers(const TDSOperator& op, const TDSField& field, Comparison comparison) {
    if (comparison == Comparison::None)
        return op.GetParamCount() == 0 && op.AppliedTypes.Contains(field.FieldType);
    const bool isLikeText = field.FieldType == ftFixedChar || field.FieldType == ftGuid;
    return op.AppliedTypes.Contains(isLikeText ? ftString : field.FieldType) &&
           (comparison == Comparison::Text || op.AppliedTypes.Contains(ftInteger));
}

} // namespace

void addFilledOperators(TVCustomDBStructure& model, const TDialect& dialect) {
    for (const FilledOperator& op : operators) {
        const std::string sql = templateOf(op, dialect);
        const std::optional<std::string> caption = captionOf(model, op);
        if (sql.empty() || !caption)
            continue;
        const bool isRange = op.text.find("@2") != std::string_view::npos;
        const int index = model.AddUpdateOperator(
            true, op.name, *caption, sql, isRange ? Message(msgAndWord) : std::string(), typesOf(op.kinds));
        model.GetOperator(index)->ValueKind = op.valueKind;
        model.GetOperator(index)->ExprType = op.form == fYear || op.form == fMonth ? ftInteger : ftUnknown;
    }
}

void chooseOperators(TDSField& field, Comparison comparison, bool isReference) {
    const TVCustomDBStructure& model = field.GetTable()->GetStructure();
    const unsigned kind = kindOf(field, comparison, isReference);
    while (field.GetOperatCount() > 0)
        field.DelOperator(field.GetOperatCount() - 1);
    for (const FilledOperator& op : operators)
        if (TDSOperator* const known = op.kinds & kind ? model.OperatorByName(op.name) : nullptr)
            field.AddOperator(known);
    for (int i = 0; i < model.GetOperatCount(); ++i)
        if (TDSOperator* const op = model.GetOperator(i);
            !find(op->GetName()) && hostOffers(*op, field, comparison))
            field.AddOperator(op);
}

void dropUnusedOperators(TVCustomDBStructure& model) {
    std::unordered_set<const TDSOperator*> used;
    for (int i = 0; i < model.GetFieldCount(); ++i)
        used.insert(model.GetField(i)->GetOperators().begin(), model.GetField(i)->GetOperators().end());
    for (int i = model.GetOperatCount() - 1; i >= 0; --i) {
        const TDSOperator& op = *model.GetOperator(i);
        if (used.count(&op) == 0 && find(op.GetName()) && !defaultOperator(op.GetName()))
            model.DelOperator(i);
    }
}

} // namespace lumora
