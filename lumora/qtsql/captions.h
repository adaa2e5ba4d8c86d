// Names of a database as words for people.
#pragma once

#include <string>
#include <string_view>

namespace lumora {

// "order_date", "orderDate", "ORDER_DATE": "Order date". "id", "url" and the like become capitals. A name
// without letters stands as it is.
std::string readableCaption(std::string_view name);

} // namespace lumora
