#include "lumora/platform/component.h"

#include "lumora/platform/errors.h"
#include "lumora/platform/properties.h"
#include "lumora/platform/short_lock.h"

#include <algorithm>

namespace lumora {

namespace {

bool IsIdentifier(std::string_view name) {
    if (name.empty() || IsDigit(name[0]))
        return false;
    for (const char c : name) {
        const char lower = LowerAscii(c);
        if (!(lower >= 'a' && lower <= 'z') && !IsDigit(c) && c != '_')
            return false;
    }
    return true;
}

} // namespace

TComponent::TComponent(TComponent* owner) {
    if (owner)
        owner->InsertComponent(this);
}

TComponent::~TComponent() {
    BeginDestruction();
    while (components_.Count() > 0)
        delete components_[components_.Count() - 1]; // each takes itself off the list
    for (TComponent* const component : watched_)
        component->RemoveWatcher(*this);
    if (owner_)
        owner_->RemoveComponent(this);
}

void TComponent::BeginDestruction() {
    if (IsDestroying())
        return;
    state_.Include(csDestroying);
    while (!watchers_.empty()) {
        TComponent* const watcher = watchers_.back();
        watchers_.pop_back();
        std::erase(watcher->watched_, this);
        watcher->Notification(this, opRemove);
    }
}

std::span<const TPropertyInfo> TComponent::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = {
        Property("Tag", &TComponent::GetTag, &TComponent::SetTag, 0),
    };
    return properties;
}

void TComponent::SetName(const std::string& name) {
    if (name == name_)
        return;
    if (!name.empty() && !IsIdentifier(name))
        throw EComponentError("\"" + name + "\" is not a valid component name");
    if (const TComponent* const other = owner_ ? owner_->FindComponent(name) : nullptr;
        other && other != this)
        throw EComponentError("A component named " + name + " already exists");
    name_ = name;
}

TComponent* TComponent::GetComponent(int i) const {
    return components_[CheckIndex(i, components_.Count())];
}

TComponent* TComponent::FindComponent(std::string_view name) const {
    if (name.empty())
        return nullptr;
    for (TComponent* const component : components_.Items())
        if (SameText(component->name_, name))
            return component;
    return nullptr;
}

void TComponent::WatchRemovalOf(TComponent* component) {
    if (!component || component == this ||
        std::find(watched_.begin(), watched_.end(), component) != watched_.end())
        return;
    watched_.push_back(component);
    const TShortLock lock(&component->watchers_);
    component->watchers_.push_back(this);
}

void TComponent::UnwatchRemovalOf(TComponent* component) {
    if (std::erase(watched_, component) > 0)
        component->RemoveWatcher(*this);
}

void TComponent::RemoveWatcher(const TComponent& watcher) {
    const TShortLock lock(&watchers_);
    std::erase(watchers_, &watcher);
}

void TComponent::Notification(TComponent* component, TOperation operation) {
    if (IsDestroying() || operation != opRemove)
        return;
    components_.ForEach([&](TComponent& owned) {
        if (&owned != component)
            owned.Notification(component, operation);
    });
}

void TComponent::Loaded() {
    state_.Exclude(csLoading);
}

void TComponent::DefineProperties(TFiler&) {}

void TComponent::InsertComponent(TComponent* component) {
    component->owner_ = this;
    components_.Add(*component);
    Notification(component, opInsert);
}

void TComponent::RemoveComponent(TComponent* component) {
    components_.Remove(*component);
    component->owner_ = nullptr;
    Notification(component, opRemove);
}

} // namespace lumora
