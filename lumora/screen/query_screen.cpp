#include "lumora/screen/query_screen.h"

#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/row_words.h"

namespace lumora {

namespace {

TScreenHost& NoHost() {
    static TScreenHost host;
    return host;
}

TScreenView& NoView() {
    static TScreenView view;
    return view;
}

} // namespace

TQueryScreen::TQueryScreen(TVQuery& query) : query_(query), host_(&NoHost()), view_(&NoView()) {
    appearance_.SetOwnersNotice([this] { AppearanceChanged(); });
}

void TQueryScreen::SetHost(TScreenHost* host) {
    host_ = host ? host : &NoHost();
}

void TQueryScreen::SetView(TScreenView* view) {
    view_ = view ? view : &NoView();
}

// --- Activity.

void TQueryScreen::CheckHeaderTitle() const {
    if (ShowsHeader() && GetTitle("ttlFilter").find('@') == std::string::npos)
        throw EVQueryPanelError(qpeInvalidFltrTitle);
}

void TQueryScreen::SetActive(bool active) {
    if (active == active_)
        return;
    query_.CheckIfDBStructAssigned();
    if (active)
        CheckHeaderTitle();
    active_ = active;
    if (active) {
        UpdateMenus();
        view_->ShowHeader(ShowsHeader());
        SetCurrentRow(query_.GetRowByNum(query_.GetRootBracket()->GetRowCount() > 0 ? 1 : 0));
        view_->PlaceAllRows();
    } else {
        view_->ShowHeader(false);
        SetCurrentRow(nullptr);
    }
    host_->ActiveChanged();
    view_->Repaint();
}

// The words and their colours may be others now; what the query says is not.
void TQueryScreen::AppearanceChanged() {
    query_.SetRemovesEmptyBrackets(appearance_.GetOptions().Contains(aoNonEmptyBrackets));
    if (active_) {
        CheckHeaderTitle();
        view_->ShowHeader(ShowsHeader());
    }
    view_->PlaceAllRows();
    view_->Repaint();
}

void TQueryScreen::SetLayout(int& member, int value) {
    if (member == value)
        return;
    member = value;
    view_->PlaceAllRows();
}

// --- Words.

void TQueryScreen::SetTitles(const TStringList& lines) {
    titles_.Merge(lines);
    if (active_)
        UpdateMenus();
    view_->PlaceAllRows();
}

void TQueryScreen::UpdateMenus() {
    menus_.UpdateMenus();
    view_->UpdateMenus();
}

std::string TQueryScreen::GetQueryText() const {
    TStringList lines;
    if (query_.GetRootBracket())
        AppendQueryText(lines, *query_.GetRootBracket(), "");
    return lines.GetText();
}

// A bracket has a line of its own only where brackets say how their rows are joined.
void TQueryScreen::AppendQueryText(TStringList& lines, const TFilterRow& row,
                                   const std::string& indent) const {
    const bool isBracket = row.GetRowType() == frtBracket;
    if (!isBracket || appearance_.GetStyle() == psGroups)
        lines.Add(indent + RowText(*this, row));
    if (!isBracket)
        return;
    const auto& bracket = static_cast<const TFilterBracket&>(row);
    const std::string deeper = indent + "  ";
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        if (const TFilterRow& member = *bracket.GetRow(i); member.GetEnabled())
            AppendQueryText(lines, member, deeper);
}

void TQueryScreen::SetUserFormats(std::optional<TUserFormats> formats) {
    userFormats_ = std::move(formats);
    view_->PlaceAllRows();
}

} // namespace lumora
