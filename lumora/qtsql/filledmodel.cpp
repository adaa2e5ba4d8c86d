#include "lumora/qtsql/filledmodel.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/captions.h"
#include "lumora/qtsql/filledoperators.h"
#include "lumora/qtsql/foreignkeylines.h"
#include "lumora/qtsql/keyroles.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/statement/dialects/dialect.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace lumora {

namespace {

using NameSet = std::unordered_set<std::string, TNoCaseHash, TNoCaseEqual>;

// Letters, digits and "_" of ASCII, in lower case.
std::string plainName(std::string_view name) {
    std::string plain;
    for (const char c : LowerAscii(name))
        plain += IsDigit(c) || (c >= 'a' && c <= 'z') ? c : '_';
    return plain;
}

std::string lowerFirst(std::string text) {
    if (text.size() > 1 && LowerAscii(text[1]) == text[1])
        text[0] = LowerAscii(text[0]);
    return text;
}

class ModelFinisher {
public:
    ModelFinisher(TVCustomDBStructure& model, const DatabaseContents& contents)
        : model_(model), contents_(contents), engine_(contents.engine) {}

    void finish() {
        prepareModel(model_, engine_);
        addLinksWithOddNames();
        for (const RoleTable& role : addRoles(model_, contents_))
            roles_.emplace(role.table, role);
        for (int i = 0; i < model_.GetLinkCount(); ++i)
            quoteLink(*model_.GetLink(i));
        for (int i = 0; i < model_.GetTableCount(); ++i)
            nameTable(*model_.GetTable(i));
        model_.RenumberFields([this](const TDSField& field) { return stableID(field); });
        addFilledOperators(model_, EffectiveDialect(dialectOf(engine_), ssSQL2, true));
        addGroups();
        finishFields();
        dropUnusedOperators(model_);
    }

private:
    // --- Links.

