// SQL to be read or written: in colours, in letters of one width.
#pragma once

#include <QPlainTextEdit>

namespace lumora::desk {

class SqlView : public QPlainTextEdit {
public:
    explicit SqlView(QWidget* parent = nullptr);

    // Replaces the text when it is another one, and stays where it was scrolled to.
    void showSql(const QString& sql);
};

} // namespace lumora::desk
