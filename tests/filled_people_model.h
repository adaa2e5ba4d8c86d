// What a filled model offers, added to one that has less: operators in people's words, links that keep rows
// without a key, aliases for second keys.
#pragma once

#include "lumora/lumora.h"

#include <algorithm>
#include <string>

namespace lumora::tests {

inline void AddPeopleOperators(TVDBStructure& model) {
    struct TOperator {
        const char* Name;
        const char* SQL;
        bool TextsOnly = false;
        TValueKind Kind = vkScalar;
    };
    static const TOperator operators[] = {
        {"NotEqual", "(@f <> '@1' or @f is null)"},
        {"Contains", "@f like '%@1%' escape '!'", true},
        {"StartsWith", "@f like '@1%' escape '!'", true},
        {"EndsWith", "@f like '%@1' escape '!'", true},
        {"NotContains", "(not (@f like '%@1%' escape '!') or @f is null)", true},
        {"NotBetween", "(@f not between '@1' and '@2' or @f is null)"},
        {"NotInList", "(@f not in (@1) or @f is null)", false, vkList},
        {"IsNotNull", "@f is not null"},
        {"OtherThan", "@f <> '@1'"},
        {"MatchesPattern", "@f like '@1'", true},
        {"InQuery", "@f in (@1)", false, vkSubQuery},
        {"NotInQuery", "(@f in (@1)) is not true", false, vkSubQuery},
    };
    for (const TOperator& op : operators) {
        model.AddUpdateOperator(true, op.Name, op.Name, op.SQL, "",
                                op.TextsOnly ? LmStringTypes : LmUsedTypes);
        TDSOperator* const added = model.OperatorByName(op.Name);
        added->ValueKind = op.Kind;
        for (int i = 0; i < model.GetFieldCount(); ++i)
            if (TDSField& field = *model.GetField(i); added->AppliedTypes.Contains(field.FieldType))
                field.AddOperator(added);
    }
    for (int i = 0; i < model.GetFieldCount(); ++i)
        model.GetField(i)->RemoveOperator(model.OperatorByName("NotStartsWith"));
}

// `optional`: "table.column" of the keys that may be null.
inline void MakeLinksOptional(TVDBStructure& model, std::initializer_list<std::string_view> optional) {
    for (int i = 0; i < model.GetLinkCount(); ++i) {
        TDSLink& link = *model.GetLink(i);
        const std::string key = link.Table1->GetName() + "." + std::string(link.Fields1[0]);
        if (std::find(optional.begin(), optional.end(), key) != optional.end())
            link.LinkType = ltOuterLeft;
    }
}

// An alias of `table` that `column` of `from` refers to.
inline void AddRole(TVDBStructure& model, const std::string& from, const std::string& column,
                    const std::string& table, const std::string& target) {
    TDSTable* const own = model.TableByName(tnAlias, from);
    const std::string alias = table + "_" + column;
    if (model.TableByName(tnAlias, alias))
        return;
    for (int i = model.GetLinkCount() - 1; i >= 0; --i)
        if (const TDSLink& link = *model.GetLink(i);
            link.Table1 == own && link.Table2->GetName() == table && link.Fields1[0] == column)
            model.DelLink(i);
    const TDSTable* const base = model.TableByName(tnAlias, table);
    TDSTable* const role = model.GetTable(model.AddTable(table, alias));
    role->SetAlias(alias);
    std::vector<TDSField*> fields;
    for (int i = 0; i < model.GetFieldCount(); ++i)
        if (model.GetField(i)->GetTable() == base)
            fields.push_back(model.GetField(i));
    for (const TDSField* const field : fields) {
        TDSField& copy = *model.GetField(
            model.AddField(vfkData, field->GetFieldText(), alias + " " + field->GetDisplayName(), role));
        copy.SetQuoted(field->GetQuoted());
        for (TDSOperator* const op : field->GetOperators())
            copy.AddOperator(op);
    }
    auto link = std::make_unique<TDSLink>(*own, *role);
    link->Fields1.Add(column);
    link->Fields2.Add(target);
    link->LinkType = ltOuterLeft;
    model.AddLinkByRef(std::move(link));
}

} // namespace lumora::tests
