#include "lumora/widgets/panelview.h"

#include "lumora/lumora.h"
#include "lumora/widgets/querypanelwidget.h"
#include "lumora/widgets/subquerydialog.h"

#include <QPointer>

namespace lumora {

void PanelView::setPanel(TVQueryPanel* panel) {
    if (panel == panel_)
        return;
    if (panel_) {
        // Another view may have taken the panel over.
        if (&panel_->View() == this)
            panel_->SetView(nullptr);
        UnwatchRemovalOf(panel_);
        widget_.stopListeningTo(*panel_);
    }
    panel_ = panel;
    if (panel_) {
        if (auto* const other = dynamic_cast<PanelView*>(&panel_->View()))
            other->widget_.setPanel(nullptr);
        panel_->SetView(this);
        WatchRemovalOf(panel_);
    }
}

void PanelView::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == panel_)
        widget_.setPanel(nullptr);
}

void PanelView::Repaint() {
    widget_.panelChanged();
}

void PanelView::RepaintRow(TFilterRow& row) {
    widget_.rowChanged(row);
}

void PanelView::PlaceAllRows() {
    widget_.rowsChanged();
}

void PanelView::ShowHeader(bool) {
    widget_.rowsChanged();
}

void PanelView::ShowRow(TFilterRow&) {
    widget_.rowsChanged();
}

// What was added is the current row, wherever it stands.
void PanelView::ScrollToEnd() {
    widget_.scrollToCurrentSoon();
}

void PanelView::DropDownWord(TFilterRow& row, int word) {
    widget_.openEditor(row, word);
}

void PanelView::ShowRowMenu(TFilterRow& row, int word, TPopupMenu& menu) {
    widget_.showRowMenu(row, word, menu);
}

void PanelView::ShowValueMenu(TFilterRow& row, int word, TPopupMenu& menu) {
    widget_.showValueMenu(row, word, menu);
}

bool PanelView::EditResultFields(TVQueryPanel& panel, int helpContext, int options) {
    const auto edit = widget_.dialogs().editResultFields; // the host may replace it meanwhile
    if (edit)
        return edit(&widget_, panel, helpContext, options);
    widget_.refuse(QueryPanelWidget::tr("This program has no window for the result fields"));
    return false;
}

bool PanelView::EditTitles(TVQueryPanel& panel) {
    const auto edit = widget_.dialogs().editTitles;
    if (edit)
        return edit(&widget_, panel);
    widget_.refuse(QueryPanelWidget::tr("This program has no window for the titles"));
    return false;
}

bool PanelView::RunSubQueryDialog(TdlgSubQuery& dialog) {
    // The window's owner may go while the window is open, and the window with it.
    const QPointer<SubQueryDialog> window = new SubQueryDialog(dialog, &widget_);
    window->queryPanel()->setDialogs(widget_.dialogs());
    window->queryPanel()->outer_ = &widget_;
    // Beyond the window too: the sub-query is built when it has closed.
    for (QueryPanelWidget* widget = &widget_; widget; widget = widget->outer_)
        widget->listenToConditions(dialog.QPanel);
    const bool isConfirmed = window->exec() == QDialog::Accepted && window;
    delete window;
    return isConfirmed;
}

} // namespace lumora
