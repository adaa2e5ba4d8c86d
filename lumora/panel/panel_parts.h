// What a query panel is made of: its query, the screen that shows it, and whoever follows the panel.
#pragma once

#include "lumora/panel/Vquerpnl.h"
#include "lumora/panel/panel_links.h"
#include "lumora/query/query.h"
#include "lumora/query/query_listener.h"
#include "lumora/query/query_result.h"
#include "lumora/screen/query_screen.h"

namespace lumora {

// Passes what the query and the screen tell on to each other and to the host's handlers.
struct TVQueryPanel::TParts : private TQueryListener, private TScreenHost {
    explicit TParts(TVQueryPanel& panel);
    ~TParts() override;

    TVQueryPanel& Panel;
    TVQuery Query;
    TQueryScreen Screen{Query};
    TVQPBaseLink BaseLink;
    TVQueryPanelLinkList Links;

private:
    // TQueryListener.
    void QueryChanged() override { Panel.QueryChanged(); }
    void ParametersListChanged() override { Panel.ParametersListChanged(); }
    void ValueChanged(TFilterCond& condition, int value) override;
    void ConditionChanged(TFilterCond& condition, TConditionChange change) override;
    bool WantsConditionText() const override { return static_cast<bool>(Panel.OnBuildSQL); }
    void ConditionText(TFilterCond& condition, std::string& text) override;
    void RowsChanged() override { Screen.RowsChanged(); }
    void RowChanged(TFilterRow& row) override { Screen.RowChanged(row); }
    void RowDeleting(TFilterRow& row) override { Screen.RowDeleting(row); }
    void RowDestroyed(TFilterRow& row) override { Screen.RowDestroyed(row); }
    void ModelReplaced() override { Screen.ModelReplaced(); }

    // TScreenHost.
    void ActiveChanged() override;
    bool HasEditor(const TFilterCond& condition) const override;
    void EditValue(TFilterCond& condition, int value) override;
    void ValueSet(TFilterCond& condition, int value) override;
    void ValueDblClicked(TFilterCond& condition, int value) override;
    void GroupImage(const TDSFieldGroup& group, int& index) override;
    void FieldImage(const TDSField& field, int& index) override;
    bool EditSubQuery(TStringList& lines, std::string& sql, TSQLOptions& options) override {
        return Panel.EditSubQuery(lines, sql, options);
    }
};

} // namespace lumora
