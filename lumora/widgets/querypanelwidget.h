// A query panel on the screen: rows of words that are clicked to change them.
#pragma once

#include "lumora/platform/menus.h"
#include "lumora/query/query_listener.h"
#include "lumora/screen/layout.h"
#include "lumora/widgets/dropdownpopup.h"
#include "lumora/widgets/fontmeasurer.h"
#include "lumora/widgets/panelview.h"
#include "lumora/widgets/rowdrag.h"

#include <QAbstractScrollArea>
#include <QColor>
#include <QIcon>
#include <QMenu>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

namespace lumora {

class TDSField;
class TDSFieldGroup;
class TWordEditor;
struct TDropDownResult;

// The host's own windows; each is true when it was confirmed. Those that are not given do not open.
struct QueryPanelDialogs {
    std::function<bool(QWidget* parent, TVQueryPanel& panel, int helpContext, int options)> editResultFields;
    std::function<bool(QWidget* parent, TVQueryPanel& panel)> editTitles;
};

// Lines are counted from 0, and so are their words; rectangles are those in the viewport.
//
// The properties are those of the panel that is shown. Without one they have the values of a new panel, and
// setting one is refused.
class QueryPanelWidget : public QAbstractScrollArea {
    Q_OBJECT
    Q_MOC_INCLUDE("lumora/lumora.h")
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY settingsChanged)
    Q_PROPERTY(QString queryName READ queryName WRITE setQueryName NOTIFY settingsChanged)
    Q_PROPERTY(QStringList description READ description WRITE setDescription NOTIFY settingsChanged)
    Q_PROPERTY(QString mainTableName READ mainTableName WRITE setMainTableName NOTIFY settingsChanged)
    Q_PROPERTY(SqlSyntax sqlSyntax READ sqlSyntax WRITE setSqlSyntax NOTIFY settingsChanged)
    Q_PROPERTY(SqlOptions sqlOptions READ sqlOptions WRITE setSqlOptions NOTIFY settingsChanged)
    Q_PROPERTY(bool saveSqlOptions READ saveSqlOptions WRITE setSaveSqlOptions NOTIFY settingsChanged)
    Q_PROPERTY(bool strict READ isStrict WRITE setStrict NOTIFY settingsChanged)
    Q_PROPERTY(QStringList titles READ titles WRITE setTitles NOTIFY settingsChanged)
    Q_PROPERTY(bool saveTitles READ saveTitles WRITE setSaveTitles NOTIFY settingsChanged)
    Q_PROPERTY(PanelStyle panelStyle READ panelStyle WRITE setPanelStyle NOTIFY settingsChanged)
    Q_PROPERTY(PanelOptions panelOptions READ panelOptions WRITE setPanelOptions NOTIFY settingsChanged)
    Q_PROPERTY(LinkTypes linkTypes READ linkTypes WRITE setLinkTypes NOTIFY settingsChanged)
    Q_PROPERTY(QColor activeRowColor READ activeRowColor WRITE setActiveRowColor NOTIFY settingsChanged)
    Q_PROPERTY(
        QColor controlBorderColor READ controlBorderColor WRITE setControlBorderColor NOTIFY settingsChanged)
    Q_PROPERTY(QColor fieldColor READ fieldColor WRITE setFieldColor NOTIFY settingsChanged)
    Q_PROPERTY(QColor operatorColor READ operatorColor WRITE setOperatorColor NOTIFY settingsChanged)
    Q_PROPERTY(QColor valueColor READ valueColor WRITE setValueColor NOTIFY settingsChanged)
    Q_PROPERTY(QColor boolOpColor READ boolOpColor WRITE setBoolOpColor NOTIFY settingsChanged)
    Q_PROPERTY(QColor addRowColor READ addRowColor WRITE setAddRowColor NOTIFY settingsChanged)
    Q_PROPERTY(int rowSpace READ rowSpace WRITE setRowSpace NOTIFY settingsChanged)
    Q_PROPERTY(int tabSpace READ tabSpace WRITE setTabSpace NOTIFY settingsChanged)
    Q_PROPERTY(int elemSpace READ elemSpace WRITE setElemSpace NOTIFY settingsChanged)
    Q_PROPERTY(int headerLeft READ headerLeft WRITE setHeaderLeft NOTIFY settingsChanged)
    Q_PROPERTY(int headerTop READ headerTop WRITE setHeaderTop NOTIFY settingsChanged)
    Q_PROPERTY(int maxPopupItemCount READ maxPopupItemCount WRITE setMaxPopupItemCount NOTIFY settingsChanged)
    Q_PROPERTY(QString helpFileName READ helpFileName WRITE setHelpFileName NOTIFY settingsChanged)
    Q_PROPERTY(int helpContext READ helpContext WRITE setHelpContext NOTIFY settingsChanged)

public:
    // The enumerations of the core for properties: their ordinals, and for the options their bits.
    enum SqlSyntax { Sql1, Sql2, OracleSql };
    Q_ENUM(SqlSyntax)
    enum SqlOption {
        AsciiAliases = 1 << 0,
        SelectDistinct = 1 << 1,
        QuoteAliases = 1 << 2,
        BracketJoins = 1 << 3,
        BracketConditions = 1 << 4,
        SortByNames = 1 << 5
    };
    Q_DECLARE_FLAGS(SqlOptions, SqlOption)
    Q_FLAG(SqlOptions)
    enum PanelStyle { Groups, AndOr };
    Q_ENUM(PanelStyle)
    enum PanelOption {
        FlatButtons = 1 << 0,
        RoundButtons = 1 << 1,
        NonEmptyBrackets = 1 << 2,
        PopupField = 1 << 3,
        PopupValue = 1 << 4,
        ShowGroupName = 1 << 5,
        AllowKeyboard = 1 << 6,
        SortListData = 1 << 7,
        ShowAddRow = 1 << 8,
        ShowCheckBoxes = 1 << 9,
        AllowParams = 1 << 10
    };
    Q_DECLARE_FLAGS(PanelOptions, PanelOption)
    Q_FLAG(PanelOptions)
    enum LinkType { LinkAll = 1 << 0, LinkAny = 1 << 1, LinkNone = 1 << 2, LinkNotAll = 1 << 3 };
    Q_DECLARE_FLAGS(LinkTypes, LinkType)
    Q_FLAG(LinkTypes)

