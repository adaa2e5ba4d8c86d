#include "apps/lumora-desk/resultpane.h"

#include "apps/lumora-desk/panetitle.h"
#include "lumora/widgets/owndirection.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <set>

namespace lumora::desk {

namespace {

QString rowCountText(qint64 rows) {
    return rows == 1 ? ResultPane::tr("1 row") : ResultPane::tr("%1 rows").arg(QLocale().toString(rows));
}

class ValueDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text = inOwnDirection(option->text, option->direction);
    }
};

QString durationText(qint64 milliseconds) {
    if (milliseconds < 1000)
        return ResultPane::tr("%1 ms").arg(milliseconds);
    return ResultPane::tr("%1 s").arg(QLocale().toString(static_cast<double>(milliseconds) / 1000, 'f', 1));
}

} // namespace

ResultPane::ResultPane(QWidget* parent)
    : QWidget(parent),
      stack_(new QStackedWidget(this)),
      view_(new QTableView(this)),
      message_(new QLabel(this)) {
    view_->setModel(&model_);
    view_->setItemDelegate(new ValueDelegate(view_));
    view_->setAccessibleName(tr("Rows"));
    view_->setAlternatingRowColors(true);
    view_->setWordWrap(false);
    view_->setTabKeyNavigation(false);
    view_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 8);
    view_->horizontalHeader()->setSortIndicatorShown(true);
    view_->horizontalHeader()->setSortIndicatorClearable(true);
    view_->horizontalHeader()->setSectionsClickable(true);
    view_->horizontalHeader()->setHighlightSections(false);
    view_->setContextMenuPolicy(Qt::ActionsContextMenu);

    message_->setWordWrap(true);
    message_->setAlignment(Qt::AlignCenter);
    message_->setTextFormat(Qt::PlainText);
    message_->setMargin(16);
    message_->setFrameShape(QFrame::StyledPanel);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message_->setAccessibleName(tr("Rows"));
    message_->setBackgroundRole(QPalette::Base);
    message_->setAutoFillBackground(true);
    stack_->addWidget(message_);
    stack_->addWidget(view_);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(makeBar());
    layout->addWidget(stack_);

    const auto addAction = [this](const QString& text, auto slot) {
        auto* const action = new QAction(text, view_);
        connect(action, &QAction::triggered, this, slot);
        view_->addAction(action);
        return action;
    };
    addAction(tr("&Copy"), &ResultPane::copy)->setShortcut(QKeySequence::Copy);
    addAction(tr("Copy with Column &Names"), &ResultPane::copyWithNames);
    addAction(tr("&Export to CSV..."), &ResultPane::exportCsv);
    view_->actions().first()->setShortcutContext(Qt::WidgetShortcut);

    connect(view_->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, &ResultPane::sortByHeader);
    connect(&query_, &QueryTask::columnsReady, this, [this](const QList<ResultColumn>& columns) {
        model_.begin(columns);
        stack_->setCurrentWidget(view_);
    });
    connect(&query_, &QueryTask::rowsReady, this, [this](const ResultRows& rows) {
        const bool isFirst = model_.rowCount() == 0;
        model_.append(rows);
        if (isFirst)
            fitColumns();
    });
    connect(&query_, &QueryTask::finished, this,
            [this](bool complete) { finishRun(complete ? State::Complete : State::CutOff); });
    connect(&query_, &QueryTask::cancelled, this, [this] { finishRun(State::Cancelled); });
    connect(&query_, &QueryTask::failed, this, [this](const QString& message) {
        model_.clear();
        showMessage(tr("The database could not answer:\n\n%1").arg(message));
        finishRun(State::Failed);
    });
    connect(&export_, &ExportTask::progressed, this, [this](qint64 rows) {
        exportText_ = tr("Exporting, %1 so far").arg(rowCountText(rows));
        updateSummary();
    });
    const auto endExport = [this](const QString& text) {
        exportText_ = text;
        setState(state_);
    };
    connect(&export_, &ExportTask::finished, this,
            [endExport](qint64 rows) { endExport(tr("%1 exported").arg(rowCountText(rows))); });
    connect(&export_, &ExportTask::cancelled, this, [endExport] { endExport(tr("Export cancelled")); });
    connect(&export_, &ExportTask::failed, this,
            [endExport](const QString& message) { endExport(tr("Export failed. %1").arg(message)); });
    ticker_.setInterval(200);
    connect(&ticker_, &QTimer::timeout, this, &ResultPane::updateSummary);
    clear();
}

QWidget* ResultPane::makeBar() {
    auto* const bar = new QWidget(this);
    info_ = new QLabel(bar);
    info_->setAccessibleName(tr("Number of rows and time"));
    info_->setWordWrap(true);
    progress_ = new QProgressBar(bar);
    progress_->setRange(0, 0);
    progress_->setTextVisible(false);
    progress_->setMaximumWidth(120);
    progress_->setAccessibleName(tr("The database is at work"));
    cancel_ = new QPushButton(tr("Cancel"), bar);
    cancel_->setToolTip(tr("Stop (Escape)"));
    exportAll_ = new QPushButton(tr("Export all rows..."), bar);
    connect(cancel_, &QPushButton::clicked, this, &ResultPane::cancel);
    connect(exportAll_, &QPushButton::clicked, this, &ResultPane::exportCsv);
    auto* const layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new PaneTitle(tr("Rows"), bar));
    layout->addSpacing(8);
    layout->addWidget(info_, 1);
    layout->addWidget(exportAll_);
    layout->addWidget(progress_);
    layout->addWidget(cancel_);
    return bar;
}

