#include "lumora/model/sql_pattern.h"
#include "lumora/model/sql_template.h"

#include <gtest/gtest.h>

using namespace lumora;

namespace {

// A plan as text: fields as {f}, values as {1}, or [1] inside a literal.
std::string Shown(const std::string& text, bool strict, std::initializer_list<TValueEntry> entries) {
    TSQLTemplate sql;
    sql.SetText(text);
    TPlanRequest request;
    request.HasField = true;
    request.Strict = strict;
    for (const TValueEntry entry : entries)
        request.SetEntry(++request.ValueCount, entry);
    std::string shown;
    TTemplatePlan spare;
    for (const TTemplatePiece& piece : sql.Plan(request, spare).Pieces)
        switch (piece.Kind) {
        case tpLiteral:
            shown += piece.Text;
            break;
        case tpField:
            shown += "{f}";
            break;
        default:
            shown +=
                (piece.InLiteral ? "[" : "{") + std::to_string(piece.Value) + (piece.InLiteral ? "]" : "}");
        }
    return shown;
}

// What a pattern captures, "no" when it does not match.
std::string Captured(const char* pattern, const std::string& left, const std::string& rest) {
    std::vector<TCapture> values;
    if (!TSQLPattern(pattern).Match(left + rest, 0, left.size(), values))
        return "no";
    std::string text;
    for (const TCapture& value : values)
        text += value.Text + "|";
    return text;
}

} // namespace

TEST(SQLTemplate, IsWorkedOutForEachWayValuesEnter) {
    EXPECT_EQ(Shown("@f between '@1' and '@2'", false, {veBare, veStretch}), "{f} between '[1]' and {2}");
    EXPECT_EQ(Shown("@f in (@1)", false, {veStretch}), "{1}");
    EXPECT_EQ(Shown("@f in (@1)", true, {veStretch}), "{f} in ({1})");
    EXPECT_EQ(Shown("'x' || @f || 'a@1b' || '@1'", true, {veStretch}), "'x' || {f} || {1} || {1}");
    EXPECT_EQ(Shown("'@f' = '@1", false, {veBare}), "'{f}' = '[1]");
    EXPECT_EQ(Shown("@10 @1", false, {veBare}), "{1}0 {1}");
    TSQLTemplate many;
    std::string text;
    for (int i = 1; i < 3000; ++i)
        text += "@" + std::to_string(i);
    many.SetText(text);
    EXPECT_EQ(many.GetParamCount(), MaxTemplateValues);
    many.SetText("(a or b) and 'or'");
    EXPECT_FALSE(many.HasOuterOr());
    many.SetText("(@f = 1) OR @f = 2");
    EXPECT_TRUE(many.HasOuterOr());
}

TEST(SQLTemplate, KeepsItsPlansUntilItsTextChanges) {
    TSQLTemplate sql;
    sql.SetText("@f @1");
    TTemplatePlan spare;
    TPlanRequest first;
    first.HasField = true;
    const TTemplatePlan* const plan = &sql.Plan(first, spare);
    bool isSpare = false;
    for (int values = 1; values < 1000; ++values) { // far more than a template keeps
        TPlanRequest request;
        request.ValueCount = values;
        TTemplatePlan own;
        isSpare = &sql.Plan(request, own) == &own;
        EXPECT_EQ((isSpare ? own : sql.Plan(request, spare)).Pieces.size(), 2u);
    }
    EXPECT_TRUE(isSpare);
    EXPECT_EQ(&sql.Plan(first, spare), plan);
    EXPECT_EQ(plan->Pieces.front().Kind, tpField);
    sql.SetText("@f");
    EXPECT_EQ(sql.Plan(first, spare).Pieces.size(), 1u);
}

TEST(SQLPattern, CapturesWhatStoodInTheTemplate) {
    EXPECT_EQ(Captured("@f = '@1'", "a.b", " = 'it''s = 1'"), "it's = 1|");
    EXPECT_EQ(Captured("@f = '@1'", "a.b", "= 12"), "12|");
    EXPECT_EQ(Captured("@f >'@1'", "a.b", " > = 12"), "no");
    EXPECT_EQ(Captured("@f IN (@1)", "a", " in (f(1, ')'), 2)"), "f(1, ')'), 2|");
    EXPECT_EQ(Captured("@f between '@1' and '@2'", "a", " between 'x and y' and (1 and 2)"),
              "x and y|(1 and 2)|");
    EXPECT_EQ(Captured("@f like '@1%'", "a", " like 'x%'"), "x|");
    EXPECT_EQ(Captured("@f like '@1%'", "a", " like '%x%'"), "no");
    EXPECT_EQ(Captured("@f like '%@1%'", "a", " like '%'"), "no");
    EXPECT_EQ(Captured("@f is null", "a", " IS  Null"), "");
    EXPECT_EQ(Captured("@f = '@1'", "a", " = 1 and more"), "1 and more|");
    EXPECT_EQ(Captured("f(@f, @1, @1)", "a", ""), "no");
    EXPECT_EQ(Captured("@f > @1", "a", " >"), "no");
    EXPECT_EQ(Captured("@f > @120", "a", " > x0"), "|||||||||||x|"); // numbers have two digits
    EXPECT_EQ(Captured("@f in (@1)", "a", " in (1"), "no");
    EXPECT_EQ(Captured("@f near @1 '@2'", "a", " near 1 'x'"), "1|x|");
    std::string endless; // no pattern takes for ever
    for (int i = 1; i < 90; ++i)
        endless += "@" + std::to_string(i) + ",";
    EXPECT_EQ(Captured(("@f" + endless + "!").c_str(), "a", std::string(20'000, ',')), "no");
}

TEST(SQLPattern, FindsTheFieldByItself) {
    const auto found = [](const char* pattern, const char* text) {
        std::vector<TCapture> values;
        std::string_view field;
        if (!TSQLPattern(pattern).Match(text, field, values))
            return std::string("no");
        std::string shown(field);
        for (const TCapture& value : values)
            shown.append("|").append(value.Text);
        return shown;
    };
    EXPECT_EQ(found("upper(@f) = '@1'", "UPPER ( trim(a)) = 'X'"), "trim(a)|X");
    EXPECT_EQ(found("upper(@f) = '@1'", "upper(a = 'X'"), "no");
    EXPECT_EQ(found("coalesce(@f, 0) = @1", "coalesce(\"a,b\",0)=7"), "\"a,b\"|7");
    EXPECT_EQ(found("@f is null or @f > '@1'", "a.b is null or a.b > 'x'"), "a.b|x");
    EXPECT_EQ(found("@f is null or @f > '@1'", "a.b is null or a.c > 'x'"), "no");
    EXPECT_EQ(found("@f > '@1' or @f < '@1'", "a > 'x' or a < 'x'"), "a|x");
    EXPECT_EQ(found("@f > '@1' or @f < '@1'", "a > 'x' or a < 'y'"), "no");
}
