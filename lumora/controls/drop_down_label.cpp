#include "lumora/controls/drop_down_label.h"

namespace lumora {

void TDropDownLabel::SetContent(TDropDownContent content) {
    content_ = std::move(content);
    Invalidate();
}

std::string_view TDropDownLabel::GetShownText() const {
    if (!caption_.empty())
        return caption_;
    return content_.Prompt.empty() ? std::string_view("...") : std::string_view(content_.Prompt);
}

void TDropDownLabel::SetEnabled(bool enabled) {
    if (enabled_ == enabled)
        return;
    enabled_ = enabled;
    hovered_ = hovered_ && enabled;
    if (!enabled)
        Cancel();
    Invalidate();
}

std::shared_ptr<TDropDownEditor> TDropDownLabel::Open() {
    if (!CanOpen() || content_.Kind == ddDialog)
        return nullptr;
    if (!editor_) {
        editor_ = std::make_shared<TDropDownEditor>(content_);
        Invalidate();
    }
    return editor_;
}

bool TDropDownLabel::Accept() {
    if (!editor_)
        return false;
    const std::optional<TDropDownResult> result = editor_->Accept();
    if (result)
        Take(*result);
    return result.has_value();
}

void TDropDownLabel::Take(const TDropDownResult& result) {
    Close();
    caption_ = result.Text;
    content_.Text = result.Text;
    content_.CurrentItem = result.Item;
    if (result.Answer == daChecks) {
        for (TDropDownItem& item : content_.Items)
            item.Checked = false;
        for (const int item : result.Checks)
            if (item >= 0 && static_cast<std::size_t>(item) < content_.Items.size())
                content_.Items[static_cast<std::size_t>(item)].Checked = true;
    }
    Invalidate();
    if (OnAccept)
        OnAccept(result);
}

void TDropDownLabel::Cancel() {
    if (!editor_)
        return;
    Close();
    Invalidate();
    if (OnCancel)
        OnCancel();
}

void TDropDownLabel::Invalidate() const {
    if (OnInvalidate)
        OnInvalidate();
}

// Items that have been read are not read again.
void TDropDownLabel::Close() {
    if (editor_ && content_.LoadItems && !editor_->NeedsLoading()) {
        content_.Items = editor_->GetContent().Items;
        content_.LoadItems = nullptr;
    }
    editor_.reset();
}

} // namespace lumora
