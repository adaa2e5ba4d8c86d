// Dates and numbers as people of a place write them.
#pragma once

#include "lumora/screen/user_formats.h"

#include <QLocale>

namespace lumora {

// For TQueryScreen::SetUserFormats. Years are shown in full.
TUserFormats localeFormats(const QLocale& locale);

} // namespace lumora
