#include "lumora/screen/value_lists.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/value_text.h"
#include "lumora/screen/query_screen.h"
#include "lumora/support/messages.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

bool NeedsQuotes(std::string_view item) {
    return item.empty() || item[0] == '"' || item.find(',') != std::string_view::npos ||
           IsBlank(item.front()) || IsBlank(item.back());
}

bool IsTrue(std::string_view text) {
    return SameText(text, "true") || text == "1";
}

// The items that a value text holds.
std::vector<std::string> ItemsOf(const TFilterCond& condition, int value, std::string_view text) {
    if (condition.GetValueKind(value) == vkList)
        return SplitListValue(text);
    return text.empty() ? std::vector<std::string>() : std::vector<std::string>{std::string(text)};
}

std::string_view CaptionAt(const TDSListEditor& list, int index) {
    return index < list.Items.Count() && !list.Items[index].empty() ? list.Items[index] : list.Values[index];
}

// Values are told apart by letter case.
int IndexOfValue(const TDSListEditor& list, std::string_view value) {
    for (int i = 0; i < list.Values.Count(); ++i)
        if (list.Values[i] == value)
            return i;
    return -1;
}

TDSSQLEditor* AsQuery(TDSListEditor& list) {
    return dynamic_cast<TDSSQLEditor*>(&list);
}

// The parameters that the query names.
TStringList ParamsOf(TQueryScreen& screen, const TDSSQLEditor& query) {
    const TStringList& all = screen.GetQuery().GetSQLParams();
    TStringList params;
    for (int i = 0; i < all.Count(); ++i)
        if (query.HasParameter(all.Name(i)))
            params.Add(all[i]);
    return params;
}

} // namespace

std::string JoinListValue(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        if (&item != &items.front())
            text += ',';
        text += NeedsQuotes(item) ? QuoteText(item, '"', '"') : item;
    }
    return text;
}

TDSListEditor* ValueListOf(const TFilterCond& condition) {
    if (condition.GetRowType() != frtSimpleCondition)
        return nullptr;
    const auto& simple = static_cast<const TSimpleCond&>(condition);
    const TDSField* const field = simple.GetField();
    const TDSOperator* const op = simple.GetOperator();
    if (!field || !op || (op->ExprType != ftUnknown && op->ExprType != field->FieldType))
        return nullptr;
    return dynamic_cast<TDSListEditor*>(field->GetValueEditor());
}

bool NeedsQuery(TQueryScreen& screen, const TDSListEditor& list) {
    const auto* const query = dynamic_cast<const TDSSQLEditor*>(&list);
    return query && (!query->GetOpened() || !(query->GetParams() == ParamsOf(screen, *query)));
}

// A provider may end the reading without a word; what it has read so far is no list to choose from.
void OpenList(TQueryScreen& screen, TDSListEditor& list) {
    TDSSQLEditor* const query = AsQuery(list);
    if (!query)
        return;
    query->SetSQLParams(ParamsOf(screen, *query));
    if (query->GetOpened())
        return;
    query->SetOpened(true);
    if (const std::string error = screen.GetQuery().GetDbStruct()->CheckDatabaseInfo().GetLastError();
        !error.empty()) {
        query->SetOpened(false);
        throw EVDBInfoError(error);
    }
}

std::vector<TDropDownItem> ListItems(const TQueryScreen& screen, const TFilterCond& condition, int value,
                                     const TDSListEditor& list) {
    std::vector<TDropDownItem> items;
    std::vector<std::string> held = ItemsOf(condition, value, condition.GetValue(value));
    for (int i = 0; i < list.Values.Count(); ++i) {
        TDropDownItem item;
        item.Caption = CaptionAt(list, i);
        item.Value = list.Values[i];
        const auto found = std::find(held.begin(), held.end(), item.Value);
        item.Checked = found != held.end();
        if (item.Checked)
            held.erase(found);
        items.push_back(std::move(item));
    }
    if (screen.GetAppearance().GetOptions().Contains(aoSortListData))
        std::stable_sort(items.begin(), items.end(), [](const TDropDownItem& a, const TDropDownItem& b) {
            return std::lexicographical_compare(a.Caption.begin(), a.Caption.end(), b.Caption.begin(),
                                                b.Caption.end(), [](char c, char d) {
                                                    return static_cast<unsigned char>(LowerAscii(c)) <
                                                           static_cast<unsigned char>(LowerAscii(d));
                                                });
        });
    if (condition.GetValueKind(value) == vkList)
        for (std::string& unknown : held) {
            TDropDownItem item;
            item.Caption = unknown;
            item.Value = std::move(unknown);
            item.Checked = true;
            items.push_back(std::move(item));
        }
    return items;
}

std::vector<TDropDownItem> BooleanItems(const TFilterCond& condition, int value) {
    std::vector<TDropDownItem> items(2);
    items[0].Caption = Message(msgYes);
    items[0].Value = "True";
    items[1].Caption = Message(msgNo);
    items[1].Value = "False";
    for (const std::string& held : ItemsOf(condition, value, condition.GetValue(value)))
        if (!held.empty())
            items[IsTrue(held) ? 0 : 1].Checked = true;
    return items;
}

std::string CaptionOfValue(const TFilterCond& condition, int value, std::string_view text) {
    const TDSListEditor* const list = ValueListOf(condition);
    const bool isBoolean = condition.GetValueType(value) == ftBoolean;
    if (!list && !isBoolean)
        return {};
    std::string caption;
    for (const std::string& item : ItemsOf(condition, value, text)) {
        const int index = list ? IndexOfValue(*list, item) : -1;
        caption.append(caption.empty() ? "" : ", ");
        if (index >= 0)
            caption.append(CaptionAt(*list, index));
        else if (list || item.empty())
            caption.append(item);
        else
            caption.append(Message(IsTrue(item) ? msgYes : msgNo));
    }
    return caption == text ? std::string() : caption;
}

bool IsInList(const TFilterCond& condition, int value, std::string_view text) {
    TDSListEditor* const list = ValueListOf(condition);
    if (!list || (AsQuery(*list) && !AsQuery(*list)->GetOpened()))
        return true;
    for (const std::string& item : ItemsOf(condition, value, text))
        if (IndexOfValue(*list, item) < 0)
            return false;
    return true;
}

} // namespace lumora
