// The round button: a small push button with a rounded outline that is drawn on its owner's surface.
#pragma once

#include "lumora/platform/component.h"
#include "lumora/platform/control_font.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace lumora {

class TVRndBtn;

enum TMouseButton : std::uint8_t { mbLeft, mbRight, mbMiddle };
enum TRndBtnState : std::uint8_t { rbsUp, rbsDisabled, rbsDown, rbsExclusive /* never entered */ };

enum TControlStyleItem : std::uint8_t { csCaptureMouse, csOpaque, csDoubleClicks };
using TControlStyle = TEnumSet<TControlStyleItem>;

// What a button asks of the surface that it stands on.
class TRndBtnHost {
public:
    virtual ~TRndBtnHost() = default;

    virtual void Invalidate(TVRndBtn&) {}
    virtual void BoundsChanged(TVRndBtn&) {}
    // The button is what lies under the pointer now, enabled or not.
    virtual bool IsUnderPointer(const TVRndBtn&) const { return false; }
    virtual TSize TextExtent(const TFont&, std::string_view /*text*/) const { return {}; }
    virtual TColor ParentColor() const { return clBtnFace; }
    virtual TFont ParentFont() const { return {}; }
};

class TVRndBtn : public TComponent {
public:
    explicit TVRndBtn(TComponent* owner = nullptr);

    std::string_view ClassName() const override { return "TVRndBtn"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // The host is the caller's and may be none; it is to outlive the button or be taken away before it goes.
    void SetHost(TRndBtnHost* host);

    int GetLeft() const { return left_; }
    void SetLeft(int left) { SetBounds(left, top_, width_, height_); }
    int GetTop() const { return top_; }
    void SetTop(int top) { SetBounds(left_, top, width_, height_); }
    int GetWidth() const { return width_; }
    void SetWidth(int width) { SetBounds(left_, top_, width, height_); }
    int GetHeight() const { return height_; }
    void SetHeight(int height) { SetBounds(left_, top_, width_, height); }
    void SetBounds(int left, int top, int width, int height); // a size below 0 counts as 0

    bool GetAutoSize() const { return autoSize_; } // the size follows the caption
    void SetAutoSize(bool autoSize);
    bool GetAllowPress() const { return allowPress_; } // a relief, and the caption moves when pressed
    void SetAllowPress(bool allowPress) { Set(allowPress_, allowPress); }
    const std::string& GetCaption() const { return caption_; } // "&" marks the accelerator, "&&" is an "&"
    void SetCaption(const std::string& caption);
    bool GetEnabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    bool GetFlat() const { return flat_; } // relief only under the pointer
    void SetFlat(bool flat);
    bool GetRounded() const { return rounded_; }
    void SetRounded(bool rounded) { Set(rounded_, rounded); }
    TColor GetOverColor() const { return overColor_; }
    void SetOverColor(TColor color) { Set(overColor_, color); }
    TColor GetPressedColor() const { return pressedColor_; }
    void SetPressedColor(TColor color) { Set(pressedColor_, color); }
    int GetMargin() const { return margin_; } // kept, and not used in drawing; below -1 it stays as it was
    void SetMargin(int margin);
    bool GetVisible() const { return visible_; }
    void SetVisible(bool visible) { Set(visible_, visible); }
    TControlFont& GetFont() { return font_; } // its own, with ParentFont unused; a change ends ParentFont
    TFont GetShownFont() const { return parentFont_ ? host_->ParentFont() : font_.GetFont(); }
    bool GetParentFont() const { return parentFont_; }
    void SetParentFont(bool parentFont);
    const std::string& GetHint() const { return hint_; }
    void SetHint(const std::string& hint) { hint_ = hint; }
    bool GetShowHint() const { return showHint_; } // setting it ends ParentShowHint
    void SetShowHint(bool showHint);
    bool GetParentShowHint() const { return parentShowHint_; }
    void SetParentShowHint(bool parentShowHint) { parentShowHint_ = parentShowHint; }
    // The normal fill: the parent's colour until another is set.
    TColor GetColor() const;
    void SetColor(TColor color);
    bool GetParentColor() const { return parentColor_; }
    void SetParentColor(bool parentColor) { Set(parentColor_, parentColor); }

    TControlStyle GetControlStyle() const { return controlStyle_; }
    TRndBtnState GetState() const { return state_; }
    bool IsMouseInControl() const { return mouseInControl_; }
    bool IsTracking() const { return tracking_; } // the left button went down here and is still held

    // The caption as it is shown, without its marks, and the byte in it where the accelerator is; -1: none.
    std::string GetShownCaption(int* accelerator = nullptr) const;

    // Events of the surface, with coordinates inside the button. A handler may free the button.
    void MouseDown(TMouseButton button, int x, int y);
    void MouseMove(int x, int y);
    void MouseUp(TMouseButton button, int x, int y);
    void DblClick();
    void MouseEnter();
    void MouseLeave();
    // True when the character (UTF-8) is the caption's accelerator and has clicked.
    bool DialogChar(std::string_view character);
    // The parent's font has changed.
    void ParentFontChanged();
    void Click();
    void AdjustSize();     // to the caption, with AutoSize only
    void UpdateTracking(); // finds out anew whether the pointer is over the button

    void Paint(TCanvas& canvas);

    std::function<void(TVRndBtn&)> OnClick;
    std::function<void(TVRndBtn&)> OnDblClick;
    std::function<void(TVRndBtn&, TMouseButton, int x, int y)> OnMouseDown;
    std::function<void(TVRndBtn&, int x, int y)> OnMouseMove;
    std::function<void(TVRndBtn&, TMouseButton, int x, int y)> OnMouseUp;

protected:
    void Loaded() override;

private:
    void Invalidate();
    template <typename T>
    void Set(T& member, T value) {
        if (member == value)
            return;
        member = value;
        Invalidate();
    }
    void SetState(TRndBtnState state);
    void FontChanged();
    bool IsInside(int x, int y) const;
    bool IsRaisedOrSunken() const { return allowPress_ && (!flat_ || mouseInControl_); }
    void PaintCaption(TCanvas& canvas);
    void PaintRelief(TCanvas& canvas, int corner);

    TRndBtnHost noHost_;
    TRndBtnHost* host_ = &noHost_;
    int left_ = 0;
    int top_ = 0;
    int width_ = 25;
    int height_ = 18;
    std::string caption_;
    std::string hint_;
    TControlFont font_;
    TColor color_ = clBtnFace;
    TColor overColor_ = clSilver;
    TColor pressedColor_ = clBlack;
    int margin_ = -1;
    bool autoSize_ = false;
    bool allowPress_ = false;
    bool enabled_ = true;
    bool flat_ = true;
    bool rounded_ = true;
    bool visible_ = true;
    bool parentFont_ = true;
    bool parentColor_ = true;
    bool showHint_ = false;
    bool parentShowHint_ = true;
    // Opaque although flat, until Flat is set again.
    TControlStyle controlStyle_ = {csCaptureMouse, csOpaque, csDoubleClicks};
    TRndBtnState state_ = rbsUp;
    bool mouseInControl_ = false;
    bool tracking_ = false;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); // tells whether a handler freed the button
};

} // namespace lumora