    explicit QueryPanelWidget(QWidget* parent = nullptr);
    ~QueryPanelWidget() override;

    // The panel is the caller's. It is shown here until another one is set, it is shown elsewhere, or it
    // goes.
    void setPanel(TVQueryPanel* panel);
    TVQueryPanel* panel() const { return view_.panel(); }
    void setDialogs(QueryPanelDialogs dialogs) { dialogs_ = std::move(dialogs); }
    const QueryPanelDialogs& dialogs() const { return dialogs_; }

    int lineCount() const { return layout_ ? layout_->GetLineCount() : 0; }
    TPlacedLine line(int line) const { return layout_ ? layout_->PlaceLine(line) : TPlacedLine(); }
    TFilterRow* rowOfLine(int line) const { return layout_ ? layout_->RowOfLine(line) : nullptr; }
    int lineOfRow(const TFilterRow* row) const { return layout_ ? layout_->LineOfRow(row) : -1; }
    int parentLine(int line) const; // of the bracket around the line's row; -1: it has none
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

    bool isActive() const;
    void setActive(bool active);
    QString queryName() const;
    void setQueryName(const QString& name);
    QStringList description() const;
    void setDescription(const QStringList& lines);
    QString mainTableName() const;
    void setMainTableName(const QString& name);
    SqlSyntax sqlSyntax() const;
    void setSqlSyntax(SqlSyntax syntax);
    SqlOptions sqlOptions() const;
    void setSqlOptions(SqlOptions options);
    bool saveSqlOptions() const;
    void setSaveSqlOptions(bool on);
    bool isStrict() const;
    void setStrict(bool strict);
    QStringList titles() const; // the lines of a title file
    void setTitles(const QStringList& lines);
    bool saveTitles() const;
    void setSaveTitles(bool on);
    PanelStyle panelStyle() const;
    void setPanelStyle(PanelStyle style);
    PanelOptions panelOptions() const;
    void setPanelOptions(PanelOptions options);
    LinkTypes linkTypes() const; // offered in a bracket
    void setLinkTypes(LinkTypes types);
    // No colour of its own: an invalid one.
    QColor activeRowColor() const;
    void setActiveRowColor(const QColor& color);
    QColor controlBorderColor() const;
    void setControlBorderColor(const QColor& color);
    QColor fieldColor() const;
    void setFieldColor(const QColor& color);
    QColor operatorColor() const;
    void setOperatorColor(const QColor& color);
    QColor valueColor() const;
    void setValueColor(const QColor& color);
    QColor boolOpColor() const;
    void setBoolOpColor(const QColor& color);
    QColor addRowColor() const;
    void setAddRowColor(const QColor& color);
    int rowSpace() const; // pixels, as those below
    void setRowSpace(int space);
    int tabSpace() const;
    void setTabSpace(int space);
    int elemSpace() const;
    void setElemSpace(int space);
    int headerLeft() const;
    void setHeaderLeft(int left);
    int headerTop() const;
    void setHeaderTop(int top);
    int maxPopupItemCount() const;
    void setMaxPopupItemCount(int count);
    QString helpFileName() const;
    void setHelpFileName(const QString& name);
    int helpContext() const; // of the editor of result fields
    void setHelpContext(int context);

signals:
    // Something that was asked for cannot be done. It is shown at the current row as well.
    void refused(const QString& reason);
    // A property was set here, the query was renamed, the panel became active or inactive, or another panel
    // is shown. What is set in the panel itself is told by the panel alone.
    void settingsChanged();

