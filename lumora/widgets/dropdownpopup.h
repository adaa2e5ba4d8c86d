// The popup window of a drop-down editor, for whoever has a place on the screen and a content.
#pragma once

#include "lumora/controls/drop_down_editor.h"

#include <QIcon>
#include <QList>
#include <QWidget>

#include <memory>

class QLabel;
class QVBoxLayout;

namespace lumora {

class DropDownPage;

// Enter accepts, Escape cancels, Tab and Shift+Tab accept and go on. A click elsewhere keeps what was changed
// in a text, a date or the checks when it will do, as people expect of a field that they leave; a list that
// nothing was chosen from is cancelled. What will not do is refused in place, with the reason.
class DropDownPopup : public QWidget {
    Q_OBJECT

public:
    // Opens the editor of the content below `globalRect` (above it where there is no room), at least as wide.
    // The keyboard goes back to where it was when it closes. It frees itself then, after its signals; the
    // anchor's end is its end. Null when the content opens no editor (ddNone, ddDialog). `images` are what
    // the items' ImageIndex refers to.
    static DropDownPopup* open(QWidget* anchor, const QRect& globalRect, TDropDownContent content,
                               const QList<QIcon>& images = {});
    // The same for an editor that someone else knows, too.
    static DropDownPopup* open(QWidget* anchor, const QRect& globalRect,
                               std::shared_ptr<TDropDownEditor> editor, const QList<QIcon>& images = {});
    ~DropDownPopup() override;

    // Also in the slots: the items that the indexes refer to, when they were read only now.
    const TDropDownContent& content() const { return editor_->GetContent(); }
    TDropDownEditor& editor() { return *editor_; }

    // As the keys do. Nothing is accepted while what is there will not do.
    bool accept();
    void cancel();
    // As a click elsewhere does.
    void dismiss();

signals:
    // One of the first four ends it; `finished` follows, whichever it was.
    void acceptedText(const QString& text);
    void acceptedItem(int index);
    void acceptedChecks(const QList<int>& indexes);
    void cancelled();
    void accepted(const lumora::TDropDownResult& result); // right after each of the first three
    void tabbed(bool forward);                            // after the answer
    void finished();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    DropDownPopup(QWidget* anchor, const QRect& globalRect, std::shared_ptr<TDropDownEditor> editor,
                  const QList<QIcon>& images);
    void showPage();
    void load();
    void showMessage(const QString& text, bool isError);
    void place();
    bool acceptAnd(bool isTabbed, bool forward);
    void finish(const TDropDownResult* result, bool isTabbed, bool forward);
    bool handleKey(QWidget* receiver, QKeyEvent* event);

    std::shared_ptr<TDropDownEditor> editor_;
    QList<QIcon> images_;
    QRect anchorRect_;
    QVBoxLayout* layout_ = nullptr;
    QLabel* message_ = nullptr;
    DropDownPage* page_ = nullptr;
    bool isLoading_ = false; // the items are about to be read
    bool isFinished_ = false;
};

} // namespace lumora
