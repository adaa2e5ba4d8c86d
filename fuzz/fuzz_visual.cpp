// SQL to query on the sample model, and on from there to SQL and text. What a strict query makes must read
// back the same.
#include "lumora/lumora.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

lumora::TVDBStructure& Model() {
    static lumora::TVDBStructure model;
    if (model.GetTableCount() == 0)
        model.LoadFromFile(LUMORA_SAMPLES "/orders.model");
    return model;
}

std::string SQLOf(lumora::TVQuery& query) {
    query.BuildQuery();
    return query.GetQResult().GetSQL().GetText();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    lumora::TVQuery query(Model());
    query.SetStrict(data[0] & 1);
    query.SetSQLSyntax(static_cast<lumora::TSQLSyntax>((data[0] >> 1) % 3));
    std::string sql;
    try {
        ReadSQL(query, lumora::TStringList({reinterpret_cast<const char*>(data) + 1, size - 1}));
        sql = SQLOf(query);
        lumora::TStringList lines;
        WriteQueryText(query, lines);
        ReadQueryText(query, lines);
    } catch (const lumora::Exception&) {
        return 0;
    }
    if (!query.GetStrict())
        return 0;
    ReadSQL(query, lumora::TStringList(sql));
    if (SQLOf(query) != sql)
        std::abort();
    return 0;
}
