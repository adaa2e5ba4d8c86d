// What the query means: in words and as SQL.
#pragma once

#include "apps/lumora-desk/deskdocument.h"

#include <QWidget>

class QLabel;
class QToolButton;

namespace lumora::desk {

class SqlView;

class StatementPane : public QWidget {
    Q_OBJECT

public:
    explicit StatementPane(QWidget* parent = nullptr);

    // A statement, or what it still lacks in its place.
    void showStatement(const BuiltStatement& statement, const QString& words);
    void setSqlVisible(bool visible);
    QString sql() const;
    QString problem() const;
    QString words() const;

public slots:
    void copySql();

private:
    QLabel* const words_;
    QLabel* const problem_;
    QWidget* const sqlPart_;
    SqlView* const sql_;
    QToolButton* const copy_;
};

} // namespace lumora::desk
