// A word that looks like a link and drops down an editor.
#pragma once

#include "lumora/controls/drop_down_label.h"
#include "lumora/widgets/dropdownpopup.h"

#include <QColor>
#include <QPointer>
#include <QWidget>

namespace lumora {

// Opens on a click, Enter, Space, Down and F4, and shows the answer as its text.
class DropDownLabel : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged USER true)
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt)
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    explicit DropDownLabel(QWidget* parent = nullptr);
    DropDownLabel(const QString& text, TDropDownContent content, QWidget* parent = nullptr);
    ~DropDownLabel() override;

    QString text() const;
    void setText(const QString& text);
    QString shownText() const; // the text, or what stands in its place
    // Shown faintly while there is no text; a content with a prompt of its own goes before.
    QString prompt() const { return prompt_; }
    void setPrompt(const QString& prompt);
    // Blue by default, which gives way to the palette's link colour on a dark ground.
    QColor color() const;
    void setColor(const QColor& color);

    // What drops down. The text shown stays.
    const TDropDownContent& content() const { return label_.GetContent(); }
    void setContent(TDropDownContent content);
    void setImages(const QList<QIcon>& images) { images_ = images; }

    bool isOpen() const { return !popup_.isNull(); }
    DropDownPopup* popup() const { return popup_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    void openEditor();

signals:
    void textChanged(const QString& text);
    void aboutToOpen();     // the content may be set now
    void dialogRequested(); // the content is a window of the host's own
    void acceptedText(const QString& text);
    void acceptedItem(int index);
    void acceptedChecks(const QList<int>& indexes);
    void cancelled();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QRect textRect() const;
    QColor textColor() const;
    void textHasChanged();
    void take(const TDropDownResult& result);

    TDropDownLabel label_;
    QString prompt_;
    QList<QIcon> images_;
    QPointer<DropDownPopup> popup_;
};

} // namespace lumora
