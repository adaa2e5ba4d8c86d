#include "lumora/widgets/resultcolumnswidget.h"

#include "lumora/lumora.h"

#include "lumora/query/filter_rows.h"
#include "lumora/widgets/choicedelegate.h"
#include "lumora/widgets/fieldchooser.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QTableView>
#include <QTextDocument>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

namespace lumora {

namespace {

ChoiceDelegate::Choices aggregateChoices(const ResultColumnsModel& model, int row) {
    ChoiceDelegate::Choices choices;
    for (const ResultColumnsModel::Aggregate aggregate : model.aggregates(row))
        choices.append({ResultColumnsModel::aggregateName(aggregate), static_cast<int>(aggregate)});
    return choices;
}

ChoiceDelegate::Choices sortingChoices() {
    ChoiceDelegate::Choices choices;
    for (const TSortingType sorting : {stNoSort, stAscending, stDescending})
        choices.append({ResultColumnsModel::sortingName(sorting), static_cast<int>(sorting)});
    return choices;
}

QToolButton* makeToolButton(QStyle::StandardPixmap icon, const QString& text, const QString& keys,
                            QWidget* parent) {
    auto* const button = new QToolButton(parent);
    button->setIcon(parent->style()->standardIcon(icon));
    button->setToolTip(keys.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, keys));
    button->setAccessibleName(text);
    button->setAutoRaise(true);
    return button;
}

} // namespace

ResultColumnsWidget::ResultColumnsWidget(QWidget* parent)
    : QWidget(parent),
      model_(new ResultColumnsModel(this)),
      stack_(new QStackedWidget(this)),
      view_(new QTableView(this)),
      chooser_(new FieldChooser(this)) {
    view_->setModel(model_);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    view_->setItemDelegateForColumn(
        ResultColumnsModel::Shown,
        new ChoiceDelegate(
            [this](const QModelIndex& index) { return aggregateChoices(*model_, index.row()); }, view_));
    view_->setItemDelegateForColumn(
        ResultColumnsModel::Sorting,
        new ChoiceDelegate([](const QModelIndex&) { return sortingChoices(); }, view_));
    view_->verticalHeader()->hide();
    view_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 10);
    view_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    view_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->horizontalHeader()->setHighlightSections(false);
    view_->setShowGrid(false);
    view_->setTabKeyNavigation(false);
    view_->setAccessibleName(tr("Columns that are shown"));
    view_->installEventFilter(this);
    view_->viewport()->installEventFilter(this);

    stack_->addWidget(makeEmptyPage());
    stack_->addWidget(view_);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(stack_);
    layout->addWidget(makeButtons());
    QWidget* const inTurn[] = {view_, suggest_, add_, up_, down_, remove_};
    for (std::size_t i = 1; i < std::size(inTurn); ++i)
        setTabOrder(inTurn[i - 1], inTurn[i]);
    chooser_->installEventFilter(this);

    // The choices of a cell open with one click, as a drop-down does; a name is edited by two.
    connect(view_, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() != ResultColumnsModel::Caption && index.flags() & Qt::ItemIsEditable)
            view_->edit(index);
    });
    connect(chooser_, &FieldChooser::fieldChosen, this, &ResultColumnsWidget::addField);
    connect(model_, &ResultColumnsModel::queryChanged, this, &ResultColumnsWidget::updateState);
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ResultColumnsWidget::updateState);
    updateState();
}

QWidget* ResultColumnsWidget::makeEmptyPage() {
    auto* const page = new QFrame(this);
    page->setFrameShape(QFrame::StyledPanel);
    page->setBackgroundRole(QPalette::Base);
    page->setAutoFillBackground(true);
    hint_ = new QLabel(page);
    hint_->setWordWrap(true);
    hint_->setAlignment(Qt::AlignCenter);
    suggest_ = new QPushButton(page);
    connect(suggest_, &QPushButton::clicked, this, &ResultColumnsWidget::addSuggested);
    auto* const layout = new QVBoxLayout(page);
    layout->addStretch();
    layout->addWidget(hint_);
    layout->addWidget(suggest_, 0, Qt::AlignHCenter);
    layout->addStretch();
    return page;
}

QWidget* ResultColumnsWidget::makeButtons() {
    auto* const bar = new QWidget(this);
    add_ = new QPushButton(tr("&Add a column..."), bar);
    add_->setToolTip(tr("Choose fields to show (Insert)"));
    remove_ = makeToolButton(QStyle::SP_TrashIcon, tr("Remove the column"), tr("Delete"), bar);
    up_ = makeToolButton(QStyle::SP_ArrowUp, tr("Move the column up"), tr("Alt+Up"), bar);
    down_ = makeToolButton(QStyle::SP_ArrowDown, tr("Move the column down"), tr("Alt+Down"), bar);
    connect(add_, &QPushButton::clicked, this, &ResultColumnsWidget::chooseFields);
    connect(remove_, &QToolButton::clicked, this, &ResultColumnsWidget::removeSelected);
    connect(up_, &QToolButton::clicked, this, &ResultColumnsWidget::moveUp);
    connect(down_, &QToolButton::clicked, this, &ResultColumnsWidget::moveDown);
    auto* const layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(add_);
    layout->addStretch();
    layout->addWidget(up_);
    layout->addWidget(down_);
    layout->addWidget(remove_);
    return bar;
}

void ResultColumnsWidget::setPanel(TVQueryPanel* panel) {
    model_->setPanel(panel);
    updateState();
}

void ResultColumnsWidget::refresh() {
    model_->refresh();
    updateState();
}

int ResultColumnsWidget::currentRow() const {
    return view_->selectionModel()->hasSelection() ? view_->currentIndex().row() : -1;
}

