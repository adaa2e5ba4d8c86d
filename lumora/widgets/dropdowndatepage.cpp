#include "lumora/widgets/dropdowndatepage.h"

#include "lumora/platform/formats.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTextCharFormat>
#include <QTimeEdit>
#include <QVBoxLayout>

#include <optional>

namespace lumora {

namespace {

const TFormatSettings& settingsOf(const TDropDownEditor& editor) {
    const TFormatSettings* const settings = editor.GetContent().DateSettings;
    return settings ? *settings : FormatSettings();
}

std::optional<QDateTime> fromText(const TDropDownEditor& editor) {
    const TDropDownKind kind = editor.GetKind();
    const std::string text = editor.GetText();
    const TFormatSettings& settings = settingsOf(editor);
    const std::optional<TDateTime> value = kind == ddDate   ? TryStrToDate(text, settings)
                                           : kind == ddTime ? TryStrToTime(text, settings)
                                                            : TryStrToDateTime(text, settings);
    if (!value)
        return std::nullopt;
    const TDateParts date = DecodeDate(*value);
    const TTimeParts time = DecodeTime(*value);
    return QDateTime(QDate(date.Year, date.Month, date.Day),
                     QTime(time.Hour, time.Minute, time.Second, time.Millisecond));
}

// Seconds are written where there are any.
std::string toText(const TDropDownEditor& editor, const QDateTime& value) {
    const TDropDownKind kind = editor.GetKind();
    const QDate date = value.date();
    const QTime time = value.time();
    const TDateTime day = TryEncodeDate(date.year(), date.month(), date.day()).value_or(0);
    const TDateTime clock = TryEncodeTime(time.hour(), time.minute(), time.second(), time.msec()).value_or(0);
    const TFormatSettings& settings = settingsOf(editor);
    const std::string timeText = FormatDateTime(
        time.second() == 0 ? settings.ShortTimeFormat : settings.LongTimeFormat, clock, settings);
    if (kind == ddTime)
        return timeText;
    const std::string dayText = FormatDateTime(settings.ShortDateFormat, day, settings);
    return kind == ddDate ? dayText : dayText + ' ' + timeText;
}

// In the order and with the separators that people of the place expect; the text that comes out does not
// depend on it.
QString clockFormat(const TFormatSettings& settings) {
    const std::string& format = settings.LongTimeFormat;
    const bool isOfTwelve = format.find("am/pm") != std::string::npos ||
                            format.find("AM/PM") != std::string::npos ||
                            format.find("a/p") != std::string::npos;
    return isOfTwelve ? QStringLiteral("hh:mm:ss AP") : QStringLiteral("HH:mm:ss");
}

} // namespace

DropDownDatePage::DropDownDatePage(TDropDownEditor& editor, QWidget* parent) : DropDownPage(editor, parent) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    if (hasDate()) {
        addLine();
        addCalendar();
    }
    if (hasTime())
        addTime();
    const QDateTime start(QDate::currentDate(), QTime(0, 0));
    showValue(fromText(editor).value_or(start));
}

QWidget* DropDownDatePage::input() const {
    return line_ ? static_cast<QWidget*>(line_) : time_;
}

// Down goes from the line into the calendar.
bool DropDownDatePage::handleKey(QWidget* receiver, QKeyEvent* event) {
    if (receiver != line_ || !line_ || event->key() != Qt::Key_Down)
        return false;
    calendar_->setFocus(Qt::TabFocusReason);
    return true;
}

// A clock shows a time at once, so Enter takes it; other texts stay as they were typed.
void DropDownDatePage::commit() {
    if (!line_ && (isPicked_ || !fromText(editor_)))
        picked();
}

void DropDownDatePage::addLine() {
    line_ = new QLineEdit(QString::fromStdString(editor_.GetText()), this);
    line_->setAccessibleName(editor_.GetKind() == ddDate ? tr("Date") : tr("Date and time"));
    const QString prompt = QString::fromStdString(editor_.GetContent().Prompt);
    const QDateTime sample(QDate::currentDate(), QTime(14, 30));
    line_->setPlaceholderText(prompt.isEmpty() ? QString::fromStdString(toText(editor_, sample)) : prompt);
    line_->setClearButtonEnabled(true);
    line_->selectAll();
    layout()->addWidget(line_);
    connect(line_, &QLineEdit::textChanged, this, &DropDownDatePage::textEdited);
}

void DropDownDatePage::addCalendar() {
    calendar_ = new QCalendarWidget(this);
    calendar_->setAccessibleName(tr("Calendar"));
    calendar_->setFirstDayOfWeek(locale().firstDayOfWeek());
    calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    // Red weekends shout, and cannot be read on a dark ground.
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday})
        calendar_->setWeekdayTextFormat(day, QTextCharFormat());
    layout()->addWidget(calendar_);
    auto* const today = new QPushButton(tr("&Today"), this);
    today->setAutoDefault(false);
    layout()->addWidget(today);
    connect(calendar_, &QCalendarWidget::selectionChanged, this, &DropDownDatePage::picked);
    connect(calendar_, &QCalendarWidget::clicked, this, [this] {
        picked();
        if (!hasTime())
            emit chosen();
    });
    connect(today, &QPushButton::clicked, this, &DropDownDatePage::goToday);
}

void DropDownDatePage::addTime() {
    time_ = new QTimeEdit(this);
    time_->setAccessibleName(tr("Time"));
    time_->setDisplayFormat(clockFormat(settingsOf(editor_)));
    time_->setMinimumWidth(fontMetrics().averageCharWidth() * 18);
    layout()->addWidget(time_);
    connect(time_, &QTimeEdit::timeChanged, this, &DropDownDatePage::picked);
}

void DropDownDatePage::showValue(const QDateTime& value) {
    if (calendar_) {
        const QSignalBlocker blocker(calendar_);
        calendar_->setSelectedDate(value.date());
    }
    if (time_) {
        const QSignalBlocker blocker(time_);
        time_->setTime(value.time());
    }
}

void DropDownDatePage::textEdited() {
    editor_.SetText(line_->text().toStdString());
    if (const auto value = fromText(editor_))
        showValue(*value);
    emit edited();
}

void DropDownDatePage::picked() {
    isPicked_ = true;
    const QDate date = calendar_ ? calendar_->selectedDate() : QDate::currentDate();
    const QTime time = time_ ? time_->time() : QTime(0, 0);
    editor_.SetText(toText(editor_, QDateTime(date, time)));
    if (line_) {
        const QSignalBlocker blocker(line_);
        line_->setText(QString::fromStdString(editor_.GetText()));
    }
    emit edited();
}

void DropDownDatePage::goToday() {
    calendar_->setSelectedDate(QDate::currentDate());
    picked();
    if (!hasTime())
        emit chosen();
}

} // namespace lumora
