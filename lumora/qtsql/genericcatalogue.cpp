// Databases of which we know what their driver tells.

#include "lumora/qtsql/catalogues.h"
#include "lumora/qtsql/databaseerror.h"

#include <QSqlField>
#include <QSqlRecord>

namespace lumora {

namespace {

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

    std::vector<ForeignKey> foreignKeys() override { return {}; }

private:
    const QSqlDatabase database_;
};

} // namespace

std::unique_ptr<Catalogue> openGenericCatalogue(const QSqlDatabase& database) {
    return std::make_unique<GenericCatalogue>(database);
}

} // namespace lumora
