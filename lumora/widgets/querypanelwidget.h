// A query panel on the screen: rows of words that are clicked to change them.
#pragma once

#include "lumora/platform/menus.h"
#include "lumora/screen/layout.h"
#include "lumora/widgets/dropdownpopup.h"
#include "lumora/widgets/fontmeasurer.h"
#include "lumora/widgets/panelview.h"
#include "lumora/widgets/rowdrag.h"

#include <QAbstractScrollArea>
#include <QIcon>
#include <QMenu>
#include <QPointer>

#include <functional>
#include <memory>

namespace lumora {

class TWordEditor;
struct TDropDownResult;

// The host's own windows; each is true when it was confirmed. Those that are not given do not open.
struct QueryPanelDialogs {
    std::function<bool(QWidget* parent, TVQueryPanel& panel, int helpContext, int options)> editResultFields;
    std::function<bool(QWidget* parent, TVQueryPanel& panel)> editTitles;
};

// Lines are counted from 0, and so are their words; rectangles are those in the viewport.
class QueryPanelWidget : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit QueryPanelWidget(QWidget* parent = nullptr);
    ~QueryPanelWidget() override;

    // The panel is the caller's. It is shown here until another one is set, it is shown elsewhere, or it
    // goes.
    void setPanel(TVQueryPanel* panel);
    TVQueryPanel* panel() const { return view_.panel(); }
    // What the ImageIndex of fields and groups refers to.
    void setImages(const QList<QIcon>& images) { images_ = images; }
    const QList<QIcon>& images() const { return images_; }
    void setDialogs(QueryPanelDialogs dialogs) { dialogs_ = std::move(dialogs); }
    const QueryPanelDialogs& dialogs() const { return dialogs_; }

    int lineCount() const { return layout_ ? layout_->GetLineCount() : 0; }
    TPlacedLine line(int line) const { return layout_ ? layout_->PlaceLine(line) : TPlacedLine(); }
    QRect lineRect(int line) const; // over the whole width
    QRect wordRect(int line, int word) const;
    TWordPlace placeAt(const QPoint& position) const;
    // Where the keyboard is; -1: nowhere.
    TWordPlace currentPlace() const;

    // As the mouse does. -1 as a word: beside the words.
    void clickWord(int line, int word);
    void showMenu(int line, int word);
    void makeCurrent(int line, int word = -1);

    // Why what was asked for last cannot be done; empty when it was done.
    const QString& refusal() const { return refusal_; }

    DropDownPopup* popup() const { return popup_; }
    QMenu* menu() const { return menu_; }
    bool isDragging() const { return drag_.isActive(); }

    QSize sizeHint() const override;

signals:
    // Something that was asked for cannot be done. It is shown at the current row as well.
    void refused(const QString& reason);

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    friend class PanelView;

    // What the panel asks for.
    void panelChanged();
    void rowsChanged();
    void rowChanged(TFilterRow& row);
    void scrollToCurrentSoon();
    void openEditor(TFilterRow& row, int word);
    void showRowMenu(TFilterRow& row, int word, TPopupMenu& menu);
    void showValueMenu(TFilterRow& row, int word, TPopupMenu& menu);

    // Runs what may raise; what is raised becomes a refusal. False when it was, or this is gone.
    bool attempt(const std::function<void()>& action);
    void refuse(const QString& reason);

    void updateLater();
    void updateNow();
    void updateScrollBars();
    void scrollToCurrent();
    void tellCurrent();
    QPoint scrolled() const; // the content's point in the viewport's corner
    QRect toViewport(const TRect& rect) const;

    void acceptAnswer(TWordEditor editor, const TDropDownResult& answer);
    void goToNextWord(bool forward);
    void openMenu(const TPopupMenu& menu, const TFilterRow& row, int word,
                  const std::function<void(const TMenuItem&)>& choose);
    void closeWindows();

    bool handlePanelKey(QKeyEvent* event);
    bool handleScreenKey(QKeyEvent* event);
    void showProblem();
    void pressCurrent();
    void moveByLines(int by);
    void setHovered(TWordPlace place);
    void updateHovered();
    void updatePlace(const TWordPlace& place);
    bool canDragFrom(const TWordPlace& place) const;
    void dragTo(const QPoint& position);
    void endDrag(bool drop);
    void scrollWhileDragging();

    PanelView view_{*this};
    FontMeasurer measurer_;
    std::unique_ptr<TScreenLayout> layout_; // none without a panel
    QList<QIcon> images_;
    QueryPanelDialogs dialogs_;
    QPointer<DropDownPopup> popup_;
    QPointer<QMenu> menu_;
    const TFilterRow* openRow_ = nullptr; // what the popup or the menu is for; only compared
    QString refusal_;
    TWordPlace hovered_;
    TWordPlace pressed_;
    QPoint pressPosition_;
    RowDrag drag_;
    int dragTimer_ = 0;
    bool isUpdatePending_ = false;
    bool isRangePending_ = false;         // a longer line than any before has come into view
    bool isPlacePending_ = false;         // rows came, went or moved since the last update
    bool isScrollPending_ = false;        // the current row is to come into view
    const TFilterRow* toldRow_ = nullptr; // what assistive technology was told last; only compared
    int toldWord_ = -1;
};

} // namespace lumora
