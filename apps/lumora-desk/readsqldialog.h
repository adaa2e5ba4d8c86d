// Takes a SELECT statement that is to become the query.
#pragma once

#include <QDialog>

#include <functional>

class QLabel;

namespace lumora {
struct TTextPlace;
}

namespace lumora::desk {

class SqlView;

class ReadSqlDialog : public QDialog {
    Q_OBJECT

public:
    // Reads the text, or raises what is wrong with it.
    using Read = std::function<void(const QString& sql)>;

    explicit ReadSqlDialog(Read read, QWidget* parent = nullptr);

    SqlView& text() { return *text_; }
    QString problem() const;
    void accept() override;

private:
    void showPlace(const TTextPlace& place);

    const Read read_;
    SqlView* const text_;
    QLabel* const problem_;
};

} // namespace lumora::desk
