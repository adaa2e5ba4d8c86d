#include "lumora/widgets/querypanelaccessible.h"

#include "lumora/lumora.h"
#include "lumora/widgets/querypanelwidget.h"

#include <QAccessibleWidget>
#include <QHash>

namespace lumora {

namespace {

// --- The tree of the rows that are seen.

int visibleCount(const TFilterBracket& bracket) {
    int count = 0;
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        count += bracket.GetRow(i)->GetHidden() ? 0 : 1;
    return count;
}

TFilterRow* visibleRow(const TFilterBracket& bracket, int index) {
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        if (TFilterRow* const row = bracket.GetRow(i); !row->GetHidden() && index-- == 0)
            return row;
    return nullptr;
}

int visibleIndex(const TFilterRow& row) {
    int index = 0;
    for (int i = 0; i < row.GetIndex(); ++i)
        index += row.GetParent()->GetRow(i)->GetHidden() ? 0 : 1;
    return index;
}

const TFilterBracket* bracketOf(const TFilterRow* row) {
    return row && row->GetRowType() == frtBracket ? static_cast<const TFilterBracket*>(row) : nullptr;
}

QAccessibleInterface* lineInterface(const QueryPanelWidget& widget, int line);
// The line below `parent` (the panel: -1) that holds the point's.
int lineBelow(const QueryPanelWidget& widget, int parent, int x, int y);

// Lines and words stand for whatever is in their place now, so they never refer to a row that is gone.
class AccessiblePart : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    explicit AccessiblePart(QueryPanelWidget& widget) : widget_(&widget) {}

    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return widget_ ? widget_->window()->windowHandle() : nullptr; }
    void setText(QAccessible::Text, const QString&) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    QRect onScreen(const QRect& rect) const {
        return QRect(widget_->viewport()->mapToGlobal(rect.topLeft()), rect.size());
    }
    // Part of every state: whether it can be seen.
    QAccessible::State stateOf(const QRect& rect) const {
        QAccessible::State state;
        state.invisible = !widget_->isVisible();
        state.offscreen = !rect.intersects(widget_->viewport()->rect());
        state.focusable = true;
        return state;
    }

    QPointer<QueryPanelWidget> widget_;
};

class AccessibleWord : public AccessiblePart {
public:
    AccessibleWord(QueryPanelWidget& widget, int line, int word)
        : AccessiblePart(widget), line_(line), word_(word) {}

