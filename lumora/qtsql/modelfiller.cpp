#include "lumora/qtsql/modelfiller.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/captions.h"
#include "lumora/qtsql/filledoperators.h"
#include "lumora/qtsql/tablename.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace lumora {

namespace {

// What a link line holds names apart by.
bool fitsLinkLine(const std::string& column) {
    return column.find_first_of("=<>!,") == std::string::npos && Trim(column) == column;
}

bool fitsLinkLine(const ForeignKey& key) {
    const auto fits = [](const std::string& column) { return fitsLinkLine(column); };
    return std::all_of(key.columns.begin(), key.columns.end(), fits) &&
           std::all_of(key.referencedColumns.begin(), key.referencedColumns.end(), fits);
}

std::string linkLine(const ForeignKey& key) {
    std::string line = key.table + '-' + key.referencedTable + ':';
    for (std::size_t i = 0; i < key.columns.size(); ++i)
        line.append(i == 0 ? "" : ",").append(key.columns[i]).append("=").append(key.referencedColumns[i]);
    return line;
}

using NameSet = std::unordered_set<std::string, TNoCaseHash, TNoCaseEqual>;

// Letters, digits and "_" of ASCII, in lower case.
std::string plainName(std::string_view name) {
    std::string plain;
    for (const char c : LowerAscii(name))
        plain += IsDigit(c) || (c >= 'a' && c <= 'z') ? c : '_';
    return plain;
}

// Makes what the provider gave ready for use.
class ModelFinisher {
public:
    ModelFinisher(TVCustomDBStructure& model, const DatabaseConnection& connection)
        : model_(model), engine_(connection.engine()), catalogue_(openCatalogue(connection.connection())) {}

    void finish() {
        model_.RenumberFields(stableID);
        prepareModel(model_, engine_);
        addLinksWithOddNames();
        for (int i = 0; i < model_.GetLinkCount(); ++i)
            quoteLink(*model_.GetLink(i));
        for (int i = 0; i < model_.GetTableCount(); ++i)
            finishTable(*model_.GetTable(i));
        addFilledOperators(model_, EffectiveDialect(dialectOf(engine_), ssSQL2, true));
        finishFields();
        dropUnusedOperators(model_);
    }

private:
    // Queries keep the IDs of fields, so an ID must not depend on what else is in the database: it is the
    // FNV-1a hash of the names, folded to 30 bits.
    static int stableID(const TDSField& field) {
        std::uint32_t hash = 2166136261U;
        for (const char c : LowerAscii(field.GetFullName()))
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
        return static_cast<int>((hash ^ hash >> 30) & 0x3fffffffU) + 1;
    }

    void addLinksWithOddNames() {
        for (const ForeignKey& key : catalogue_->foreignKeys())
            if (!fitsLinkLine(key))
                addLink(key);
    }

    void addLink(const ForeignKey& key) {
        TDSTable* const table = model_.TableByName(tnName, key.table);
        TDSTable* const referenced = model_.TableByName(tnName, key.referencedTable);
        if (!table || !referenced)
            return;
        auto link = std::make_unique<TDSLink>(*table, *referenced);
        for (std::size_t i = 0; i < key.columns.size(); ++i) {
            link->Fields1.Add(key.columns[i]);
            link->Fields2.Add(key.referencedColumns[i]);
        }
        model_.AddLinkByRef(std::move(link));
    }

    void quoteLink(TDSLink& link) const {
        for (const TStringList* const columns : {&link.Fields1, &link.Fields2})
            for (const std::string_view column : *columns)
                link.QuoteFields = link.QuoteFields || needsQuotes(engine_, column);
    }

    // A name with a schema is quoted already where it needs that.
    void finishTable(TDSTable& table) {
        const std::string& name = table.GetName();
        const TableName parts = fromModelName(name);
        const bool isBare = parts.schema.empty() && parts.name == name;
        const bool quoted = isBare && needsQuotes(engine_, name);
        table.SetQuoted(quoted);
        table.SetAlias(freeAlias(parts, isBare && !quoted));
        table.SetDisplayName(freeCaption(parts));
    }

