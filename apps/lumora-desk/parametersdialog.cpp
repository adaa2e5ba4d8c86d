#include "apps/lumora-desk/parametersdialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace lumora::desk {

namespace {

QString exampleOf(TFieldType type) {
    switch (type) {
    case ftDate:
        return ParametersDialog::tr("year-month-day, like 2024-12-31");
    case ftDateTime:
        return ParametersDialog::tr("like 2024-12-31 18:30");
    case ftTime:
        return ParametersDialog::tr("like 18:30");
    case ftBoolean:
        return ParametersDialog::tr("true or false");
    default:
        return {};
    }
}

} // namespace

ParametersDialog::ParametersDialog(const std::vector<AskedParameter>& parameters,
                                   const QHash<QString, QString>& before, Check check, QWidget* parent)
    : QDialog(parent), check_(std::move(check)), problem_(new QLabel(this)) {
    setWindowTitle(tr("Run the Query"));
    auto* const form = new QFormLayout(this);
    auto* const hint = new QLabel(tr("The query leaves these values open:"), this);
    form->addRow(hint);
    for (const AskedParameter& parameter : parameters) {
        auto* const line = new QLineEdit(before.value(parameter.name), this);
        line->setPlaceholderText(exampleOf(parameter.type));
        line->setMinimumWidth(fontMetrics().averageCharWidth() * 32);
        // A caption is the query's: neither markup nor a shortcut, which a label that belongs to a line has.
        auto* const label = new QLabel(parameter.caption + u':', this);
        label->setTextFormat(Qt::PlainText);
        line->setAccessibleName(parameter.caption);
        form->addRow(label, line);
        lines_.emplace_back(parameter.name, line);
    }
    problem_->setWordWrap(true);
    problem_->setTextFormat(Qt::PlainText);
    problem_->hide();
    form->addRow(problem_);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Run"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ParametersDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

std::vector<ParameterValue> ParametersDialog::values() const {
    std::vector<ParameterValue> values;
    for (const auto& [name, line] : lines_)
        values.push_back({name, line->text()});
    return values;
}

void ParametersDialog::accept() {
    const QString problem = check_(values());
    problem_->setText(problem);
    problem_->setVisible(!problem.isEmpty());
    if (problem.isEmpty())
        QDialog::accept();
}

} // namespace lumora::desk
