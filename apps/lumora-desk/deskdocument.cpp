#include "apps/lumora-desk/deskdocument.h"

#include "apps/lumora-desk/querybases.h"
#include "lumora/platform/ascii.h"
#include "lumora/qtsql/engine.h"
#include "lumora/qtsql/placeholders.h"
#include "lumora/qtsql/queryparameters.h"
#include "lumora/query/column_total.h"
#include "lumora/querybase/stored_text.h"
#include "lumora/screen/row_problems.h"
#include "lumora/widgets/localeformats.h"

#include <QLocale>
#include <QRegularExpression>
#include <QScopedValueRollback>

#include <algorithm>

namespace lumora::desk {

namespace {

QString asSentence(const QString& text) {
    const bool isEnded = text.isEmpty() || text.endsWith(u'.') || text.endsWith(u'!') || text.endsWith(u'?');
    return isEnded ? text : text + u'.';
}

} // namespace

struct DeskDocument::Source {
    explicit Source(OpenedDatabase opened)
        : request(std::move(opened.request)),
          engine(opened.engine),
          model(std::move(opened.model)),
          provider(request.database),
          queries(request) {
        provider.serve(*model);
    }

    OpenRequest request;
    Engine engine;
    std::unique_ptr<TVDBStructure> model;
    ModelProvider provider;
    OpenQueryBase queries;
};

// Hears of changes in the panel.
class DeskDocument::Listener : public TVQueryPanelLink {
public:
    explicit Listener(DeskDocument& document) : document_(document) { SetQueryPanel(document.panel_.get()); }
    void QueryPanelChanged() override { document_.panelChanged(); }

private:
    DeskDocument& document_;
};

DeskDocument::DeskDocument(QObject* parent)
    : QObject(parent),
      panel_(std::make_unique<TVQueryPanel>()),
      listener_(std::make_unique<Listener>(*this)) {}

DeskDocument::~DeskDocument() {
    quiet_ = true;
    panel_->SetQueryBase(nullptr);
    panel_->SetDbStruct(nullptr);
}

// --- The database.

void DeskDocument::adopt(OpenedDatabase database) {
    auto source = std::make_unique<Source>(std::move(database));
    {
        const QScopedValueRollback quiet(quiet_, true);
        panel_->SetQueryBase(nullptr);
        panel_->SetDbStruct(nullptr);
        panel_->ClearAll();
        panel_->SetMainTableName({}); // it was taken from the model that goes
        source_ = std::move(source);
        panel_->SetDbStruct(source_->model.get());
        preparePanel(*panel_);
        panel_->SetQueryBase(source_->queries.get());
    }
    emit opened();
    startOver();
}

void DeskDocument::close() {
    if (!isOpen())
        return;
    {
        const QScopedValueRollback quiet(quiet_, true);
        panel_->SetQueryBase(nullptr);
        panel_->SetDbStruct(nullptr);
        panel_->ClearAll();
        source_.reset();
    }
    savedText_.clear();
    emit opened();
    updateModified();
}

const OpenRequest& DeskDocument::request() const {
    return source_->request;
}

QString DeskDocument::title() const {
    return isOpen() ? displayName(source_->request.database) : QString();
}

TVDBStructure* DeskDocument::model() const {
    return isOpen() ? source_->model.get() : nullptr;
}

// What a panel needs besides its query's text.
void DeskDocument::preparePanel(TVQueryPanel& panel) const {
    panel.SetStrict(true);
    panel.SetSaveSQLOptions(true);
    panel.SetSQLOptions(DefaultSQLOptions);
    panel.SetSQLSyntax(ssSQL2);
    panel.SetDialect(dialectOf(source_->engine));
    if (const QLocale locale; locale != QLocale::c()) // which is nobody's: dates are as in SQL then
        panel.GetScreen().SetUserFormats(localeFormats(locale));
    panel.Activate();
}

// The first query that can be read, or a new one.
void DeskDocument::startOver() {
    for (int i = 0; i < queries()->GetCount(); ++i) {
        try {
            return selectQuery(i);
        } catch (const Exception&) {
            // It is told when somebody chooses it.
        }
    }
    newQuery();
}

// --- The list of queries.

TVStoredQueryBase* DeskDocument::queries() const {
    return isOpen() ? source_->queries.get() : nullptr;
}

int DeskDocument::currentIndex() const {
    return isOpen() && queries()->GetCurrentQuery() ? queries()->GetItemIndex() : -1;
}

QString DeskDocument::queryName() const {
    const int index = currentIndex();
    return index < 0 ? QString() : QString::fromStdString(queries()->GetQuery(index)->GetQueryName());
}

TVStoredQueryItem& DeskDocument::item(int index) const {
    return dynamic_cast<TVStoredQueryItem&>(*queries()->GetQuery(index));
}

bool DeskDocument::isStored(int index) const {
    return item(index).IsStored();
}

// A text that cannot be read is found out before it takes the place of what the panel shows.
void DeskDocument::checkContent(int index) {
    TStringList content;
    item(index).LoadContent(content);
    TVQueryPanel trial;
    trial.SetDbStruct(model());
    preparePanel(trial);
    if (item(index).IsStored())
        trial.LoadFromStrings(content);
}

// What a query's text may leave as it is.
void DeskDocument::forgetQuery() {
    panel_->SetSQLOptions(DefaultSQLOptions);
    panel_->SetUserData({});
}

void DeskDocument::makeCurrent(int index) {
    {
        const QScopedValueRollback quiet(quiet_, true);
        forgetQuery();
        if (index == queries()->GetItemIndex())
            panel_->LoadCurBaseQuery();
        else
            queries()->SetItemIndex(index);
    }
    markSaved();
    emit currentQueryChanged();
}

// A new query that was left without being saved is forgotten.
void DeskDocument::dropUnstored(const TVQueryItem* except) {
    TVStoredQueryBase& base = *queries();
    for (int i = base.GetCount() - 1; i >= 0; --i)
        if (!item(i).IsStored() && base.GetQuery(i) != except) {
            const QScopedValueRollback quiet(quiet_, true);
            base.EraseQuery(i);
        }
}

void DeskDocument::selectQuery(int index) {
    checkContent(index);
    const TVQueryItem* const chosen = queries()->GetQuery(index);
    makeCurrent(index);
    dropUnstored(chosen);
    emit queryListChanged();
}

void DeskDocument::newQuery() {
    {
        const QScopedValueRollback quiet(quiet_, true);
        forgetQuery();
        queries()->NewQuery();
    }
    dropUnstored(queries()->GetCurrentQuery());
    markSaved();
    emit queryListChanged();
    emit currentQueryChanged();
}

void DeskDocument::save(bool force) {
    TVStoredQueryItem& current = item(currentIndex());
    {
        const QScopedValueRollback quiet(quiet_, true);
        force ? current.ForceSave() : current.Save();
    }
    markSaved();
    emit queryListChanged();
}

void DeskDocument::saveAs(const QString& name) {
    {
        const QScopedValueRollback quiet(quiet_, true);
        queries()->SaveAs(name.trimmed().toStdString());
    }
    dropUnstored(queries()->GetCurrentQuery());
    markSaved();
    emit queryListChanged();
    emit currentQueryRenamed();
}

void DeskDocument::revert() {
    if (item(currentIndex()).IsStored())
        selectQuery(currentIndex());
    else
        newQuery();
}

void DeskDocument::rename(const QString& name, bool force) {
    TVStoredQueryItem& current = item(currentIndex());
    const std::string before = current.GetQueryName();
    const QScopedValueRollback quiet(quiet_, true);
    current.SetQueryName(name.trimmed().toStdString());
    try {
        force ? current.ForceSave() : current.Save();
    } catch (...) {
        current.SetQueryName(before);
        throw;
    }
    markSaved();
    emit queryListChanged();
    emit currentQueryRenamed();
}

QString DeskDocument::freeName(const QString& name) const {
    for (int i = 1;; ++i) {
        const QString free = i == 1 ? tr("%1 (copy)").arg(name) : tr("%1 (copy %2)").arg(name).arg(i);
        if (queries()->IndexByName(free.toStdString()) < 0)
            return free;
    }
}

void DeskDocument::duplicate(int index) {
    TStringList content;
    item(index).LoadContent(content);
    const std::string name = freeName(QString::fromStdString(item(index).GetQueryName())).toStdString();
    PutQueryName(content, name);
    selectQuery(queries()->AddQuery(name, content));
}

void DeskDocument::erase(int index, bool force) {
    TVStoredQueryBase& base = *queries();
    const TVQueryItem* const current = base.GetCurrentQuery();
    const bool isCurrent = base.GetQuery(index) == current;
    {
        const QScopedValueRollback quiet(quiet_, true);
        panel_->SetQueryBase(nullptr); // the query behind is read with care, below
        try {
            force ? base.ForceEraseQuery(index) : base.EraseQuery(index);
        } catch (...) {
            panel_->SetQueryBase(&base);
            throw;
        }
        panel_->SetQueryBase(&base);
    }
    emit queryListChanged();
    if (!isCurrent)
        return;
    const int next = std::min(index, base.GetCount() - 1);
    base.SuppressNotifications = true;
    base.SetItemIndex(-1);
    base.SuppressNotifications = false;
    try {
        if (next >= 0)
            return selectQuery(next);
    } catch (const Exception&) {
        // It is told when somebody chooses it.
    }
    newQuery();
}

// --- The query.

TStringList DeskDocument::panelText() {
    TStringList lines;
    panel_->SaveToStrings(lines);
    return lines;
}

void DeskDocument::markSaved() {
    savedText_ = panelText().GetText();
    panel_->SetModified(false);
    updateModified();
}

void DeskDocument::panelChanged() {
    if (quiet_ || !isOpen())
        return;
    updateModified();
    emit queryChanged();
}

// A change that was taken back is none. What cannot be written yet, a date that is not finished, is one.
void DeskDocument::updateModified() {
    bool modified = false;
    if (isOpen()) {
        try {
            modified = panelText().GetText() != savedText_;
        } catch (const Exception&) {
            modified = true;
        }
    }
    if (modified == modified_)
        return;
    modified_ = modified;
    emit modifiedChanged(modified);
}

QString DeskDocument::description() const {
    return QString::fromStdString(panel_->GetDescription().GetText()).trimmed();
}

// A line "[...]" would begin a section of the query's text.
void DeskDocument::setDescription(const QString& text) {
    if (text.trimmed() == description())
        return;
    QStringList lines = text.split(u'\n');
    for (QString& line : lines)
        if (line.trimmed().startsWith(u'[') && line.trimmed().endsWith(u']'))
            line = u' ' + line.trimmed() + u'.';
    panel_->SetDescription(TStringList(lines.join(u'\n').toStdString()));
}

void DeskDocument::setDistinct(bool on) {
    TSQLOptions options = panel_->GetSQLOptions();
    if (on)
        options.Include(soSelectDistinct);
    else
        options.Exclude(soSelectDistinct);
    panel_->SetSQLOptions(options);
    panel_->QueryChanged();
}

void DeskDocument::readSql(const QString& sql) {
    TVQueryPanel reader;
    reader.SetDbStruct(model());
    preparePanel(reader);
    reader.ParseSQL(TStringList(sql.toStdString()));
    reader.SetQueryName(panel_->GetQueryName());
    reader.SetDescription(panel_->GetDescription());
    reader.SetTitles(panel_->GetTitles());
    TStringList content;
    reader.SaveToStrings(content);
    {
        const QScopedValueRollback quiet(quiet_, true);
        panel_->LoadFromStrings(content);
    }
    panelChanged();
    emit currentQueryChanged();
}

// --- The statement.

namespace {

QString problemSentences(const std::vector<TRowProblem>& problems) {
    constexpr std::size_t most = 3;
    QStringList texts;
    for (std::size_t i = 0; i < problems.size() && i < most; ++i)
        texts.append(asSentence(QString::fromStdString(problems[i].Text)));
    if (problems.size() > most)
        texts.append(DeskDocument::tr("%n more rows are not finished.", nullptr,
                                      static_cast<int>(problems.size() - most)));
    texts.removeDuplicates();
    return texts.join(u'\n');
}

} // namespace

BuiltStatement DeskDocument::build() {
    if (const std::vector<TRowProblem> problems = PanelProblems(panel_->GetScreen()); !problems.empty())
        return {{}, problemSentences(problems)};
    try {
        panel_->BuildQuery();
        const std::string sql(Trim(panel_->GetQResult().GetSQL().GetText()));
        return {decodeText(sql, "The statement"), {}};
    } catch (const std::exception& error) {
        return {{}, sentence(error)};
    }
}

// The statement's parameters get names of their own when it is made to run, which must not stay.
std::unique_ptr<TVQueryPanel> DeskDocument::copyOfPanel() {
    auto copy = std::make_unique<TVQueryPanel>();
    copy->SetDbStruct(model());
    preparePanel(*copy);
    copy->SetSQLOptions(panel_->GetSQLOptions());
    copy->LoadFromStrings(panelText());
    copy->SetSQLOptions(panel_->GetSQLOptions());
    return copy;
}

std::vector<AskedParameter> DeskDocument::parameters() {
    panel_->BuildQuery();
    const TQueryResult& result = panel_->GetQResult();
    const std::string sql = panel_->GetQResult().GetSQL().GetText();
    std::vector<AskedParameter> asked;
    for (const Placeholder& placeholder : findPlaceholders(sql)) {
        const TSQLParam* const parameter = result.FindParameter(placeholder.name);
        const QString name = QString::fromUtf8(placeholder.name);
        const bool known = std::any_of(asked.begin(), asked.end(), [&](const AskedParameter& other) {
            return other.name.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (!parameter || known)
            continue;
        const QString caption = QString::fromStdString(parameter->Caption);
        const QString field = QString::fromStdString(parameter->GetCondition().GetCaptionText());
        const QString own = caption.isEmpty() ? name : caption;
        asked.push_back({name, own == field ? own : tr("%1 (%2)").arg(own, field), parameter->GetDataType()});
    }
    return asked;
}

Statement DeskDocument::statement(const std::vector<ParameterValue>& values) {
    const std::unique_ptr<TVQueryPanel> copy = copyOfPanel();
    QueryParameters parameters(copy->GetQResult());
    copy->BuildQuery();
    const std::string sql = copy->GetQResult().GetSQL().GetText();
    std::vector<std::pair<std::string, std::string>> texts;
    for (const ParameterValue& value : values)
        texts.emplace_back(value.name.toStdString(), value.value.toStdString());
    std::vector<GivenParameter> given;
    for (const auto& [name, value] : texts)
        given.push_back({name, value});
    Statement statement;
    statement.database = source_->request.database;
    statement.sql = decodeText(sql, "The statement");
    statement.values = parameters.bind(sql, given, model()->GetSQLFormats(), source_->engine);
    const TRFieldList& fields = copy->GetQResult().GetResultFields();
    for (int i = 0; i < fields.Count() && !fields.JustSorting; ++i)
        if (!fields.GetRField(i)->GetHidden())
            statement.captions.append(QString::fromStdString(ColumnHeading(*fields.GetRField(i))));
    return statement;
}

QString sentence(const std::exception& error) {
    QString text = QString::fromUtf8(error.what()).trimmed();
    static const QRegularExpression lineNumber(QStringLiteral("\\s*\\n\\s*Line:\\s*(\\d+)$"));
    text.replace(lineNumber, DeskDocument::tr(" (line %1)").arg(QStringLiteral("\\1")));
    const auto* const panelError = dynamic_cast<const EVQueryPanelError*>(&error);
    const int code = panelError ? panelError->Code : 0;
    if (code == qpeNoEnoughInfo || code == qpeQueryWasNotBuilt)
        return DeskDocument::tr("Nothing is asked for yet: choose a column to show, or add a condition.");
    static const QString noValue = QStringLiteral("Invalid value \"\" for ");
    if (code == qpeInvalidValue && text.startsWith(noValue))
        return DeskDocument::tr("A value is missing for %1.").arg(text.mid(noValue.size()));
    static const QString badValue = QStringLiteral("Invalid value ");
    if (code == qpeInvalidValue && text.startsWith(badValue))
        return DeskDocument::tr("This value will not do: %1.").arg(text.mid(badValue.size()));
    return asSentence(text);
}

} // namespace lumora::desk
