// Takes a SELECT statement that is to become the query.
#pragma once

#include <QDialog>

#include <functional>

class QLabel;

namespace lumora::desk {

class SqlView;

class ReadSqlDialog : public QDialog {
    Q_OBJECT

public:
    // Reads the text and says what is wrong with it; empty: it was read.
    using Read = std::function<QString(const QString& sql)>;

    explicit ReadSqlDialog(Read read, QWidget* parent = nullptr);

    SqlView& text() { return *text_; }
    QString problem() const;
    void accept() override;

private:
    const Read read_;
    SqlView* const text_;
    QLabel* const problem_;
};

} // namespace lumora::desk
