#include "apps/lumora-desk/startpage.h"

#include "apps/lumora-desk/recentdatabases.h"

#include <QCommandLinkButton>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumora::desk {

StartPage::StartPage(QWidget* parent)
    : QWidget(parent),
      open_(new QPushButton(tr("&Open a database..."), this)),
      sample_(new QPushButton(tr("&Try the sample"), this)),
      recentTitle_(new QLabel(tr("Opened before:"), this)),
      busyText_(new QLabel(this)),
      progress_(new QProgressBar(this)),
      choices_(new QWidget(this)) {
    auto* const title = new QLabel(tr("Ask a database"), this);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    title->setFont(large);
    auto* const hint = new QLabel(tr("Open a database, say in words which records you want to see, choose "
                                     "the columns to show, and run the "
                                     "query. No SQL is needed."),
                                  this);
    hint->setWordWrap(true);
    progress_->setRange(0, 0);
    progress_->setTextVisible(false);

    auto* const choices = new QVBoxLayout(choices_);
    choices->setContentsMargins(0, 0, 0, 0);
    choices->addWidget(open_);
    choices->addWidget(sample_);
    choices->addSpacing(12);
    choices->addWidget(recentTitle_);
    recent_ = new QVBoxLayout;
    choices->addLayout(recent_);

    auto* const column = new QWidget(this);
    column->setMaximumWidth(fontMetrics().averageCharWidth() * 70);
    auto* const layout = new QVBoxLayout(column);
    layout->addStretch(2);
    layout->addWidget(title);
    layout->addSpacing(8);
    layout->addWidget(hint);
    layout->addSpacing(16);
    layout->addWidget(choices_);
    layout->addWidget(busyText_);
    layout->addWidget(progress_);
    layout->addStretch(3);
    auto* const outer = new QHBoxLayout(this);
    outer->addStretch(1);
    outer->addWidget(column, 8);
    outer->addStretch(1);

    connect(open_, &QPushButton::clicked, this, &StartPage::openWanted);
    connect(sample_, &QPushButton::clicked, this, &StartPage::sampleWanted);
    setRecent({});
    setBusy({});
}

void StartPage::setRecent(const QList<OpenRequest>& recent) {
    while (QLayoutItem* const item = recent_->takeAt(0)) {
        item->widget()->deleteLater();
        delete item;
    }
    recentTitle_->setVisible(!recent.isEmpty());
    for (const OpenRequest& request : recent.mid(0, 5)) {
        QString name = displayName(request.database);
        if (!request.modelFile.isEmpty())
            name = tr("%1 (%2)").arg(name, QFileInfo(request.modelFile).fileName());
        auto* const button = new QPushButton(name.replace(u'&', QStringLiteral("&&")), this);
        button->setFlat(true);
        button->setStyleSheet(QStringLiteral("text-align: left; padding: 3px;"));
        button->setToolTip(recentLabel(request));
        button->setCursor(Qt::PointingHandCursor);
        connect(button, &QPushButton::clicked, this, [this, request] { emit recentWanted(request); });
        recent_->addWidget(button);
    }
}

void StartPage::setSampleOffered(bool offered) {
    sample_->setVisible(offered);
}

void StartPage::setBusy(const QString& what) {
    busyText_->setText(what);
    busyText_->setVisible(!what.isEmpty());
    progress_->setVisible(!what.isEmpty());
    choices_->setEnabled(what.isEmpty());
}

} // namespace lumora::desk
