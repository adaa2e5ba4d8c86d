// A word that looks like a link and drops down an editor, without its screen.
#pragma once

#include "lumora/controls/drop_down_editor.h"
#include "lumora/platform/color.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace lumora {

class TDropDownLabel {
public:
    // What is shown, and what drops down. The caption stays when the content changes.
    const std::string& GetCaption() const { return caption_; }
    void SetCaption(std::string_view caption) { Set(caption_, std::string(caption)); }
    const TDropDownContent& GetContent() const { return content_; }
    void SetContent(TDropDownContent content);
    TColor GetColor() const { return color_; }
    void SetColor(TColor color) { Set(color_, color); }
    // The caption; without one the prompt, and without that "...", so that there is something to click.
    std::string_view GetShownText() const;
    bool ShowsPrompt() const { return caption_.empty(); }

    bool GetEnabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    bool IsHovered() const { return hovered_; }
    void SetHovered(bool hovered) { Set(hovered_, hovered && enabled_); }
    bool IsFocused() const { return focused_; }
    void SetFocused(bool focused) { Set(focused_, focused); }
    // It stands out: the pointer is over it, the keyboard is on it, or its editor is open.
    bool IsHot() const { return enabled_ && (hovered_ || focused_ || IsOpen()); }

    // Something can be opened: an editor, or a window of the host's.
    bool CanOpen() const { return enabled_ && content_.Kind != ddNone; }
    bool IsOpen() const { return editor_ != nullptr; }
    // The open editor, which a popup may share; none when nothing opens (a dialog is the host's affair).
    std::shared_ptr<TDropDownEditor> Open();
    TDropDownEditor* GetEditor() { return editor_.get(); }
    // Takes what the editor gives and closes it; false, and the editor stays, when it gives nothing. The
    // caption and the content's text, current item and checks become those of the answer.
    bool Accept();
    // Takes an answer that was given elsewhere.
    void Take(const TDropDownResult& result);
    // Closes the editor; everything is as before.
    void Cancel();

    std::function<void()> OnInvalidate; // it looks different now
    std::function<void(const TDropDownResult&)> OnAccept;
    std::function<void()> OnCancel;

private:
    void Invalidate() const;
    void Close();
    template <typename T>
    void Set(T& member, T value) {
        if (member == value)
            return;
        member = std::move(value);
        Invalidate();
    }

    std::string caption_;
    TDropDownContent content_;
    TColor color_ = clBlue;
    bool enabled_ = true;
    bool hovered_ = false;
    bool focused_ = false;
    std::shared_ptr<TDropDownEditor> editor_;
};

} // namespace lumora
