#include "lumora/model/text_reader.h"

#include "lumora/platform/convert.h"
#include "lumora/support/needs.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <iterator>

namespace lumora {

namespace {

struct TKeyValue {
    std::string_view Key;
    std::string_view Value;
};

TKeyValue SplitLine(std::string_view line) {
    const std::size_t at = line.find('=');
    return at == std::string_view::npos ? TKeyValue{} : TKeyValue{line.substr(0, at), line.substr(at + 1)};
}

// Which of the keys a line bears; the search begins behind the key of the line before, where the next mostly
// is.
class TKeyFinder {
public:
    explicit TKeyFinder(std::span<const std::string_view> keys) : keys_(keys) {}

    // -1 for a key that is unknown or was there before: of several lines with one key the first counts.
    int Find(std::string_view key) {
        for (std::size_t i = 0; i < keys_.size(); ++i) {
            const std::size_t candidate = (next_ + i) % keys_.size();
            if (keys_[candidate] != key)
                continue;
            next_ = candidate + 1;
            const std::uint64_t bit = std::uint64_t{1} << candidate;
            const bool first = (seen_ & bit) == 0;
            seen_ |= bit;
            return first ? static_cast<int>(candidate) : -1;
        }
        return -1;
    }

private:
    std::span<const std::string_view> keys_;
    std::size_t next_ = 0;
    std::uint64_t seen_ = 0;
};

enum TTableKey { tkName, tkDisplayName, tkAlias, tkQuoted, tkHints, tkDsgnPos, tkLinks };
constexpr std::string_view TableKeys[] = {"Name",  "DisplayName", "Alias", "Quoted",
                                          "Hints", "DsgnPos",     "Links"};

enum TFieldKey {
    fkID,
    fkKind,
    fkFieldExpr,
    fkDisplayName,
    fkTableAlias,
    fkEditType,
    fkFieldType,
    fkFieldSize,
    fkQuoted,
    fkUIC,
    fkUIR,
    fkStorage,
    fkOperators,
    fkDefValue,
    fkEditKind,
    fkEditMask,
    fkFmtVal,
    fkOptions,
    fkItems,
    fkValues,
    fkCustomData,
    fkCondField, // the old name of UIR
    fkOperats    // the old name of Operators
};
constexpr std::string_view FieldKeys[] = {
    "ID",     "Kind",    "FieldExpr", "DisplayName", "TableAlias", "EditType",  "FieldType", "FieldSize",
    "Quoted", "UIC",     "UIR",       "Storage",     "Operators",  "DefValue",  "EditKind",  "EditMask",
    "FmtVal", "Options", "Items",     "Values",      "CustomData", "CondField", "Operats"};

TFieldType FieldTypeOf(int ordinal, TFieldType none) {
    return ordinal >= 0 && ordinal < EnumCount<TFieldType> ? static_cast<TFieldType>(ordinal) : none;
}

} // namespace

TModelReader::TModelReader(TVCustomDBStructure& model, const TStringList& lines)
    : model_(model), sections_(lines), main_(sections_.Read("Main")) {}

void TModelReader::Read() {
    ReadMain();
    ReadOperators();
    ReadTables();
    ReadLinks();
    if (const std::string_view name = main_.Value("DefaultMainTable"); !name.empty())
        model_.SetDefaultMainTable(model_.TableByName(tnName, name));
    ReadFields();
    ReadGroups();
    ReadConditions();
    sections_.Read("DBSpecInfo").CopyTo(model_.dbSpecInfo_);
    model_.version_ = version_;
}

void TModelReader::ReadMain() {
    CheckNeeds(main_.Value("Needs"), {NeedStorage});
    version_ = XStrToFloat(main_.Value("Version"), 1.1);
    model_.RootFieldsFirst = version_ >= 2.62 && XStrToBool(main_.Value("RootFieldsFirst"));
}

int TModelReader::Bounded(std::string_view count) const {
    return std::min(XStrToInt(main_.Value(count)), sections_.Count());
}

// --- Operators.

TDSOperator& TModelReader::NewOperator(std::string_view name) {
    model_.operators_.push_back(std::make_unique<TDSOperator>(&model_));
    TDSOperator& op = *model_.operators_.back();
    op.SetName(std::string(name == "EqualTo" ? "Equal" : name));
    return op;
}

void TModelReader::ReadOperators() {
    if (version_ < 2.01)
        return ReadOperatorsBefore201();
    const int count = Bounded("OperatCount");
    for (int i = 1; i <= count; ++i)
        if (const TSectionLines lines = sections_.Read("Operator:" + std::to_string(i), position_);
            !lines.Empty())
            ReadOperator(lines);
}

void TModelReader::ReadOperator(const TSectionLines& lines) {
    TDSOperator& op = NewOperator(lines.Value("Name"));
    op.DisplayName = lines.Value("DisplayName");
    op.SetSQLName(std::string(lines.Value("SQLName")));
    op.ValFormat = lines.Value("ValFormat");
    const std::string_view type = lines.Value("ExprType");
    op.ExprType = SameText(type, "SameAsField") ? ftUnknown : FieldTypeOf(StrToFldType(type), ftUnknown);
    op.AppliedTypes = ReadAppliedTypes(lines.Value("AppliedTypes"), version_);
    int kind = vkScalar;
    if (version_ < 2.9)
        kind = lines.Has("ValueIsList") ? StrToInt(lines.Value("ValueIsList")) : vkScalar;
    else if (version_ < 3.5) // "vkList" gives a scalar here too: files of that time mean it so
        kind = SameText(lines.Value("ValueType"), "vtSubQuery") ? vkSubQuery : vkScalar;
    else
        kind = StrToValueKind(lines.Value("ValueKind"));
    op.ValueKind = kind >= 0 && kind < EnumCount<TValueKind> ? static_cast<TValueKind>(kind) : vkScalar;
}

// --- Tables and links.

void TModelReader::ReadTables() {
    if (version_ < 1.4)
        return ReadTablesBefore14();
    const int count = Bounded("TableCount");
    for (int i = 1; i <= count; ++i)
        if (const TSectionLines lines = sections_.Read("Table:" + std::to_string(i), position_);
            !lines.Empty())
            ReadTable(lines, "");
}

void TModelReader::ReadTable(const TSectionLines& lines, std::string_view name) {
    model_.tables_.push_back(std::make_unique<TDSTable>(model_, std::string(name), ""));
    TDSTable& table = *model_.tables_.back();
    linksOfTable_.emplace_back();
    bool hasAlias = false;
    TKeyFinder keys(TableKeys);
    for (int i = 0; i < lines.Count(); ++i) {
        const auto [key, value] = SplitLine(lines[i]);
        switch (keys.Find(key)) {
        case tkName:
            table.SetName(std::string(value));
            if (!hasAlias)
                table.SetAlias(std::string(value));
            break;
        case tkDisplayName:
            table.SetDisplayName(std::string(value));
            break;
        case tkAlias:
            table.SetAlias(std::string(value));
            hasAlias = true;
            break;
        case tkQuoted:
            table.SetQuoted(XStrToBool(value));
            break;
        case tkHints:
            table.SetHints(std::string(value));
            break;
        case tkDsgnPos:
            table.SetDesignPositions(value);
            break;
        case tkLinks:
            linksOfTable_.back() = value;
            break;
        default:
            break;
        }
    }
}

void TModelReader::ReadLinks() {
    TStringList partners;
    for (std::size_t i = 0; i < linksOfTable_.size(); ++i) {
        partners.SetCommaText(linksOfTable_[i]);
        for (const std::string_view partner : partners)
            ReadLink(*model_.tables_[i], partner);
    }
}

// Links between the same tables share a section name; the n-th link reads the n-th such section.
void TModelReader::ReadLink(TDSTable& table, std::string_view partner) {
    const TTableNameMode mode = version_ < 1.4 ? tnName : tnAlias;
    std::string section =
        "Link:" + (mode == tnName ? table.GetName() : table.GetAlias()) + "-" + std::string(partner);
    const TSectionLines lines = sections_.Read(section, linkSectionsRead_[LowerAscii(section)]);
    if (lines.Empty())
        throw EVDBStructError(dseCantFindSection, {section});
    TDSTable* const other = model_.TableByName(mode, partner);
    if (!other)
        throw EVDBStructError(dseNoTable, {partner});
    auto link = std::make_unique<TDSLink>(table, *other);
    link->Fields1.SetCommaText(lines.Value("FldName1"));
    link->Fields2.SetCommaText(lines.Value("FldName2"));
    link->Operators.SetCommaText(lines.Value("Operators"));
    link->QuoteFields = XStrToBool(lines.Value("QuoteFields"));
    const std::string_view type = lines.Value("LinkType");
    link->LinkType = SameText(type, "left")    ? ltOuterLeft
                     : SameText(type, "right") ? ltOuterRight
                     : SameText(type, "full")  ? ltOuterFull
                                               : ltInner;
    model_.AddLinkByRef(std::move(link));
}

TDSTable* TModelReader::TableByAlias(std::string_view alias) {
    if (alias != lastAlias_ || !lastTable_) {
        lastAlias_ = alias;
        lastTable_ = model_.TableByName(tnAlias, alias);
    }
    return lastTable_;
}

// --- Fields.

void TModelReader::ReadFields() {
    if (version_ < 2.0)
        return ReadFieldsBefore20();
    const int count = Bounded("FieldCount");
    for (int i = 1; i <= count; ++i) {
        const std::string section = "Field:" + std::to_string(i);
        const TSectionLines lines = sections_.Read(section, position_);
        if (lines.Empty())
            continue;
        ReadField(lines);
        TDSField& field = *model_.fields_.back();
        if (field.GetEditType() == etSQL)
            ReadSQLEditor(field, sections_.Read(section + ".SQL", position_));
    }
}

void TModelReader::ReadField(const TSectionLines& lines) {
    // What the meaning of other keys hangs on comes first, wherever it stands.
    const TVFieldKind kind = StrToFldKind(lines.Value("Kind")) == vfkVirtual ? vfkVirtual : vfkData;
    const int id = XStrToInt(lines.Value("ID"));
    // An ID names one field; what a text refers to by it is the first.
    TDSField& field = *model_.AppendField(model_.FieldByID(id) ? model_.NewFieldID() : id, kind);
    if (lines.Has("EditType"))
        field.SetEditType(ReadEditType(lines.Value("EditType")));
    TKeyFinder keys(FieldKeys);
    for (int i = 0; i < lines.Count(); ++i) {
        const auto [key, value] = SplitLine(lines[i]);
        if (const int found = keys.Find(key); found >= 0)
            ReadFieldLine(field, found, value);
    }
}

// Before version 3.0 there was no automatic editor, and the types were counted from 0.
TDSEditType TModelReader::ReadEditType(std::string_view value) const {
    const int ordinal = StrToInt(value);
    const int type = version_ < 3.0 ? ordinal + (ordinal < EnumCount<TDSEditType> ? 1 : 0) : ordinal;
    return type >= 0 && type < EnumCount<TDSEditType> ? static_cast<TDSEditType>(type) : etAuto;
}

// Compared as another kind, its days would be missed without a word.
TDateStorage TModelReader::ReadStorage(std::string_view name) {
    const int storage = EnumOrdinal<TDateStorage>(name);
    if (storage < 0)
        CheckNeeds("Storage " + std::string(name), {});
    return static_cast<TDateStorage>(std::max(storage, 0));
}

void TModelReader::ReadFieldLine(TDSField& field, int key, std::string_view value) {
    switch (key) {
    case fkFieldExpr:
        field.text_ = value;
        if (field.GetKind() == vfkVirtual)
            model_.ExcludeTablesBySQLExpr(value, field.tables_, &field.references_);
        break;
    case fkDisplayName:
        field.displayName_ = value;
        break;
    case fkTableAlias:
        if (TDSTable* const table = field.GetKind() == vfkData ? TableByAlias(value) : nullptr)
            field.tables_.assign(1, table);
        break;
    case fkFieldType:
        field.FieldType = FieldTypeOf(StrToInt(value), ftUnknown);
        break;
    case fkFieldSize:
        field.FieldSize = StrToInt(value);
        break;
    case fkQuoted:
        field.quoted_ = XStrToBool(value);
        break;
    case fkUIC:
        field.UIC = static_cast<std::uint8_t>(std::clamp(XStrToInt(value), 0, 255));
        break;
    case fkUIR:
    case fkCondField:
        field.UIR = version_ < 3.2 || XStrToBool(value);
        break;
    case fkStorage:
        field.Storage = ReadStorage(value);
        break;
    case fkOperators:
    case fkOperats:
        ReadFieldOperators(field, value);
        break;
    default:
        ReadEditorLine(field, key, value);
    }
}

// Most fields of a type have the same operators, so each list of names is looked up once.
void TModelReader::ReadFieldOperators(TDSField& field, std::string_view names) {
    const auto known = operatorLists_.find(names);
    if (known != operatorLists_.end()) {
        field.operators_ = known->second;
        return;
    }
    for (const std::string_view name : SplitText(names, ','))
        if (!Trim(name).empty())
            field.AddOperatorByName(Trim(name));
    operatorLists_[names] = field.operators_;
}

void TModelReader::ReadEditorLine(TDSField& field, int key, std::string_view value) {
    if (auto* const text = dynamic_cast<TDSTextEditor*>(field.GetValueEditor())) {
        if (key == fkDefValue)
            text->DefValue = value;
        else if (key == fkEditKind)
            text->EditKind = static_cast<TTextEditorKind>(std::clamp(XStrToInt(value), 0, int{tekTime}));
        else if (key == fkEditMask)
            text->EditMask = value;
        else if (key == fkFmtVal)
            text->FmtVal = XStrToBool(value);
        else if (key == fkOptions)
            text->SetOptions(XStrToInt(value));
    } else if (auto* const list = dynamic_cast<TDSListEditor*>(field.GetValueEditor())) {
        if (key == fkItems)
            list->Items.SetCommaText(value);
        else if (key == fkValues)
            list->Values.SetCommaText(value);
    } else if (auto* const custom = dynamic_cast<TDSCustomEditor*>(field.GetValueEditor())) {
        if (key == fkCustomData)
            custom->CustomData.SetCommaText(value);
    }
}

void TModelReader::ReadSQLEditor(TDSField& field, const TSectionLines& lines) {
    if (auto* const editor = dynamic_cast<TDSSQLEditor*>(field.GetValueEditor()); editor && !lines.Empty())
        lines.CopyTo(editor->SQL);
}

// --- Groups.

void TModelReader::ReadGroups() {
    const int count = Bounded("FieldGroups");
    for (int i = 1; i <= count; ++i) {
        const TSectionLines lines = sections_.Read("FieldGroup" + std::to_string(i), position_);
        if (lines.Empty())
            continue;
        TDSFieldGroup* const group = model_.fieldGroups_.Add(std::string(lines.Value("GroupName")));
        ReadGroupFields(lines.Value("Fields"), group);
    }
    if (version_ >= 2.61)
        ReadGroupFields(sections_.Read("RootGroup").Value("Fields"), nullptr);
    for (const auto& field : model_.fields_) // fields that the text puts nowhere
        if (placed_.count(field.get()) == 0)
            Place(field.get(), nullptr);
}

void TModelReader::ReadGroupFields(std::string_view items, TDSFieldGroup* group) {
    TStringList list;
    list.SetCommaText(items);
    for (const std::string_view item : list) {
        TDSField* field = nullptr;
        if (version_ >= 2.92)
            field = model_.FieldByID(XStrToInt(item, -1));
        else
            for (const TFieldNameMode mode : {fnText, fnFullName, fnDisplayName})
                field = field ? field : model_.FieldByName(mode, item);
        if (field && !Trim(item).empty())
            Place(field, group);
    }
}

// A field that the text puts in two places stands in the first.
void TModelReader::Place(TDSField* field, TDSFieldGroup* group) {
    if (!placed_.insert(field).second)
        return;
    field->group_ = group;
    (group ? *group : model_.rootGroup_).Fields.push_back(field);
}

// --- Predefined conditions.

void TModelReader::ReadConditions() {
    const int count = Bounded("CondCount");
    for (int i = 1; i <= count; ++i)
        if (const TSectionLines lines = sections_.Read("Cond:" + std::to_string(i), position_);
            !lines.Empty())
            ReadCondition(lines);
}

// The listed values take the place of the slots that the display format made, which give their texts.
void TModelReader::ReadCondition(const TSectionLines& lines) {
    TDSCondition* const condition = model_.AddCondition(
        XStrToInt(lines.Value("ID")), std::string(lines.Value("DF")), std::string(lines.Value("SQLExpr")));
    if (!lines.Has("Values"))
        return;
    TStringList items;
    items.SetCommaText(lines.Value("Values"));
    condition->Values.resize(static_cast<std::size_t>(items.Count()));
    for (int i = 0; i < items.Count(); ++i) {
        TDSValue& value = condition->Values[static_cast<std::size_t>(i)];
        const std::string_view item = items[i];
        const std::size_t colon = std::min(item.find(':'), item.size());
        value.SetDataType(FieldTypeOf(StrToFldType(item.substr(0, colon)), ftString));
        const int kind = StrToValueKind(item.substr(std::min(colon + 1, item.size())));
        value.ValueKind = kind < 0 ? vkScalar : static_cast<TValueKind>(kind);
    }
}

// --- Loading a model.

void TVCustomDBStructure::LoadFromStrings(const TStringList& lines) {
    const double oldVersion = version_;
    TStringList old;
    SaveToStrings(old);
    AnnounceReplacing();
    BeginUpdate();
    const auto read = [this](const TStringList& text) {
        ClearItems();
        ClearOperators();
        TModelReader(*this, text).Read();
    };
    const auto finish = [&] {
        EndUpdate();
        AnnounceReplaced();
    };
    try {
        read(lines);
    } catch (...) {
        try {
            read(old);
        } catch (const Exception&) {
            // A model made in code may hold what its text cannot say; what could be read of it stays.
        }
        version_ = oldVersion;
        finish();
        throw;
    }
    UpdateDatabaseInfo();
    finish();
}

void TVCustomDBStructure::LoadFromFile(const std::string& fileName) {
    TStringList lines;
    lines.LoadFromFile(fileName);
    LoadFromStrings(lines);
}

void TVCustomDBStructure::SetStructString(std::string_view text) {
    LoadFromStrings(TStringList(text));
}

} // namespace lumora