// --- Running.

void ResultPane::run(const Statement& statement) {
    statement_ = statement;
    outdated_ = false;
    exportText_.clear();
    model_.clear();
    view_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    showMessage(tr("Asking the database..."));
    clock_.start();
    ticker_.start();
    query_.start(statement_);
    setState(State::Running);
}

void ResultPane::finishRun(State state) {
    duration_ = clock_.elapsed();
    ticker_.stop();
    if (state == State::Cancelled && !hasRows())
        showMessage(tr("The query was cancelled."));
    setState(state);
    sortByHeader();
}

void ResultPane::cancel() {
    export_.isRunning() ? export_.cancel() : query_.cancel();
}

void ResultPane::clear() {
    showProblem(tr("Run the query (F5) to see its rows here."));
}

void ResultPane::showProblem(const QString& message) {
    query_.cancel();
    export_.cancel();
    exportText_.clear();
    model_.clear();
    showMessage(message);
    setState(State::Empty);
}

void ResultPane::setOutdated(bool outdated) {
    if (outdated == outdated_)
        return;
    outdated_ = outdated;
    updateSummary();
}

void ResultPane::showMessage(const QString& text) {
    message_->setText(text);
    stack_->setCurrentWidget(message_);
}

void ResultPane::setState(State state) {
    state_ = state;
    progress_->setVisible(isBusy());
    cancel_->setVisible(isBusy());
    exportAll_->setVisible(state == State::CutOff && !isBusy());
    updateSummary();
    emit stateChanged();
}

void ResultPane::updateSummary() {
    const QString rows = rowCountText(model_.rowCount());
    switch (state_) {
    case State::Empty:
    case State::Failed:
        summary_.clear();
        break;
    case State::Running:
        summary_ = tr("%1 so far, %2").arg(rows, durationText(clock_.elapsed()));
        break;
    case State::Complete:
        summary_ = tr("%1 in %2").arg(rows, durationText(duration_));
        break;
    case State::CutOff:
        summary_ = tr("The first %1 are shown; there are more").arg(rows);
        break;
    case State::Cancelled:
        summary_ = tr("Cancelled after %1").arg(rows);
        break;
    }
    QStringList parts = {summary_};
    if (outdated_ && hasRows() && state_ != State::Running)
        parts.append(tr("the query has changed since"));
    parts.append(exportText_);
    parts.removeAll(QString());
    info_->setText(parts.join(QStringLiteral(" - ")));
}

// --- The table.

void ResultPane::sortByHeader() {
    if (query_.isRunning() || !hasRows())
        return; // again when all rows are there
    const QHeaderView& header = *view_->horizontalHeader();
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    model_.sort(header.sortIndicatorSection(), header.sortIndicatorOrder());
    QGuiApplication::restoreOverrideCursor();
}

void ResultPane::fitColumns() {
    view_->horizontalHeader()->setResizeContentsPrecision(100);
    view_->resizeColumnsToContents();
    const int widest = std::max(200, view_->viewport()->width() / 2);
    for (int i = 0; i < model_.columnCount(); ++i)
        if (view_->columnWidth(i) > widest)
            view_->setColumnWidth(i, widest);
}

void ResultPane::copySelection(bool names) {
    std::set<int> rows;
    std::set<int> columns;
    for (const QItemSelectionRange& range : view_->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
        for (int column = range.left(); column <= range.right(); ++column)
            columns.insert(column);
    }
    if (rows.empty()) {
        for (int row = 0; row < model_.rowCount(); ++row)
            rows.insert(row);
        for (int column = 0; column < model_.columnCount(); ++column)
            columns.insert(column);
    }
    if (!columns.empty())
        QGuiApplication::clipboard()->setText(model_.tabSeparated(
            QList<int>(rows.begin(), rows.end()), QList<int>(columns.begin(), columns.end()), names));
}

void ResultPane::copy() {
    copySelection(false);
}

void ResultPane::copyWithNames() {
    copySelection(true);
}

void ResultPane::exportCsv() {
    if (!hasRows() || isBusy())
        return;
    QSettings settings;
    const QString folder = settings.value("exportFolder", QDir::homePath()).toString();
    const QString name =
        QFileDialog::getSaveFileName(this, tr("Export to CSV"), folder + QStringLiteral("/rows.csv"),
                                     tr("CSV files (*.csv);;All files (*)"));
    if (name.isEmpty())
        return;
    settings.setValue("exportFolder", QFileInfo(name).absolutePath());
    exportTo(name);
}

// What was cut off is asked for once more, and goes to the file without being kept.
void ResultPane::exportTo(const QString& fileName) {
    exportText_ = tr("Exporting");
    if (state_ == State::Complete)
        export_.start(fileName, model_.columns(), model_.allRows());
    else
        export_.start(fileName, statement_);
    setState(state_);
}

} // namespace lumora::desk
