// Writes a model as text.
#include "lumora/model/structure.h"

#include <charconv>

namespace lumora {

namespace {

class TModelWriter {
public:
    TModelWriter(const TVCustomDBStructure& model, TStringList& lines) : model_(model), lines_(lines) {}

    void Write(TVDBInfo* provider) {
        WriteMain();
        for (int i = 0; i < model_.GetOperatCount(); ++i)
            WriteOperator(i, *model_.GetOperator(i));
        for (int i = 0; i < model_.GetTableCount(); ++i)
            WriteTable(i, *model_.GetTable(i));
        for (int i = 0; i < model_.GetFieldCount(); ++i)
            WriteField(i, *model_.GetField(i));
        for (int i = 0; i < model_.GetFieldGroups().Count(); ++i)
            WriteGroup(i, *model_.GetFieldGroups().GetGroup(i));
        Head(" ", "RootGroup");
        Ids("Fields", model_.GetRootGroup().Fields);
        for (int i = 0; i < model_.GetConditionCount(); ++i)
            WriteCondition(i, *model_.GetCondition(i));
        TStringList settings = model_.GetDBSpecInfo(); // kept for a provider that is not there now
        if (provider) {
            settings.Clear();
            provider->SaveInfo(settings);
        }
        if (!settings.Empty()) {
            Head("", "DBSpecInfo");
            lines_.AddStrings(settings);
        }
    }

private:
    void WriteMain() {
        lines_.Add("[Main]");
        lines_.Add("Version=3.5");
        Put("OperatCount", model_.GetOperatCount());
        Put("TableCount", model_.GetTableCount());
        Put("FieldCount", model_.GetFieldCount());
        Put("CondCount", model_.GetConditionCount());
        Put("FieldGroups", model_.GetFieldGroups().Count());
        const TDSTable* const main = model_.GetDefaultMainTable();
        Put("DefaultMainTable", main ? main->GetName() : std::string());
        Put("RootFieldsFirst", model_.RootFieldsFirst ? 1 : 0);
        if (KnowsStorage())
            Put("Needs", NeedStorage);
    }

    bool KnowsStorage() const {
        for (int i = 0; i < model_.GetFieldCount(); ++i)
            if (model_.GetField(i)->Storage != dsAsType)
                return true;
        return false;
    }

    void WriteOperator(int index, const TDSOperator& op) {
        Head(" ", "Operator:", index + 1);
        Put("Name", op.GetName());
        Put("DisplayName", op.DisplayName);
        Put("SQLName", op.GetSQLName());
        Put("ValFormat", op.ValFormat);
        Put("ExprType", op.ExprType == ftUnknown ? "SameAsField" : FldTypeToStr(op.ExprType));
        Put("AppliedTypes", SaveAppliedTypes(op.AppliedTypes));
        Put("ValueKind", ValueKindToStr(op.ValueKind));
    }

    void WriteTable(int index, const TDSTable& table) {
        Head(" ", "Table:", index + 1);
        Put("Name", table.GetName());
        Put("DisplayName", table.GetDisplayName());
        Put("Alias", table.GetAlias());
        Put("Quoted", table.GetQuoted() ? 1 : 0);
        Put("Hints", table.GetHints());
        Put("DsgnPos", table.GetDesignPositions());
        std::string& line = Begin("Links");
        bool first = true;
        for (const TDSLink* const link : table.GetLinks())
            if (link->Table1 == &table) {
                AppendCommaItem(line, link->Table2->GetAlias(), first);
                first = false;
            }
        lines_.EndLine();
        for (const TDSLink* const link : table.GetLinks())
            if (link->Table1 == &table)
                WriteLink(*link);
    }

    void WriteLink(const TDSLink& link) {
        static constexpr std::string_view typeNames[] = {"Inner", "Left", "Right", "Full"};
        Head(" ", "Link:" + link.Table1->GetAlias() + "-" + link.Table2->GetAlias());
        Put("FldName1", link.Fields1.GetCommaText());
        Put("FldName2", link.Fields2.GetCommaText());
        Put("Operators", link.Operators.GetCommaText());
        Put("QuoteFields", link.QuoteFields ? 1 : 0);
        Put("LinkType", typeNames[link.LinkType]);
    }

