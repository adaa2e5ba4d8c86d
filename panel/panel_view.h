// What a query panel asks of the screen. Everything does nothing here, so a panel works in a program without
// windows.
#pragma once

#include "query/sql_options.h"

#include <string>

namespace lumora {

class TFilterRow;
class TStringList;
class TVQueryPanel;

class TQueryPanelView {
public:
    virtual ~TQueryPanelView() = default;

    virtual void Repaint() {}
    virtual void RepaintRow(TFilterRow&) {}
    // Rows came, went or moved: they are to be placed again.
    virtual void PlaceAllRows() {}
    // The header row appears or goes with the panel's activity.
    virtual void ShowHeader(bool) {}
    virtual void ShowRow(TFilterRow&) {}
    virtual void ScrollToEnd() {}
    virtual void UpdateMenus() {}

    // Dialogs; true when they were confirmed.
    virtual bool EditResultFields(TVQueryPanel&, int /*helpContext*/, int /*options*/) { return false; }
    virtual bool EditTitles(TVQueryPanel&) { return false; }
    virtual bool EditSubQuery(TVQueryPanel&, TStringList& /*lines*/, std::string& /*sql*/, TSQLOptions&) {
        return false;
    }
};

} // namespace lumora
