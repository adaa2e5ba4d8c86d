// Which operator of a field says what a condition of a strict statement says.
#pragma once

#include "lumora/model/sql_pattern.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSField;
class TDSOperator;
class TVCustomDBStructure;
struct TDialect;

// An operator that fits a condition, and the values that stood in its places.
struct TSQLFit {
    TDSOperator* Operator = nullptr;
    TDSField* Field = nullptr;
    bool Opposite = false; // the condition holds where the operator's does not
    std::vector<TCapture> Values;
};

// Looks among the operators that the field offers and nowhere else. Whatever it finds holds for the same
// records, and is unknown for the same ones.
class TSQLOperators {
public:
    TSQLOperators(const TVCustomDBStructure& model, const TDialect& dialect)
        : model_(model), dialect_(dialect) {}

    // `onlyTrueCounts`: nothing around the condition negates it, so false and unknown are the same.
    TSQLFit Find(TDSField& field, const TSQLCondition& condition, bool onlyTrueCounts) const;
    // An operator whose template has more than the field on its left side, a function for example; for the
    // text of a condition, or of several.
    TSQLFit FindAround(std::string_view text) const;

private:
    static constexpr std::size_t BehindNot = 4; // where the field begins in "not(...)"

    // A way to write a condition.
    struct TForm {
        std::string Text;
        std::size_t FieldStart; // npos: anywhere
        bool IsPattern = false;
        bool IsEscaped = false;     // the statement names the escape character
        bool IsClauseNamed = false; // and so does this form
    };

    bool Match(TDSField& field, const TSQLCondition& condition, bool negated, bool onlyTrueCounts,
               TSQLFit& fit) const;
    std::vector<TForm> FormsOf(const TSQLCondition& condition, bool negated, bool onlyTrueCounts) const;
    static void AddNullForms(std::vector<TForm>& forms, const TSQLCondition& condition, bool isNull);
    static void AddDistinctForms(std::vector<TForm>& forms, const TSQLCondition& condition, bool differs,
                                 bool onlyTrueCounts);
    static void AddComparisonForms(std::vector<TForm>& forms, const TSQLCondition& condition,
                                   std::string_view op);
    TForm FormOfTemplate(const TDSOperator& op) const;
    void AddPatternForms(std::vector<TForm>& forms, const TSQLCondition& condition, bool negated) const;
    bool FitsPatterns(const TForm& form, const TDSOperator& op, const std::vector<TCapture>& values) const;

    const TVCustomDBStructure& model_;
    const TDialect& dialect_;
};

} // namespace lumora
