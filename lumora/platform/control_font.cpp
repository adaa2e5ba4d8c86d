#include "lumora/platform/control_font.h"

#include "lumora/platform/properties.h"

namespace lumora {

namespace {

bool SameFont(const TFont& a, const TFont& b) {
    return a.Name == b.Name && a.PointSize == b.PointSize && a.Bold == b.Bold && a.Italic == b.Italic &&
           a.Underline == b.Underline;
}

} // namespace

std::span<const TPropertyInfo> TControlFont::PublishedProperties() const {
    using T = TControlFont;
    static const std::vector<TPropertyInfo> properties = {
        Property("Color", &T::GetColor, &T::SetColor, clWindowText),
        Property("Name", &T::GetName, &T::SetName, std::string()),
        Property("Size", &T::GetSize, &T::SetSize, TFont().PointSize),
        Property("Style", &T::GetStyle, &T::SetStyle, TFontStyles()),
    };
    return properties;
}

void TControlFont::SetFont(const TFont& font) {
    if (SameFont(font_, font))
        return;
    font_ = font;
    if (OnChange)
        OnChange();
}

void TControlFont::SetColor(TColor color) {
    if (color_ == color)
        return;
    color_ = color;
    if (OnChange)
        OnChange();
}

void TControlFont::SetName(const std::string& name) {
    TFont font = font_;
    font.Name = name;
    SetFont(font);
}

void TControlFont::SetSize(int size) {
    if (size <= 0)
        return;
    TFont font = font_;
    font.PointSize = size;
    SetFont(font);
}

TFontStyles TControlFont::GetStyle() const {
    TFontStyles style;
    if (font_.Bold)
        style.Include(fsBold);
    if (font_.Italic)
        style.Include(fsItalic);
    if (font_.Underline)
        style.Include(fsUnderline);
    return style;
}

void TControlFont::SetStyle(TFontStyles style) {
    TFont font = font_;
    font.Bold = style.Contains(fsBold);
    font.Italic = style.Contains(fsItalic);
    font.Underline = style.Contains(fsUnderline);
    SetFont(font);
}

void TControlFont::AssignTo(TPersistent& dest) const {
    auto* const other = dynamic_cast<TControlFont*>(&dest);
    if (!other)
        return TPersistent::AssignTo(dest);
    other->SetFont(font_);
    other->SetColor(color_);
}

} // namespace lumora
