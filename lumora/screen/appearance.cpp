#include "lumora/screen/appearance.h"

#include "lumora/platform/properties.h"

namespace lumora {

std::span<const TPropertyInfo> TQPAppearance::PublishedProperties() const {
    using T = TQPAppearance;
    static const std::vector<TPropertyInfo> properties = {
        Property("ActiveRowColor", &T::GetActiveRowColor, &T::SetActiveRowColor, clNone),
        Property("ControlBorderColor", &T::GetControlBorderColor, &T::SetControlBorderColor, clNone),
        Property("FieldColor", &T::GetFieldColor, &T::SetFieldColor, clBlue),
        Property("OperatorColor", &T::GetOperatorColor, &T::SetOperatorColor, clBlue),
        Property("ValueColor", &T::GetValueColor, &T::SetValueColor, clBlue),
        Property("BoolOpColor", &T::GetBoolOpColor, &T::SetBoolOpColor, clBlue),
        Property("AddRowColor", &T::GetAddRowColor, &T::SetAddRowColor, clBlue),
        Property("LinkTypes", &T::GetLinkTypes, &T::SetLinkTypes, AllLinkTypes),
        Property("Options", &T::GetOptions, &T::SetOptions, DefaultAppearanceOptions),
        Property("Style", &T::GetStyle, &T::SetStyle, psGroups),
    };
    return properties;
}

void TQPAppearance::EndUpdate() {
    updating_ = false;
    TellOwner();
    TellHost();
}

void TQPAppearance::AssignTo(TPersistent& dest) const {
    auto* const other = dynamic_cast<TQPAppearance*>(&dest);
    if (!other)
        return TPersistent::AssignTo(dest);
    other->BeginUpdate();
    for (const TPropertyInfo& property : PublishedProperties())
        property.Write(*other, property.Read(const_cast<TQPAppearance&>(*this)));
    other->EndUpdate();
}

} // namespace lumora
