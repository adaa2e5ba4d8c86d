// The screen of a query panel: what the panel asks of it goes on to the widget.
#pragma once

#include "lumora/panel/panel_view.h"
#include "lumora/platform/component.h"

namespace lumora {

class QueryPanelWidget;

// Installed in one panel at a time, which may go away before the view does.
class PanelView : public TQueryPanelView, private TComponent {
public:
    explicit PanelView(QueryPanelWidget& widget) : widget_(widget) {}
    ~PanelView() override { setPanel(nullptr); }

    TVQueryPanel* panel() const { return panel_; }
    void setPanel(TVQueryPanel* panel);

    void Repaint() override;
    void RepaintRow(TFilterRow& row) override;
    void PlaceAllRows() override;
    void ShowHeader(bool shown) override;
    void ShowRow(TFilterRow& row) override;
    void ScrollToEnd() override;
    void DropDownWord(TFilterRow& row, int word) override;
    void ShowRowMenu(TFilterRow& row, int word, TPopupMenu& menu) override;
    void ShowValueMenu(TFilterRow& row, int word, TPopupMenu& menu) override;
    bool EditResultFields(TVQueryPanel& panel, int helpContext, int options) override;
    bool EditTitles(TVQueryPanel& panel) override;
    bool RunSubQueryDialog(TdlgSubQuery& dialog) override;

protected:
    void Notification(TComponent* component, TOperation operation) override;

private:
    QueryPanelWidget& widget_;
    TVQueryPanel* panel_ = nullptr;
};

} // namespace lumora
