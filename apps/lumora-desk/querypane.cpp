#include "apps/lumora-desk/querypane.h"

#include "apps/lumora-desk/panetitle.h"

#include <QVBoxLayout>

namespace lumora::desk {

namespace {

QWidget* withTitle(const QString& title, QWidget* content, QWidget* parent) {
    auto* const pane = new QWidget(parent);
    auto* const layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(new PaneTitle(title, pane));
    layout->addWidget(content);
    return pane;
}

} // namespace

QueryPane::QueryPane(DeskDocument& document, QWidget* parent)
    : QSplitter(Qt::Horizontal, parent),
      conditions_(new QueryPanelWidget),
      columns_(new ResultColumnsWidget) {
    setChildrenCollapsible(false);
    addWidget(withTitle(tr("Which records"), conditions_, this));
    addWidget(withTitle(tr("What to show"), columns_, this));
    setStretchFactor(0, 3);
    setStretchFactor(1, 2);
    conditions_->setAccessibleName(tr("Conditions"));
    conditions_->setPanel(&document.panel());
    columns_->setPanel(&document.panel());
    connect(&document, &DeskDocument::opened, columns_, &ResultColumnsWidget::refresh);
    connect(&document, &DeskDocument::currentQueryChanged, columns_, &ResultColumnsWidget::refresh);
    connect(&document, &DeskDocument::currentQueryRenamed, columns_, &ResultColumnsWidget::refresh);
}

QueryPane::~QueryPane() {
    conditions_->setPanel(nullptr);
    columns_->setPanel(nullptr);
}

} // namespace lumora::desk
