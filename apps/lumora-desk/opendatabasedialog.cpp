#include "apps/lumora-desk/opendatabasedialog.h"

#include "lumora/platform/errors.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace lumora::desk {

using namespace Qt::StringLiterals;

namespace {

constexpr int postgresPort = 5432;

QFormLayout* makeForm(QWidget* widget) {
    auto* const form = new QFormLayout(widget);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    return form;
}

// The address of a database that is neither a file nor a PostgreSQL server; without the password.
QString addressOf(const DatabaseParameters& database) {
    if (database.driver == "QSQLITE"_L1)
        return {};
    if (database.driver == "QODBC"_L1)
        return "odbc:"_L1 + database.databaseName;
    QUrl url;
    url.setScheme(u"mysql"_s);
    url.setHost(database.hostName);
    url.setPort(database.port);
    url.setUserName(database.userName);
    url.setPath(u'/' + database.databaseName);
    return url.toString(QUrl::FullyEncoded);
}

} // namespace

OpenDatabaseDialog::OpenDatabaseDialog(const QList<OpenRequest>& recent, QWidget* parent)
    : QDialog(parent),
      kind_(new QComboBox(this)),
      pages_(new QStackedWidget(this)),
      problem_(new QLabel(this)),
      progress_(new QProgressBar(this)) {
    setWindowTitle(tr("Open a Database"));
    kind_->addItem(tr("A file (SQLite)"));
    kind_->addItem(tr("A server (PostgreSQL)"));
    kind_->addItem(tr("An address (URL)"));
    pages_->addWidget(makeFilePage());
    pages_->addWidget(makeServerPage());
    pages_->addWidget(makeUrlPage());
    pages_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    showPage(File);

    fields_ = new QWidget(this);
    auto* const form = makeForm(fields_);
    if (!recent.isEmpty())
        form->addRow(tr("&Recent:"), makeRecentRow(recent));
    form->addRow(tr("The database &is:"), kind_);
    form->addRow(pages_);
    form->addRow(tr("Data &model:"), makeModelPart());
    form->addRow(tr("Queries are &kept:"), makeQueriesPart());
    for (QLabel* const label : pages_->findChildren<QLabel*>()) // in line with those around the pages
        label->setMinimumWidth(fontMetrics().horizontalAdvance(tr("Queries are &kept:").remove(u'&')));

    problem_->setWordWrap(true);
    problem_->setTextFormat(Qt::PlainText);
    problem_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    problem_->setFrameShape(QFrame::StyledPanel);
    problem_->setBackgroundRole(QPalette::ToolTipBase);
    problem_->setForegroundRole(QPalette::ToolTipText);
    problem_->setAutoFillBackground(true);
    problem_->setMargin(6);
    problem_->hide();
    progress_->setRange(0, 0);
    progress_->setTextVisible(false);
    progress_->hide();
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
    open_ = buttons->button(QDialogButtonBox::Open);
    connect(buttons, &QDialogButtonBox::accepted, this, &OpenDatabaseDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OpenDatabaseDialog::reject);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(fields_);
    layout->addWidget(problem_);
    layout->addStretch();
    layout->addWidget(progress_);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 80, sizeHint().height());

    connect(kind_, &QComboBox::currentIndexChanged, this, [this](int kind) {
        showPage(kind);
        updateState();
    });
    for (QLineEdit* const line : {file_, database_, url_})
        connect(line, &QLineEdit::textChanged, this, &OpenDatabaseDialog::updateState);
    connect(&opening_, &DatabaseOpening::opened, this, &OpenDatabaseDialog::finish);
    connect(&opening_, &DatabaseOpening::failed, this, [this](const QString& message) {
        setBusy(false);
        showProblem(message);
    });
    connect(&opening_, &DatabaseOpening::cancelled, this, [this] { setBusy(false); });
    file_->setFocus();
    updateState();
}

// --- The fields.

// The hidden pages take no room.
void OpenDatabaseDialog::showPage(int kind) {
    for (int i = 0; i < pages_->count(); ++i)
        pages_->widget(i)->setSizePolicy(QSizePolicy::Preferred,
                                         i == kind ? QSizePolicy::Preferred : QSizePolicy::Ignored);
    pages_->setCurrentIndex(kind);
}

