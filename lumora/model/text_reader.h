// Reads a model from its text, of the current version or of any older one.
#pragma once

#include "lumora/model/structure.h"
#include "lumora/support/section_reader.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lumora {

// Reads into an emptied model. Work is bounded by the lines that are there, whatever the counts in the text
// say.
class TModelReader {
public:
    TModelReader(TVCustomDBStructure& model, const TStringList& lines);

    void Read();

private:
    void ReadMain();

    // model/text_reader.cpp
    void ReadOperators();
    void ReadOperator(const TSectionLines& lines);
    TDSOperator& NewOperator(std::string_view name);
    void ReadTables();
    void ReadTable(const TSectionLines& lines, std::string_view name);
    void ReadLinks();
    void ReadLink(TDSTable& table, std::string_view partner);
    void ReadFields();
    void ReadField(const TSectionLines& lines);
    static TDateStorage ReadStorage(std::string_view name);
    void ReadFieldLine(TDSField& field, int key, std::string_view value);
    void ReadFieldOperators(TDSField& field, std::string_view names);
    void ReadEditorLine(TDSField& field, int key, std::string_view value);
    void ReadSQLEditor(TDSField& field, const TSectionLines& lines);
    TDSEditType ReadEditType(std::string_view value) const;
    TDSTable* TableByAlias(std::string_view alias);
    void ReadGroups();
    void ReadGroupFields(std::string_view items, TDSFieldGroup* group);
    void Place(TDSField* field, TDSFieldGroup* group);
    void ReadConditions();
    void ReadCondition(const TSectionLines& lines);

    // model/text_reader_old.cpp: the forms of old versions.
    void ReadOperatorsBefore201();
    void ReadTablesBefore14();
    void ReadFieldsBefore20();
    void ReadFieldBefore20(std::string_view name, std::string_view caption, int id);

    // No more sections of one kind can follow than the text has.
    int Bounded(std::string_view count) const;

    TVCustomDBStructure& model_;
    TSectionIndex sections_;
    TSectionLines main_;
    double version_ = 1.1;
    int position_ = 0; // the section behind the last numbered one that was read
    std::vector<std::string_view> linksOfTable_;
    std::unordered_map<std::string, int> linkSectionsRead_; // by section name, where the next is looked for
    std::unordered_map<std::string_view, std::vector<TDSOperator*>> operatorLists_;
    std::unordered_set<const TDSField*> placed_;
    std::string_view lastAlias_;
    TDSTable* lastTable_ = nullptr;
};

} // namespace lumora
