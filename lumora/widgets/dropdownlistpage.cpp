#include "lumora/widgets/dropdownlistpage.h"

#include "lumora/widgets/dropdownitems.h"
#include "lumora/widgets/linkcolor.h"

#include <QApplication>
#include <QCursor>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace lumora {

namespace {

constexpr int rowsInView = 12;
constexpr int rowPadding = 6;

// Rows with some air; a caption that is cut short is told in full by a tooltip.
class ItemDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(rowPadding, rowPadding);
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if ((index.flags() & Qt::ItemIsUserCheckable) && isDark(option.palette))
            outlineCheckBox(painter, option, index);
    }
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        if (event->type() != QEvent::ToolTip || !index.isValid())
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        const bool isCut =
            QStyledItemDelegate::sizeHint(option, index).width() > view->visualRect(index).width();
        QToolTip::showText(event->globalPos(), isCut ? index.data().toString() : QString(), view);
        return true;
    }

protected:
    // A click anywhere in the row checks it, not only one on its box.
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override {
        if (event->type() != QEvent::MouseButtonRelease || !(index.flags() & Qt::ItemIsUserCheckable))
            return event->type() == QEvent::MouseButtonDblClick ||
                   QStyledItemDelegate::editorEvent(event, model, option, index);
        const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(index, isChecked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }

private:
    // Styles draw boxes darker than the ground, which on a dark one cannot be seen.
    void outlineCheckBox(QPainter* painter, QStyleOptionViewItem option, const QModelIndex& index) const {
        initStyleOption(&option, index);
        const QStyle* const style = option.widget->style();
        const QRect box =
            style->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, option.widget);
        painter->setPen(option.palette.color(QPalette::PlaceholderText));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5));
    }
};

QAbstractItemView* makeView(TDropDownKind kind, QWidget* parent) {
    if (kind == ddTree) {
        auto* const tree = new QTreeView(parent);
        tree->setHeaderHidden(true);
        tree->setUniformRowHeights(true);
        tree->setExpandsOnDoubleClick(false);
        return tree;
    }
    auto* const list = new QListView(parent);
    list->setUniformItemSizes(true);
    if (kind == ddMenu) {
        list->setFlow(QListView::TopToBottom);
        list->setWrapping(true);
    }
    return list;
}

bool isTyping(const QKeyEvent& event) {
    return !event.text().isEmpty() && event.text().front().isPrint() &&
           !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

} // namespace

DropDownListPage::DropDownListPage(TDropDownEditor& editor, const QList<QIcon>& images, QWidget* parent)
    : DropDownPage(editor, parent),
      items_(new DropDownItems(editor, images, this)),
      pointerAtStart_(QCursor::pos()) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    if (editor.ShowsSearchBox())
        addSearchBox();
    addView();
    if (isCheckList())
        addCheckButtons();
    showItems();
    fitView();
}

QWidget* DropDownListPage::input() const {
    return search_ && !isCheckList() ? static_cast<QWidget*>(search_) : view_;
}

bool DropDownListPage::handleKey(QWidget* receiver, QKeyEvent* event) {
    return receiver == search_ ? handleSearchKey(event) : receiver == view_ && handleViewKey(event);
}

// Not before: an item can be scrolled to only in a view that has its size.
void DropDownListPage::showEvent(QShowEvent* event) {
    DropDownPage::showEvent(event);
    showCurrent();
}

void DropDownListPage::addSearchBox() {
    search_ = new QLineEdit(this);
    search_->setPlaceholderText(tr("Search"));
    search_->setAccessibleName(tr("Search"));
    search_->setClearButtonEnabled(true);
    if (editor_.GetContent().IsOpenList) {
        const QString prompt = QString::fromStdString(editor_.GetContent().Prompt);
        search_->setPlaceholderText(prompt.isEmpty() ? tr("Search or type a value") : prompt);
        search_->setText(QString::fromStdString(editor_.GetText()));
        search_->selectAll();
    }
    layout()->addWidget(search_);
    connect(search_, &QLineEdit::textChanged, this, &DropDownListPage::search);
}

void DropDownListPage::addView() {
    view_ = makeView(editor_.GetKind(), this);
    view_->setFrameShape(QFrame::NoFrame);
    view_->setAccessibleName(tr("Values"));
    view_->setItemDelegate(new ItemDelegate(view_));
    view_->setModel(items_);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setTextElideMode(Qt::ElideRight);
    view_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->setMouseTracking(true);
    if (editor_.GetKind() != ddMenu)
        view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout()->addWidget(view_);
    nothing_ = new QLabel(view_);
    nothing_->setForegroundRole(QPalette::PlaceholderText);
    nothing_->move(rowPadding, rowPadding);
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DropDownListPage::selectionChanged);
    connect(view_, &QAbstractItemView::entered, this, &DropDownListPage::hover);
    connect(view_, &QAbstractItemView::clicked, this, &DropDownListPage::click);
    connect(items_, &DropDownItems::checked, this, &DropDownPage::edited);
}

