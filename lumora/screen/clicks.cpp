// What the mouse does, and the menus that it asks for.
#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/screen_words.h"

namespace lumora {

namespace {

TScreenWord WordOf(const TQueryScreen& screen, TFilterRow& row, int word) {
    const std::vector<TScreenWord> words = ScreenWords(screen, row);
    return word >= 0 && word < static_cast<int>(words.size()) ? words[static_cast<std::size_t>(word)]
                                                              : TScreenWord();
}

} // namespace

void TQueryScreen::ClickWord(TFilterRow& row, int word) {
    if (!active_)
        return;
    SetCurrentRow(&row);
    const TScreenWord clicked = WordOf(*this, row, word);
    keyboard_.SetCurControl(word);
    view_->RepaintRow(row);
    switch (clicked.Action) {
    case waRowMenu:
        menus_.VPopup(menus_.MenuOf(row));
        view_->ShowRowMenu(row, word, menus_.MenuOf(row));
        break;
    case waToggle:
        row.SetEnabled(!row.GetEnabled());
        break;
    case waEditor:
        view_->DropDownWord(row, word);
        break;
    case waValueMenu:
        menus_.ValuePopup(static_cast<TFilterCond&>(row), clicked.Value);
        view_->ShowValueMenu(row, word, menus_.GetValueMenu());
        break;
    case waAddCondition:
    case waNone:
        break;
    }
}

void TQueryScreen::AddRowLabelMouseDown() {
    if (active_)
        AddCondition(*query_.GetRootBracket());
}

void TQueryScreen::DblClickWord(TFilterRow& row, int word) {
    if (const TScreenWord clicked = WordOf(*this, row, word); clicked.Role == wrValue)
        host_->ValueDblClicked(static_cast<TFilterCond&>(row), clicked.Value);
}

void TQueryScreen::ContextMenu(TFilterRow& row, int word) {
    if (!active_)
        return;
    SetCurrentRow(&row);
    const TScreenWord clicked = WordOf(*this, row, word);
    if (clicked.Role == wrValue) {
        auto& condition = static_cast<TFilterCond&>(row);
        if (condition.GetValueIsParam(clicked.Value) || AllowsParam(condition, clicked.Value)) {
            menus_.ValuePopup(condition, clicked.Value);
            view_->ShowValueMenu(row, word, menus_.GetValueMenu());
            return;
        }
    }
    menus_.VPopup(menus_.MenuOf(row));
    view_->ShowRowMenu(row, word, menus_.MenuOf(row));
}

bool TQueryScreen::AllowsParam(const TFilterCond& condition, int value) const {
    return appearance_.GetOptions().Contains(aoAllowParams) && condition.GetValueKind(value) != vkSubQuery;
}

} // namespace lumora
