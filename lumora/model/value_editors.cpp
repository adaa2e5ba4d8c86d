#include "lumora/model/value_editors.h"

#include "lumora/model/structure.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

void TDSTextEditor::SetOptions(int options) {
    options_ = (options & 2) != 0 ? options & ~1 : options;
}

void TDSTextEditor::SetOption(int mask, bool on) {
    if (!on)
        options_ &= ~mask;
    else if ((mask & 3) == 1)
        options_ = (options_ & ~2) | mask;
    else
        SetOptions(options_ | mask);
}

void TDSListEditor::ClearList() {
    Items.Clear();
    Values.Clear();
}

void TDSSQLEditor::Refresh() {
    SetOpened(false);
    SetOpened(true);
}

std::string TDSSQLEditor::GetSQLText() const {
    return ApplyParams(SQL.GetText());
}

std::string TDSSQLEditor::ApplyParams(std::string_view text) const {
    std::string result(text);
    for (int i = 0; i < params_.Count(); ++i)
        if (const std::string_view name = params_.Name(i); !name.empty())
            result = ReplaceText(result, ':' + std::string(name), params_.ValueAt(i));
    return result;
}

bool TDSSQLEditor::HasParameter(std::string_view name) const {
    return SQL.GetText().find(':' + std::string(name)) != std::string::npos;
}

void TDSSQLEditor::SetSQLParams(const TStringList& params) {
    if (params == params_)
        return;
    params_ = params;
    SetOpened(false);
}

void TDSSQLEditor::SetOpened(bool opened) {
    if (opened == opened_)
        return;
    if (opened)
        structure_.CheckDatabaseInfo().GetSQLValues(GetSQLText(), Values, Items);
    else
        ClearList();
    opened_ = opened;
}

std::unique_ptr<TDSValueEditor> MakeValueEditor(TDSEditType type, TVCustomDBStructure& structure) {
    switch (type) {
    case etEdit:
        return std::make_unique<TDSTextEditor>();
    case etList:
        return std::make_unique<TDSListEditor>();
    case etCustom:
        return std::make_unique<TDSCustomEditor>();
    case etSQL:
        return std::make_unique<TDSSQLEditor>(structure);
    case etAuto:
        break;
    }
    return nullptr;
}

} // namespace lumora
