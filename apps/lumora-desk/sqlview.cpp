#include "apps/lumora-desk/sqlview.h"

#include "apps/lumora-desk/sqlhighlighter.h"

#include <QFontDatabase>
#include <QScrollBar>

namespace lumora::desk {

SqlView::SqlView(QWidget* parent) : QPlainTextEdit(parent) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabChangesFocus(true);
    new SqlHighlighter(document());
}

void SqlView::showSql(const QString& sql) {
    if (sql == toPlainText())
        return;
    const int place = verticalScrollBar()->value();
    setPlainText(sql);
    verticalScrollBar()->setValue(place);
}

} // namespace lumora::desk
