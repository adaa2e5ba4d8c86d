// The rows of a query: running, what came, where it failed, and taking it elsewhere.
#pragma once

#include "apps/lumora-desk/exporttask.h"
#include "apps/lumora-desk/querytask.h"
#include "apps/lumora-desk/resulttablemodel.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace lumora::desk {

class ResultPane : public QWidget {
    Q_OBJECT

public:
    explicit ResultPane(QWidget* parent = nullptr);

    void run(const Statement& statement);
    // What keeps a query from running, in the place of its rows.
    void showProblem(const QString& message);
    void clear();
    // The rows are those of a query that was changed since.
    void setOutdated(bool outdated);
    // Of the query, or of the file that is being written.
    void cancel();
    bool isBusy() const { return query_.isRunning() || export_.isRunning(); }
    bool hasRows() const { return model_.columnCount() > 0; }
    ResultTableModel& model() { return model_; }
    QString summary() const { return summary_; }
    QTableView& view() { return *view_; }

public slots:
    // The selected cells, or everything.
    void copy();
    void copyWithNames();
    // All rows of the query, those that are not shown included.
    void exportCsv();
    void exportTo(const QString& fileName);

signals:
    void stateChanged(); // busy or not, rows or none

private:
    enum class State { Empty, Running, Complete, CutOff, Cancelled, Failed };

    void setState(State state);
    void finishRun(State state);
    void updateSummary();
    void showMessage(const QString& text);
    void sortByHeader();
    void fitColumns();
    void copySelection(bool names);
    QWidget* makeBar();

    ResultTableModel model_;
    QueryTask query_;
    ExportTask export_;
    Statement statement_;
    State state_ = State::Empty;
    bool outdated_ = false;
    QElapsedTimer clock_;
    qint64 duration_ = 0; // of the last run, in milliseconds
    QTimer ticker_;
    QString summary_;
    QString exportText_;

    QStackedWidget* const stack_;
    QTableView* const view_;
    QLabel* const message_;
    QLabel* info_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QPushButton* exportAll_ = nullptr;
};

} // namespace lumora::desk
