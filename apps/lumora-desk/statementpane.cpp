#include "apps/lumora-desk/statementpane.h"

#include "apps/lumora-desk/panetitle.h"
#include "apps/lumora-desk/sqlview.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumora::desk {

namespace {

QLabel* makeText(QWidget* parent) {
    auto* const label = new QLabel(parent);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setFocusPolicy(Qt::StrongFocus); // who does not see it gets to it by Tab
    label->setMargin(4);
    return label;
}

} // namespace

StatementPane::StatementPane(QWidget* parent)
    : QWidget(parent),
      words_(makeText(this)),
      problem_(makeText(this)),
      sqlPart_(new QWidget(this)),
      sql_(new SqlView(sqlPart_)),
      copy_(new QToolButton(sqlPart_)) {
    // Their names are what they say.
    words_->setAccessibleDescription(tr("The query in words"));
    problem_->setAccessibleDescription(tr("What the query still lacks"));
    problem_->setFrameShape(QFrame::StyledPanel);
    problem_->setBackgroundRole(QPalette::ToolTipBase);
    problem_->setForegroundRole(QPalette::ToolTipText);
    problem_->setAutoFillBackground(true);
    sql_->setReadOnly(true);
    sql_->setAccessibleName(tr("The query as SQL"));
    sql_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    copy_->setText(tr("Copy"));
    copy_->setToolTip(tr("Copy the SQL"));
    copy_->setAutoRaise(true);
    connect(copy_, &QToolButton::clicked, this, &StatementPane::copySql);

    // Long words scroll, and leave the SQL its place.
    auto* const scroll = new QScrollArea(this);
    scroll->setWidget(words_);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    words_->setBackgroundRole(QPalette::Base);
    words_->setAutoFillBackground(true);

    auto* const head = new QHBoxLayout;
    head->addWidget(new PaneTitle(tr("As SQL"), sqlPart_));
    head->addStretch();
    head->addWidget(copy_);
    auto* const sqlLayout = new QVBoxLayout(sqlPart_);
    sqlLayout->setContentsMargins(0, 0, 0, 0);
    sqlLayout->setSpacing(2);
    sqlLayout->addLayout(head);
    sqlLayout->addWidget(sql_);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(new PaneTitle(tr("In words"), this));
    layout->addWidget(scroll, 1);
    layout->addWidget(problem_);
    layout->addWidget(sqlPart_, 2);
    problem_->hide();
}

void StatementPane::showStatement(const BuiltStatement& statement, const QString& words) {
    words_->setText(words);
    problem_->setText(statement.problem);
    problem_->setVisible(!statement.problem.isEmpty());
    sql_->showSql(statement.sql);
    copy_->setEnabled(!statement.sql.isEmpty());
}

void StatementPane::setSqlVisible(bool visible) {
    sqlPart_->setVisible(visible);
}

QString StatementPane::sql() const {
    return sql_->toPlainText();
}

QString StatementPane::problem() const {
    return problem_->text();
}

QString StatementPane::words() const {
    return words_->text();
}

void StatementPane::copySql() {
    QGuiApplication::clipboard()->setText(sql());
}

} // namespace lumora::desk
