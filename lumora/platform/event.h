// An event of a component: the host's handler, and listeners beside it.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumora {

// Used as the handler that the host sets: OnChange = [](TVQueryPanel&) { ... }. Listeners, such as a widget
// that makes a signal of the event, are told after the handler, and neither knows of the other. Handlers may
// do anything: replace themselves, take listeners away, free the event's owner (no listener is told then) or
// what they are told of (so a listener looks whether that is still there). A copy of an event has its
// handler, and no listeners.
template <typename... TArgs>
class TEvent {
public:
    using THandler = std::function<void(TArgs...)>;

    TEvent() = default;
    TEvent(const TEvent& other) : handler_(other.handler_) {}
    ~TEvent() {
        if (listeners_)
            listeners_->clear(); // the event may be on its way
    }
    TEvent& operator=(const TEvent& other) {
        handler_ = other.handler_;
        return *this;
    }
    template <typename THostHandler>
    requires(!std::is_same_v<std::remove_cvref_t<THostHandler>, TEvent>) TEvent&
    operator=(THostHandler&& hostHandler) {
        THandler handler(std::forward<THostHandler>(hostHandler));
        handler_ = handler ? std::make_shared<const THandler>(std::move(handler)) : nullptr;
        return *this;
    }

    // Whether anybody wants to be told.
    explicit operator bool() const {
        if (handler_)
            return true;
        if (listeners_)
            for (const TListener& listener : *listeners_)
                if (listener.IsAwake())
                    return true;
        return false;
    }

    void operator()(TArgs... args) const {
        const std::shared_ptr<const THandler> handler = handler_;
        const std::shared_ptr<TListeners> listeners = listeners_;
        if (handler)
            (*handler)(args...);
        if (!listeners || listeners->empty())
            return;
        for (const TListener& listener : TListeners(*listeners))
            if (Find(*listeners, listener.Owner) < listeners->size() && listener.IsAwake())
                listener.Call(args...);
    }

    // `owner` tells the listener apart; one that has gone takes its listeners away before. `isWanted` says
    // whether the listener hands on what it is told at present; none: it does.
    void AddListener(const void* owner, THandler call, std::function<bool()> isWanted = {}) {
        if (!listeners_)
            listeners_ = std::make_shared<TListeners>();
        listeners_->push_back({owner, std::move(call), std::move(isWanted)});
    }
    void RemoveListener(const void* owner) {
        if (listeners_)
            if (const std::size_t index = Find(*listeners_, owner); index < listeners_->size())
                listeners_->erase(listeners_->begin() + static_cast<std::ptrdiff_t>(index));
    }

private:
    struct TListener {
        const void* Owner;
        THandler Call;
        std::function<bool()> IsWanted;

        bool IsAwake() const { return !IsWanted || IsWanted(); }
    };
    using TListeners = std::vector<TListener>;

    static std::size_t Find(const TListeners& listeners, const void* owner) {
        std::size_t index = 0;
        while (index < listeners.size() && listeners[index].Owner != owner)
            ++index;
        return index;
    }

    std::shared_ptr<const THandler> handler_;
    std::shared_ptr<TListeners> listeners_;
};

} // namespace lumora
