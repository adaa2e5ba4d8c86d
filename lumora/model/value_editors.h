// Value editors: how users enter a field's values.
#pragma once

#include "lumora/model/Lmglobal.h"
#include "lumora/platform/string_list.h"

#include <memory>
#include <string>
#include <string_view>

namespace lumora {

class TVCustomDBStructure;

enum TDSEditType : std::uint8_t { etAuto, etEdit, etList, etCustom, etSQL };
template <>
struct TEnumNames<TDSEditType> {
    static constexpr std::string_view Names[] = {"etAuto", "etEdit", "etList", "etCustom", "etSQL"};
};

enum TTextEditorKind : std::uint8_t { tekSimple, tekMask, tekDate, tekTime };
template <>
struct TEnumNames<TTextEditorKind> {
    static constexpr std::string_view Names[] = {"tekSimple", "tekMask", "tekDate", "tekTime"};
};

class TDSValueEditor {
public:
    virtual ~TDSValueEditor() = default;
    // Brings what the editor offers up to date. That changes the model, for other threads too.
    virtual void Refresh() {}
};

class TDSTextEditor : public TDSValueEditor {
public:
    int GetOptions() const { return options_; }
    // Bits 1 and 2 exclude each other; of both, 2 is taken.
    void SetOptions(int options);
    // True when all bits of the mask are set.
    bool GetOption(int mask) const { return (options_ & mask) == mask; }
    // Sets or clears the bits of the mask; setting bit 1 clears bit 2 and the other way round.
    void SetOption(int mask, bool on);

    std::string DefValue;
    std::string EditMask;
    TTextEditorKind EditKind = tekSimple;
    bool FmtVal = false; // the value is formatted through the mask

private:
    int options_ = 0;
};

// Captions and the values they stand for, in parallel.
class TDSListEditor : public TDSValueEditor {
public:
    void ClearList();

    TStringList Items;
    TStringList Values;
};

// A list that a query over the model's metadata provider fills: first column values, second column captions.
class TDSSQLEditor : public TDSListEditor {
public:
    explicit TDSSQLEditor(TVCustomDBStructure& structure) : structure_(structure) {}

    void Refresh() override;
    // The query text with its parameters replaced.
    std::string GetSQLText() const;
    std::string ApplyParams(std::string_view text) const;
    bool HasParameter(std::string_view name) const;
    const TStringList& GetParams() const { return params_; }
    // Lines "name=value"; another list closes the editor.
    void SetSQLParams(const TStringList& params);
    bool GetOpened() const { return opened_; }
    // Opening runs the query (EVDBStructError without a provider; the editor then stays closed), closing
    // empties the lists.
    void SetOpened(bool opened);

    TStringList SQL;

private:
    TVCustomDBStructure& structure_;
    TStringList params_;
    bool opened_ = false;
};

// Data kept for the host's own editor.
class TDSCustomEditor : public TDSValueEditor {
public:
    TStringList CustomData;
};

class TDSSubQueryEditor : public TDSValueEditor {
public:
    TStringList SubQuery;
};

// A new editor of that type; none for etAuto.
std::unique_ptr<TDSValueEditor> MakeValueEditor(TDSEditType type, TVCustomDBStructure& structure);

} // namespace lumora
