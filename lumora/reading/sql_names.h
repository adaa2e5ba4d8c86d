// The names in a statement: which use of a table a column belongs to, and which table of the model that use
// stands for.
#pragma once

#include "lumora/query/query.h"
#include "lumora/sqlparse/Vsqlpars.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDSField;
class TDSTable;
struct TDialect;

struct TSQLColumn {
    int Use = -1; // index among the tables of the statement
    std::string Name;
    bool Optional = false; // marked by "(+)"
};

class TSQLNames {
public:
    // EVQueryPanelError for a table that the model does not know.
    TSQLNames(const TVQuery& query, TVParserResult& statement);

    // --- Uses of tables, in the order of FROM. Each begins as its first candidate.
    int GetCount() const { return static_cast<int>(uses_.size()); }
    // Those of the model that have the use's name: the table itself, and aliases of it for other roles.
    const std::vector<TDSTable*>& GetCandidates(int use) const { return At(use).Candidates; }
    TDSTable* GetTable(int use) const { return At(use).Table; }
    void SetTable(int use, TDSTable* table) { At(use).Table = table; }
    // Whether each use bears the alias of its table.
    bool AreOfModel() const;
    const TSQLTable& GetParsed(int use) const { return *At(use).Parsed; }

    // Whether the field's tables are all among them.
    bool HasTablesOf(const TDSField& field) const;

    // --- Columns. A name that several tables have raises EVQueryPanelError.
    // Whether the text is a column and nothing else.
    bool FindColumn(std::string_view text, const TTextPlace& place, TSQLColumn& column) const;
    // The text with columns as the generator writes them. `unknown` gets the names that are no columns of the
    // model, and might be of the database.
    std::string_view WithFields(std::string_view text, const TTextPlace& place,
                                std::vector<std::string>& unknown) const;
    // The same of a condition's side: there a text may stand in double quotes, where the engine has that.
    std::string_view WithFieldsAndTexts(std::string_view text, const TTextPlace& place) const;

private:
    struct TUse {
        const TSQLTable* Parsed;
        TDSTable* Table;
        std::vector<TDSTable*> Candidates;
    };
    struct TChain; // a name with dots

    TUse& At(int use) { return uses_[static_cast<std::size_t>(use)]; }
    const TUse& At(int use) const { return uses_[static_cast<std::size_t>(use)]; }
    std::vector<TDSTable*> FindCandidates(const TSQLTable& parsed) const;
    bool IsNameOf(const TDSTable& table, std::string_view name) const;
    TDSField* FieldOf(const TDSTable& table, std::string_view column) const;
    bool HasColumn(const TUse& use, std::string_view column) const;
    int UseOf(const TChain& chain, const TTextPlace& place) const;
    int UseCalled(std::string_view qualifier) const;
    std::string TextFor(const TChain& chain, const TTextPlace& place, bool texts,
                        std::vector<std::string>* unknown) const;
    std::string_view Rewrite(std::string_view text, const TTextPlace& place, bool texts,
                             std::vector<std::string>* unknown) const;

    const TVCustomDBStructure& model_;
    const TDialect& dialect_;
    TVParserResult& statement_;
    std::vector<TUse> uses_;
};

} // namespace lumora
