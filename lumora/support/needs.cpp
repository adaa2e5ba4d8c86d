#include "lumora/support/needs.h"

#include "lumora/platform/ascii.h"
#include "lumora/support/lumora_error.h"
#include "lumora/support/messages.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

void CheckNeeds(std::string_view needs, std::initializer_list<std::string_view> known) {
    for (const std::string_view item : SplitText(needs, ',')) {
        const std::string_view need = Trim(item);
        const bool isKnown =
            need.empty() || std::any_of(known.begin(), known.end(),
                                        [need](std::string_view name) { return SameText(name, need); });
        if (!isKnown)
            throw EVLumoraError(0, Message(msgUnknownNeed), {need});
    }
}

} // namespace lumora
