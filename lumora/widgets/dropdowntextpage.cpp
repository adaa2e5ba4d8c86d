#include "lumora/widgets/dropdowntextpage.h"

#include <QHBoxLayout>
#include <QLineEdit>

namespace lumora {

DropDownTextPage::DropDownTextPage(TDropDownEditor& editor, QWidget* parent)
    : DropDownPage(editor, parent), line_(new QLineEdit(this)) {
    const TDropDownContent& content = editor.GetContent();
    if (content.Kind == ddMask) {
        mask_ = toInputMask(content.EditMask);
        line_->setInputMask(mask_.mask);
    }
    line_->setText(QString::fromStdString(content.Text));
    line_->setPlaceholderText(QString::fromStdString(content.Prompt));
    line_->setAccessibleName(tr("Value"));
    line_->setMinimumWidth(fontMetrics().averageCharWidth() * 24);
    if (mask_.mask.isEmpty()) {
        line_->selectAll();
        line_->setClearButtonEnabled(true);
    } else {
        line_->setCursorPosition(0);
    }
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(line_);
    connect(line_, &QLineEdit::textChanged, this, &DropDownTextPage::textEdited);
}

QWidget* DropDownTextPage::input() const {
    return line_;
}

QString DropDownTextPage::refusal() const {
    if (mask_.mask.isEmpty() || isBlank() || line_->hasAcceptableInput())
        return {};
    return tr("Something is missing in \"%1\"").arg(line_->displayText());
}

void DropDownTextPage::textEdited() {
    if (isBlank())
        editor_.SetText({});
    else if (mask_.keepsLiterals)
        editor_.SetText(line_->text().toStdString());
    else
        editor_.SetText(withoutLiterals(line_->displayText(), mask_.mask).toStdString());
    emit edited();
}

// Nothing was filled in, whatever literals there are.
bool DropDownTextPage::isBlank() const {
    return mask_.mask.isEmpty() ? line_->text().isEmpty()
                                : withoutLiterals(line_->displayText(), mask_.mask).trimmed().isEmpty();
}

} // namespace lumora
