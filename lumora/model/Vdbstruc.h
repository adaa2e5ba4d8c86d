// The data model unit. Everything const on a model may run in many threads at once; changing it needs to be
// alone.
#pragma once

#include "lumora/model/structure.h"
