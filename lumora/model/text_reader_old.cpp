// The forms in which versions before 2.01 wrote operators, before 1.4 tables and before 2.0 fields.
#include "lumora/model/text_reader.h"

#include "lumora/platform/convert.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

struct TNamedLine {
    std::string_view Name;
    std::string_view Rest; // behind the "="; empty without one
};

TNamedLine SplitNamedLine(std::string_view line) {
    const std::size_t at = std::min(line.find('='), line.size());
    return {Trim(line.substr(0, at)), line.substr(std::min(at + 1, line.size()))};
}

} // namespace

// "[Operations]" lists the names with their captions; before version 1.2 with the caption, "," and the
// template.
void TModelReader::ReadOperatorsBefore201() {
    const TSectionLines list = sections_.Read("Operations");
    for (int i = 0; i < list.Count(); ++i) {
        const auto [name, rest] = SplitNamedLine(list[i]);
        if (name.empty())
            continue;
        TDSOperator& op = NewOperator(name);
        if (version_ < 1.2) {
            const std::size_t comma = std::min(rest.find(','), rest.size());
            op.DisplayName = rest.substr(0, comma);
            op.SetSQLName(std::string(rest.substr(std::min(comma + 1, rest.size()))));
            continue;
        }
        op.DisplayName = rest;
        const TSectionLines lines = sections_.Read("Operation:" + std::string(name));
        op.SetSQLName(std::string(lines.Value("SQLName")));
        op.ValFormat = lines.Value("ValFormat");
        op.AppliedTypes = ReadAppliedTypes(lines.Value("AppliedTypes"), version_);
    }
}

void TModelReader::ReadTablesBefore14() {
    const TSectionLines list = sections_.Read("Tables");
    for (int i = 0; i < list.Count(); ++i) {
        const auto [name, caption] = SplitNamedLine(list[i]);
        if (name.empty())
            continue;
        ReadTable(sections_.Read("Table:" + std::string(name)), name);
        TDSTable& table = *model_.tables_.back();
        if (table.GetDisplayName().empty())
            table.SetDisplayName(std::string(caption.empty() ? name : caption));
    }
}

void TModelReader::ReadFieldsBefore20() {
    const TSectionLines list = sections_.Read("Fields");
    int id = 0;
    for (int i = 0; i < list.Count(); ++i) {
        const std::string_view line = list[i];
        if (Trim(line).empty())
            continue;
        const auto [name, caption] =
            version_ <= 1.21 ? SplitNamedLine(line) : TNamedLine{Trim(line), std::string_view()};
        ReadFieldBefore20(name, caption, ++id);
    }
}

void TModelReader::ReadFieldBefore20(std::string_view name, std::string_view caption, int id) {
    const std::string section = "Field:" + std::string(name);
    const TSectionLines lines = sections_.Read(section);
    TDSField& field = *model_.AppendField(id, vfkData);
    field.text_ = version_ >= 1.21 && lines.Has("FieldName") ? lines.Value("FieldName") : name;
    field.displayName_ = lines.Has("DisplayName") ? lines.Value("DisplayName")
                         : caption.empty()        ? name
                                                  : caption;
    TDSTable* const table = version_ >= 1.4 ? model_.TableByName(tnAlias, lines.Value("TableAlias"))
                                            : model_.TableByName(tnName, lines.Value("TableName"));
    if (table)
        field.tables_.assign(1, table);
    field.quoted_ = XStrToBool(lines.Value("Quoted"));
    const auto integer = [&](std::string_view key, int none) {
        return lines.Has(key) ? StrToInt(lines.Value(key)) : none;
    };
    const int type = integer("FieldType", ftString);
    field.FieldType = type >= 0 && type < EnumCount<TFieldType> ? static_cast<TFieldType>(type) : ftUnknown;
    field.FieldSize = integer("FieldSize", 0);
    ReadFieldOperators(field, lines.Value("Operats"));
    field.SetEditType(lines.Has("EditType") ? ReadEditType(lines.Value("EditType")) : etAuto);
    if (auto* const list = dynamic_cast<TDSListEditor*>(field.GetValueEditor())) {
        list->Items.SetCommaText(lines.Value("Items"));
        list->Values.SetCommaText(lines.Value("Values"));
    }
    if (auto* const text = dynamic_cast<TDSTextEditor*>(field.GetValueEditor()); text && version_ >= 1.6) {
        text->DefValue = lines.Value("DefaultValue");
        text->EditMask = lines.Value("EditMask");
    }
    if (version_ >= 1.6)
        ReadSQLEditor(field, sections_.Read(section + ".SQL"));
}

} // namespace lumora
