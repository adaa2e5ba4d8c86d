// Asks which database to open, and opens it.
#pragma once

#include "apps/lumora-desk/databaseopening.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QStackedWidget;

namespace lumora::desk {

// Stays until the database is open: what fails is told in it, with everything as it was entered.
class OpenDatabaseDialog : public QDialog {
    Q_OBJECT

public:
    explicit OpenDatabaseDialog(const QList<OpenRequest>& recent, QWidget* parent = nullptr);

    void setRequest(const OpenRequest& request);
    // Raises DatabaseError for a URL that cannot be read.
    OpenRequest request() const;
    void showProblem(const QString& text);
    QString problem() const;

    // Makes something of the open database; raises when that fails.
    using Take = std::function<void(OpenedDatabase opened)>;
    void setTake(Take take) { take_ = std::move(take); }

    void accept() override;
    void reject() override;

private:
    enum Kind { File, Server, Url };

    QWidget* makeRecentRow(const QList<OpenRequest>& recent);
    QWidget* makeFilePage();
    QWidget* makeServerPage();
    QWidget* makeUrlPage();
    QWidget* makeModelPart();
    QWidget* makeQueriesPart();
    QWidget* withBrowseButton(QLineEdit* line, const QString& name, std::function<QString()> browse);
    DatabaseParameters parameters() const;
    void updateState();
    void setBusy(bool busy);
    void finish();

    DatabaseOpening opening_;
    Take take_;
    DatabaseParameters base_; // what the fields do not show, connect options

    QComboBox* const kind_;
    QStackedWidget* const pages_;
    QLineEdit* file_ = nullptr;
    QLineEdit* host_ = nullptr;
    QSpinBox* port_ = nullptr;
    QLineEdit* database_ = nullptr;
    QLineEdit* user_ = nullptr;
    QLineEdit* password_ = nullptr;
    QLineEdit* url_ = nullptr;
    QLineEdit* model_ = nullptr;
    QComboBox* place_ = nullptr;
    QLineEdit* folder_ = nullptr;
    QWidget* folderRow_ = nullptr;
    QLabel* const problem_;
    QProgressBar* const progress_;
    QPushButton* open_ = nullptr;
    QWidget* fields_ = nullptr;
};

} // namespace lumora::desk
