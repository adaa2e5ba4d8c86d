// The properties of the panel that is shown, as the widget's.
#include "lumora/lumora.h"
#include "lumora/widgets/linkcolor.h"
#include "lumora/widgets/querypanelwidget.h"

namespace lumora {

namespace {

using W = QueryPanelWidget;

static_assert(W::OracleSql == static_cast<int>(ssOracle) && W::AndOr == static_cast<int>(psAndOr));
static_assert(W::SortByNames == TSQLOptions{soSortByNames}.Bits());
static_assert(W::AllowParams == TQPAppearanceOptions{aoAllowParams}.Bits());
static_assert(W::LinkNotAll == TFilterLinkTypes{fltNotAll}.Bits());

template <typename TFlags, typename TSet>
TFlags toFlags(TSet set) {
    return TFlags::fromInt(static_cast<typename TFlags::Int>(set.Bits()));
}
template <typename TSet, typename TFlags>
TSet toSet(TFlags flags) {
    return TSet::FromBits(static_cast<std::uint64_t>(flags.toInt()));
}

QStringList toLines(const TStringList& list) {
    QStringList lines;
    for (const std::string_view line : list)
        lines.append(QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size())));
    return lines;
}
TStringList fromLines(const QStringList& lines) {
    TStringList list;
    for (const QString& line : lines)
        list.Add(line.toStdString());
    return list;
}

QColor colorOf(TColor color) {
    return color == clNone ? QColor() : toQColor(color);
}
TColor colorOf(const QColor& color) {
    return color.isValid() ? fromQColor(color) : clNone;
}

} // namespace

const TVQueryPanel& QueryPanelWidget::shownPanel() const {
    static const TVQueryPanel none;
    return panel() ? *panel() : none;
}

void QueryPanelWidget::change(bool isSame, const std::function<void(TVQueryPanel& panel)>& action) {
    if (!panel())
        return refuse(tr("There is no query panel whose property could be set"));
    if (isSame)
        return;
    const unsigned told = settingsTold_;
    // What the panel tells of itself has been told.
    if (attempt([&] { action(*panel()); }) && told == settingsTold_)
        tellSettings();
}

void QueryPanelWidget::tellSettings() {
    ++settingsTold_;
    emit settingsChanged();
}

// --- The query.

bool QueryPanelWidget::isActive() const {
    return shownPanel().GetActive();
}
void QueryPanelWidget::setActive(bool active) {
    change(active == isActive(), [=](TVQueryPanel& panel) { panel.SetActive(active); });
}
QString QueryPanelWidget::queryName() const {
    return QString::fromStdString(shownPanel().GetQueryName());
}
void QueryPanelWidget::setQueryName(const QString& name) {
    change(name == queryName(), [&](TVQueryPanel& panel) { panel.SetQueryName(name.toStdString()); });
}
QStringList QueryPanelWidget::description() const {
    return toLines(shownPanel().GetDescription());
}
void QueryPanelWidget::setDescription(const QStringList& lines) {
    change(lines == description(), [&](TVQueryPanel& panel) { panel.SetDescription(fromLines(lines)); });
}
QString QueryPanelWidget::mainTableName() const {
    return QString::fromStdString(shownPanel().GetMainTableName());
}
void QueryPanelWidget::setMainTableName(const QString& name) {
    change(name == mainTableName(), [&](TVQueryPanel& panel) { panel.SetMainTableName(name.toStdString()); });
}
QueryPanelWidget::SqlSyntax QueryPanelWidget::sqlSyntax() const {
    return static_cast<SqlSyntax>(shownPanel().GetSQLSyntax());
}
void QueryPanelWidget::setSqlSyntax(SqlSyntax syntax) {
    change(syntax == sqlSyntax(),
           [=](TVQueryPanel& panel) { panel.SetSQLSyntax(static_cast<TSQLSyntax>(syntax)); });
}
QueryPanelWidget::SqlOptions QueryPanelWidget::sqlOptions() const {
    return toFlags<SqlOptions>(shownPanel().GetSQLOptions());
}
void QueryPanelWidget::setSqlOptions(SqlOptions options) {
    change(options == sqlOptions(),
           [=](TVQueryPanel& panel) { panel.SetSQLOptions(toSet<TSQLOptions>(options)); });
}
bool QueryPanelWidget::saveSqlOptions() const {
    return shownPanel().GetSaveSQLOptions();
}
void QueryPanelWidget::setSaveSqlOptions(bool on) {
    change(on == saveSqlOptions(), [=](TVQueryPanel& panel) { panel.SetSaveSQLOptions(on); });
}
bool QueryPanelWidget::isStrict() const {
    return shownPanel().GetStrict();
}
void QueryPanelWidget::setStrict(bool strict) {
    change(strict == isStrict(), [=](TVQueryPanel& panel) { panel.SetStrict(strict); });
}
QStringList QueryPanelWidget::titles() const {
    return toLines(shownPanel().GetTitles());
}
void QueryPanelWidget::setTitles(const QStringList& lines) {
    change(lines == titles(), [&](TVQueryPanel& panel) { panel.SetTitles(fromLines(lines)); });
}
bool QueryPanelWidget::saveTitles() const {
    return shownPanel().GetSaveTitles();
}
void QueryPanelWidget::setSaveTitles(bool on) {
    change(on == saveTitles(), [=](TVQueryPanel& panel) { panel.SetSaveTitles(on); });
}

// --- Looks.

