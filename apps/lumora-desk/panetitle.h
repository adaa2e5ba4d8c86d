// The heading over a part of the window.
#pragma once

#include <QLabel>

namespace lumora::desk {

class PaneTitle : public QLabel {
public:
    PaneTitle(const QString& text, QWidget* parent) : QLabel(text, parent) {
        QFont bold = font();
        bold.setBold(true);
        setFont(bold);
        setContentsMargins(2, 2, 2, 2);
    }
};

} // namespace lumora::desk
