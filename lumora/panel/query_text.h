// The query text: writes a panel's query as sections of key=value lines, and reads such a text of any
// version.
#pragma once

#include "lumora/panel/Vquerpnl.h"
#include "lumora/support/section_reader.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lumora {

class TQueryTextWriter {
public:
    TQueryTextWriter(const TVQueryPanel& panel, TStringList& lines) : panel_(panel), lines_(lines) {}

    void Write();

private:
    void WriteMain();
    void WriteVerbatim(std::string_view section, const TStringList& text);
    void WriteRow(const TFilterRow& row);
    void WriteBracket(const TFilterBracket& bracket);
    void WriteCondition(const TFilterCond& condition);
    void Put(std::string_view key, std::string_view value);
    void Put(std::string_view key, int value);

    const TVQueryPanel& panel_;
    TStringList& lines_;
    std::string rowID_; // of the row being written
    std::string value1_;
    std::string value2_;
};

// Reads into a panel that was cleared. Work is bounded by the lines that are there, whatever the counts in
// the text say.
class TQueryTextReader {
public:
    TQueryTextReader(TVQueryPanel& panel, const TStringList& lines);

    void Read();

private:
    // The rows that the text has for one bracket: their positions in it and their sections.
    using TChildSections = std::vector<std::pair<int, int>>;

    void ReadTitles();
    void ReadMain();
    void FindRowSections();
    void ReadRow(int section, TFilterBracket* parent);
    void ReadBracket(const TSectionLines& lines, std::string_view name, TFilterBracket* parent);
    void ReadSimple(const TSectionLines& lines, TFilterBracket& parent);
    void ReadCustom(const TSectionLines& lines, TFilterBracket& parent);
    void ReadValues(const TSectionLines& lines, TFilterCond& condition);
    void ReadSubQuery(const TSectionLines& lines, TFilterCond& condition);
    TDSField* FindField(const TSectionLines& lines) const;

    TVQueryPanel& panel_;
    TVCustomDBStructure& model_;
    const TStringList& lines_;
    TSectionIndex sections_;
    int position_ = 0; // behind the last section that was read
    std::unordered_map<std::string_view, TChildSections, TNoCaseHash, TNoCaseEqual> children_;
};

} // namespace lumora