QueryPanelWidget::PanelStyle QueryPanelWidget::panelStyle() const {
    return static_cast<PanelStyle>(shownPanel().GetAppearance().GetStyle());
}
void QueryPanelWidget::setPanelStyle(PanelStyle style) {
    change(style == panelStyle(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetStyle(static_cast<TQPStyle>(style)); });
}
QueryPanelWidget::PanelOptions QueryPanelWidget::panelOptions() const {
    return toFlags<PanelOptions>(shownPanel().GetAppearance().GetOptions());
}
void QueryPanelWidget::setPanelOptions(PanelOptions options) {
    change(options == panelOptions(), [=](TVQueryPanel& panel) {
        panel.GetAppearance().SetOptions(toSet<TQPAppearanceOptions>(options));
    });
}
QueryPanelWidget::LinkTypes QueryPanelWidget::linkTypes() const {
    return toFlags<LinkTypes>(shownPanel().GetAppearance().GetLinkTypes());
}
void QueryPanelWidget::setLinkTypes(LinkTypes types) {
    change(types == linkTypes(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetLinkTypes(toSet<TFilterLinkTypes>(types)); });
}
QColor QueryPanelWidget::activeRowColor() const {
    return colorOf(shownPanel().GetAppearance().GetActiveRowColor());
}
void QueryPanelWidget::setActiveRowColor(const QColor& color) {
    change(color == activeRowColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetActiveRowColor(colorOf(color)); });
}
QColor QueryPanelWidget::controlBorderColor() const {
    return colorOf(shownPanel().GetAppearance().GetControlBorderColor());
}
void QueryPanelWidget::setControlBorderColor(const QColor& color) {
    change(color == controlBorderColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetControlBorderColor(colorOf(color)); });
}
QColor QueryPanelWidget::fieldColor() const {
    return colorOf(shownPanel().GetAppearance().GetFieldColor());
}
void QueryPanelWidget::setFieldColor(const QColor& color) {
    change(color == fieldColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetFieldColor(colorOf(color)); });
}
QColor QueryPanelWidget::operatorColor() const {
    return colorOf(shownPanel().GetAppearance().GetOperatorColor());
}
void QueryPanelWidget::setOperatorColor(const QColor& color) {
    change(color == operatorColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetOperatorColor(colorOf(color)); });
}
QColor QueryPanelWidget::valueColor() const {
    return colorOf(shownPanel().GetAppearance().GetValueColor());
}
void QueryPanelWidget::setValueColor(const QColor& color) {
    change(color == valueColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetValueColor(colorOf(color)); });
}
QColor QueryPanelWidget::boolOpColor() const {
    return colorOf(shownPanel().GetAppearance().GetBoolOpColor());
}
void QueryPanelWidget::setBoolOpColor(const QColor& color) {
    change(color == boolOpColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetBoolOpColor(colorOf(color)); });
}
QColor QueryPanelWidget::addRowColor() const {
    return colorOf(shownPanel().GetAppearance().GetAddRowColor());
}
void QueryPanelWidget::setAddRowColor(const QColor& color) {
    change(color == addRowColor(),
           [=](TVQueryPanel& panel) { panel.GetAppearance().SetAddRowColor(colorOf(color)); });
}
int QueryPanelWidget::rowSpace() const {
    return shownPanel().GetRowSpace();
}
void QueryPanelWidget::setRowSpace(int space) {
    change(space == rowSpace(), [=](TVQueryPanel& panel) { panel.SetRowSpace(space); });
}
int QueryPanelWidget::tabSpace() const {
    return shownPanel().GetTabSpace();
}
void QueryPanelWidget::setTabSpace(int space) {
    change(space == tabSpace(), [=](TVQueryPanel& panel) { panel.SetTabSpace(space); });
}
int QueryPanelWidget::elemSpace() const {
    return shownPanel().GetElemSpace();
}
void QueryPanelWidget::setElemSpace(int space) {
    change(space == elemSpace(), [=](TVQueryPanel& panel) { panel.SetElemSpace(space); });
}
int QueryPanelWidget::headerLeft() const {
    return shownPanel().GetHeaderLeft();
}
void QueryPanelWidget::setHeaderLeft(int left) {
    change(left == headerLeft(), [=](TVQueryPanel& panel) { panel.SetHeaderLeft(left); });
}
int QueryPanelWidget::headerTop() const {
    return shownPanel().GetHeaderTop();
}
void QueryPanelWidget::setHeaderTop(int top) {
    change(top == headerTop(), [=](TVQueryPanel& panel) { panel.SetHeaderTop(top); });
}
int QueryPanelWidget::maxPopupItemCount() const {
    return shownPanel().GetMaxPopupItemCount();
}
void QueryPanelWidget::setMaxPopupItemCount(int count) {
    change(count == maxPopupItemCount(), [=](TVQueryPanel& panel) { panel.SetMaxPopupItemCount(count); });
}
QString QueryPanelWidget::helpFileName() const {
    return QString::fromStdString(shownPanel().GetHelpFileName());
}
void QueryPanelWidget::setHelpFileName(const QString& name) {
    change(name == helpFileName(), [&](TVQueryPanel& panel) { panel.SetHelpFileName(name.toStdString()); });
}
int QueryPanelWidget::helpContext() const {
    return shownPanel().GetRFEHelpContext();
}
void QueryPanelWidget::setHelpContext(int context) {
    change(context == helpContext(), [=](TVQueryPanel& panel) { panel.SetRFEHelpContext(context); });
}

} // namespace lumora
