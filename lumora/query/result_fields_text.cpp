// The text form of result fields: "[RFields]", then one block for each field.
#include "lumora/query/result_fields.h"

#include "lumora/model/structure.h"
#include "lumora/support/section_reader.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

void Put(TStringList& lines, std::string_view key, std::string_view value) {
    lines.Tail().append(key).append("=").append(value);
    lines.EndLineWithoutBreaks();
}

} // namespace

void TRFieldList::SaveToStrings(TStringList& lines) const {
    lines.Add("[RFields]");
    lines.AddPair("Count", std::to_string(Count()));
    lines.Add("Version=3.5");
    lines.AddPair("JustSorting", JustSorting ? "1" : "0");
    std::string ids;
    for (int i = 0; i < Count(); ++i) {
        const TResultField& field = *GetRField(i);
        lines.Add("[RField" + std::to_string(i + 1) + "]");
        Put(lines, "Formula", field.GetFormula());
        ids.clear();
        for (const TDSField* const entry : field.GetFields())
            ids.append(ids.empty() ? "" : ",").append(std::to_string(entry->GetID()));
        Put(lines, "Fields", ids);
        Put(lines, "Alias", field.GetAlias());
        Put(lines, "Caption", field.GetCaption());
        lines.AddPair("Sorting", std::to_string(field.GetSorting()));
        lines.AddPair("SortOrder", std::to_string(field.GetSortOrder()));
        if (field.GetHidden())
            lines.Add("Hidden=1");
        if (field.GetGrouping() != cgAsNeeded)
            lines.AddPair("Grouping", std::to_string(field.GetGrouping()));
    }
}

void TRFieldList::LoadFromStrings(const TStringList& lines) {
    LoadFromSections(TSectionIndex(lines));
}

void TRFieldList::LoadFromSections(const TSectionIndex& sections) {
    int position = 0;
    const TSectionLines head = sections.Read("RFields", position);
    Forget();
    const int count = std::min(XStrToInt(head.Value("Count")), sections.Count());
    for (int i = 1; i <= count; ++i)
        if (const TSectionLines field = sections.Read("RField" + std::to_string(i), position); !field.Empty())
            LoadField(field);
    JustSorting = head.Has("JustSorting") ? XStrToBool(head.Value("JustSorting")) : Count() == 0;
}

// The field is kept as it was written: no alias is made anew, nothing is made unique.
void TRFieldList::LoadField(const TSectionLines& lines) {
    TResultField& field = *New(Count());
    field.formula_.SetText(std::string(lines.Value("Formula")));
    field.caption_ = lines.Value("Caption");
    field.alias_ = lines.Value("Alias");
    field.sorting_ =
        static_cast<TSortingType>(std::clamp(XStrToInt(lines.Value("Sorting")), 0, int{stDescending}));
    field.sortOrder_ = XStrToInt(lines.Value("SortOrder"));
    field.hidden_ = XStrToBool(lines.Value("Hidden"));
    field.grouping_ =
        static_cast<TColumnGrouping>(std::clamp(XStrToInt(lines.Value("Grouping")), 0, int{cgAny}));
    if (!structure_)
        return;
    const auto known = [this](TDSField* entry) { return entry ? entry : structure_->GetUnrecognizedField(); };
    if (lines.Has("Fields")) {
        for (const std::string_view id : SplitText(lines.Value("Fields"), ','))
            field.fields_.push_back(known(structure_->FieldByID(XStrToInt(id, -1))));
    } else if (const std::string_view name = lines.Value("Name"); !name.empty()) {
        // Older texts name one data model field, by caption, full name or column name.
        TDSField* entry = nullptr;
        for (const TFieldNameMode mode : {fnDisplayName, fnFullName, fnText})
            entry = entry ? entry : structure_->FieldByName(mode, name);
        field.fields_.push_back(known(entry));
        if (field.GetFormula().empty())
            field.formula_.SetText("@1");
    }
}

} // namespace lumora
