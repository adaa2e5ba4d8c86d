#include "apps/lumora-desk/statementrunner.h"

#include "lumora/qtsql/databaseconnection.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/querycanceller.h"
#include "lumora/qtsql/queryrunner.h"

#include <QSqlField>

namespace lumora::desk {

namespace {

struct EnoughRows {}; // raised by the sink to end the query

// The captions that the query gives its columns, where there is one for each.
QList<ResultColumn> resultColumns(const QSqlRecord& record, const QStringList& captions) {
    QList<ResultColumn> columns;
    for (int i = 0; i < record.count(); ++i)
        columns.append({captions.size() == record.count() ? captions[i] : record.fieldName(i),
                        record.field(i).metaType().id() == QMetaType::Double});
    return columns;
}

class Interruptible {
public:
    Interruptible(BackgroundTask::Control& control, QueryCanceller& canceller) : control_(control) {
        control_.setInterruption([&canceller] { canceller.cancel(); });
        if (control_.isCancelled())
            canceller.cancel(); // it may have been asked for just before
    }
    ~Interruptible() { control_.setInterruption({}); }
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;

private:
    BackgroundTask::Control& control_;
};

} // namespace

void runStatement(const Statement& statement, BackgroundTask::Control& control, const RowSink& sink) {
    if (control.isCancelled())
        return;
    const DatabaseConnection connection(statement.database);
    QueryCanceller canceller(connection);
    const Interruptible interruptible(control, canceller);
    RunSettings settings;
    settings.timesAsText = true;
    settings.canceller = &canceller;
    const RowReceiver receiver = {
        [&](const QSqlRecord& record) { sink.columns(resultColumns(record, statement.captions)); },
        [&](const ResultRow& row) {
            if (!sink.row(row))
                throw EnoughRows();
        }};
    try {
        runQuery(connection.connection(), statement.sql, statement.values, receiver, settings);
    } catch (const EnoughRows&) {
    } catch (const DatabaseError& error) {
        if (error.kind() != DatabaseError::Kind::Cancelled || !canceller.isCancelled())
            throw;
    }
}

} // namespace lumora::desk
