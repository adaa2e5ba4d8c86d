// Stands where the query panel will be: the rows of the query as text.
#pragma once

#include "panel/Vquerpnl.h"

#include <QPlainTextEdit>

namespace lumora::desk {

// Has the calls of the widget that takes its place.
class QueryPanelPlaceholder : public QPlainTextEdit, private TQueryPanelView {
    Q_OBJECT

public:
    explicit QueryPanelPlaceholder(QWidget* parent = nullptr) : QPlainTextEdit(parent) { setReadOnly(true); }
    ~QueryPanelPlaceholder() override { setPanel(nullptr); }

    void setPanel(TVQueryPanel* panel) {
        if (panel_)
            panel_->SetView(nullptr);
        panel_ = panel;
        if (panel_)
            panel_->SetView(this);
        showRows();
    }
    TVQueryPanel* panel() const { return panel_; }

private:
    void Repaint() override { showRows(); }
    void PlaceAllRows() override { showRows(); }
    void RepaintRow(TFilterRow&) override { showRows(); }
    void showRows() {
        setPlainText(panel_ && panel_->GetDbStruct() ? QString::fromStdString(panel_->GetQueryText()) : QString());
    }

    TVQueryPanel* panel_ = nullptr;
};

} // namespace lumora::desk