void DropDownListPage::addCheckButtons() {
    auto* const row = new QHBoxLayout;
    const auto addButton = [&](const QString& text, bool checked) {
        auto* const button = new QPushButton(text, this);
        button->setAutoDefault(false);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, checked] { check(checked); });
    };
    addButton(tr("&All"), true);
    addButton(tr("&None"), false);
    row->addStretch();
    auto* const done = new QPushButton(tr("&OK"), this);
    done->setAutoDefault(false);
    row->addWidget(done);
    connect(done, &QPushButton::clicked, this, &DropDownPage::chosen);
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
}

// As wide as the longest caption, within bounds, and high enough for some rows.
void DropDownListPage::fitView() {
    const QSize item = itemSize();
    if (editor_.GetKind() == ddMenu)
        return fitMenu(item);
    qsizetype rows = items_->rowCount();
    for (int i = 0; i < items_->rowCount() && rows < rowsInView; ++i)
        rows += items_->rowCount(items_->index(i, 0));
    const bool scrolls = rows > rowsInView;
    const int bar = scrolls ? style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view_) : 0;
    const int onScreen = screen() ? screen()->availableSize().width() - 60 : 400;
    const int widest = std::min(fontMetrics().averageCharWidth() * 60, onScreen);
    view_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    view_->setMinimumWidth(std::min(item.width(), widest) + bar + 4);
    view_->setFixedHeight(item.height() * static_cast<int>(std::clamp<qsizetype>(rows, 1, rowsInView)) + 2);
}

void DropDownListPage::fitMenu(const QSize& longest) {
    const QSize item(std::min(longest.width(), fontMetrics().averageCharWidth() * 40), longest.height());
    const QScreen* const onScreen = screen();
    const QSize available = onScreen ? onScreen->availableSize() - QSize(40, 40) : QSize(800, 600);
    const int fitting = std::max(1, available.height() / item.height());
    const int rows = std::min(std::max(1, editor_.GetItemsInColumn()), fitting);
    itemsInColumn_ = rows;
    const auto count = static_cast<int>(editor_.GetShown().size());
    // Without a bound of the host's a long menu scrolls rather than to run over the screen.
    auto* const list = static_cast<QListView*>(view_);
    const bool isSplit = editor_.GetContent().MaxMenuItems > 0;
    list->setWrapping(isSplit);
    const int columns = isSplit ? (count + rows - 1) / rows : 1;
    const bool isHigh = !isSplit && count > rows;
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view_);
    const int width = std::max(1, columns) * item.width() + 2;
    const bool isWide = width > available.width();
    list->setGridSize(item);
    list->setHorizontalScrollBarPolicy(isWide ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(isHigh ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    list->setFixedSize(std::min(width, available.width()) + (isHigh ? bar : 0),
                       rows * item.height() + 2 + (isWide ? bar : 0));
}

// The longest of the first items: measuring very many would take longer than it is worth.
QSize DropDownListPage::itemSize() const {
    constexpr int measured = 1000;
    QStyleOptionViewItem option;
    option.initFrom(view_);
    option.font = view_->font();
    option.decorationSize = view_->iconSize().isValid()
                                ? view_->iconSize()
                                : QSize(1, 1) * style()->pixelMetric(QStyle::PM_SmallIconSize);
    const int indent = editor_.GetKind() == ddTree ? static_cast<QTreeView*>(view_)->indentation() : 0;
    QSize size(0, fontMetrics().height() + rowPadding);
    int left = measured;
    const auto measure = [&](const QModelIndex& index, int level) {
        const QSize hint = view_->itemDelegate()->sizeHint(option, index);
        size = size.expandedTo(hint + QSize(level * indent, 0));
        --left;
    };
    for (int i = 0; i < items_->rowCount() && left > 0; ++i) {
        const QModelIndex top = items_->index(i, 0);
        measure(top, 1);
        for (int k = 0; k < items_->rowCount(top) && left > 0; ++k)
            measure(items_->index(k, 0, top), 2);
    }
    return size;
}

void DropDownListPage::search(const QString& text) {
    editor_.SetSearch(text.toStdString());
    items_->refresh();
    showItems();
    showCurrent();
    emit edited();
}

void DropDownListPage::showItems() {
    const bool isEmpty = editor_.GetShown().empty();
    nothing_->setText(editor_.GetContent().Items.empty() ? tr("There are no values") : tr("Nothing matches"));
    nothing_->adjustSize();
    nothing_->setVisible(isEmpty);
    if (auto* const tree = qobject_cast<QTreeView*>(view_))
        tree->expandAll();
}

void DropDownListPage::showCurrent() {
    QModelIndex index = items_->indexOf(editor_.GetCurrentItem());
    if (!index.isValid() && isCheckList())
        index = items_->index(0, 0);
    if (!index.isValid()) {
        view_->selectionModel()->clear();
        view_->scrollToTop();
        return;
    }
    view_->setCurrentIndex(index);
    view_->scrollTo(index, QAbstractItemView::EnsureVisible);
}

// What is selected counts: a view that gets the keyboard makes an item current without showing it.
void DropDownListPage::selectionChanged() {
    const QModelIndexList selected = view_->selectionModel()->selectedIndexes();
    editor_.SetCurrentItem(selected.isEmpty() ? -1 : items_->itemOf(selected.front()));
}

// A popup that opens under a pointer at rest is not pointed at.
void DropDownListPage::hover(const QModelIndex& index) {
    if (items_->itemOf(index) >= 0 && QCursor::pos() != pointerAtStart_)
        view_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
}

void DropDownListPage::click(const QModelIndex& index) {
    if (items_->itemOf(index) < 0) {
        if (auto* const tree = qobject_cast<QTreeView*>(view_))
            tree->setExpanded(index, !tree->isExpanded(index));
        return;
    }
    editor_.SetCurrentItem(items_->itemOf(index));
    if (!isCheckList())
        emit chosen();
}

// A last column that is shorter is entered at its end.
void DropDownListPage::moveToColumn(bool next) {
    const int row = std::max(0, view_->currentIndex().row());
    const int last = items_->rowCount() - 1;
    const bool isAtEdge = next ? row / itemsInColumn_ == last / itemsInColumn_ : row < itemsInColumn_;
    if (!isAtEdge)
        view_->setCurrentIndex(
            items_->index(std::min(last, next ? row + itemsInColumn_ : row - itemsInColumn_), 0));
}

void DropDownListPage::check(bool checked) {
    editor_.CheckShown(checked);
    view_->viewport()->update();
    view_->setFocus(Qt::OtherFocusReason);
    emit edited();
}

// The search box moves the current item, but keeps the keyboard.
bool DropDownListPage::handleSearchKey(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Home:
    case Qt::Key_End:
        if (!search_->text().isEmpty() && !(event->modifiers() & Qt::ControlModifier))
            return false;
        [[fallthrough]];
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (isCheckList())
            view_->setFocus(Qt::OtherFocusReason);
        if (!isCheckList() || event->key() != Qt::Key_Down || search_->text().isEmpty())
            QApplication::sendEvent(view_, event); // the first step down goes to what was found
        return true;
    case Qt::Key_Space:
        return checkFound();
    default:
        return false;
    }
}