    std::string freeAlias(const TableName& table, bool nameWillDo) {
        std::string alias = nameWillDo ? table.name : plainName(table.name);
        if (needsQuotes(engine_, alias) || aliases_.count(alias) > 0)
            alias = plainName(table.schema.empty() ? "t_" + alias : table.schema + '_' + alias);
        std::string free = alias;
        for (int n = 2; !aliases_.insert(free).second; ++n)
            free = alias + '_' + std::to_string(n);
        return free;
    }

    std::string freeCaption(const TableName& table) {
        const std::string caption = readableCaption(table.name);
        std::string free = caption;
        if (tableCaptions_.count(free) > 0)
            free = caption + " (" + (table.schema.empty() ? table.name : readableCaption(table.schema)) + ')';
        for (int n = 2; !tableCaptions_.insert(free).second; ++n)
            free = caption + " (" + std::to_string(n) + ')';
        return free;
    }

    // A caption that fields of several tables would bear names its table too.
    void finishFields() {
        std::unordered_map<std::string, int, TNoCaseHash, TNoCaseEqual> uses;
        for (int i = 0; i < model_.GetFieldCount(); ++i)
            ++uses[readableCaption(model_.GetField(i)->GetFieldText())];
        const TDSTable* table = nullptr;
        TDSFieldGroup* group = nullptr;
        for (int i = 0; i < model_.GetFieldCount(); ++i) {
            TDSField& field = *model_.GetField(i);
            if (field.GetTable() != table) { // fields come table by table
                table = field.GetTable();
                group = model_.GetFieldGroups().Add(table->GetDisplayName());
                readComparisons(*table);
            }
            std::string caption = readableCaption(field.GetFieldText());
            if (uses[caption] > 1)
                caption.append(" (").append(table->GetDisplayName()).append(")");
            field.SetDisplayName(std::move(caption));
            field.SetQuoted(needsQuotes(engine_, field.GetFieldText()));
            field.SetGroup(group);
            chooseOperators(field, comparisonOf(field), false);
        }
    }

    void readComparisons(const TDSTable& table) {
        comparisons_.clear();
        for (const ColumnInfo& column : catalogue_->columns(table.GetName()))
            comparisons_[column.name] = column.comparison;
    }

    Comparison comparisonOf(const TDSField& field) const {
        const auto found = comparisons_.find(field.GetFieldText());
        return found == comparisons_.end() ? Comparison::Text : found->second;
    }

    TVCustomDBStructure& model_;
    const Engine engine_;
    const std::unique_ptr<Catalogue> catalogue_;
    NameSet aliases_;
    NameSet tableCaptions_;
    std::unordered_map<std::string, Comparison> comparisons_; // of the columns of one table
};

} // namespace

void offerForeignKeys(TVBDEInfo& info, DatabaseSession& session) {
    info.SetSession(session);
    info.OnLinksRequest = [&session, &info, others = info.OnLinksRequest](TVDBInfo& sender,
                                                                          TStringList& links) {
        for (const ForeignKey& key :
             openCatalogue(session.open(info.GetDatabaseName()).connection())->foreignKeys())
            if (fitsLinkLine(key))
                links.Add(linkLine(key));
        if (others)
            others(sender, links);
    };
}

void fillModel(TVCustomDBStructure& model, TVBDEInfo& info, DatabaseSession& session) {
    info.SetSession(session);
    info.ConnectionChanged(); // the tables may have changed since it was last asked
    model.SetDatabaseInfo(&info);
    model.ReplaceModel([&] { // panels find their fields again in the finished model
        model.RetriveDataModelInfo();
        ModelFinisher(model, session.open(info.GetDatabaseName())).finish();
    });
}

} // namespace lumora
