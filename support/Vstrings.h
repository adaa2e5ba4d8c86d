// The support unit: section reader, tolerant readers and string helpers.
#pragma once

#include "support/section_reader.h"
#include "support/string_helpers.h"
