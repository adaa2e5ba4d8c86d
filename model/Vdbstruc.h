// The data model unit.
#pragma once

#include "model/structure.h"
