// An editor of the columns that a query shows.
#pragma once

#include "lumora/widgets/resultcolumnsmodel.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QStackedWidget;
class QTableView;
class QToolButton;

namespace lumora {

class FieldChooser;

// Columns are added from a list of fields that can be searched, named, summed up, sorted, moved and removed,
// by mouse and keyboard: Insert adds, Delete removes, Alt and an arrow moves, Alt and + or - changes the
// place in the order of sorting. A query without columns says so, and offers some that fit its conditions.
class ResultColumnsWidget : public QWidget {
    Q_OBJECT

public:
    explicit ResultColumnsWidget(QWidget* parent = nullptr);

    // Not owned, and to be taken back before it goes.
    void setPanel(TVQueryPanel* panel);
    TVQueryPanel* panel() const { return model_->panel(); }
    // To be called when the panel's query was loaded or its model changed.
    void refresh();

    ResultColumnsModel& columns() { return *model_; }
    QTableView& view() { return *view_; }

public slots:
    void chooseFields();
    void addSuggested();
    void removeSelected();
    void moveUp() { moveCurrent(-1); }
    void moveDown() { moveCurrent(1); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool handleKey(int key, Qt::KeyboardModifiers modifiers);
    void addField(int fieldID);
    void moveCurrent(int step);
    void changeSortRank(int step);
    int currentRow() const;
    TDSTable* suggestedTable() const;
    void updateState();
    void fitColumns();
    void editCurrent();
    QWidget* makeEmptyPage();
    QWidget* makeButtons();

    ResultColumnsModel* const model_;
    QStackedWidget* const stack_;
    QTableView* const view_;
    FieldChooser* const chooser_;
    QLabel* hint_ = nullptr;
    QPushButton* suggest_ = nullptr;
    QPushButton* add_ = nullptr;
    QToolButton* remove_ = nullptr;
    QToolButton* up_ = nullptr;
    QToolButton* down_ = nullptr;
};

} // namespace lumora
