// The window in which a sub-query is edited.
#pragma once

#include "lumora/panel/Vquerdlg.h"

#include <QDialog>

class QLabel;

namespace lumora {

class DropDownLabel;
class QueryPanelWidget;

class SubQueryDialog : public QDialog {
    Q_OBJECT

public:
    // The dialog's logic is the caller's and outlives the window.
    explicit SubQueryDialog(TdlgSubQuery& dialog, QWidget* parent = nullptr);

    QueryPanelWidget* queryPanel() const { return panel_; }
    DropDownLabel* resultField() const { return resultField_; }

public slots:
    // Only when the query can be built; otherwise the reason why not is shown.
    void accept() override;

private:
    QWidget* makeTopStrip();
    QWidget* makeBottomStrip();
    void openResultFields();
    void showResultFields();

    TdlgSubQuery& dialog_;
    DropDownLabel* resultField_ = nullptr;
    QueryPanelWidget* panel_ = nullptr;
    QLabel* message_ = nullptr;
};

} // namespace lumora
