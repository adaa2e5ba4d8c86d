// The support unit: section reader, tolerant readers and string helpers.
#pragma once

#include "lumora/support/section_reader.h"
#include "lumora/support/string_helpers.h"
