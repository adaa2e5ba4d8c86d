// Query text on the sample model: any bytes give a query or an exception, and SQL or an exception from there.
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
    lumora::TVQueryPanel panel;
    panel.SetDbStruct(&Model());
    panel.Activate();
    try {
        panel.LoadFromStrings(lumora::TStringList({reinterpret_cast<const char*>(data), size}));
        panel.GetQueryText();
        for (const bool strict : {false, true}) {
            panel.SetStrict(strict);
            panel.BuildQuery();
            panel.GetQResult().GetSQL();
        }
        lumora::TStringList lines;
        panel.SaveToStrings(lines);
    } catch (const lumora::Exception&) {
    }
    return 0;
}
