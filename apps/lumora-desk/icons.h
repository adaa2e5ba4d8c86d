// Icons that can be seen on light and on dark bars.
#pragma once

#include <QIcon>

namespace lumora::desk {

QIcon runIcon();
QIcon stopIcon();

} // namespace lumora::desk
