// What a text asks of its reader. A text that uses a power which earlier versions lack names it in its head,
// "Needs=Name,Name", so that a reader that doesn't know it refuses the text instead of losing a part of it.
#pragma once

#include <initializer_list>
#include <string_view>

namespace lumora {

// EVLumoraError, which names it, for the first need in the comma text that is not among the known ones.
void CheckNeeds(std::string_view needs, std::initializer_list<std::string_view> known);

} // namespace lumora