// The table of the first condition.
TDSTable* ResultColumnsWidget::suggestedTable() const {
    TVQueryPanel* const query = panel();
    TFilterCond* const first =
        query && query->GetRootBracket() ? query->GetRootBracket()->GetFirstCondition() : nullptr;
    TDSTable* const table = first && !first->GetTables().empty() ? first->GetTables().front() : nullptr;
    const bool hasColumns =
        table && !ResultColumnsModel::tellingFields(*query->GetDbStruct(), *table).empty();
    return hasColumns ? table : nullptr;
}

void ResultColumnsWidget::updateState() {
    const bool isReady = panel() && panel()->GetDbStruct();
    const int rows = model_->rowCount();
    const int row = currentRow();
    stack_->setCurrentIndex(rows == 0 ? 0 : 1);
    fitColumns();
    add_->setEnabled(isReady);
    remove_->setEnabled(row >= 0);
    up_->setEnabled(row > 0);
    down_->setEnabled(row >= 0 && row < rows - 1);
    const TDSTable* const table = isReady && rows == 0 ? suggestedTable() : nullptr;
    hint_->setText(isReady ? tr("Choose what to show.") : QString());
    suggest_->setVisible(table != nullptr);
    if (table)
        suggest_->setText(
            tr("Show the main fields of %1").arg(QString::fromStdString(table->GetDisplayName())));
}

// Names keep two fifths of the width at least, and what stands behind them can be read; where there is no
// room for all, the table scrolls.
void ResultColumnsWidget::fitColumns() {
    const QAbstractItemView& cells = *view_;
    const int width = cells.viewport()->width();
    const int readable = fontMetrics().averageCharWidth() * 15;
    const auto wanted = [&](ResultColumnsModel::Column column) {
        return std::max(cells.sizeHintForColumn(column), view_->horizontalHeader()->sectionSizeHint(column));
    };
    const int least = std::min(wanted(ResultColumnsModel::Caption), width * 2 / 5);
    const int sorting =
        std::min(wanted(ResultColumnsModel::Sorting), std::max(readable, (width - least) / 2));
    const int shown =
        std::min(wanted(ResultColumnsModel::Shown), std::max(readable, width - least - sorting));
    view_->setColumnWidth(ResultColumnsModel::Sorting, sorting);
    view_->setColumnWidth(ResultColumnsModel::Shown, shown);
    view_->setColumnWidth(ResultColumnsModel::Caption, std::max(least, width - shown - sorting));
}

// --- What people do.

void ResultColumnsWidget::chooseFields() {
    if (!panel() || !panel()->GetDbStruct())
        return;
    chooser_->setModel(*panel()->GetDbStruct());
    chooser_->popupAt(*add_);
}

void ResultColumnsWidget::addField(int fieldID) {
    if (TDSField* const field = panel()->GetDbStruct()->FieldByID(fieldID))
        view_->selectRow(model_->addField(*field));
}

void ResultColumnsWidget::addSuggested() {
    const TDSTable* const table = suggestedTable();
    if (!table)
        return;
    panel()->BeginUpdate();
    for (TDSField* const field : ResultColumnsModel::tellingFields(*panel()->GetDbStruct(), *table))
        model_->addField(*field);
    panel()->EndUpdate();
    view_->setFocus();
    view_->selectRow(0);
}

void ResultColumnsWidget::removeSelected() {
    std::vector<int> rows;
    for (const QModelIndex& index : view_->selectionModel()->selectedRows())
        rows.push_back(index.row());
    if (rows.empty())
        return;
    const int next = view_->currentIndex().row();
    model_->removeRows(rows);
    if (const int count = model_->rowCount(); count > 0)
        view_->selectRow(std::min(next, count - 1));
}

void ResultColumnsWidget::moveCurrent(int step) {
    if (currentRow() >= 0)
        view_->selectRow(model_->moveRow(currentRow(), step));
}

void ResultColumnsWidget::changeSortRank(int step) {
    const int row = currentRow();
    if (row < 0 || model_->sortRank(row) == 0)
        return;
    model_->setSortRank(row, model_->sortRank(row) + step);
}

// A formula is not edited here, and shown whole instead.
void ResultColumnsWidget::editCurrent() {
    const QModelIndex index = view_->currentIndex();
    if (index.flags() & Qt::ItemIsEditable)
        view_->edit(index);
    else if (index.isValid())
        QToolTip::showText(view_->viewport()->mapToGlobal(view_->visualRect(index).bottomLeft()),
                           Qt::convertFromPlainText(index.data(Qt::ToolTipRole).toString()), view_);
}

bool ResultColumnsWidget::handleKey(int key, Qt::KeyboardModifiers modifiers) {
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    switch (key) {
    case Qt::Key_Delete:
        removeSelected();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (alt)
            moveCurrent(key == Qt::Key_Up ? -1 : 1);
        return alt;
    case Qt::Key_Plus:
    case Qt::Key_Minus:
        if (alt)
            changeSortRank(key == Qt::Key_Plus ? -1 : 1);
        return alt;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        editCurrent();
        return true;
    default:
        return false;
    }
}

// Whatever has the keyboard here: a query without columns has no table.
void ResultColumnsWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Insert)
        chooseFields();
    else
        QWidget::keyPressEvent(event);
}

bool ResultColumnsWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == view_->viewport() && event->type() == QEvent::Resize)
        fitColumns();
    if (watched == chooser_ && event->type() == QEvent::Hide && view_->isVisible())
        view_->setFocus(); // to say what the columns show
    if (watched == view_ && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (handleKey(key.key(), key.modifiers()))
            return true;
        if (!key.text().trimmed().isEmpty() && view_->currentIndex().isValid()) // names are searched
            view_->setCurrentIndex(view_->currentIndex().siblingAtColumn(ResultColumnsModel::Caption));
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace lumora
