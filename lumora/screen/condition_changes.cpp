#include "lumora/screen/condition_changes.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/one_change.h"
#include "lumora/query/value_text.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/row_problems.h"
#include "lumora/screen/value_lists.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

// One value as a list of one; of a list its first item.
std::string ConvertValue(const std::string& text, TValueKind from, TValueKind to) {
    if (from == to || text.empty())
        return text;
    if (from == vkSubQuery || to == vkSubQuery)
        return {};
    if (to == vkList)
        return JoinListValue({text});
    const std::vector<std::string> items = SplitListValue(text);
    return items.empty() ? std::string() : items.front();
}

// Without the items that the list does not have or that are no values.
std::string WithoutMisfits(const TFilterCond& condition, int value, const std::string& text) {
    const auto fits = [&](const std::string& part) {
        return IsInList(condition, value, part) && ValueRefusal(condition, value, part).empty();
    };
    if (condition.GetValueKind(value) != vkList)
        return fits(text) ? text : std::string();
    std::vector<std::string> items = SplitListValue(text);
    const std::size_t before = items.size();
    items.erase(std::remove_if(items.begin(), items.end(),
                               [&](const std::string& item) { return !fits(JoinListValue({item})); }),
                items.end());
    return items.size() == before ? text : JoinListValue(items);
}

class TValueKeeper {
public:
    explicit TValueKeeper(TSimpleCond& condition)
        : condition_(condition),
          there_(&condition),
          kind_(condition.GetValueKind(1)),
          field_(condition.GetField()) {}

    // After the change, the listeners of which may have deleted the condition.
    void Fit() {
        for (int value = 1; value <= 2; ++value)
            if (!there_ || !FitValue(value))
                return;
        if (kind_ == vkSubQuery && condition_.GetValueKind(1) != vkSubQuery) {
            condition_.SetSubQuery({});
            condition_.SetSubQueryOptions({});
            condition_.SetHint({});
        }
        TakeDefaultValue(condition_);
    }

private:
    bool FitValue(int value) {
        if (kind_ == vkSubQuery && condition_.GetValueKind(value) == vkSubQuery)
            return true;
        const std::string old = condition_.GetValue(value);
        const std::string converted = ConvertValue(old, kind_, condition_.GetValueKind(value));
        const std::string text = WithoutMisfits(condition_, value, converted);
        const bool keepsCaption = text == old && condition_.GetField() == field_;
        condition_.SetValue(value, text);
        if (!there_)
            return false;
        if (!keepsCaption && !condition_.GetValueIsParam(value))
            condition_.SetCaption(value, CaptionOfValue(condition_, value, text));
        return true;
    }

    TSimpleCond& condition_;
    TRowRef<TSimpleCond> there_;
    TValueKind kind_;
    const TDSField* field_;
};

} // namespace

void ChangeField(TQueryScreen& screen, TSimpleCond& condition, TDSField& field) {
    if (&field == condition.GetField())
        return;
    AsOneChange(screen.GetQuery(), [&] {
        TValueKeeper keeper(condition);
        condition.SetField(&field);
        keeper.Fit();
    });
}

void ChangeOperator(TQueryScreen& screen, TSimpleCond& condition, TDSOperator& op) {
    if (&op == condition.GetOperator())
        return;
    AsOneChange(screen.GetQuery(), [&] {
        TValueKeeper keeper(condition);
        condition.SetOperator(&op);
        keeper.Fit();
    });
}

void ChangeValue(TQueryScreen& screen, TFilterCond& condition, int value, const std::string& text,
                 const std::string& caption) {
    if (condition.GetValueIsParam(value))
        return;
    const TRowRef<TFilterCond> there(&condition);
    if (text != condition.GetValue(value) || caption != condition.GetCaption(value))
        AsOneChange(screen.GetQuery(), [&] {
            condition.SetValue(value, text);
            if (there)
                condition.SetCaption(value, caption);
        });
    if (there)
        screen.Host().ValueSet(condition, value);
}

// The value is the SQL in one line; the hint shows its lines.
void ChangeSubQuery(TQueryScreen& screen, TFilterCond& condition, int value, const TStringList& lines,
                    const std::string& sql, TSQLOptions options) {
    AsOneChange(screen.GetQuery(), [&] {
        const std::string text(Trim(sql));
        condition.SetSubQuery(lines);
        condition.SetSubQueryOptions(options);
        condition.SetHint(text);
        ChangeValue(screen, condition, value, ReplaceText(text, "\n", " "),
                    screen.GetTitle("ttlSubQueryCaption"));
    });
}

void TakeDefaultValue(TSimpleCond& condition) {
    const auto* const editor =
        condition.GetField() ? dynamic_cast<const TDSTextEditor*>(condition.GetField()->GetValueEditor())
                             : nullptr;
    const bool wanted = editor && !editor->DefValue.empty() && condition.GetValueCount() > 0 &&
                        condition.GetValueKind(1) == vkScalar && condition.GetValue(1).empty();
    if (wanted && ValueRefusal(condition, 1, editor->DefValue).empty())
        condition.SetValue(1, editor->DefValue);
}

} // namespace lumora
