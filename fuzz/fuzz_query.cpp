// Query text on the sample model: any bytes give a query or an exception, and words, SQL or an exception from
// there.
#include "lumora/lumora.h"

#include <cstddef>
#include <cstdint>

namespace {

lumora::TVDBStructure& Model() {
    static lumora::TVDBStructure model;
    if (model.GetTableCount() == 0)
        model.LoadFromFile(LUMORA_SAMPLES "/orders.model");
    return model;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumora::TVQuery query(Model());
    lumora::TQueryScreen screen(query);
    try {
        ReadQueryText(query, lumora::TStringList({reinterpret_cast<const char*>(data), size}),
                      &screen.GetTitles());
        screen.GetQueryText();
        for (const bool strict : {false, true}) {
            query.SetStrict(strict);
            query.BuildQuery();
            query.GetQResult().GetSQL();
        }
        lumora::TStringList lines;
        WriteQueryText(query, lines, &screen.GetTitles());
    } catch (const lumora::Exception&) {
    }
    return 0;
}
