#include "apps/lumora-desk/readsqldialog.h"

#include "apps/lumora-desk/deskdocument.h"
#include "apps/lumora-desk/sqlview.h"
#include "lumora/query/errors.h"
#include "lumora/sqlparse/parser_error.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
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
    try {
        read_(text_->toPlainText());
        return QDialog::accept();
    } catch (const Exception& error) {
        problem_->setText(sentence(error));
        problem_->show();
        if (const auto* const parserError = dynamic_cast<const ESQLParserError*>(&error))
            showPlace(parserError->Place);
        else if (const auto* const queryError = dynamic_cast<const EVQueryPanelError*>(&error))
            showPlace(queryError->Place);
    }
    text_->setFocus();
}

// Selects what the message tells of, or its line when no more is known.
void ReadSqlDialog::showPlace(const TTextPlace& place) {
    const QTextBlock block = text_->document()->findBlockByNumber(place.Line - 1);
    if (place.Line < 1 || !block.isValid())
        return;
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    const QByteArray bytes = text_->toPlainText().toUtf8();
    if (place.Position >= 0 && place.Length >= 0 && place.Position <= bytes.size()) {
        const auto characters = [&bytes](int end) { return QString::fromUtf8(bytes.left(end)).size(); };
        cursor.setPosition(static_cast<int>(characters(place.Position)));
        cursor.setPosition(static_cast<int>(characters(place.Position + place.Length)),
                           QTextCursor::KeepAnchor);
    }
    text_->setTextCursor(cursor);
}

} // namespace lumora::desk
