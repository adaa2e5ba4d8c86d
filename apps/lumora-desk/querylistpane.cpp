#include "apps/lumora-desk/querylistpane.h"

#include "apps/lumora-desk/panetitle.h"

#include <QAction>
#include <QHBoxLayout>
#include <QListView>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumora::desk {

QueryListPane::QueryListPane(DeskDocument& document, const QList<QAction*>& actions, QWidget* parent)
    : QWidget(parent),
      document_(document),
      model_(document),
      list_(new QListView(this)),
      description_(new QPlainTextEdit(this)) {
    list_->setModel(&model_);
    list_->setAccessibleName(tr("Saved queries"));
    list_->setEditTriggers(QAbstractItemView::EditKeyPressed);
    list_->setContextMenuPolicy(Qt::ActionsContextMenu);
    list_->setSpacing(1);
    list_->setTextElideMode(Qt::ElideRight);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->addActions(actions);
    description_->setPlaceholderText(tr("What the query is for"));
    description_->setAccessibleName(tr("Description of the query"));
    description_->setTabChangesFocus(true);
    description_->setMaximumHeight(fontMetrics().lineSpacing() * 6);

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(0);
    for (QAction* const action : actions) {
        auto* const button = new QToolButton(this);
        button->setDefaultAction(action);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setAutoRaise(true);
        buttons->addWidget(button);
        setTabOrder(button, description_); // behind the last of them
    }
    buttons->addStretch();
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(new PaneTitle(tr("Queries"), this));
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);
    layout->addWidget(new PaneTitle(tr("Description"), this));
    layout->addWidget(description_);

    // The arrows choose too. The selection is put right again when the document stays with its query.
    connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) {
                if (index.isValid() && index.row() != document_.currentIndex())
                    QMetaObject::invokeMethod(
                        this, [this, row = index.row()] { emit queryWanted(row); }, Qt::QueuedConnection);
            });
    connect(&model_, &QueryListModel::renameWanted, this, &QueryListPane::renameWanted);
    connect(&model_, &QAbstractItemModel::modelReset, this, &QueryListPane::showCurrent);
    connect(&document, &DeskDocument::currentQueryChanged, this, [this] {
        showCurrent();
        showDescription();
    });
    connect(&document, &DeskDocument::currentQueryRenamed, this, &QueryListPane::showCurrent);
    connect(&document, &DeskDocument::opened, this, &QueryListPane::showDescription);
    connect(description_, &QPlainTextEdit::textChanged, this,
            [this] { document_.setDescription(description_->toPlainText()); });
}

void QueryListPane::showCurrent() {
    const QSignalBlocker blocker(list_->selectionModel());
    const QModelIndex current = model_.index(document_.currentIndex());
    list_->selectionModel()->setCurrentIndex(current, QItemSelectionModel::ClearAndSelect);
    list_->scrollTo(current);
    list_->viewport()->update();
}

void QueryListPane::showDescription() {
    const QSignalBlocker blocker(description_);
    if (description_->toPlainText().trimmed() != document_.description())
        description_->setPlainText(document_.description());
    description_->setEnabled(document_.isOpen());
}

void QueryListPane::editName() {
    list_->setFocus();
    list_->edit(list_->currentIndex());
}

} // namespace lumora::desk
