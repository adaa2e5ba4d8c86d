// Who holds a lock, in a line for people.
#pragma once

#include <string>

namespace lumora {

// This program, now: "ann on office-pc, process 4711, since 2026-11-22 07:40:12 UTC"; what the machine does
// not tell is left out.
std::string ThisLockOwner();

} // namespace lumora
