// What the window shows while nothing is open.
#pragma once

#include "apps/lumora-desk/databaseopener.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

namespace lumora::desk {

class StartPage : public QWidget {
    Q_OBJECT

public:
    explicit StartPage(QWidget* parent = nullptr);

    void setRecent(const QList<OpenRequest>& recent);
    void setSampleOffered(bool offered);
    // Empty: nothing is under way.
    void setBusy(const QString& what);

signals:
    void openWanted();
    void sampleWanted();
    void recentWanted(const lumora::desk::OpenRequest& request);

private:
    QPushButton* const open_;
    QPushButton* const sample_;
    QLabel* const recentTitle_;
    QVBoxLayout* recent_ = nullptr;
    QLabel* const busyText_;
    QProgressBar* const progress_;
    QWidget* const choices_;
};

} // namespace lumora::desk