    // The panel's events, each told after the handler that the host may have set in the panel. Those with a
    // condition also come from the panels of sub-query windows that open here. A slot must be connected
    // directly; it may do anything, but the condition of one that frees it must not be used by the slots
    // after it.
    void activeChanged(bool active);                                      // OnActive
    void queryChanged();                                                  // OnChange
    void parametersChanged();                                             // OnParamListChange
    void customEditRequested(lumora::TFilterCond& condition);             // OnCustomEdit
    void valueChanged(lumora::TFilterCond& condition, int value);         // OnChangeValue
    void valueSet(lumora::TFilterCond& condition, int value);             // OnSetValue
    void customValueRequested(lumora::TFilterCond& condition, int value); // OnCustomValue
    void valueDoubleClicked(lumora::TFilterCond& condition, int value);   // OnValueDblClick
    void conditionChanged(lumora::TFilterCond& condition,
                          lumora::TConditionChange change);          // OnConditionChange
    void buildingSql(lumora::TFilterCond& condition, QString& text); // OnBuildSQL; the text may be changed
    void groupImageNeeded(const lumora::TDSFieldGroup& group, int& index); // OnGetGroupImageIndex
    void itemImageNeeded(const lumora::TDSField& field, int& index);       // OnGetItemImageIndex
    void resultFieldsHelpRequested();                                      // OnRFEHelpClick

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
    const QList<QIcon>& icons() const; // of the panel's Images

    // Makes signals of a panel's events: its own, or those of a sub-query's.
    template <typename TEventType, typename TSignal, typename TEmit>
    void listenTo(TEventType& event, TSignal signal, TEmit emitSignal);
    template <typename TEventType, typename TSignal>
    void listenToValue(TEventType& event, TSignal signal);
    void listenToPanel(TVQueryPanel& panel);
    void listenToConditions(TVQueryPanel& panel);
    void stopListeningTo(TVQueryPanel& panel);
    // Changes a property of the panel.
    void change(bool isSame, const std::function<void(TVQueryPanel& panel)>& action);
    void tellSettings();
    const TVQueryPanel& shownPanel() const; // a new one when none is shown

    void updateLater();
    void updateNow();
    void updateScrollBars();
    void scrollToCurrent();
    void tellCurrent();
    // The layout counts from the side where lines begin: the right one, where one reads from right to left.
    bool isMirrored() const { return layoutDirection() == Qt::RightToLeft; }
    QPoint scrolled() const; // the content's point in the viewport's corner where lines begin
    QPoint toContent(const QPoint& position) const;
    QRect toViewport(const TRect& rect) const;

    void acceptAnswer(TWordEditor editor, const TDropDownResult& answer);
    void goToNextWord(bool forward);
    void openMenu(const TPopupMenu& menu, const TFilterRow& row, int word,
                  const std::function<void(const TMenuItem&)>& choose);
    void openChoices(const TDropDownContent& content, const TWordEditor& editor, const TFilterRow& row,
                     int word);
    void startMenu();
    void showMenuAt(const TFilterRow& row, int word);
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
    QPointer<QueryPanelWidget> outer_; // of a sub-query's window: the widget that opened it
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
    int toldLine_ = -1;
    unsigned settingsTold_ = 0;
    std::string toldName_; // of the query, by settingsChanged
};

} // namespace lumora
