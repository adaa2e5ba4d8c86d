// SQL templates of operators and predefined conditions, and how their placeholders are filled.
//
// "@f" stands for the condition's field, "@t" for its first table, "@m" for the query's first table, "@1",
// "@2", ... for the values, "@v" for a parameter's value pattern. A template is worked out once for each way
// in which its values can enter (a plan) and then filled by appending pieces; nothing is ever searched in
// text that was put in.
#pragma once

#include "lumora/model/comparison_form.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

enum TValueEntry : std::uint8_t {
    veBare,    // the placeholder alone is replaced
    veStretch, // with it everything from the nearest "'" before to the nearest "'" after it, or to the text's
               // ends
    veParameter // as veStretch, by the parameter's name; the stretch gives the parameter's value pattern
};

// A template takes no more values than this.
inline constexpr int MaxTemplateValues = 99;

// What decides a plan.
struct TPlanRequest {
    bool HasField = false;     // "@f" is replaced
    bool HasTable = false;     // "@t" is replaced
    bool HasMainTable = false; // "@m" is replaced
    bool Strict = false;       // a placeholder outside a quoted literal is always replaced alone
    int ValueCount = 0;
    std::uint64_t Entries = 0; // two bits for each of the first 24 values; later values enter as the 24th

    void SetEntry(int value, TValueEntry entry);
    TValueEntry GetEntry(int value) const;
    std::uint64_t Key() const;
};

enum TPieceKind : std::uint8_t {
    tpLiteral,
    tpField,
    tpTable,
    tpMainTable,
    tpValue,
    tpParamName,
    tpParamPattern
};

struct TTemplatePiece {
    TPieceKind Kind = tpLiteral;
    bool InLiteral = false; // a value that stands inside a quoted literal of the template
    int Value = 0;          // which value, from 1
    std::string Text;       // of a literal
};

struct TTemplatePlan {
    std::vector<TTemplatePiece> Pieces;
    // For each value that is a parameter and occurs, the pieces of its value pattern.
    struct TPattern {
        int Value;
        std::vector<TTemplatePiece> Pieces;
    };
    std::vector<TPattern> Patterns;
};

class TSQLTemplate {
public:
    TSQLTemplate();
    ~TSQLTemplate();
    TSQLTemplate(const TSQLTemplate&) = delete;
    TSQLTemplate& operator=(const TSQLTemplate&) = delete;

    const std::string& GetText() const { return text_; }
    void SetText(std::string text);

    // The number of values: the smallest n for which "@" and n + 1 do not occur, MaxTemplateValues at most.
    int GetParamCount() const { return paramCount_; }
    // An "or" stands outside all parentheses, so what the template makes must be bracketed to hold together.
    bool HasOuterOr() const { return hasOuterOr_; }
    // What it compares the field with.
    const std::vector<TComparisonPiece>& GetComparisons() const { return comparisons_; }
    // The plan for a request. It is the template's own and holds until the text changes; when the template
    // keeps as many as it may, the plan is made in `spare`. Many threads may ask at once.
    const TTemplatePlan& Plan(const TPlanRequest& request, TTemplatePlan& spare) const;

private:
    struct TKeptPlan;

    const TKeptPlan* FindPlan(const TPlanRequest& request) const;
    void ForgetPlans();

    std::string text_;
    int paramCount_ = 0;
    bool hasOuterOr_ = false;
    std::vector<TComparisonPiece> comparisons_;
    mutable std::atomic<const TKeptPlan*> plans_{nullptr}; // owned; each leads to the one kept before it
};

} // namespace lumora