    int index() const { return word_; }
    bool isValid() const override {
        return widget_ && word_ < static_cast<int>(widget_->line(line_).Words.size());
    }
    QAccessibleInterface* parent() const override { return lineInterface(*widget_, line_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QRect rect() const override { return onScreen(widget_->wordRect(line_, word_)); }

    QString text(QAccessible::Text kind) const override {
        const TPlacedLine line = widget_->line(line_);
        if (word_ >= static_cast<int>(line.Words.size()))
            return {};
        const TScreenWord& word = line.Words[static_cast<std::size_t>(word_)].Word;
        if (kind == QAccessible::Name)
            return QString::fromStdString(word.Name);
        if (kind == QAccessible::Value)
            return QString::fromStdString(word.FullCaption.empty() ? word.Caption : word.FullCaption);
        if (kind == QAccessible::Description || kind == QAccessible::Help)
            return line.Row ? QString::fromStdString(WordHint(*line.Row, word)) : QString();
        return {};
    }
    QAccessible::Role role() const override {
        const TScreenWord word = screenWord();
        switch (word.Action) {
        case waRowMenu:
        case waEditor:
        case waValueMenu:
            return QAccessible::ButtonMenu;
        case waToggle:
            return QAccessible::CheckBox;
        case waAddCondition:
            return QAccessible::Button;
        case waNone:
            break;
        }
        return QAccessible::StaticText;
    }
    QAccessible::State state() const override {
        const TScreenWord word = screenWord();
        const TWordPlace current = widget_->currentPlace();
        QAccessible::State state = stateOf(widget_->wordRect(line_, word_));
        state.focusable = word.IsClickable();
        state.focused = widget_->hasFocus() && current.Line == line_ && current.Word == word_;
        state.disabled = !word.Enabled && word.Role != wrCheckBox && word.Role != wrButton;
        state.invalid = word.State == rsWrong;
        state.checkable = word.Role == wrCheckBox;
        state.checked = word.Checked;
        state.hasPopup = role() == QAccessible::ButtonMenu;
        state.linked = word.Action == waEditor;
        return state;
    }

    QStringList actionNames() const override {
        const TScreenWord word = screenWord();
        if (word.Action == waNone)
            return {};
        const QString action = word.Action == waToggle ? toggleAction() : pressAction();
        return word.Action == waAddCondition ? QStringList{action}
                                             : QStringList{action, showMenuAction(), setFocusAction()};
    }
    void doAction(const QString& name) override {
        if (name == pressAction() || name == toggleAction())
            return widget_->clickWord(line_, word_);
        if (name == showMenuAction())
            return widget_->showMenu(line_, word_);
        if (name == setFocusAction()) {
            widget_->setFocus(Qt::OtherFocusReason);
            widget_->makeCurrent(line_, word_);
        }
    }

private:
    TScreenWord screenWord() const {
        const TPlacedLine line = widget_->line(line_);
        return word_ < static_cast<int>(line.Words.size()) ? line.Words[static_cast<std::size_t>(word_)].Word
                                                           : TScreenWord();
    }

    int line_;
    int word_;
};

// The parts that were asked for, by their numbers.
class AccessibleParts {
public:
    AccessibleParts() = default;
    ~AccessibleParts() {
        for (const QAccessible::Id id : ids_)
            QAccessible::deleteAccessibleInterface(id);
    }
    AccessibleParts(const AccessibleParts&) = delete;
    AccessibleParts& operator=(const AccessibleParts&) = delete;

    template <typename TMake>
    QAccessibleInterface* part(int index, TMake make) {
        const auto found = ids_.constFind(index);
        if (found != ids_.constEnd())
            return QAccessible::accessibleInterface(*found);
        QAccessibleInterface* const part = make();
        ids_.insert(index, QAccessible::registerAccessibleInterface(part));
        return part;
    }
    void dropFrom(int index) {
        for (auto i = ids_.begin(); i != ids_.end();)
            if (i.key() >= index) {
                QAccessible::deleteAccessibleInterface(i.value());
                i = ids_.erase(i);
            } else {
                ++i;
            }
    }

private:
    QHash<int, QAccessible::Id> ids_;
};

class AccessibleLine : public AccessiblePart {
public:
    AccessibleLine(QueryPanelWidget& widget, int line) : AccessiblePart(widget), line_(line) {}

    int index() const { return line_; }
    bool isValid() const override { return widget_ && line_ < widget_->lineCount(); }
    QAccessibleInterface* parent() const override {
        const int outer = widget_->parentLine(line_);
        return outer >= 0 ? lineInterface(*widget_, outer) : QAccessible::queryAccessibleInterface(widget_);
    }
    // The words, then the rows of a bracket.
    int childCount() const override {
        const TFilterBracket* const bracket = bracketOf(row());
        return wordCount() + (bracket ? visibleCount(*bracket) : 0);
    }
    QAccessibleInterface* child(int index) const override {
        const int words = wordCount();
        if (index >= 0 && index < words)
            return words_.part(index, [&] { return new AccessibleWord(*widget_, line_, index); });
        const TFilterBracket* const bracket = bracketOf(row());
        const TFilterRow* const below = bracket && index >= 0 ? visibleRow(*bracket, index - words) : nullptr;
        return below ? lineInterface(*widget_, widget_->lineOfRow(below)) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (const auto* const word = dynamic_cast<const AccessibleWord*>(child))
            return word->index();
        const auto* const line = dynamic_cast<const AccessibleLine*>(child);
        const TFilterRow* const below = line ? line->row() : nullptr;
        const bool isBelow = below && below->GetParent() && below->GetParent() == row();
        return isBelow ? wordCount() + visibleIndex(*below) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const TWordPlace place = widget_->placeAt(widget_->viewport()->mapFromGlobal(QPoint(x, y)));
        return place.Line == line_ ? child(place.Word)
                                   : lineInterface(*widget_, lineBelow(*widget_, line_, x, y));
    }
    QRect rect() const override { return onScreen(widget_->lineRect(line_)); }
    QAccessible::Role role() const override { return QAccessible::TreeItem; }

    QString text(QAccessible::Text kind) const override {
        const TPlacedLine line = widget_->line(line_);
        const TVQueryPanel* const panel = widget_->panel();
        if (!line.Row || !panel)
            return kind == QAccessible::Name && !line.Words.empty()
                       ? QString::fromStdString(line.Words.front().Word.Name)
                       : QString();
        if (kind == QAccessible::Name)
            return QString::fromStdString(RowName(panel->GetScreen(), *line.Row));
        return kind == QAccessible::Description
                   ? QString::fromStdString(RowPlace(panel->GetScreen(), *line.Row))
                   : QString();
    }
    QAccessible::State state() const override {
        const TPlacedLine line = widget_->line(line_);
        QAccessible::State state = stateOf(widget_->lineRect(line_));
        state.expandable = state.expanded = bracketOf(line.Row) != nullptr;
        state.selectable = line.Row != nullptr;
        state.selected = line.IsCurrent;
        state.focused = line.IsCurrent && widget_->hasFocus() && widget_->currentPlace().Word < 0;
        state.disabled = line.Row && !IsRowEnabled(*line.Row);
        state.invalid = line.Row && widget_->panel() &&
                        RowProblem(widget_->panel()->GetScreen(), *line.Row).State == rsWrong;
        return state;
    }

    QStringList actionNames() const override {
        return widget_->line(line_).Row ? QStringList{setFocusAction(), showMenuAction()}
                                        : QStringList{pressAction()};
    }
    void doAction(const QString& name) override {
        if (name == pressAction()) {
            widget_->clickWord(line_, 0);
        } else if (name == showMenuAction()) {
            widget_->showMenu(line_, -1);
        } else if (name == setFocusAction()) {
            widget_->setFocus(Qt::OtherFocusReason);
            widget_->makeCurrent(line_);
        }
    }

private:
    const TFilterRow* row() const { return widget_->rowOfLine(line_); }
    int wordCount() const { return static_cast<int>(widget_->line(line_).Words.size()); }

    int line_;
    mutable AccessibleParts words_;
};

class AccessibleQueryPanel : public QAccessibleWidget {
public:
    explicit AccessibleQueryPanel(QueryPanelWidget* widget)
        : QAccessibleWidget(widget, QAccessible::Tree), widget_(widget) {}

    QString text(QAccessible::Text kind) const override {
        const bool isRefused = kind == QAccessible::Description && !widget_->refusal().isEmpty();
        return isRefused ? widget_->refusal() : QAccessibleWidget::text(kind);
    }
    // The header, or the rows of a panel that shows none, and the line that adds a condition.
    int childCount() const override { return rowCount() + (hasAddLine() ? 1 : 0); }
    QAccessibleInterface* child(int index) const override {
        if (index == rowCount() && hasAddLine())
            return line(widget_->lineCount() - 1);
        if (index < 0 || index >= rowCount())
            return nullptr;
        return line(hasHeader() ? 0 : widget_->lineOfRow(visibleRow(root(), index)));
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* const line = dynamic_cast<const AccessibleLine*>(child);
        if (!line || widget_->parentLine(line->index()) >= 0)
            return -1;
        const TFilterRow* const row = widget_->rowOfLine(line->index());
        return !row ? rowCount() : hasHeader() ? 0 : visibleIndex(*row);
    }
    QAccessibleInterface* childAt(int x, int y) const override { return line(lineBelow(*widget_, -1, x, y)); }
    QAccessibleInterface* line(int index) const {
        if (index < 0 || index >= widget_->lineCount())
            return nullptr;
        return lines_.part(index, [&] { return new AccessibleLine(*widget_, index); });
    }
    // The current word; the current row where the keyboard is on none of its words.
    QAccessibleInterface* focusChild() const override {
        const TWordPlace place = widget_->currentPlace();
        QAccessibleInterface* const current = line(place.Line);
        QAccessibleInterface* const word = current ? current->child(place.Word) : nullptr;
        return word ? word : current;
    }
    void dropLinesFrom(int line) { lines_.dropFrom(line); }

private:
    // Of a panel that has lines.
    const TFilterBracket& root() const { return *widget_->panel()->GetRootBracket(); }
    bool hasHeader() const {
        const TFilterRow* const first = widget_->rowOfLine(0);
        return first && !first->GetParent();
    }
    bool hasAddLine() const {
        const int lines = widget_->lineCount();
        return lines > 0 && !widget_->rowOfLine(lines - 1);
    }
    int rowCount() const {
        const bool hasRows = widget_->rowOfLine(0) != nullptr;
        return hasHeader() ? 1 : hasRows ? visibleCount(root()) : 0;
    }

    QueryPanelWidget* widget_;
    mutable AccessibleParts lines_;
};

AccessibleQueryPanel* panelInterface(const QueryPanelWidget& widget) {
    return dynamic_cast<AccessibleQueryPanel*>(
        QAccessible::queryAccessibleInterface(const_cast<QueryPanelWidget*>(&widget)));
}

QAccessibleInterface* lineInterface(const QueryPanelWidget& widget, int line) {
    const AccessibleQueryPanel* const panel = panelInterface(widget);
    return panel ? panel->line(line) : nullptr;
}

int lineBelow(const QueryPanelWidget& widget, int parent, int x, int y) {
    int line = widget.placeAt(widget.viewport()->mapFromGlobal(QPoint(x, y))).Line;
    while (line >= 0 && widget.parentLine(line) != parent)
        line = widget.parentLine(line);
    return line;
}

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    auto* const widget = qobject_cast<QueryPanelWidget*>(object);
    return widget ? new AccessibleQueryPanel(widget) : nullptr;
}

} // namespace

