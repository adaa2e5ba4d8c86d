// A small push button with a rounded outline.
#pragma once

#include "lumora/controls/Vrndbtn.h"

#include <QColor>
#include <QWidget>

namespace lumora {

// Clicked with the mouse, with Space when it has the keyboard, and by its accelerator. An owner that moves
// the keyboard among its own parts sets the focus policy to Qt::NoFocus.
class RoundButtonWidget : public QWidget, private TRndBtnHost {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool autoSize READ autoSize WRITE setAutoSize)
    Q_PROPERTY(bool allowPress READ allowPress WRITE setAllowPress)
    Q_PROPERTY(bool flat READ isFlat WRITE setFlat)
    Q_PROPERTY(bool rounded READ isRounded WRITE setRounded)
    Q_PROPERTY(QColor overColor READ overColor WRITE setOverColor)
    Q_PROPERTY(QColor pressedColor READ pressedColor WRITE setPressedColor)
    Q_PROPERTY(int margin READ margin WRITE setMargin)

public:
    explicit RoundButtonWidget(QWidget* parent = nullptr);
    explicit RoundButtonWidget(const QString& text, QWidget* parent = nullptr);
    ~RoundButtonWidget() override;

    QString text() const; // "&" marks the accelerator
    void setText(const QString& text);
    QString shownText() const; // without the marks
    bool autoSize() const { return button_.GetAutoSize(); }
    void setAutoSize(bool autoSize) { button_.SetAutoSize(autoSize); }
    bool allowPress() const { return button_.GetAllowPress(); }
    void setAllowPress(bool allowPress) { button_.SetAllowPress(allowPress); }
    bool isFlat() const { return button_.GetFlat(); }
    void setFlat(bool flat) { button_.SetFlat(flat); }
    bool isRounded() const { return button_.GetRounded(); }
    void setRounded(bool rounded) { button_.SetRounded(rounded); }
    QColor overColor() const;
    void setOverColor(const QColor& color);
    QColor pressedColor() const;
    void setPressedColor(const QColor& color);
    int margin() const { return button_.GetMargin(); }
    void setMargin(int margin) { button_.SetMargin(margin); }
    bool isDown() const { return button_.GetState() == rbsDown; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

public slots:
    void click(); // as the accelerator does; nothing while disabled

signals:
    void clicked();
    void doubleClicked();
    void pressed();
    void released();
    void textChanged(const QString& text);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void Invalidate(TVRndBtn& button) override;
    void BoundsChanged(TVRndBtn& button) override;
    bool IsUnderPointer(const TVRndBtn& button) const override;
    TSize TextExtent(const TFont& font, std::string_view text) const override;
    TColor ParentColor() const override;
    void updateShortcut();

    TVRndBtn button_;
    int shortcut_ = 0;
    bool spaceHeld_ = false;
};

} // namespace lumora
