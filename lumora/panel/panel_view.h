// What a query panel asks of the screen. Everything does nothing here, so a panel works in a program without
// windows.
#pragma once

namespace lumora {

class TdlgSubQuery;
class TFilterRow;
class TVQueryPanel;
struct TPopupMenu;

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

    // Drops down the editor of a word, given by its index in ScreenWords of the row: a TWordEditor gives what
    // is in it. `word` may be one whose editor is a dialog (ddDialog), which TWordEditor runs.
    virtual void DropDownWord(TFilterRow&, int /*word*/) {}
    // Shows a menu at a word, or where the pointer is when `word` is -1. TVQueryPanel::MenuItemClick and
    // ValueMenuItemClick carry out what is chosen.
    virtual void ShowRowMenu(TFilterRow&, int /*word*/, TPopupMenu&) {}
    virtual void ShowValueMenu(TFilterRow&, int /*word*/, TPopupMenu&) {}

    // Dialogs; true when they were confirmed.
    virtual bool EditResultFields(TVQueryPanel&, int /*helpContext*/, int /*options*/) { return false; }
    virtual bool EditTitles(TVQueryPanel&) { return false; }
    virtual bool RunSubQueryDialog(TdlgSubQuery&) { return false; }
};

} // namespace lumora
