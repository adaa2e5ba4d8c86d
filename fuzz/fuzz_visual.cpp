// SQL to query on the sample model, and on from there to SQL and text. What a strict panel makes must read
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

std::string SQLOf(lumora::TVQueryPanel& panel) {
    panel.BuildQuery();
    return panel.GetQResult().GetSQL().GetText();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    lumora::TVQueryPanel panel;
    panel.SetDbStruct(&Model());
    panel.SetSaveTitles(false);
    panel.SetStrict(data[0] & 1);
    panel.SetSQLSyntax(static_cast<lumora::TSQLSyntax>((data[0] >> 1) % 3));
    panel.Activate();
    std::string sql;
    try {
        panel.ParseSQL(lumora::TStringList({reinterpret_cast<const char*>(data) + 1, size - 1}));
        sql = SQLOf(panel);
        lumora::TStringList lines;
        panel.SaveToStrings(lines);
        panel.LoadFromStrings(lines);
    } catch (const lumora::Exception&) {
        return 0;
    }
    if (!panel.GetStrict())
        return 0;
    panel.ParseSQL(lumora::TStringList(sql));
    if (SQLOf(panel) != sql)
        std::abort();
    return 0;
}
