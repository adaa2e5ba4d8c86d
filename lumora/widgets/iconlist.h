// Images of fields and their groups, for a query panel to refer to.
#pragma once

#include "lumora/platform/component.h"

#include <QIcon>
#include <QList>

namespace lumora {

// Given to TVQueryPanel::SetImages; OnGetItemImageIndex and OnGetGroupImageIndex then give indexes of it. It
// may go before the panel does, and may be changed at any time: what opens next shows it.
class IconList : public TComponent {
public:
    explicit IconList(const QList<QIcon>& list = {}, TComponent* owner = nullptr)
        : TComponent(owner), icons(list) {}
    ~IconList() override { BeginDestruction(); }

    std::string_view ClassName() const override { return "IconList"; }

    QList<QIcon> icons;
};

} // namespace lumora
