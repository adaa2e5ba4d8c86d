// Model text: any bytes give a model or an exception; what was read is written so that it reads back the
// same.
#include "lumora/model/Vdbstruc.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumora::TVDBStructure model;
    try {
        model.SetStructString({reinterpret_cast<const char*>(data), size});
        const std::string once = model.GetStructString();
        model.SetStructString(once);
        if (model.GetStructString() != once)
            std::abort();
    } catch (const lumora::Exception&) {
    }
    return 0;
}