void installQueryPanelAccessibility() {
    static const bool isInstalled = (QAccessible::installFactory(makeAccessible), true);
    Q_UNUSED(isInstalled)
}

void tellFocus(QueryPanelWidget& widget) {
    if (!QAccessible::isActive())
        return;
    const AccessibleQueryPanel* const panel = panelInterface(widget);
    if (QAccessibleInterface* const focused = panel ? panel->focusChild() : nullptr) {
        QAccessibleEvent event(focused, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

// What stands in its new place says so, as nothing speaks of what has moved.
void tellMoved(QueryPanelWidget& widget) {
    if (!QAccessible::isActive())
        return;
    if (QAccessibleInterface* const line = lineInterface(widget, widget.currentPlace().Line))
        for (const QAccessible::Event change : {QAccessible::NameChanged, QAccessible::Focus}) {
            QAccessibleEvent event(line, change);
            QAccessible::updateAccessibility(&event);
        }
}

void tellLinesChanged(QueryPanelWidget& widget) {
    if (!QAccessible::isActive())
        return;
    if (AccessibleQueryPanel* const panel = panelInterface(widget))
        panel->dropLinesFrom(widget.lineCount());
    QAccessibleEvent event(&widget, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

void tellAlert(QueryPanelWidget& widget) {
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&widget, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace lumora
