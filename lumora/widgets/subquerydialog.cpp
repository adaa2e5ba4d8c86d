#include "lumora/widgets/subquerydialog.h"

#include "lumora/widgets/dropdownlabel.h"
#include "lumora/widgets/linkcolor.h"
#include "lumora/widgets/querypanelwidget.h"

#include <QAccessible>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumora {

namespace {

constexpr int margin = 6;

QString fromText(const std::string& text) {
    return QString::fromStdString(text);
}

// A strip of controls, higher than it is meant to be only where large letters need that.
QHBoxLayout* layOut(QWidget* strip, int height) {
    strip->setMinimumHeight(height);
    strip->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* const layout = new QHBoxLayout(strip);
    layout->setContentsMargins(margin, 2, margin, 2);
    return layout;
}

} // namespace

SubQueryDialog::SubQueryDialog(TdlgSubQuery& dialog, QWidget* parent)
    : QDialog(parent), dialog_(dialog), panel_(new QueryPanelWidget(this)), message_(new QLabel(this)) {
    setWindowTitle(fromText(dialog.Caption));
    setSizeGripEnabled(true);
    resize(TdlgSubQuery::Width, TdlgSubQuery::Height);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeTopStrip());
    layout->addWidget(panel_, 1);
    layout->addWidget(message_);
    layout->addWidget(makeBottomStrip());
    message_->setWordWrap(true);
    message_->setTextFormat(Qt::PlainText);
    message_->setMargin(margin);
    message_->setVisible(false);
    panel_->setPanel(&dialog.QPanel);
    panel_->setFocus();
}

QWidget* SubQueryDialog::makeTopStrip() {
    auto* const strip = new QWidget(this);
    QHBoxLayout* const layout = layOut(strip, TdlgSubQuery::TopStripHeight);
    layout->setSpacing(TdlgSubQuery::LabelGap);
    auto* const label = new QLabel(fromText(dialog_.ResultFieldLabel), this);
    resultField_ = new DropDownLabel(this);
    resultField_->setAccessibleName(label->text());
    label->setBuddy(resultField_);
    auto* const distinct = new QCheckBox(fromText(dialog_.DistinctCaption), this);
    distinct->setChecked(dialog_.cbDistinct);
    layout->addWidget(label);
    layout->addWidget(resultField_, 1);
    layout->addWidget(distinct);
    showResultFields();
    connect(resultField_, &DropDownLabel::dialogRequested, this, &SubQueryDialog::openResultFields);
    connect(resultField_, &DropDownLabel::aboutToOpen, this, &SubQueryDialog::showResultFields);
    connect(resultField_, &DropDownLabel::acceptedItem, this, [this](int index) {
        dialog_.AcceptResultField(resultField_->content().Items.at(static_cast<std::size_t>(index)));
        showResultFields();
    });
    connect(distinct, &QCheckBox::toggled, this, [this](bool checked) { dialog_.cbDistinctClick(checked); });
    return strip;
}

QWidget* SubQueryDialog::makeBottomStrip() {
    auto* const strip = new QWidget(this);
    auto* const buttons = new QDialogButtonBox(strip);
    auto* const ok = buttons->addButton(fromText(dialog_.btOK), QDialogButtonBox::AcceptRole);
    buttons->addButton(fromText(dialog_.btCancel), QDialogButtonBox::RejectRole);
    ok->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &SubQueryDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SubQueryDialog::reject);
    layOut(strip, TdlgSubQuery::BottomStripHeight)->addWidget(buttons);
    return strip;
}

void SubQueryDialog::accept() {
    const std::string reason = dialog_.CheckQuery();
    if (reason.empty())
        return QDialog::accept();
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, errorColor(colors));
    message_->setPalette(colors);
    message_->setText(fromText(reason));
    message_->show();
    QAccessibleEvent alert(message_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void SubQueryDialog::openResultFields() {
    dialog_.ddlResultFieldCustomDropDown();
    showResultFields();
}

// The host's own editor where there is one, a list of the fields otherwise.
void SubQueryDialog::showResultFields() {
    TDropDownContent content = dialog_.ResultFieldContent();
    if (panel_->dialogs().editResultFields) {
        content = {};
        content.Kind = ddDialog;
    }
    resultField_->setContent(std::move(content));
    resultField_->setText(fromText(dialog_.ddlResultField));
}

} // namespace lumora