QWidget* OpenDatabaseDialog::makeRecentRow(const QList<OpenRequest>& recent) {
    auto* const box = new QComboBox(this);
    box->addItem(tr("Choose..."));
    for (const OpenRequest& request : recent) {
        box->addItem(displayName(request.database));
        box->setItemData(box->count() - 1, request.database.label(), Qt::ToolTipRole);
    }
    connect(box, &QComboBox::activated, this, [this, recent](int index) {
        if (index > 0)
            setRequest(recent[index - 1]);
    });
    return box;
}

QWidget* OpenDatabaseDialog::withBrowseButton(QLineEdit* line, const QString& name,
                                              std::function<QString()> browse) {
    auto* const row = new QWidget(this);
    auto* const button = new QToolButton(row);
    button->setText(tr("..."));
    button->setToolTip(name);
    button->setAccessibleName(name);
    line->setParent(row);
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(line);
    layout->addWidget(button);
    row->setFocusProxy(line);
    connect(button, &QToolButton::clicked, this, [line, browse = std::move(browse)] {
        if (const QString chosen = browse(); !chosen.isEmpty())
            line->setText(chosen);
    });
    return row;
}

QWidget* OpenDatabaseDialog::makeFilePage() {
    auto* const page = new QWidget(pages_);
    file_ = new QLineEdit;
    auto* const form = makeForm(page);
    form->addRow(tr("&File:"), withBrowseButton(file_, tr("Choose a database file"), [this] {
                     return QFileDialog::getOpenFileName(
                         this, tr("Choose a Database File"), file_->text(),
                         tr("SQLite databases (*.sqlite *.sqlite3 *.db *.db3);;All files (*)"));
                 }));
    return page;
}

QWidget* OpenDatabaseDialog::makeServerPage() {
    auto* const page = new QWidget(pages_);
    host_ = new QLineEdit(QStringLiteral("localhost"), page);
    host_->setPlaceholderText(tr("name or address of the server"));
    port_ = new QSpinBox(page);
    port_->setRange(1, 65535);
    port_->setValue(postgresPort);
    database_ = new QLineEdit(page);
    user_ = new QLineEdit(page);
    password_ = new QLineEdit(page);
    password_->setEchoMode(QLineEdit::Password);
    password_->setPlaceholderText(tr("never kept"));
    auto* const form = makeForm(page);
    form->addRow(tr("&Host:"), host_);
    form->addRow(tr("&Port:"), port_);
    form->addRow(tr("&Database:"), database_);
    form->addRow(tr("&User:"), user_);
    form->addRow(tr("Pass&word:"), password_);
    return page;
}

QWidget* OpenDatabaseDialog::makeUrlPage() {
    auto* const page = new QWidget(pages_);
    url_ = new QLineEdit(page);
    url_->setPlaceholderText(QStringLiteral("postgresql://user@host:5432/database"));
    makeForm(page)->addRow(tr("&Address:"), url_);
    return page;
}

QWidget* OpenDatabaseDialog::makeModelPart() {
    model_ = new QLineEdit;
    model_->setPlaceholderText(tr("made from the tables of the database"));
    model_->setClearButtonEnabled(true);
    return withBrowseButton(model_, tr("Choose a model file"), [this] {
        return QFileDialog::getOpenFileName(this, tr("Choose a Data Model"), model_->text(),
                                            tr("Data models (*.model);;All files (*)"));
    });
}

QWidget* OpenDatabaseDialog::makeQueriesPart() {
    auto* const part = new QWidget(this);
    place_ = new QComboBox(part);
    place_->addItem(tr("in my own data"));
    place_->addItem(tr("in a folder"));
    place_->addItem(tr("in a table of the database"));
    folder_ = new QLineEdit;
    folderRow_ = withBrowseButton(folder_, tr("Choose a folder"), [this] {
        return QFileDialog::getExistingDirectory(this, tr("Choose a Folder for Queries"), folder_->text());
    });
    auto* const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(place_);
    layout->addWidget(folderRow_);
    part->setFocusProxy(place_);
    const auto showFolder = [this] {
        folderRow_->setVisible(place_->currentIndex() > 0);
        folderRow_->findChild<QToolButton*>()->setVisible(place_->currentIndex() == 1);
        folder_->setPlaceholderText(place_->currentIndex() == 1 ? tr("path of the folder")
                                                                : tr("lumora_queries"));
        updateState();
    };
    connect(place_, &QComboBox::currentIndexChanged, this, showFolder);
    connect(folder_, &QLineEdit::textChanged, this, &OpenDatabaseDialog::updateState);
    folderRow_->hide();
    return part;
}

