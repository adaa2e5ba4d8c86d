// What rows ask of the screen that shows them. Everything does nothing here, so a panel works in a program
// without windows.
#pragma once

namespace lumora {

class TFilterRow;
struct TPopupMenu;

class TScreenView {
public:
    virtual ~TScreenView() = default;

    virtual void Repaint() {}
    virtual void RepaintRow(TFilterRow&) {}
    // Rows came, went or moved: they are to be placed again.
    virtual void PlaceAllRows() {}
    // The header row appears or goes with the screen's activity.
    virtual void ShowHeader(bool) {}
    virtual void ShowRow(TFilterRow&) {}
    virtual void ScrollToEnd() {}
    virtual void UpdateMenus() {}

    // Drops down the editor of a word, given by its index in ScreenWords of the row: a TWordEditor gives what
    // is in it. `word` may be one whose editor is a dialog (ddDialog), which TWordEditor runs.
    virtual void DropDownWord(TFilterRow&, int /*word*/) {}
    // Shows a menu at a word, or where the pointer is when `word` is -1. The screen's menus carry out what is
    // chosen.
    virtual void ShowRowMenu(TFilterRow&, int /*word*/, TPopupMenu&) {}
    virtual void ShowValueMenu(TFilterRow&, int /*word*/, TPopupMenu&) {}
};

} // namespace lumora
