// Text extents as Qt draws texts.
#pragma once

#include "lumora/platform/text_metrics.h"

#include <QFont>

namespace lumora {

class TextMeasurer : public TTextMeasurer {
public:
    TSize TextExtent(const TFont& font, std::string_view text) const override;
};

// A font without a name is the application's.
QFont toQFont(const TFont& font);
TFont fromQFont(const QFont& font);

} // namespace lumora