void OpenDatabaseDialog::setRequest(const OpenRequest& request) {
    base_ = request.database;
    const bool isServer = base_.driver == "QPSQL"_L1;
    kind_->setCurrentIndex(isServer ? Server : base_.driver == "QSQLITE"_L1 ? File : Url);
    if (isServer) {
        host_->setText(base_.hostName);
        port_->setValue(base_.port > 0 ? base_.port : postgresPort);
        database_->setText(base_.databaseName);
        user_->setText(base_.userName);
        password_->setText(base_.password);
        password_->setFocus();
    } else {
        file_->setText(base_.databaseName);
        url_->setText(addressOf(base_));
    }
    model_->setText(request.modelFile);
    const bool inTable = request.queries.kind == QueryPlace::Kind::Table;
    place_->setCurrentIndex(inTable ? 2 : request.queries.name.isEmpty() ? 0 : 1);
    folder_->setText(request.queries.name);
    updateState();
}

// Only what somebody chose from the recent ones brings connect options with it.
DatabaseParameters OpenDatabaseDialog::parameters() const {
    if (kind_->currentIndex() == Url)
        return parseDatabase(url_->text().trimmed().toStdString());
    DatabaseParameters database;
    if (kind_->currentIndex() == File) {
        database.driver = u"QSQLITE"_s;
        database.databaseName = file_->text();
    } else {
        database.driver = u"QPSQL"_s;
        database.hostName = host_->text().trimmed();
        database.port = port_->value();
        database.databaseName = database_->text().trimmed();
        database.userName = user_->text().trimmed();
        database.password = password_->text();
    }
    if (database.driver == base_.driver && database.databaseName == base_.databaseName &&
        database.hostName == base_.hostName)
        database.connectOptions = base_.connectOptions;
    return database;
}

OpenRequest OpenDatabaseDialog::request() const {
    OpenRequest request{parameters(), model_->text().trimmed(), {}};
    if (place_->currentIndex() == 2)
        request.queries = {QueryPlace::Kind::Table, folder_->text().trimmed()};
    else if (place_->currentIndex() == 1)
        request.queries = {QueryPlace::Kind::Folder, folder_->text().trimmed()};
    return request;
}

// --- Opening.

void OpenDatabaseDialog::updateState() {
    if (!open_)
        return; // the fields are being made
    const QLineEdit* const needed[] = {file_, database_, url_};
    const bool hasFolder = place_->currentIndex() != 1 || !folder_->text().trimmed().isEmpty();
    open_->setEnabled(!opening_.isRunning() && hasFolder &&
                      !needed[kind_->currentIndex()]->text().trimmed().isEmpty());
}

void OpenDatabaseDialog::setBusy(bool busy) {
    fields_->setEnabled(!busy);
    progress_->setVisible(busy);
    updateState();
}

void OpenDatabaseDialog::showProblem(const QString& text) {
    problem_->setText(text);
    problem_->setVisible(!text.isEmpty());
}

QString OpenDatabaseDialog::problem() const {
    return problem_->text();
}

void OpenDatabaseDialog::accept() {
    showProblem({});
    try {
        opening_.start(request());
        setBusy(true);
    } catch (const Exception& error) {
        showProblem(QString::fromUtf8(error.what()));
    }
}

void OpenDatabaseDialog::reject() {
    if (opening_.isRunning())
        opening_.cancel();
    else
        QDialog::reject();
}

void OpenDatabaseDialog::finish() {
    setBusy(false);
    try {
        if (take_)
            take_(opening_.take());
        QDialog::accept();
    } catch (const Exception& error) {
        showProblem(QString::fromUtf8(error.what()));
    }
}

} // namespace lumora::desk