    void addLinksWithOddNames() {
        for (const ForeignKey& key : contents_.keys)
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

    // --- Tables.

    const RoleTable* roleOfTable(const TDSTable& table) const {
        const auto found = roles_.find(&table);
        return found == roles_.end() ? nullptr : &found->second;
    }

    // A name with a schema is quoted already where it needs that. The tables that others play a role of come
    // before them.
    void nameTable(TDSTable& table) {
        const std::string& name = table.GetName();
        const TableName parts = fromModelName(name);
        const bool isBare = parts.schema.empty() && parts.name == name;
        const bool quoted = isBare && needsQuotes(engine_, name);
        table.SetQuoted(quoted);
        if (const RoleTable* const role = roleOfTable(table)) {
            const TDSTable& played = *model_.TableByName(tnName, name);
            table.SetAlias(freeName(aliases_, played.GetAlias() + '_' + plainName(role->role), "_", ""));
            table.SetDisplayName(freeRoleCaption(played, *role));
        } else {
            table.SetAlias(freeAlias(parts, isBare && !quoted));
            table.SetDisplayName(freeCaption(parts, isView(table)));
        }
    }

    static std::string freeName(NameSet& taken, const std::string& name, std::string_view before,
                                std::string_view after) {
        std::string free = name;
        for (int n = 2; !taken.insert(free).second; ++n)
            free.assign(name).append(before).append(std::to_string(n)).append(after);
        return free;
    }

    std::string freeAlias(const TableName& table, bool nameWillDo) {
        std::string alias = nameWillDo ? table.name : plainName(table.name);
        if (needsQuotes(engine_, alias) || aliases_.count(alias) > 0)
            alias = plainName(table.schema.empty() ? "t_" + alias : table.schema + '_' + alias);
        return freeName(aliases_, alias, "_", "");
    }

    std::string freeCaption(const TableName& table, bool isView) {
        std::string caption = readableCaption(table.name) + (isView ? " (view)" : "");
        if (tableCaptions_.count(caption) > 0)
            caption += " (" + (table.schema.empty() ? table.name : readableCaption(table.schema)) + ')';
        return freeName(tableCaptions_, caption, " (", ")");
    }

    std::string freeRoleCaption(const TDSTable& played, const RoleTable& role) {
        std::string caption = played.GetDisplayName() + " (" + role.role;
        if (tableCaptions_.count(caption + ')') > 0)
            caption += " of " + lowerFirst(role.referring->GetDisplayName());
        return freeName(tableCaptions_, caption + ')', " (", ")");
    }

    // --- Fields.

    // Queries keep the IDs of fields, so an ID must not depend on what else is in the database: it is the
    // FNV-1a hash of the names, folded to 30 bits.
    int stableID(const TDSField& field) const {
        const TDSTable& table = *field.GetTable();
        const std::string name =
            roleOfTable(table) ? table.GetAlias() + '.' + field.GetFieldText() : field.GetFullName();
        std::uint32_t hash = 2166136261U;
        for (const char c : LowerAscii(name))
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
        return static_cast<int>((hash ^ hash >> 30) & 0x3fffffffU) + 1;
    }

    bool isView(const TDSTable& table) const {
        return contents_.table(table.GetName())->info.kind == TableKind::View;
    }

    // Tables, the roles that they play, views.
    void addGroups() {
        for (const int pass : {0, 1, 2})
            for (int i = 0; i < model_.GetTableCount(); ++i) {
                const TDSTable& table = *model_.GetTable(i);
                const int place = roleOfTable(table) ? 1 : isView(table) ? 2 : 0;
                if (place == pass)
                    groups_[&table] = model_.GetFieldGroups().Add(table.GetDisplayName());
            }
    }

    void finishFields() {
        for (const SourceTable& table : contents_.tables)
            for (const SourceColumn& column : table.columns)
                ++uses_[column.caption];
        for (int i = 0; i < model_.GetFieldCount(); ++i)
            finishField(*model_.GetField(i));
    }

    void finishField(TDSField& field) {
        const TDSTable& table = *field.GetTable();
        const SourceColumn& column = *contents_.table(table.GetName())->column(field.GetFieldText());
        field.SetDisplayName(captionOf(table, column));
        field.SetQuoted(needsQuotes(engine_, column.name));
        field.SetGroup(groups_[&table]);
        field.Storage = column.storage;
        chooseOperators(field, column.comparison, column.isReference);
        addEditor(field, column);
    }

    // A caption that fields of several tables would bear names its table too: "Name (Airports)",
    // "Name (Airports, arrival)".
    std::string captionOf(const TDSTable& table, const SourceColumn& column) const {
        if (!roleOfTable(table) && uses_.at(column.caption) == 1)
            return column.caption;
        std::string owner = table.GetDisplayName();
        if (const std::size_t open = owner.find(" ("); open != std::string::npos && owner.ends_with(')')) {
            owner.pop_back();
            owner.replace(open, 2, ", ");
        }
        return column.caption + " (" + owner + ')';
    }

    static void addEditor(TDSField& field, const SourceColumn& column) {
        if (!column.choices.empty()) {
            field.SetEditType(etList);
            auto& list = dynamic_cast<TDSListEditor&>(*field.GetValueEditor());
            for (const std::string& choice : column.choices) {
                list.Items.Add(choice);
                list.Values.Add(choice);
            }
        } else if (!column.listSQL.empty()) {
            field.SetEditType(etSQL);
            dynamic_cast<TDSSQLEditor&>(*field.GetValueEditor()).SQL.SetText(column.listSQL);
        }
    }

    TVCustomDBStructure& model_;
    const DatabaseContents& contents_;
    const Engine engine_;
    std::unordered_map<const TDSTable*, RoleTable> roles_;
    std::unordered_map<const TDSTable*, TDSFieldGroup*> groups_;
    std::unordered_map<std::string, int, TNoCaseHash, TNoCaseEqual> uses_; // of captions, in all tables
    NameSet aliases_;
    NameSet tableCaptions_;
};

} // namespace

void finishModel(TVCustomDBStructure& model, const DatabaseContents& contents) {
    ModelFinisher(model, contents).finish();
}

} // namespace lumora
