// The saved queries, and what is written about the current one.
#pragma once

#include "apps/lumora-desk/querylistmodel.h"

#include <QWidget>

class QAction;
class QListView;
class QPlainTextEdit;

namespace lumora::desk {

class QueryListPane : public QWidget {
    Q_OBJECT

public:
    // The actions stand under the list and in its menu.
    QueryListPane(DeskDocument& document, const QList<QAction*>& actions, QWidget* parent = nullptr);

    // The list shows which query is current, whatever was clicked.
    void showCurrent();
    void editName();
    QListView& list() { return *list_; }
    QPlainTextEdit& description() { return *description_; }

signals:
    void queryWanted(int index);
    void renameWanted(int index, const QString& name);

private:
    void showDescription();

    DeskDocument& document_;
    QueryListModel model_;
    QListView* const list_;
    QPlainTextEdit* const description_;
};

} // namespace lumora::desk
