// A calendar, a time of day or both in a drop-down popup. What is typed and what is pointed at follow each
// other.
#pragma once

#include "lumora/platform/datetime.h"
#include "lumora/widgets/dropdownpage.h"

#include <QDateTime>

class QCalendarWidget;
class QLineEdit;
class QTimeEdit;

namespace lumora {

// Texts are in the formats of FormatSettings.
class DropDownDatePage : public DropDownPage {
    Q_OBJECT

public:
    DropDownDatePage(TDropDownEditor& editor, QWidget* parent);

    QWidget* input() const override;
    bool handleKey(QWidget* receiver, QKeyEvent* event) override;
    void commit() override;

private:
    bool hasDate() const { return editor_.GetKind() != ddTime; }
    bool hasTime() const { return editor_.GetKind() != ddDate; }
    void addLine();
    void addCalendar();
    void addTime();
    void showValue(const QDateTime& value);
    void textEdited();
    void picked();
    void goToday();

    QLineEdit* line_ = nullptr;
    QCalendarWidget* calendar_ = nullptr;
    QTimeEdit* time_ = nullptr;
    bool isPicked_ = false; // the text was made from what was pointed at
};

} // namespace lumora
