#include "lumora/qtsql/datasetfilter.h"

#include "lumora/lumora.h"

#include "lumora/platform/filter_expression.h"
#include "lumora/qtsql/databaseerror.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlTableModel>

namespace lumora {

QString filterText(TVQueryPanel& panel) {
    panel.BuildQuery();
    return QString::fromStdString(panel.GetQResult().Conditions().GetText()).trimmed();
}

TFilterOptions filterOptions(const TVCustomDBStructure& structure) {
    const TSQLFormats& formats = structure.GetSQLFormats();
    TFilterOptions options;
    options.DateMask = formats.GetDate();
    options.TimeMask = formats.GetTime();
    options.DateTimeMask = formats.GetDateTime();
    return options;
}

namespace {

// Setting the filter of a model that has run its query runs it again.
bool runWithFilter(QSqlTableModel& model, const QString& filter) {
    const bool hasRun = model.query().isActive();
    model.setFilter(filter);
    return hasRun ? model.query().isActive() : model.select();
}

} // namespace

void applyFilter(QSqlTableModel& model, const QString& filter) {
    if (model.isDirty())
        throw DatabaseError(DatabaseError::Kind::Invalid,
                            QStringLiteral("The table has changes that are not saved"));
    const QString old = model.filter();
    if (runWithFilter(model, filter))
        return;
    const QSqlError error = model.lastError();
    runWithFilter(model, old);
    throw DatabaseError(model.database(), error);
}

void qualifyColumns(TVDatasetStructure& structure, const QSqlTableModel& model) {
    const QString name = model.tableName();
    for (const QString& part : name.split(u'.'))
        if (!IsFilterName(part.toStdString()))
            throw DatabaseError(DatabaseError::Kind::Invalid,
                                QStringLiteral("The table \"%1\" needs quotes").arg(name));
    if (structure.GetTableCount() > 0)
        structure.GetTable(0)->SetAlias(name.toStdString());
}

} // namespace lumora
