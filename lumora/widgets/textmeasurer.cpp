#include "lumora/widgets/textmeasurer.h"

#include <QFontMetrics>
#include <QGuiApplication>

namespace lumora {

TSize TextMeasurer::TextExtent(const TFont& font, std::string_view text) const {
    const QFontMetrics metrics(toQFont(font));
    const QString string = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return {metrics.horizontalAdvance(string), metrics.height()};
}

QFont toQFont(const TFont& font) {
    QFont result = QGuiApplication::font();
    if (!font.Name.empty()) {
        result.setFamily(QString::fromStdString(font.Name));
        result.setPointSize(font.PointSize);
    }
    result.setBold(font.Bold);
    result.setItalic(font.Italic);
    result.setUnderline(font.Underline);
    return result;
}

TFont fromQFont(const QFont& font) {
    TFont result;
    result.Name = font.family().toStdString();
    result.PointSize = font.pointSize();
    result.Bold = font.bold();
    result.Italic = font.italic();
    result.Underline = font.underline();
    return result;
}

} // namespace lumora
