#include "apps/lumora-desk/icons.h"

#include <QPainter>
#include <QPolygonF>

namespace lumora::desk {

namespace {

// In a square of 16 units, for every size that a screen may want.
QIcon drawn(const QPolygonF& shape, const QColor& color) {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64})
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
            QPixmap pixmap(size, size);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.scale(size / 16.0, size / 16.0);
            painter.setPen(Qt::NoPen);
            painter.setBrush(mode == QIcon::Normal ? color : QColor(128, 128, 128, 110));
            painter.drawPolygon(shape);
            painter.end();
            icon.addPixmap(pixmap, mode);
        }
    return icon;
}

} // namespace

QIcon runIcon() {
    return drawn({{4, 2}, {14, 8}, {4, 14}}, QColor(0x2f, 0x9e, 0x55));
}

QIcon stopIcon() {
    return drawn({{3, 3}, {13, 3}, {13, 13}, {3, 13}}, QColor(0xd0, 0x4a, 0x3c));
}

} // namespace lumora::desk
