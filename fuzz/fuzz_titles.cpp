// The titles merge: whatever the source, exactly the default keys come out.
#include "lumora/titles/default_titles.h"
#include "lumora/titles/titles_merge.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const lumora::TStringList source({reinterpret_cast<const char*>(data), size});
    const lumora::TStringList& defaults = lumora::DefaultTitles();
    lumora::TStringList result;
    lumora::LoadTitlesFromStrings(defaults, result, source);
    if (result.Count() != defaults.Count() + 1) // an empty line ends the last section too
        std::abort();
    for (int i = 0; i < defaults.Count(); ++i)
        if (result.Name(i) != defaults.Name(i))
            std::abort();
    return 0;
}
