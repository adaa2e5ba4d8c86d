// The window: it wires the parts together.
#pragma once

#include "apps/lumora-desk/databaseopening.h"
#include "apps/lumora-desk/deskdocument.h"
#include "apps/lumora-desk/recentdatabases.h"

#include <QHash>
#include <QMainWindow>
#include <QSettings>

#include <functional>

class QLabel;
class QSplitter;
class QStackedWidget;
class QTimer;
class QToolButton;

namespace lumora::desk {

class QueryListPane;
class QueryPane;
class ResultPane;
class StartPage;
class StatementPane;

class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // Without waiting; a failure is shown in the dialog for opening.
    void open(const OpenRequest& request);
    void openSample();
    DeskDocument& document() { return document_; }
    QueryPane& query() { return *query_; }
    StatementPane& statement() { return *statement_; }
    ResultPane& result() { return *result_; }

public slots:
    void chooseDatabase();
    void closeDatabase();
    void run();
    void newQuery();
    bool save();
    bool saveAs();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void makeActions();
    void makeMenus();
    void makeToolBar();
    QWidget* makeWorkspace();
    void connectParts();
    QAction* addAction(QAction*& action, const QString& text, const QKeySequence& keys,
                       std::function<void()> triggered);

    void take(OpenedDatabase opened);
    void showRemarks(const QStringList& remarks);
    void showOpenDialog(const OpenRequest* request, const QString& problem);
    void updateRecent();
    bool mayLeaveQuery();
    // Runs the action; a failure is shown. With `force`, a conflict is asked about and the action done again,
    // which does to the other query what is said of it.
    bool attempt(const QString& what, const std::function<void()>& action);
    struct Forcing {
        QString consequence;
        QString button;
    };
    bool attemptSaving(const QString& what, const Forcing& forcing,
                       const std::function<void(bool force)>& action);
    Forcing overwriting(const QString& name) const;
    void selectQuery(int index);
    void renameQuery(int index, const QString& name);
    void duplicateQuery();
    void deleteQuery();
    void revertQuery();
    void readSql();
    void saveModel();
    void showSql(bool visible);
    void updateStatement();
    void updateState();
    void readSettings();
    void writeSettings();

    QSettings settings_;
    RecentDatabases recent_;
    DeskDocument document_;
    DatabaseOpening opening_;
    OpenRequest lastRequest_;
    bool openingSample_ = false;
    QHash<QString, QString> parameterValues_; // as given last, while the program runs
    bool isRunnable_ = false;

    QAction* open_ = nullptr;
    QAction* sample_ = nullptr;
    QAction* close_ = nullptr;
    QAction* saveModel_ = nullptr;
    QAction* export_ = nullptr;
    QAction* quit_ = nullptr;
    QAction* new_ = nullptr;
    QAction* save_ = nullptr;
    QAction* saveAs_ = nullptr;
    QAction* rename_ = nullptr;
    QAction* duplicate_ = nullptr;
    QAction* delete_ = nullptr;
    QAction* revert_ = nullptr;
    QAction* readSql_ = nullptr;
    QAction* distinct_ = nullptr;
    QAction* run_ = nullptr;
    QAction* cancel_ = nullptr;
    QAction* showSql_ = nullptr;
    QAction* copySql_ = nullptr;
    QMenu* recentMenu_ = nullptr;

    QTimer* const rebuild_; // once after many changes
    QStackedWidget* const pages_;
    StartPage* start_ = nullptr;
    QSplitter* outer_ = nullptr;
    QSplitter* inner_ = nullptr;
    QSplitter* lower_ = nullptr;
    QueryListPane* queries_ = nullptr;
    QueryPane* query_ = nullptr;
    StatementPane* statement_ = nullptr;
    ResultPane* result_ = nullptr;
    QToolButton* remarks_ = nullptr;
    QString remarkText_; // what was left out of the data model
    QLabel* databaseLabel_ = nullptr;
};

} // namespace lumora::desk
