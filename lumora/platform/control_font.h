// The font of a control, as it is published.
#pragma once

#include "lumora/platform/canvas.h"
#include "lumora/platform/enum_names.h"
#include "lumora/platform/enum_set.h"
#include "lumora/platform/persistent.h"

#include <functional>

namespace lumora {

enum TFontStyle : std::uint8_t { fsBold, fsItalic, fsUnderline };
template <>
struct TEnumNames<TFontStyle> {
    static constexpr std::string_view Names[] = {"fsBold", "fsItalic", "fsUnderline"};
};
using TFontStyles = TEnumSet<TFontStyle>;

class TControlFont : public TPersistent {
public:
    std::string_view ClassName() const override { return "TFont"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // A font without a name is the screen's own.
    const TFont& GetFont() const { return font_; }
    void SetFont(const TFont& font);
    TColor GetColor() const { return color_; }
    void SetColor(TColor color);
    const std::string& GetName() const { return font_.Name; }
    void SetName(const std::string& name);
    int GetSize() const { return font_.PointSize; }
    void SetSize(int size);
    TFontStyles GetStyle() const;
    void SetStyle(TFontStyles style);

    std::function<void()> OnChange;

protected:
    void AssignTo(TPersistent& dest) const override;

private:
    TFont font_;
    TColor color_ = clWindowText;
};

} // namespace lumora
