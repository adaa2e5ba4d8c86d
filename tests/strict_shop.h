// A shop whose panel is strict, and what single conditions on it become.
#pragma once

#include "tests/fixtures.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace lumora::tests {

class StrictShop : public testing::Test {
protected:
    StrictShop() { shop_.Panel.SetStrict(true); }

    std::string Text(std::string_view field, std::string_view op, const std::string& v1,
                     const std::string& v2 = "") {
        shop_.Panel.ClearRows();
        shop_.Where(field, op, v1, v2);
        return shop_.Conditions();
    }
    std::string Refusal(std::string_view field, std::string_view op, const std::string& v1) {
        return MessageOf<EVQueryPanelError>([&] { Text(field, op, v1); });
    }

    TShop shop_;
};

} // namespace lumora::tests
