// Text extents in the font that a widget draws with, whatever its size is given in.
#pragma once

#include "lumora/platform/text_metrics.h"

#include <QFont>
#include <QFontMetrics>

namespace lumora {

class FontMeasurer : public TTextMeasurer {
public:
    void setFont(const QFont& font) { metrics_ = QFontMetrics(font); }

    TSize TextExtent(const TFont&, std::string_view text) const override {
        const QString string = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        return {metrics_.horizontalAdvance(string), metrics_.height()};
    }

private:
    QFontMetrics metrics_{QFont()};
};

} // namespace lumora
