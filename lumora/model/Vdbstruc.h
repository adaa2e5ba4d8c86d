// The data model unit.
#pragma once

#include "lumora/model/structure.h"