// A blank that leads to no item checks the one that was found.
bool DropDownListPage::checkFound() {
    const int item = editor_.GetCurrentItem();
    if (!isCheckList() || item < 0 || editor_.HasMatch((search_->text() + u' ').toStdString()))
        return false;
    toggle(item);
    return true;
}

// What is typed next takes the place of the search.
void DropDownListPage::toggle(int item) {
    editor_.SetChecked(item, !editor_.IsChecked(item));
    view_->viewport()->update();
    if (search_)
        search_->selectAll();
    emit edited();
}

// Letters typed over the items go into the search box.
bool DropDownListPage::handleViewKey(QKeyEvent* event) {
    if (isCheckList() && event->key() == Qt::Key_A && event->modifiers() == Qt::ControlModifier) {
        check(editor_.GetChecks().size() < editor_.GetContent().Items.size());
        return true;
    }
    const QModelIndex current = view_->currentIndex();
    if (event->key() == Qt::Key_Down && items_->itemOf(current) >= 0 &&
        !view_->selectionModel()->isSelected(current)) {
        view_->setCurrentIndex(current); // from nowhere to the first
        return true;
    }
    if (editor_.GetKind() == ddMenu && (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)) {
        moveToColumn((event->key() == Qt::Key_Right) != (layoutDirection() == Qt::RightToLeft));
        return true;
    }
    if (event->key() == Qt::Key_Space && !isCheckList() && !search_) {
        if (editor_.GetCurrentItem() >= 0)
            emit chosen();
        return true;
    }
    if (event->key() == Qt::Key_Space && isCheckList() && items_->itemOf(current) >= 0) {
        toggle(items_->itemOf(current));
        view_->keyboardSearch({}); // the next letters begin another value
        return true;
    }
    if (!search_ || !isTyping(*event) || event->key() == Qt::Key_Space)
        return false;
    search_->setFocus(Qt::OtherFocusReason);
    QApplication::sendEvent(search_, event);
    return true;
}

} // namespace lumora
