// What drops down from a panel's words, and the menus of its rows.
#include "lumora/lumora.h"
#include "lumora/screen/word_editors.h"
#include "lumora/widgets/panelmenu.h"
#include "lumora/widgets/querypanelwidget.h"

namespace lumora {

void QueryPanelWidget::openEditor(TFilterRow& row, int word) {
    closeWindows();
    updateNow();
    const std::vector<TScreenWord> words = ScreenWords(panel()->GetScreen(), row);
    if (word < 0 || word >= static_cast<int>(words.size()))
        return;
    const TWordRole role = words[static_cast<std::size_t>(word)].Role;
    const int value = words[static_cast<std::size_t>(word)].Value;
    scrollToCurrent();
    TWordEditor editor(panel()->GetScreen(), row, role, value);
    TDropDownContent content = editor.GetContent();
    if (content.Kind == ddDialog) {
        attempt([&editor] { editor.RunDialog(); });
        return;
    }
    if (content.Kind == ddMenu && hasGroups(content))
        return openChoices(content, editor, row, word);
    const QRect rect = wordRect(layout_->LineOfRow(&row), word);
    popup_ = DropDownPopup::open(this, QRect(viewport()->mapToGlobal(rect.topLeft()), rect.size()),
                                 std::move(content), icons());
    if (!popup_)
        return;
    openRow_ = &row;
    connect(popup_, &DropDownPopup::accepted, this,
            [this, editor](const TDropDownResult& answer) { acceptAnswer(editor, answer); });
    connect(popup_, &DropDownPopup::cancelled, this, [this] {
        popup_.clear();
        openRow_ = nullptr;
        viewport()->update();
    });
    connect(popup_, &DropDownPopup::tabbed, this, &QueryPanelWidget::goToNextWord);
    viewport()->update();
}

void QueryPanelWidget::acceptAnswer(TWordEditor editor, const TDropDownResult& answer) {
    if (!panel() || !popup_)
        return;
    std::vector<TDropDownItem> items = popup_->content().Items;
    popup_.clear();
    openRow_ = nullptr;
    viewport()->update();
    attempt([&] {
        std::string reason;
        if (answer.Answer == daText) {
            reason = editor.AcceptText(answer.Text);
        } else if (answer.Answer == daItem) {
            reason = editor.AcceptItem(items.at(static_cast<std::size_t>(answer.Item)));
        } else {
            for (TDropDownItem& item : items)
                item.Checked = false;
            for (const int checked : answer.Checks)
                items.at(static_cast<std::size_t>(checked)).Checked = true;
            reason = editor.AcceptChecked(items);
        }
        if (!reason.empty())
            throw Exception(reason);
    });
}

void QueryPanelWidget::goToNextWord(bool forward) {
    if (!panel() || !refusal_.isEmpty())
        return;
    TScreenKeyboard& keyboard = panel()->GetKeyboard();
    const bool hasMoved = forward ? keyboard.NextCurControl() : keyboard.PrevCurControl();
    viewport()->update();
    if (TFilterRow* const row = panel()->GetCurrentRow(); hasMoved && row)
        attempt([&] { panel()->ClickWord(*row, panel()->GetKeyboard().GetCurControl()); });
}

// Groups are submenus, which Qt's own menu has.
void QueryPanelWidget::openChoices(const TDropDownContent& content, const TWordEditor& editor,
                                   const TFilterRow& row, int word) {
    startMenu();
    fillChoices(*menu_, content, icons(), [this, content, editor](int item) {
        if (!panel())
            return;
        attempt([&, taker = editor]() mutable {
            const std::string reason = taker.AcceptItem(content.Items.at(static_cast<std::size_t>(item)));
            if (!reason.empty())
                throw Exception(reason);
        });
    });
    showMenuAt(row, word);
}

void QueryPanelWidget::openMenu(const TPopupMenu& menu, const TFilterRow& row, int word,
                                const std::function<void(const TMenuItem&)>& choose) {
    closeWindows();
    updateNow();
    startMenu();
    const TFilterRow* const target = &row;
    fillMenu(*menu_, menu.Items, [this, target, choose](const TMenuItem& item) {
        if (panel() && panel()->HasRow(target))
            attempt([&] { choose(item); });
    });
    showMenuAt(row, word);
}

void QueryPanelWidget::startMenu() {
    menu_ = new QMenu(this);
    // It goes after the answer that follows.
    connect(menu_, &QMenu::aboutToHide, this, [this, menu = menu_.data()] {
        menu->deleteLater();
        if (menu_ == menu)
            menu_.clear();
        viewport()->update();
    });
}

void QueryPanelWidget::showMenuAt(const TFilterRow& row, int word) {
    openRow_ = &row;
    const int line = layout_->LineOfRow(&row);
    const QRect rect = wordRect(line, word);
    const bool isAtPointer = rect.isEmpty() && viewport()->underMouse();
    if (isAtPointer)
        return menu_->popup(QCursor::pos());
    const QRect below = rect.isEmpty() ? lineRect(line) : rect.translated(0, 1);
    const int left = isMirrored() ? below.right() + 1 - menu_->sizeHint().width() : below.left();
    menu_->popup(viewport()->mapToGlobal(QPoint(left, below.bottom())));
}

void QueryPanelWidget::showRowMenu(TFilterRow& row, int word, TPopupMenu& menu) {
    openMenu(menu, row, word, [this, &row](const TMenuItem& item) {
        panel()->SetCurrentRow(&row);
        panel()->MenuItemClick(item);
    });
}

void QueryPanelWidget::showValueMenu(TFilterRow& row, int word, TPopupMenu& menu) {
    const std::vector<TScreenWord> words = ScreenWords(panel()->GetScreen(), row);
    const int value = words.at(static_cast<std::size_t>(word)).Value;
    openMenu(menu, row, word, [this, &row, value](const TMenuItem& item) {
        panel()->ValueMenuItemClick(item, static_cast<TFilterCond&>(row), value);
    });
}

void QueryPanelWidget::closeWindows() {
    openRow_ = nullptr;
    if (popup_) {
        popup_->disconnect(this);
        popup_->cancel();
        popup_.clear();
    }
    if (menu_) {
        menu_->close();
        menu_.clear();
    }
}

void QueryPanelWidget::clickWord(int line, int word) {
    if (!layout_)
        return;
    attempt([&] {
        if (TFilterRow* const row = layout_->RowOfLine(line))
            panel()->ClickWord(*row, word);
        else if (layout_->IsAddLine(line) && word >= 0)
            panel()->AddRowLabelMouseDown();
    });
}

// Beside all lines the menu is that of the whole query.
void QueryPanelWidget::showMenu(int line, int word) {
    if (!panel() || !panel()->GetRootBracket())
        return;
    TFilterRow* const row = layout_->RowOfLine(line);
    attempt([&] { panel()->ContextMenu(row ? *row : *panel()->GetRootBracket(), row ? word : -1); });
}

void QueryPanelWidget::makeCurrent(int line, int word) {
    TFilterRow* const row = layout_ ? layout_->RowOfLine(line) : nullptr;
    if (!row)
        return;
    panel()->SetCurrentRow(row);
    panel()->GetKeyboard().SetCurControl(word);
    rowChanged(*row);
    scrollToCurrentSoon();
}

} // namespace lumora
