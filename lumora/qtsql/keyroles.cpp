#include "lumora/qtsql/keyroles.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/filledcaptions.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

namespace lumora {

namespace {

bool sameNames(const TStringList& one, const std::vector<std::string>& other) {
    if (one.Count() != static_cast<int>(other.size()))
        return false;
    for (int i = 0; i < one.Count(); ++i)
        if (!SameText(one[i], other[static_cast<std::size_t>(i)]))
            return false;
    return true;
}

std::unique_ptr<TDSLink> copyOf(const TDSLink& link, TDSTable& target) {
    auto copy = std::make_unique<TDSLink>(*link.Table1, target);
    copy->Fields1 = link.Fields1;
    copy->Fields2 = link.Fields2;
    copy->Operators = link.Operators;
    copy->LinkType = link.LinkType;
    copy->QuoteFields = link.QuoteFields;
    return copy;
}

class RoleMaker {
public:
    RoleMaker(TVCustomDBStructure& model, const DatabaseContents& contents)
        : model_(model), contents_(contents) {}

    std::vector<RoleTable> make() {
        for (int i = 0; i < model_.GetLinkCount(); ++i)
            keys_.push_back(keyOf(*model_.GetLink(i)));
        choosePlainLinks();
        const int count = model_.GetLinkCount();
        for (int i = 0; i < count; ++i)
            addAgain(i);
        for (int i = count - 1; i >= 0; --i)
            model_.DelLink(i);
        keepChains();
        return std::move(roles_);
    }

private:
    using Pair = std::pair<const TDSTable*, const TDSTable*>;

    static Pair pairOf(const TDSLink& link) {
        const bool inOrder = std::less<>()(link.Table1, link.Table2);
        return inOrder ? Pair(link.Table1, link.Table2) : Pair(link.Table2, link.Table1);
    }

    // Null for a link that is the host's own.
    const ForeignKey* keyOf(const TDSLink& link) const {
        for (const ForeignKey& key : contents_.keys)
            if (SameText(key.table, link.Table1->GetName()) &&
                SameText(key.referencedTable, link.Table2->GetName()) &&
                sameNames(link.Fields1, key.columns) && sameNames(link.Fields2, key.referencedColumns))
                return &key;
        return nullptr;
    }

    // Of several keys between two tables the one that is called like the table that it refers to, or the
    // first.
    void choosePlainLinks() {
        for (int i = 0; i < model_.GetLinkCount(); ++i) {
            const TDSLink& link = *model_.GetLink(i);
            if (link.Table1 == link.Table2)
                continue;
            const auto [known, isNew] = plain_.try_emplace(pairOf(link), i);
            const ForeignKey* const chosen = keys_[static_cast<std::size_t>(known->second)];
            const ForeignKey* const key = keys_[static_cast<std::size_t>(i)];
            if (!isNew && chosen && !roleOf(*chosen).empty() && key && roleOf(*key).empty())
                known->second = i;
        }
    }

    void addAgain(int index) {
        const TDSLink& link = *model_.GetLink(index);
        const ForeignKey* const key = keys_[static_cast<std::size_t>(index)];
        const bool isSelf = link.Table1 == link.Table2;
        const bool isPlain =
            !key || (!isSelf && keys_[static_cast<std::size_t>(plain_[pairOf(link)])] == key);
        std::unique_ptr<TDSLink> copy = copyOf(link, isPlain ? *link.Table2 : addTable(link, *key));
        if (key)
            made_.push_back(copy.get());
        if (key && mayBeMissing(*key))
            copy->LinkType = ltOuterLeft;
        model_.AddLinkByRef(std::move(copy));
    }

    // An inner link behind a Left one would lose what that one keeps: a track without album has no artist.
    void keepChains() {
        std::vector<TDSTable*> missing;
        for (const TDSLink* const link : made_)
            if (link->LinkType == ltOuterLeft)
                missing.push_back(link->Table2);
        while (!missing.empty()) {
            const TDSTable* const table = missing.back();
            missing.pop_back();
            for (TDSLink* const link : made_)
                if (link->Table1 == table && link->LinkType == ltInner) {
                    link->LinkType = ltOuterLeft;
                    missing.push_back(link->Table2);
                }
        }
    }

    bool mayBeMissing(const ForeignKey& key) const {
        const SourceTable* const table = contents_.table(key.table);
        return std::any_of(key.columns.begin(), key.columns.end(), [table](const std::string& name) {
            const SourceColumn* const column = table->column(name);
            return !column || column->nullable;
        });
    }

    TDSTable& addTable(const TDSLink& link, const ForeignKey& key) {
        std::string role = roleOf(key);
        if (role.empty())
            role = LowerAscii(key.columns[0]);
        const std::string name = link.Table2->GetName();
        TDSTable& table = *model_.GetTable(model_.AddTable(name, name));
        for (const SourceColumn& column : contents_.table(name)->columns)
            if (model_.GetAutoAddFields())
                model_.AddField(vfkData, column.name, column.caption, &table);
        roles_.push_back({&table, link.Table1, std::move(role)});
        return table;
    }

    TVCustomDBStructure& model_;
    const DatabaseContents& contents_;
    std::vector<const ForeignKey*> keys_; // of the model's links
    std::vector<TDSLink*> made_;          // from keys
    std::map<Pair, int> plain_;           // the link that stays, of those between two tables
    std::vector<RoleTable> roles_;
};

} // namespace

std::vector<RoleTable> addRoles(TVCustomDBStructure& model, const DatabaseContents& contents) {
    return RoleMaker(model, contents).make();
}

} // namespace lumora
