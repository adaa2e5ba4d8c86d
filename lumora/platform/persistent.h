// What has published properties; the tables of them are made with properties.h.
#pragma once

#include <span>
#include <string_view>

namespace lumora {

struct TPropertyInfo;

// What has published properties and can be copied to another object.
class TPersistent {
public:
    TPersistent() = default;
    TPersistent(const TPersistent&) = delete;
    TPersistent& operator=(const TPersistent&) = delete;
    virtual ~TPersistent() = default;

    virtual std::string_view ClassName() const { return "TPersistent"; }
    // The class's own published properties after those of its base.
    virtual std::span<const TPropertyInfo> PublishedProperties() const;
    const TPropertyInfo* FindProperty(std::string_view name) const;

    // Copies the source into this object; EConvertError when the source cannot be copied here.
    void Assign(const TPersistent& source) { source.AssignTo(*this); }

protected:
    virtual void AssignTo(TPersistent& dest) const;
};

} // namespace lumora
