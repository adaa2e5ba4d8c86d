#include "apps/lumora-desk/mainwindow.h"

#include "apps/lumora-desk/icons.h"
#include "apps/lumora-desk/opendatabasedialog.h"
#include "apps/lumora-desk/parametersdialog.h"
#include "apps/lumora-desk/querylistpane.h"
#include "apps/lumora-desk/querypane.h"
#include "apps/lumora-desk/readsqldialog.h"
#include "apps/lumora-desk/resultpane.h"
#include "apps/lumora-desk/sampledatabase.h"
#include "apps/lumora-desk/startpage.h"
#include "apps/lumora-desk/statementpane.h"
#include "lumora/screen/query_sentence.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumora::desk {

namespace {

constexpr QSize usualSize(1180, 740);
constexpr QSize roomForFrame(16, 48); // that a window manager may put around the window

// Names and messages are texts of somebody else's: neither markup nor shortcuts.
QMessageBox::StandardButton ask(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                const QString& text, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton preset) {
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(preset);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void warn(QWidget* parent, const QString& what, const QString& reason) {
    ask(parent, QMessageBox::Warning, QApplication::applicationDisplayName(), what + u'\n' + u'\n' + reason,
        QMessageBox::Ok, QMessageBox::Ok);
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), recent_(settings_), rebuild_(new QTimer(this)), pages_(new QStackedWidget(this)) {
    makeActions();
    start_ = new StartPage(this);
    start_->setSampleOffered(!sampleFolder().isEmpty());
    pages_->addWidget(start_);
    pages_->addWidget(makeWorkspace());
    setCentralWidget(pages_);
    makeMenus();
    makeToolBar();
    remarks_ = new QToolButton(this);
    remarks_->setToolTip(tr("What was left out of the data model, and why"));
    remarks_->setAutoRaise(true);
    connect(remarks_, &QToolButton::clicked, this, [this] {
        ask(this, QMessageBox::Information, tr("Remarks"), remarkText_, QMessageBox::Ok, QMessageBox::Ok);
    });
    statusBar()->addPermanentWidget(remarks_);
    showRemarks({});
    databaseLabel_ = new QLabel(this);
    statusBar()->addPermanentWidget(databaseLabel_);
    rebuild_->setSingleShot(true);
    rebuild_->setInterval(0);
    connectParts();
    updateRecent();
    readSettings();
    updateState();
}

// The parts go before what they show.
MainWindow::~MainWindow() {
    delete takeCentralWidget();
}

// --- The parts.

QAction* MainWindow::addAction(QAction*& action, const QString& text, const QKeySequence& keys,
                               std::function<void()> triggered) {
    action = new QAction(text, this);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, std::move(triggered));
    return action;
}

void MainWindow::makeActions() {
    addAction(open_, tr("&Open Database..."), QKeySequence::Open, [this] { chooseDatabase(); });
    addAction(sample_, tr("Open the &Sample"), {}, [this] { openSample(); });
    addAction(close_, tr("&Close Database"), {}, [this] { closeDatabase(); });
    addAction(saveModel_, tr("Save the Data &Model as..."), {}, [this] { saveModel(); });
    addAction(export_, tr("&Export Rows to CSV..."), QKeySequence(tr("Ctrl+E")),
              [this] { result_->exportCsv(); });
    addAction(quit_, tr("&Quit"), QKeySequence::Quit, [this] { close(); });
    addAction(new_, tr("&New"), QKeySequence::New, [this] { newQuery(); });
    addAction(save_, tr("&Save"), QKeySequence::Save, [this] { save(); });
    addAction(saveAs_, tr("Save &as..."), QKeySequence(tr("Ctrl+Shift+S")), [this] { saveAs(); });
    addAction(rename_, tr("Re&name"), {}, [this] { queries_->editName(); });
    addAction(duplicate_, tr("D&uplicate"), {}, [this] { duplicateQuery(); });
    addAction(delete_, tr("&Delete"), {}, [this] { deleteQuery(); });
    addAction(revert_, tr("Re&vert to Saved"), {}, [this] { revertQuery(); });
    addAction(readSql_, tr("Read S&QL..."), QKeySequence(tr("Ctrl+L")), [this] { readSql(); });
    addAction(distinct_, tr("&Leave out Duplicates"), {},
              [this] { document_.setDistinct(distinct_->isChecked()); });
    addAction(run_, tr("&Run"), {}, [this] { run(); });
    addAction(cancel_, tr("&Cancel"), QKeySequence(Qt::Key_Escape), [this] {
        if (opening_.isRunning())
            opening_.cancel();
        else
            result_->cancel();
    });
    addAction(showSql_, tr("Show &SQL"), {}, [this] { showSql(showSql_->isChecked()); });
    addAction(copySql_, tr("&Copy the SQL"), QKeySequence(tr("Ctrl+Shift+C")),
              [this] { statement_->copySql(); });
    run_->setShortcuts({QKeySequence(Qt::Key_F5), QKeySequence(tr("Ctrl+R"))});
    distinct_->setCheckable(true);
    showSql_->setCheckable(true);
    new_->setIcon(style()->standardIcon(QStyle::SP_FileIcon));
    save_->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    open_->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    run_->setIcon(runIcon());
    cancel_->setIcon(stopIcon());
    new_->setToolTip(tr("Make a new query"));
    save_->setToolTip(tr("Save the query"));
    run_->setToolTip(tr("Run the query and show its rows (F5)"));
    duplicate_->setToolTip(tr("Make a copy of the query"));
    delete_->setToolTip(tr("Delete the query"));
}

void MainWindow::makeMenus() {
    QMenu& file = *menuBar()->addMenu(tr("&File"));
    file.addActions({open_});
    recentMenu_ = file.addMenu(tr("Open &Recent"));
    file.addActions({sample_, close_});
    file.addSeparator();
    file.addActions({saveModel_, export_});
    file.addSeparator();
    file.addAction(quit_);
    QMenu& query = *menuBar()->addMenu(tr("&Query"));
    query.addActions({new_, save_, saveAs_, revert_});
    query.addSeparator();
    query.addActions({rename_, duplicate_, delete_});
    query.addSeparator();
    query.addActions({run_, cancel_, distinct_});
    query.addSeparator();
    query.addAction(readSql_);
    QMenu& view = *menuBar()->addMenu(tr("&View"));
    view.addActions({showSql_, copySql_});
    sample_->setVisible(!sampleFolder().isEmpty());
}

void MainWindow::makeToolBar() {
    QToolBar& bar = *addToolBar(tr("Main"));
    bar.setObjectName("main");
    bar.setMovable(false);
    bar.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar.addActions({open_, new_, save_});
    bar.addSeparator();
    bar.addActions({run_, cancel_});
    bar.addSeparator();
    bar.addActions({readSql_, export_});
    setContextMenuPolicy(Qt::NoContextMenu); // which could only hide the bar for good
}

QWidget* MainWindow::makeWorkspace() {
    auto* const workspace = new QWidget(this);
    outer_ = new QSplitter(Qt::Horizontal, workspace);
    auto* const layout = new QVBoxLayout(workspace);
    layout->setContentsMargins(6, 6, 6, 0);
    layout->addWidget(outer_);
    inner_ = new QSplitter(Qt::Vertical, outer_);
    lower_ = new QSplitter(Qt::Horizontal, inner_);
    queries_ = new QueryListPane(document_, {new_, duplicate_, delete_}, outer_);
    query_ = new QueryPane(document_, inner_);
    result_ = new ResultPane(lower_);
    statement_ = new StatementPane(lower_);
    outer_->addWidget(queries_);
    outer_->addWidget(inner_);
    inner_->addWidget(query_);
    inner_->addWidget(lower_);
    lower_->addWidget(result_);
    lower_->addWidget(statement_);
    outer_->setStretchFactor(1, 1);
    inner_->setStretchFactor(0, 2);
    inner_->setStretchFactor(1, 3);
    lower_->setStretchFactor(0, 3);
    lower_->setStretchFactor(1, 2);
    for (QSplitter* const splitter : {outer_, inner_, lower_})
        splitter->setChildrenCollapsible(false);
    const int unit = fontMetrics().averageCharWidth();
    outer_->setSizes({unit * 30, unit * 130});
    inner_->setSizes({unit * 34, unit * 56});
    query_->setSizes({unit * 84, unit * 56});
    lower_->setSizes({unit * 84, unit * 56});
    return workspace;
}

void MainWindow::connectParts() {
    connect(start_, &StartPage::openWanted, this, &MainWindow::chooseDatabase);
    connect(start_, &StartPage::sampleWanted, this, &MainWindow::openSample);
    connect(start_, &StartPage::recentWanted, this, &MainWindow::open);
    connect(queries_, &QueryListPane::queryWanted, this, &MainWindow::selectQuery);
    connect(queries_, &QueryListPane::renameWanted, this, &MainWindow::renameQuery);
    connect(&query_->conditions(), &QueryPanelWidget::refused, this,
            [this](const QString& reason) { statusBar()->showMessage(reason, 10'000); });
    connect(&document_, &DeskDocument::opened, this, [this] {
        showRemarks({});
        result_->clear();
        updateState();
    });
    connect(&document_, &DeskDocument::currentQueryChanged, this, [this] {
        result_->clear();
        rebuild_->start();
    });
    connect(&document_, &DeskDocument::queryChanged, this, [this] {
        result_->setOutdated(true);
        rebuild_->start();
    });
    connect(&document_, &DeskDocument::modifiedChanged, this, &MainWindow::updateState);
    connect(&document_, &DeskDocument::queryListChanged, this, &MainWindow::updateState);
    connect(rebuild_, &QTimer::timeout, this, &MainWindow::updateStatement);
    connect(result_, &ResultPane::stateChanged, this, &MainWindow::updateState);
    connect(&opening_, &DatabaseOpening::opened, this, [this] {
        try {
            take(opening_.take());
        } catch (const Exception& error) {
            updateState();
            showOpenDialog(&lastRequest_, QString::fromUtf8(error.what()));
        }
    });
    connect(&opening_, &DatabaseOpening::failed, this, [this](const QString& message) {
        updateState();
        if (openingSample_)
            warn(this, tr("The sample was not opened."), message);
        else
            showOpenDialog(&lastRequest_, message);
    });
    connect(&opening_, &DatabaseOpening::cancelled, this, &MainWindow::updateState);
}

// --- Databases.

void MainWindow::open(const OpenRequest& request) {
    if (!mayLeaveQuery())
        return;
    lastRequest_ = request;
    openingSample_ = false;
    opening_.start(request);
    updateState();
}

void MainWindow::openSample() {
    if (!mayLeaveQuery())
        return;
    openingSample_ = true;
    opening_.startSample();
    updateState();
}

void MainWindow::chooseDatabase() {
    if (mayLeaveQuery())
        showOpenDialog(nullptr, {});
}

void MainWindow::showOpenDialog(const OpenRequest* request, const QString& problem) {
    OpenDatabaseDialog dialog(recent_.list(), this);
    if (request)
        dialog.setRequest(*request);
    dialog.showProblem(problem);
    dialog.setTake([this](OpenedDatabase opened) {
        openingSample_ = false;
        take(std::move(opened));
    });
    dialog.exec();
}

void MainWindow::take(OpenedDatabase opened) {
    const OpenRequest request = opened.request;
    const QStringList remarks = opened.remarks;
    document_.adopt(std::move(opened));
    if (!openingSample_)
        recent_.add(request);
    updateRecent();
    updateState();
    query_->conditions().setFocus();
    statusBar()->showMessage(tr("%1 is open").arg(document_.title()), 5000);
    showRemarks(remarks);
}

// What could not be taken from the database is said quietly, and told whole on a click.
void MainWindow::showRemarks(const QStringList& remarks) {
    remarks_->setVisible(!remarks.isEmpty());
    remarks_->setText(remarks.size() == 1 ? tr("1 remark") : tr("%1 remarks").arg(remarks.size()));
    remarkText_ = remarks.join(u'\n');
}

void MainWindow::closeDatabase() {
    if (mayLeaveQuery())
        document_.close();
}

void MainWindow::updateRecent() {
    const QList<OpenRequest> requests = recent_.list();
    start_->setRecent(requests);
    recentMenu_->clear();
    for (const OpenRequest& request : requests) {
        QString label = recentLabel(request);
        QAction* const action = recentMenu_->addAction(label.replace(u'&', QStringLiteral("&&")));
        connect(action, &QAction::triggered, this, [this, request] { open(request); });
    }
    if (!requests.isEmpty()) {
        recentMenu_->addSeparator();
        connect(recentMenu_->addAction(tr("&Forget Them")), &QAction::triggered, this, [this] {
            recent_.clear();
            updateRecent();
        });
    }
    recentMenu_->setEnabled(!requests.isEmpty());
}

void MainWindow::saveModel() {
    const QString name =
        QFileDialog::getSaveFileName(this, tr("Save the Data Model"), QStringLiteral("database.model"),
                                     tr("Data models (*.model);;All files (*)"));
    if (!name.isEmpty())
        attempt(tr("The data model was not saved."),
                [&] { document_.model()->SaveToFile(name.toStdString()); });
}

// --- Queries.

bool MainWindow::mayLeaveQuery() {
    if (!document_.isModified())
        return true;
    switch (ask(this, QMessageBox::Question, tr("Unsaved Changes"),
                tr("Save the changes of the query \"%1\"?").arg(document_.queryName()),
                QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save)) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

bool MainWindow::attempt(const QString& what, const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const Exception& error) {
        warn(this, what, sentence(error));
        return false;
    }
}

MainWindow::Forcing MainWindow::overwriting(const QString& name) const {
    return {tr("If you save it anyway, this query is the one that is stored as \"%1\". Another one that is "
               "stored there now is replaced and lost.")
                .arg(name),
            tr("Save &Anyway")};
}

bool MainWindow::attemptSaving(const QString& what, const Forcing& forcing,
                               const std::function<void(bool force)>& action) {
    try {
        action(false);
        return true;
    } catch (const EVQueryBaseError& error) {
        if (error.Code != qbeConflict) {
            warn(this, what, sentence(error));
            return false;
        }
        const QStringList texts = {what, sentence(error), forcing.consequence};
        QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                        texts.join(QStringLiteral("\n\n")), QMessageBox::Cancel, this);
        box.setTextFormat(Qt::PlainText);
        const QPushButton* const force = box.addButton(forcing.button, QMessageBox::DestructiveRole);
        box.setDefaultButton(QMessageBox::Cancel);
        box.exec();
        return box.clickedButton() == force && attempt(what, [&] { action(true); });
    } catch (const Exception& error) {
        warn(this, what, sentence(error));
        return false;
    }
}

void MainWindow::selectQuery(int index) {
    if (index != document_.currentIndex() && mayLeaveQuery())
        attempt(tr("The query cannot be shown."), [&] { document_.selectQuery(index); });
    queries_->showCurrent();
}

void MainWindow::newQuery() {
    if (document_.isOpen() && mayLeaveQuery() &&
        attempt(tr("No query was made."), [this] { document_.newQuery(); }))
        query_->conditions().setFocus();
}

bool MainWindow::save() {
    if (document_.currentIndex() < 0)
        return false;
    if (!document_.isStored(document_.currentIndex()))
        return saveAs();
    return attemptSaving(tr("The query was not saved."), overwriting(document_.queryName()),
                         [this](bool force) { document_.save(force); });
}

// The first saving asks for a name too.
bool MainWindow::saveAs() {
    const bool isNew = document_.currentIndex() >= 0 && !document_.isStored(document_.currentIndex());
    QInputDialog dialog(this);
    dialog.setWindowTitle(tr("Save the Query"));
    dialog.setLabelText(tr("Name:"));
    dialog.setTextValue(document_.queryName());
    dialog.resize(fontMetrics().averageCharWidth() * 50, dialog.sizeHint().height()); // names are sentences
    if (dialog.exec() != QDialog::Accepted)
        return false;
    const QString name = dialog.textValue();
    if (!isNew) // a copy takes no other query's place
        return attempt(tr("The query was not saved."), [&] { document_.saveAs(name); });
    return attemptSaving(tr("The query was not saved."), overwriting(name.trimmed()),
                         [&](bool force) { document_.rename(name, force); });
}

void MainWindow::renameQuery(int index, const QString& name) {
    if (index != document_.currentIndex() || !mayLeaveQuery())
        return;
    if (document_.isModified())
        document_.revert(); // the changes are not wanted
    attemptSaving(tr("The query was not renamed."), overwriting(name),
                  [&](bool force) { document_.rename(name, force); });
}

void MainWindow::duplicateQuery() {
    const int index = document_.currentIndex();
    if (index >= 0 && mayLeaveQuery())
        attempt(tr("The query was not copied."), [&] { document_.duplicate(document_.currentIndex()); });
}

void MainWindow::deleteQuery() {
    const int index = document_.currentIndex();
    if (index < 0)
        return;
    const auto answer = ask(this, QMessageBox::Question, tr("Delete the Query"),
                            tr("Delete the query \"%1\"? This cannot be undone.").arg(document_.queryName()),
                            QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer == QMessageBox::Yes)
        attemptSaving(tr("The query was not deleted."),
                      {tr("If you delete it anyway, what somebody else has saved in it is lost, too."),
                       tr("Delete &Anyway")},
                      [&](bool force) { document_.erase(index, force); });
}

void MainWindow::revertQuery() {
    const auto answer = ask(this, QMessageBox::Question, tr("Revert to Saved"),
                            tr("Give up the changes of \"%1\"?").arg(document_.queryName()),
                            QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer == QMessageBox::Yes)
        attempt(tr("The query cannot be read."), [this] { document_.revert(); });
}

void MainWindow::readSql() {
    ReadSqlDialog dialog([this](const QString& sql) { document_.readSql(sql); }, this);
    dialog.exec();
}

// --- Running.

void MainWindow::run() {
    if (!document_.isOpen())
        return;
    updateStatement();
    if (!isRunnable_) {
        result_->showProblem(statement_->problem());
        return;
    }
    try {
        std::vector<ParameterValue> values;
        if (const std::vector<AskedParameter> parameters = document_.parameters(); !parameters.empty()) {
            const auto check = [this](const std::vector<ParameterValue>& given) -> QString {
                try {
                    document_.statement(given);
                    return {};
                } catch (const Exception& error) {
                    return sentence(error);
                }
            };
            ParametersDialog dialog(parameters, parameterValues_, check, this);
            if (dialog.exec() != QDialog::Accepted)
                return;
            values = dialog.values();
            for (const ParameterValue& value : values)
                parameterValues_[value.name] = value.value;
        }
        result_->run(document_.statement(values));
    } catch (const Exception& error) {
        result_->showProblem(sentence(error));
    }
}

void MainWindow::showSql(bool visible) {
    statement_->setSqlVisible(visible);
    showSql_->setChecked(visible);
}

void MainWindow::updateStatement() {
    rebuild_->stop();
    if (!document_.isOpen())
        return;
    const BuiltStatement statement = document_.build();
    isRunnable_ = statement.problem.isEmpty();
    statement_->showStatement(statement,
                              QString::fromStdString(QuerySentence(document_.panel().GetScreen())));
    distinct_->setChecked(document_.isDistinct());
    updateState();
}

// --- The window.

void MainWindow::updateState() {
    const bool isOpen = document_.isOpen();
    const bool isOpening = opening_.isRunning();
    const bool hasQuery = isOpen && document_.currentIndex() >= 0;
    pages_->setCurrentIndex(isOpen ? 1 : 0);
    start_->setBusy(isOpening ? (openingSample_ ? tr("Opening the sample...")
                                                : tr("Opening %1...").arg(displayName(lastRequest_.database)))
                              : QString());
    for (QAction* const action : {close_, saveModel_, new_, readSql_, distinct_, copySql_})
        action->setEnabled(isOpen);
    for (QAction* const action : {saveAs_, rename_, duplicate_, delete_})
        action->setEnabled(hasQuery);
    save_->setEnabled(hasQuery && (document_.isModified() || !document_.isStored(document_.currentIndex())));
    revert_->setEnabled(hasQuery && document_.isModified());
    run_->setEnabled(isOpen);
    cancel_->setEnabled(isOpening || result_->isBusy());
    export_->setEnabled(result_->hasRows() && !result_->isBusy());
    databaseLabel_->setText(isOpening && isOpen ? tr("Opening...") : document_.title());
    setWindowModified(document_.isModified());
    setWindowTitle(isOpen ? QStringLiteral("%1[*] - %2").arg(document_.queryName(), document_.title())
                          : QApplication::applicationDisplayName());
}

void MainWindow::readSettings() {
    if (!restoreGeometry(settings_.value("window/geometry").toByteArray()))
        resize(usualSize.boundedTo(screen()->availableSize() - roomForFrame));
    outer_->restoreState(settings_.value("window/outer").toByteArray());
    inner_->restoreState(settings_.value("window/inner").toByteArray());
    lower_->restoreState(settings_.value("window/lower").toByteArray());
    query_->restoreState(settings_.value("window/query").toByteArray());
    showSql(settings_.value("window/sql", true).toBool());
}

void MainWindow::writeSettings() {
    settings_.setValue("window/geometry", saveGeometry());
    settings_.setValue("window/outer", outer_->saveState());
    settings_.setValue("window/inner", inner_->saveState());
    settings_.setValue("window/lower", lower_->saveState());
    settings_.setValue("window/query", query_->saveState());
    settings_.setValue("window/sql", showSql_->isChecked());
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!mayLeaveQuery())
        return event->ignore();
    writeSettings();
    opening_.cancel();
    result_->cancel();
    event->accept();
}

} // namespace lumora::desk
