// What the panel publishes, and what it stores in a form besides.
#include "lumora/model/structure.h"
#include "lumora/panel/panel_parts.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/form_text.h"
#include "lumora/platform/properties.h"
#include "lumora/titles/default_titles.h"

namespace lumora {

std::span<const TPropertyInfo> TVQueryPanel::PublishedProperties() const {
    using T = TVQueryPanel;
    static const std::vector<TPropertyInfo> properties = ExtendProperties(
        TComponent::PublishedProperties(),
        {ComponentProperty("DbStruct", &T::GetDbStruct, &T::SetDbStruct),
         Property("MainTableName", &T::GetMainTableName, &T::SetMainTableName, ""),
         ObjectProperty<T, TQueryResult>("QResult", &T::GetQResult),
         Property("QueryName", &T::GetQueryName, &T::SetQueryName, ""),
         StringsProperty("Description", &T::GetDescription, &T::SetDescription),
         StringsProperty("UserData", &T::GetUserData, &T::SetUserData),
         StringsProperty("Titles", &T::GetTitles, &T::SetTitles, DefaultTitles().GetText()),
         Property("SaveTitles", &T::GetSaveTitles, &T::SetSaveTitles, true),
         Property("SQLOptions", &T::GetSQLOptions, &T::SetSQLOptions, DefaultSQLOptions),
         Property("SQLSyntax", &T::GetSQLSyntax, &T::SetSQLSyntax, ssSQL2),
         Property("SaveSQLOptions", &T::GetSaveSQLOptions, &T::SetSaveSQLOptions, false),
         Property("Dialect", &T::GetDialect, &T::SetDialect, sdStandard),
         Property("Strict", &T::GetStrict, &T::SetStrict, false),
         ObjectProperty<T, TQPAppearance>("Appearance", &T::GetAppearance),
         ObjectProperty<T, TQPAppearance>("ViewOptions", &T::GetAppearance),
         Property("RowSpace", &T::GetRowSpace, &T::SetRowSpace, 3),
         Property("TabSpace", &T::GetTabSpace, &T::SetTabSpace, 20),
         Property("ElemSpace", &T::GetElemSpace, &T::SetElemSpace, 5),
         Property("HeaderLeft", &T::GetHeaderLeft, &T::SetHeaderLeft, 5),
         Property("HeaderTop", &T::GetHeaderTop, &T::SetHeaderTop, 5),
         Property("MaxPopupItemCount", &T::GetMaxPopupItemCount, &T::SetMaxPopupItemCount, 0),
         Property("HelpFileName", &T::GetHelpFileName, &T::SetHelpFileName, ""),
         Property("RFEHelpContext", &T::GetRFEHelpContext, &T::SetRFEHelpContext, 0),
         ComponentProperty("Images", &T::GetImages, &T::SetImages),
         ComponentProperty("QueryBase", &T::GetQueryBase, &T::SetQueryBase),
         EventProperty("OnActive"),
         EventProperty("OnChange"),
         EventProperty("OnParamListChange"),
         EventProperty("OnCustomEdit"),
         EventProperty("OnChangeValue"),
         EventProperty("OnSetValue"),
         EventProperty("OnCustomValue"),
         EventProperty("OnValueDblClick"),
         EventProperty("OnConditionChange"),
         EventProperty("OnBuildSQL"),
         EventProperty("OnGetGroupImageIndex"),
         EventProperty("OnGetItemImageIndex"),
         EventProperty("OnRFEHelpClick")});
    return properties;
}

void TVQueryPanel::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineProperty(
        "RFields",
        [this](const TFormValue& value) {
            // The model may not be known yet; Loaded takes them when it is.
            parts_->Query.SetPendingResultFields(value.ToStrings());
        },
        [this] {
            TStringList lines;
            GetQResult().GetResultFields().SaveToStrings(lines);
            return TFormValue::FromStrings(lines);
        },
        GetQResult().GetResultFields().Count() > 0);
    filer.DefineProperty(
        "Options", [this](const TFormValue& value) { ReadOldOptions(value); }, {}, false);
}

namespace {

// The options of old forms.
enum TQPOption : std::uint8_t {
    poFlatButtons,
    poRoundButtons,
    poNonEmptyBrackets,
    poPopupField,
    poPopupValue,
    poShowGroupName,
    poAllowKeyboard,
    poSortListData,
    poShowAddRow,
    poNewJoinsStyle,
    poOracleJoins,
    poAsciiRFields,
    poSelectDistinct,
    poQuoteAliases,
    poBracketJoins,
    poBracketConditions,
    poShowCheckBoxes
};

} // namespace

template <>
struct TEnumNames<TQPOption> {
    static constexpr std::string_view Names[] = {
        "poFlatButtons",       "poRoundButtons",  "poNonEmptyBrackets", "poPopupField",   "poPopupValue",
        "poShowGroupName",     "poAllowKeyboard", "poSortListData",     "poShowAddRow",   "poNewJoinsStyle",
        "poOracleJoins",       "poAsciiRFields",  "poSelectDistinct",   "poQuoteAliases", "poBracketJoins",
        "poBracketConditions", "poShowCheckBoxes"};
};

void TVQueryPanel::ReadOldOptions(const TFormValue& value) {
    if (value.Kind != fvSet)
        throw EReadError("The value of Options is not a set");
    TEnumSet<TQPOption> old;
    for (const TFormValue& item : value.Items) {
        const int ordinal = EnumOrdinal<TQPOption>(item.Text);
        if (ordinal < 0)
            throw EReadError("Unknown option " + item.Text);
        old.Include(static_cast<TQPOption>(ordinal));
    }
    static constexpr std::pair<TQPOption, TQPAppearanceOption> appearanceOptions[] = {
        {poFlatButtons, aoFlatButtons},
        {poRoundButtons, aoRoundButtons},
        {poNonEmptyBrackets, aoNonEmptyBrackets},
        {poPopupField, aoPopupField},
        {poPopupValue, aoPopupValue},
        {poShowGroupName, aoShowGroupName},
        {poAllowKeyboard, aoAllowKeyboard},
        {poSortListData, aoSortListData},
        {poShowAddRow, aoShowAddRow},
        {poShowCheckBoxes, aoShowCheckBoxes}};
    static constexpr std::pair<TQPOption, TSQLOption> sqlOptions[] = {
        {poAsciiRFields, soASCIIRFields},
        {poSelectDistinct, soSelectDistinct},
        {poQuoteAliases, soQuoteAliases},
        {poBracketJoins, soBracketJoins},
        {poBracketConditions, soBracketConditions}};
    TQPAppearanceOptions appearance = GetAppearance().GetOptions();
    for (const auto& [oldOption, option] : appearanceOptions)
        if (old.Contains(oldOption))
            appearance.Include(option);
    GetAppearance().SetOptions(appearance);
    TSQLOptions sql = GetSQLOptions();
    for (const auto& [oldOption, option] : sqlOptions)
        if (old.Contains(oldOption))
            sql.Include(option);
    SetSQLOptions(sql);
    SetSQLSyntax(old.Contains(poOracleJoins) ? ssOracle : old.Contains(poNewJoinsStyle) ? ssSQL2 : ssSQL1);
}

} // namespace lumora
