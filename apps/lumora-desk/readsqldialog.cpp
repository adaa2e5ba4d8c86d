#include "apps/lumora-desk/readsqldialog.h"

#include "apps/lumora-desk/sqlview.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBlock>
#include <QVBoxLayout>

namespace lumora::desk {

ReadSqlDialog::ReadSqlDialog(Read read, QWidget* parent)
    : QDialog(parent), read_(std::move(read)), text_(new SqlView(this)), problem_(new QLabel(this)) {
    setWindowTitle(tr("Read SQL"));
    auto* const label =
        new QLabel(tr("A &SELECT statement, which becomes the rows and columns of the query:"), this);
    label->setBuddy(text_);
    text_->setPlaceholderText(QStringLiteral("SELECT ... FROM ... WHERE ..."));
    text_->setAccessibleName(tr("SELECT statement"));
    problem_->setWordWrap(true);
    problem_->setTextFormat(Qt::PlainText);
    problem_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    problem_->hide();
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Read"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ReadSqlDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(text_);
    layout->addWidget(problem_);
    layout->addWidget(buttons);
    const int unit = fontMetrics().height();
    resize(unit * 40, unit * 22);
}

QString ReadSqlDialog::problem() const {
    return problem_->text();
}

void ReadSqlDialog::accept() {
    const QString problem = read_(text_->toPlainText());
    problem_->setText(problem);
    problem_->setVisible(!problem.isEmpty());
    if (problem.isEmpty())
        return QDialog::accept();
    // Show the line that the message tells of.
    static const QRegularExpression lineNumber(QStringLiteral("\\(\\D+(\\d+)\\)\\.?$"));
    const int line = lineNumber.match(problem).captured(1).toInt();
    if (const QTextBlock block = text_->document()->findBlockByNumber(line - 1);
        line > 0 && block.isValid()) {
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        text_->setTextCursor(cursor);
    }
    text_->setFocus();
}

} // namespace lumora::desk