    void WriteField(int index, const TDSField& field) {
        Head(" ", "Field:", index + 1);
        Put("ID", field.GetID());
        Put("Kind", FldKindToStr(field.GetKind()));
        Put("FieldExpr", field.GetFieldText());
        Put("DisplayName", field.GetDisplayName());
        if (field.GetKind() == vfkData)
            Put("TableAlias", field.GetTable() ? std::string_view(field.GetTable()->GetAlias()) : "");
        Put("EditType", field.GetEditType());
        Put("FieldType", field.FieldType);
        Put("FieldSize", field.FieldSize);
        Put("Quoted", field.GetQuoted() ? 1 : 0);
        Put("UIC", field.UIC);
        Put("UIR", field.UIR ? 1 : 0);
        if (field.Storage != dsAsType)
            Put("Storage", EnumName(field.Storage));
        std::string& line = Begin("Operators");
        for (const TDSOperator* const op : field.GetOperators()) {
            if (op != field.GetOperators().front())
                line += ',';
            line += op->GetName();
        }
        EndPut();
        WriteEditor(index, field);
    }

    void WriteEditor(int index, const TDSField& field) {
        const TDSValueEditor* const editor = field.GetValueEditor();
        if (const auto* const text = dynamic_cast<const TDSTextEditor*>(editor)) {
            Put("DefValue", text->DefValue);
            Put("EditKind", text->EditKind);
            if (!Trim(text->EditMask).empty()) {
                Put("EditMask", text->EditMask);
                Put("FmtVal", text->FmtVal ? 1 : 0);
            }
            Put("Options", text->GetOptions());
        } else if (const auto* const sql = dynamic_cast<const TDSSQLEditor*>(editor)) {
            Head("", "Field:" + std::to_string(index + 1) + ".SQL");
            lines_.AddStrings(sql->SQL);
        } else if (const auto* const list = dynamic_cast<const TDSListEditor*>(editor)) {
            Put("Items", list->Items.GetCommaText());
            Put("Values", list->Values.GetCommaText());
        } else if (const auto* const custom = dynamic_cast<const TDSCustomEditor*>(editor)) {
            Put("CustomData", custom->CustomData.GetCommaText());
        }
    }

    void WriteGroup(int index, const TDSFieldGroup& group) {
        Head(" ", "FieldGroup" + std::to_string(index + 1));
        Put("GroupName", group.GroupName);
        Ids("Fields", group.Fields);
    }

    void WriteCondition(int index, const TDSCondition& condition) {
        Head(" ", "Cond:", index + 1);
        Put("ID", condition.GetID());
        Put("DF", condition.GetDisplayFormat());
        Put("SQLExpr", condition.GetSQLExpr());
        TStringList values;
        for (const TDSValue& value : condition.Values)
            values.Add(std::string(FldTypeToStr(value.GetDataType())) + ":" +
                       std::string(ValueKindToStr(value.ValueKind)));
        Put("Values", values.GetCommaText());
    }

    void Head(std::string_view separator, std::string_view name) {
        lines_.Add(separator);
        lines_.Tail().append("[").append(name).append("]");
        EndPut();
    }

    void Head(std::string_view separator, std::string_view name, int number) {
        lines_.Add(separator);
        lines_.Tail().append("[").append(name);
        AppendNumber(number);
        lines_.Tail() += ']';
        lines_.EndLine();
    }

    std::string& Begin(std::string_view key) { return lines_.Tail().append(key) += '='; }

    // A value is one line; a line break in it is written as a blank, so that the text can be read back.
    void EndPut() { lines_.EndLineWithoutBreaks(); }

    void Put(std::string_view key, std::string_view value) {
        Begin(key).append(value);
        EndPut();
    }

    void Put(std::string_view key, int value) {
        Begin(key);
        AppendNumber(value);
        lines_.EndLine();
    }

    void AppendNumber(int value) {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        lines_.Tail().append(digits, end);
    }

    void Ids(std::string_view key, const TDSFieldList& fields) {
        std::string& line = Begin(key);
        for (const TDSField* const field : fields) {
            if (field != fields.front())
                line += ',';
            AppendNumber(field->GetID());
        }
        lines_.EndLine();
    }

    const TVCustomDBStructure& model_;
    TStringList& lines_;
};

} // namespace

void TVCustomDBStructure::WriteText(TStringList& lines) const {
    lines.Clear();
    TModelWriter(*this, lines).Write(databaseInfo_);
}

void TVCustomDBStructure::SaveToStrings(TStringList& lines) {
    WriteText(lines);
    version_ = CurrentModelVersion;
}

void TVCustomDBStructure::SaveToFile(const std::string& fileName) {
    TStringList lines;
    SaveToStrings(lines);
    lines.SaveToFile(fileName);
}

std::string TVCustomDBStructure::GetStructString() {
    TStringList lines;
    SaveToStrings(lines);
    return lines.GetText();
}

} // namespace lumora
