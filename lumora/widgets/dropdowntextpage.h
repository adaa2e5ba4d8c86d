// A line of text in a drop-down popup: any text, a number, or one under an edit mask.
#pragma once

#include "lumora/widgets/dropdownpage.h"
#include "lumora/widgets/inputmask.h"

class QLineEdit;

namespace lumora {

class DropDownTextPage : public DropDownPage {
    Q_OBJECT

public:
    DropDownTextPage(TDropDownEditor& editor, QWidget* parent);

    QWidget* input() const override;
    QString refusal() const override;

private:
    void textEdited();
    bool isBlank() const;

    QLineEdit* line_;
    InputMask mask_;
};

} // namespace lumora
