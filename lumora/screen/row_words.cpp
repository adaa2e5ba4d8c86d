#include "lumora/screen/row_words.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/sql_params.h"
#include "lumora/screen/query_screen.h"
#include "lumora/support/messages.h"

namespace lumora {

namespace {

class TWordMaker {
public:
    TWordMaker(const TQueryScreen& screen, bool prompts) : screen_(screen), prompts_(prompts) {}

    std::vector<TRowWord> Make(const TFilterRow& row) {
        if (screen_.GetAppearance().GetStyle() == psAndOr)
            AddAndOr(row);
        switch (row.GetRowType()) {
        case frtBracket:
            AddBracket(static_cast<const TFilterBracket&>(row));
            break;
        case frtSimpleCondition:
            AddSimple(static_cast<const TSimpleCond&>(row));
            break;
        case frtCustomCondition:
            AddCustom(static_cast<const TCustomCond&>(row));
            break;
        }
        return std::move(words_);
    }

private:
    void Add(TWordRole role, std::string_view caption, int value = 0) {
        caption = Trim(caption);
        if (!caption.empty() && words_.size() < MaxRowWords)
            words_.push_back({role, std::string(caption), value, false});
    }

    // A word that may still have nothing to say.
    void AddOrPrompt(TWordRole role, std::string_view caption, TMessageId prompt, int value = 0) {
        const bool isPrompt = prompts_ && Trim(caption).empty();
        const std::size_t count = words_.size();
        Add(role, isPrompt ? std::string_view(Message(prompt)) : caption, value);
        if (words_.size() > count)
            words_.back().IsPrompt = isPrompt;
    }

    // The word stands before all rows of a bracket but the first.
    void AddAndOr(const TFilterRow& row) {
        if (!row.GetParent() || row.GetIndex() == 0)
            return;
        const TFilterLinkType link = row.GetParent()->GetLinkType();
        Add(wrAndOr, screen_.GetTitle(link == fltAny || link == fltNone ? "ttlOr" : "ttlAnd"));
    }

    void AddBracket(const TFilterBracket& bracket) {
        static constexpr std::string_view linkTitles[] = {"ttlAll", "ttlAny", "ttlNone", "ttlNotAll"};
        const std::string title = screen_.GetTitle(bracket.GetParent() ? "ttlBracket" : "ttlFilter");
        const std::size_t at = std::min(title.find('@'), title.size());
        Add(wrText, title.substr(0, at));
        if (at < title.size()) {
            Add(wrLinkWord, screen_.GetTitle(linkTitles[bracket.GetLinkType()]));
            Add(wrText, title.substr(at + 1));
        }
    }

    void AddValue(const TFilterCond& condition, int value) {
        const TMessageId prompt =
            condition.GetValueKind(value) == vkSubQuery ? msgSubQueryPrompt : msgValuePrompt;
        if (const TSQLParam* const param = condition.GetParam(value))
            AddOrPrompt(wrValue, param->Caption, prompt, value);
        else
            AddOrPrompt(wrValue, CaptionOf(condition, value), prompt, value);
    }

    std::string CaptionOf(const TFilterCond& condition, int value) const {
        if (!condition.GetCaption(value).empty())
            return condition.GetCaption(value);
        const TUserFormats* const formats = screen_.GetUserFormats();
        return formats ? ShownValue(*formats, condition, value, condition.GetValue(value))
                       : condition.GetValue(value);
    }

    void AddSimple(const TSimpleCond& condition) {
        const TDSField* const field = condition.GetField();
        const TDSOperator* const op = condition.GetOperator();
        AddOrPrompt(wrField, field ? field->GetDisplayName() : std::string(), msgFieldPrompt);
        AddOrPrompt(wrOperator, op ? op->DisplayName : std::string(), msgOperatorPrompt);
        for (int value = 1; value <= condition.GetValueCount(); ++value) {
            if (value > 1)
                Add(wrText, op->ValFormat);
            AddValue(condition, value);
        }
    }

    void AddCustom(const TCustomCond& condition) {
        const TDSCondition* const model = condition.GetCondition();
        if (!model)
            return;
        const std::string& format = model->GetDisplayFormat();
        if (model->Values.empty())
            Add(wrText, format);
        for (int value = 1; value <= condition.GetValueCount(); ++value) {
            Add(wrText, model->Values[static_cast<std::size_t>(value - 1)].Text);
            AddValue(condition, value);
        }
        if (const std::size_t last = format.rfind('@'); last != std::string::npos)
            Add(wrText, format.substr(last + 1));
    }

    const TQueryScreen& screen_;
    bool prompts_;
    std::vector<TRowWord> words_;
};

} // namespace

std::vector<TRowWord> RowWords(const TQueryScreen& screen, const TFilterRow& row, bool prompts) {
    return TWordMaker(screen, prompts).Make(row);
}

std::string RowText(const TQueryScreen& screen, const TFilterRow& row) {
    std::string text;
    for (const TRowWord& word : RowWords(screen, row))
        text.append(" ").append(word.Caption);
    return text;
}

} // namespace lumora
