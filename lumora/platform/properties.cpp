#include "lumora/platform/properties.h"

#include "lumora/platform/component.h"
#include "lumora/platform/errors.h"

namespace lumora {

std::span<const TPropertyInfo> TPersistent::PublishedProperties() const {
    return {};
}

const TPropertyInfo* TPersistent::FindProperty(std::string_view name) const {
    for (const TPropertyInfo& property : PublishedProperties())
        if (SameText(property.Name, name))
            return &property;
    return nullptr;
}

void TPersistent::AssignTo(TPersistent& dest) const {
    throw EConvertError("Cannot assign a " + std::string(ClassName()) + " to a " +
                        std::string(dest.ClassName()));
}

void detail::RefuseNumber(std::int64_t number) {
    throw EConvertError("The number " + std::to_string(number) + " is out of range");
}

void detail::RefuseValue() {
    throw EConvertError("The value is of another kind than the property");
}

void RefuseReference(std::string_view property, const TComponent& component) {
    throw EConvertError("Property " + std::string(property) + " cannot refer to a " +
                        std::string(component.ClassName()));
}

std::vector<TPropertyInfo> ExtendProperties(std::span<const TPropertyInfo> base,
                                            std::vector<TPropertyInfo> own) {
    std::vector<TPropertyInfo> all(base.begin(), base.end());
    for (TPropertyInfo& property : own)
        all.push_back(std::move(property));
    return all;
}

} // namespace lumora
