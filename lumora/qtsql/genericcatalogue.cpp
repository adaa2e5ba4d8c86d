// Databases of which we know what their driver tells.

#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/tablename.h"

#include <QSqlField>
#include <QSqlRecord>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

ColumnInfo describe(const QSqlField& field) {
    ColumnInfo column;
    column.name = field.name().toStdString();
    column.comparison = Comparison::Value;
    switch (field.metaType().id()) {
    case QMetaType::Bool:
        column.type = ftBoolean;
        break;
    case QMetaType::Char:
    case QMetaType::UChar:
    case QMetaType::SChar:
    case QMetaType::Short:
        column.type = ftSmallint;
        break;
    case QMetaType::UShort:
        column.type = ftWord;
        break;
    case QMetaType::Int:
        column.type = ftInteger;
        break;
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        column.type = ftLargeint;
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        column.type = ftFloat;
        break;
    case QMetaType::QDate:
        column.type = ftDate;
        break;
    case QMetaType::QTime:
        column.type = ftTime;
        break;
    case QMetaType::QDateTime:
        column.type = ftDateTime;
        break;
    case QMetaType::QUuid:
        column.type = ftGuid;
        break;
    case QMetaType::QByteArray:
        column.type = ftBlob;
        column.comparison = Comparison::None;
        break;
    default:
        column.type = ftString;
        column.size = qMax(field.length(), 0);
        column.comparison = Comparison::Text;
    }
    return column;
}

class GenericCatalogue : public Catalogue {
public:
    explicit GenericCatalogue(const QSqlDatabase& database) : database_(database) {}

    std::vector<std::string> tables(bool systemTables) override {
        QStringList names = database_.tables(QSql::Tables) + database_.tables(QSql::Views);
        if (systemTables)
            names += database_.tables(QSql::SystemTables);
        if (names.isEmpty() && database_.lastError().isValid())
            throw DatabaseError(database_);
        std::vector<std::string> result;
        for (const QString& name : names)
            result.push_back(name.toStdString());
        return result;
    }

    std::vector<ColumnInfo> columns(const std::string& table) override {
        const QSqlRecord record = database_.record(QString::fromStdString(table));
        std::vector<ColumnInfo> columns;
        for (int i = 0; i < record.count(); ++i)
            columns.push_back(describe(record.field(i)));
        return columns;
    }

    // As the standard's information schema has them, where there is one.
    std::vector<ForeignKey> foreignKeys() override {
        try {
            return readForeignKeys();
        } catch (const DatabaseError&) {
            return {};
        }
    }

private:
    // A driver may put the schema before the name of a table, and may not.
    static std::string modelName(const std::vector<std::string>& names, const std::string& schema,
                                 const std::string& table) {
        for (const std::string& name : names)
            if (const TableName parts = fromModelName(name);
                parts.name == table && (parts.schema.empty() || parts.schema == schema))
                return name;
        return {};
    }

    std::vector<ForeignKey> readForeignKeys() {
        const std::vector<std::string> names = tables(false);
        QSqlQuery query = execute(
            database_,
            u"select k.table_schema, k.table_name, r.table_schema, r.table_name, k.ordinal_position,"
            " k.column_name, r.column_name from information_schema.referential_constraints c"
            " join information_schema.key_column_usage k on k.constraint_schema = c.constraint_schema"
            "  and k.constraint_name = c.constraint_name"
            " join information_schema.key_column_usage r on r.constraint_schema = c.unique_constraint_schema"
            "  and r.constraint_name = c.unique_constraint_name"
            "  and r.ordinal_position = k.position_in_unique_constraint"
            " order by k.table_schema, k.table_name, k.constraint_name, k.ordinal_position"_s);
        std::vector<ForeignKey> keys;
        while (nextRow(query)) {
            const std::string table = modelName(names, textOf(query, 0), textOf(query, 1));
            const std::string referenced = modelName(names, textOf(query, 2), textOf(query, 3));
            if (!table.empty() && !referenced.empty())
                addKeyColumn(keys, query.value(4).toInt() == 1, table, referenced, textOf(query, 5),
                             textOf(query, 6));
        }
        return keys;
    }

    const QSqlDatabase database_;
};

} // namespace

std::unique_ptr<Catalogue> openGenericCatalogue(const QSqlDatabase& database) {
    return std::make_unique<GenericCatalogue>(database);
}

} // namespace lumora
