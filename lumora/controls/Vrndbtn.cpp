#include "lumora/controls/Vrndbtn.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/properties.h"

#include <algorithm>

namespace lumora {

namespace {

// The bytes of the UTF-8 character that begins at i.
std::string_view CharacterAt(std::string_view text, std::size_t i) {
    std::size_t end = i + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        ++end;
    return text.substr(i, end - i);
}

} // namespace

TVRndBtn::TVRndBtn(TComponent* owner) : TComponent(owner) {
    font_.OnChange = [this] {
        parentFont_ = false;
        FontChanged();
    };
}

std::span<const TPropertyInfo> TVRndBtn::PublishedProperties() const {
    using T = TVRndBtn;
    static const std::vector<TPropertyInfo> properties = [this] {
        std::vector<TPropertyInfo> own = {
            Property("Left", &T::GetLeft, &T::SetLeft, 0),
            Property("Top", &T::GetTop, &T::SetTop, 0),
            Property("Width", &T::GetWidth, &T::SetWidth, 0),
            Property("Height", &T::GetHeight, &T::SetHeight, 0),
            Property("AutoSize", &T::GetAutoSize, &T::SetAutoSize, false),
            Property("AllowPress", &T::GetAllowPress, &T::SetAllowPress, false),
            Property("Caption", &T::GetCaption, &T::SetCaption, std::string()),
            Property("Enabled", &T::GetEnabled, &T::SetEnabled, true),
            Property("Flat", &T::GetFlat, &T::SetFlat, true),
            Property("Rounded", &T::GetRounded, &T::SetRounded, true),
            Property("OverColor", &T::GetOverColor, &T::SetOverColor, clSilver),
            Property("PressedColor", &T::GetPressedColor, &T::SetPressedColor, clBlack),
            ObjectProperty("Font", &T::GetFont),
            Property("Hint", &T::GetHint, &T::SetHint, std::string()),
            Property("Margin", &T::GetMargin, &T::SetMargin, -1),
            // After the font and ShowHint, whose setting ends them.
            Property("ParentFont", &T::GetParentFont, &T::SetParentFont, true),
            Property("ShowHint", &T::GetShowHint, &T::SetShowHint, false),
            Property("ParentShowHint", &T::GetParentShowHint, &T::SetParentShowHint, true),
            Property("Visible", &T::GetVisible, &T::SetVisible, true),
            EventProperty("OnClick"),
            EventProperty("OnDblClick"),
            EventProperty("OnMouseDown"),
            EventProperty("OnMouseMove"),
            EventProperty("OnMouseUp"),
        };
        // The place and Rounded have no stored default: a form always says them.
        for (TPropertyInfo& property : own)
            if (property.Name == "Left" || property.Name == "Top" || property.Name == "Width" ||
                property.Name == "Height" || property.Name == "Rounded")
                property.Default = {};
        return ExtendProperties(TComponent::PublishedProperties(), std::move(own));
    }();
    return properties;
}

void TVRndBtn::SetHost(TRndBtnHost* host) {
    host_ = host ? host : &noHost_;
    FontChanged();
}

void TVRndBtn::SetBounds(int left, int top, int width, int height) {
    width = std::max(width, 0);
    height = std::max(height, 0);
    if (left == left_ && top == top_ && width == width_ && height == height_)
        return;
    left_ = left;
    top_ = top;
    width_ = width;
    height_ = height;
    host_->BoundsChanged(*this);
    Invalidate();
}

void TVRndBtn::SetAutoSize(bool autoSize) {
    if (autoSize_ == autoSize)
        return;
    autoSize_ = autoSize;
    AdjustSize();
}

void TVRndBtn::SetCaption(const std::string& caption) {
    if (caption_ == caption)
        return;
    caption_ = caption;
    AdjustSize();
    Invalidate();
}

void TVRndBtn::SetEnabled(bool enabled) {
    if (enabled_ == enabled)
        return;
    enabled_ = enabled;
    UpdateTracking();
    Invalidate();
}

void TVRndBtn::SetFlat(bool flat) {
    if (flat_ == flat)
        return;
    flat_ = flat;
    if (flat)
        controlStyle_.Exclude(csOpaque);
    else
        controlStyle_.Include(csOpaque);
    Invalidate();
}

void TVRndBtn::SetMargin(int margin) {
    if (margin >= -1)
        Set(margin_, margin);
}

void TVRndBtn::SetParentFont(bool parentFont) {
    if (parentFont_ == parentFont)
        return;
    if (parentFont)
        font_.Assign(TControlFont());
    parentFont_ = parentFont;
    FontChanged();
}

void TVRndBtn::SetShowHint(bool showHint) {
    showHint_ = showHint;
    parentShowHint_ = false;
}

TColor TVRndBtn::GetColor() const {
    return parentColor_ ? host_->ParentColor() : color_;
}

void TVRndBtn::SetColor(TColor color) {
    if (!parentColor_ && color_ == color)
        return;
    color_ = color;
    parentColor_ = false;
    Invalidate();
}

std::string TVRndBtn::GetShownCaption(int* accelerator) const {
    int position = -1;
    std::string shown;
    for (std::size_t i = 0; i < caption_.size(); ++i) {
        if (caption_[i] == '&' && ++i < caption_.size() && caption_[i] != '&' && position < 0)
            position = static_cast<int>(shown.size());
        if (i < caption_.size())
            shown += caption_[i];
    }
    if (accelerator)
        *accelerator = position;
    return shown;
}

void TVRndBtn::MouseDown(TMouseButton button, int x, int y) {
    const std::weak_ptr<char> alive = alive_;
    if (OnMouseDown)
        OnMouseDown(*this, button, x, y);
    if (alive.expired() || button != mbLeft || !enabled_)
        return;
    state_ = rbsDown;
    tracking_ = true;
    Invalidate();
}

void TVRndBtn::MouseMove(int x, int y) {
    const std::weak_ptr<char> alive = alive_;
    if (OnMouseMove)
        OnMouseMove(*this, x, y);
    if (!alive.expired() && tracking_)
        SetState(IsInside(x, y) ? rbsDown : rbsUp);
}

void TVRndBtn::MouseUp(TMouseButton button, int x, int y) {
    const std::weak_ptr<char> alive = alive_;
    if (OnMouseUp)
        OnMouseUp(*this, button, x, y);
    if (alive.expired() || !tracking_ || button != mbLeft)
        return;
    tracking_ = false;
    state_ = rbsUp;
    mouseInControl_ = false;
    if (IsInside(x, y)) {
        Invalidate();
        if (enabled_) // it may have been disabled while it was held
            Click();
        if (alive.expired())
            return;
    }
    UpdateTracking();
}

void TVRndBtn::DblClick() {
    if (OnDblClick)
        OnDblClick(*this);
}

void TVRndBtn::MouseEnter() {
    if (mouseInControl_ || !enabled_)
        return;
    mouseInControl_ = true;
    Invalidate();
}

void TVRndBtn::MouseLeave() {
    if (!mouseInControl_ || !enabled_ || tracking_)
        return;
    mouseInControl_ = false;
    Invalidate();
}

bool TVRndBtn::DialogChar(std::string_view character) {
    int accelerator = -1;
    const std::string shown = GetShownCaption(&accelerator);
    if (!enabled_ || accelerator < 0 ||
        !SameText(CharacterAt(shown, static_cast<std::size_t>(accelerator)), character))
        return false;
    Click();
    return true;
}

void TVRndBtn::ParentFontChanged() {
    if (parentFont_)
        FontChanged();
}

void TVRndBtn::Click() {
    if (OnClick)
        OnClick(*this);
}

void TVRndBtn::AdjustSize() {
    if (!autoSize_)
        return;
    const TSize text = host_->TextExtent(GetShownFont(), GetShownCaption());
    SetBounds(left_, top_, text.Width + 10, text.Height + 1);
}

void TVRndBtn::UpdateTracking() {
    if (!flat_ || !enabled_)
        return;
    // The flag is set to what is not so, and the notification turns it round and repaints.
    mouseInControl_ = !host_->IsUnderPointer(*this);
    if (mouseInControl_)
        MouseLeave();
    else
        MouseEnter();
}

void TVRndBtn::Paint(TCanvas& canvas) {
    const int corner = rounded_ ? height_ * 3 / 4 : 0;
    canvas.SetPenStyle(psClear);
    canvas.SetBrushStyle(bsSolid);
    canvas.SetBrushColor(state_ == rbsDown ? pressedColor_ : mouseInControl_ ? overColor_ : GetColor());
    canvas.RoundRect(0, 0, width_, height_, corner, corner);
    PaintCaption(canvas);
    if (IsRaisedOrSunken())
        return PaintRelief(canvas, corner);
    canvas.SetPenColor(clGray);
    canvas.RoundRect(0, 0, width_, height_, corner, corner);
}

void TVRndBtn::Loaded() {
    TComponent::Loaded();
    state_ = enabled_ ? rbsUp : rbsDisabled;
}

void TVRndBtn::Invalidate() {
    host_->Invalidate(*this);
}

void TVRndBtn::SetState(TRndBtnState state) {
    Set(state_, state);
}

void TVRndBtn::FontChanged() {
    AdjustSize();
    Invalidate();
}

// The row just below the bottom still counts, the column right of the right edge does not.
bool TVRndBtn::IsInside(int x, int y) const {
    return x >= 0 && x < width_ && y >= 0 && y <= height_;
}

void TVRndBtn::PaintCaption(TCanvas& canvas) {
    canvas.SetBrushStyle(bsClear);
    canvas.SetPenStyle(psSolid);
    int accelerator = -1;
    const std::string shown = GetShownCaption(&accelerator);
    const int moved = allowPress_ && state_ == rbsDown ? 1 : 0;
    const int x = (width_ - canvas.TextExtent(shown).Width) / 2 + moved;
    const int y = (height_ - canvas.TextExtent("A").Height) / 2 + moved;
    canvas.SetFontColor(!allowPress_ && state_ == rbsDown ? clWhite : font_.GetColor());
    canvas.TextOut(x, y, shown, accelerator);
}

// The outline twice, each time through a clipping region that leaves only one side of it.
void TVRndBtn::PaintRelief(TCanvas& canvas, int corner) {
    const int dx = rounded_ ? 2 : 1;
    const int dy = rounded_ ? corner / 4 : 1;
    const bool sunken = state_ == rbsDown;
    canvas.OffsetClipRegion(-1, -1);
    canvas.SetPenColor(sunken ? clBlack : clWhite);
    canvas.RoundRect(0, 0, width_, height_, corner, corner);
    canvas.OffsetClipRegion(dx + 1, dy + 1);
    canvas.SetPenColor(sunken ? clWhite : clBlack);
    canvas.RoundRect(0, 0, width_, height_, corner, corner);
    canvas.OffsetClipRegion(-dx, -dy);
}

} // namespace lumora
