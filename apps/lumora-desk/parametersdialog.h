// Asks for the values of a query's parameters.
#pragma once

#include "apps/lumora-desk/deskdocument.h"

#include <QDialog>

class QLabel;
class QLineEdit;

namespace lumora::desk {

class ParametersDialog : public QDialog {
    Q_OBJECT

public:
    // `check` is given the values when they are to be taken, and says what is wrong with them.
    using Check = std::function<QString(const std::vector<ParameterValue>& values)>;

    ParametersDialog(const std::vector<AskedParameter>& parameters, const QHash<QString, QString>& before,
                     Check check, QWidget* parent = nullptr);

    std::vector<ParameterValue> values() const;
    void accept() override;

private:
    const Check check_;
    std::vector<std::pair<QString, QLineEdit*>> lines_;
    QLabel* const problem_;
};

} // namespace lumora::desk
