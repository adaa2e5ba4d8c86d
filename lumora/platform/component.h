// Components: named objects that own other components and are told when one that they refer to goes away.
#pragma once

#include "lumora/platform/enum_set.h"
#include "lumora/platform/notice_list.h"
#include "lumora/platform/persistent.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

enum TOperation : std::uint8_t { opInsert, opRemove };

enum TComponentStateItem : std::uint8_t { csLoading, csDestroying, csDesigning };
using TComponentState = TEnumSet<TComponentStateItem>;

struct TFormValue;

// What a component's DefineProperties is given: it declares stored properties that are not published.
class TFiler {
public:
    virtual ~TFiler() = default;
    // `read` takes the value found in a form text (not called when there is none or when `read` is empty);
    // `write` gives the value to store (not called without `hasData`).
    virtual void DefineProperty(std::string_view name, const std::function<void(const TFormValue&)>& read,
                                const std::function<TFormValue()>& write, bool hasData) = 0;
};

class TComponent : public TPersistent {
public:
    // The owner, when given, frees the component unless someone else frees it first.
    explicit TComponent(TComponent* owner = nullptr);
    ~TComponent() override;

    std::string_view ClassName() const override { return "TComponent"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    const std::string& GetName() const { return name_; }
    // EComponentError when the name is no identifier or another component of the owner bears it.
    void SetName(const std::string& name);
    int GetTag() const { return tag_; }
    void SetTag(int tag) { tag_ = tag; }

    TComponent* GetOwner() const { return owner_; }
    int GetComponentCount() const { return static_cast<int>(components_.Count()); }
    TComponent* GetComponent(int i) const; // EListError for a bad index
    TComponent* FindComponent(std::string_view name) const;
    TComponentState GetComponentState() const { return state_; }
    bool IsLoading() const { return state_.Contains(csLoading); }
    bool IsDestroying() const { return state_.Contains(csDestroying); }

    // Asks that this component be told (through its Notification) when `component` is destroyed. Many threads
    // may do so at once for one component that they share, each with components of its own; nothing else here
    // may be called while another thread changes the component.
    void WatchRemovalOf(TComponent* component);
    void UnwatchRemovalOf(TComponent* component);

protected:
    // `component` joins this component, leaves an owner above it, or is watched and goes away.
    virtual void Notification(TComponent* component, TOperation operation);
    // Everything of the form text that holds this component has been read, references included.
    virtual void Loaded();
    // Declares stored properties that are not published.
    virtual void DefineProperties(TFiler& filer);
    // Tells the watchers and marks the component as being destroyed. A class whose watchers may look at it
    // calls this first in its destructor, while it is still whole.
    void BeginDestruction();

private:
    friend class TFormReader;
    friend class TFormWriter;

    void InsertComponent(TComponent* component);
    void RemoveComponent(TComponent* component);
    void RemoveWatcher(const TComponent& watcher);

    std::string name_;
    int tag_ = 0;
    TComponentState state_;
    TComponent* owner_ = nullptr;
    TNoticeList<TComponent> components_; // owned
    std::vector<TComponent*> watchers_;
    std::vector<TComponent*> watched_;
};

} // namespace lumora
