// The chain of tables that joins two tables.
#pragma once

#include <memory>
#include <vector>

namespace lumora {

class TDSTable;
class TJoinGraph;
class TVCustomDBStructure;

class TDSPath {
public:
    explicit TDSPath(TVCustomDBStructure* structure);

    void AddTable(TDSTable* table);
    void DelTable(int index);
    void Assign(const TDSPath& path);
    int GetTableCount() const { return static_cast<int>(tables_.size()); }
    TDSTable* GetTable(int index) const; // EVDBStructError for a bad index
    TDSTable* GetStartPoint() const { return tables_.empty() ? nullptr : tables_.front(); }
    TDSTable* GetEndPoint() const { return tables_.empty() ? nullptr : tables_.back(); }
    bool Contains(const TDSTable* table) const;

private:
    friend class TJoinGraph;

    TVCustomDBStructure* structure_;
    std::vector<TDSTable*> tables_;
};

using TDSPathList = std::vector<std::unique_ptr<TDSPath>>;

} // namespace lumora
