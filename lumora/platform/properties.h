// Published properties. Each class lists its own once, in one table (name, type, default, reader, writer);
// form text, property sheets and the documentation come from that table. Who makes or reads a table includes
// this; the classes themselves need persistent.h only.
#pragma once

#include "lumora/platform/color.h"
#include "lumora/platform/enum_names.h"
#include "lumora/platform/enum_set.h"
#include "lumora/platform/persistent.h"
#include "lumora/platform/string_list.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace lumora {

class TComponent;

enum TPropertyKind : std::uint8_t {
    pkInteger,
    pkBoolean,
    pkChar,
    pkColor,
    pkEnumeration,
    pkSet,
    pkString,
    pkStrings,   // a string list that the component owns
    pkObject,    // a persistent that the component owns; its own properties are published under "Name."
    pkComponent, // a reference to another component
    pkEvent      // a handler of the host; it has no form text
};

// Integers carry booleans, colours, ordinals of enumerations and bits of sets too.
using TPropertyValue =
    std::variant<std::monostate, std::int64_t, std::string, const TStringList*, TPersistent*, TComponent*>;

struct TPropertyInfo {
    std::string_view Name;
    TPropertyKind Kind;
    std::span<const std::string_view> Names; // of an enumeration's or a set's values, in ordinal order
    TPropertyValue Default;                  // a property that has this value is not written to a form
    std::function<TPropertyValue(TPersistent&)> Read;
    std::function<void(TPersistent&, const TPropertyValue&)> Write; // empty for objects and events
};

namespace detail {

template <typename T>
struct TIsEnumSet : std::false_type {};
template <typename E>
struct TIsEnumSet<TEnumSet<E>> : std::true_type {};

template <typename T>
constexpr TPropertyKind PropertyKind() {
    if constexpr (std::is_same_v<T, bool>)
        return pkBoolean;
    else if constexpr (std::is_same_v<T, char>)
        return pkChar;
    else if constexpr (std::is_same_v<T, TColor>)
        return pkColor;
    else if constexpr (TIsEnumSet<T>::value)
        return pkSet;
    else if constexpr (std::is_enum_v<T>)
        return pkEnumeration;
    else if constexpr (std::is_integral_v<T>)
        return pkInteger;
    else
        return pkString;
}

template <typename T>
std::span<const std::string_view> ValueNames() {
    if constexpr (TIsEnumSet<T>::value)
        return TEnumNames<typename T::TElement>::Names;
    else if constexpr (std::is_enum_v<T>)
        return TEnumNames<T>::Names;
    else
        return {};
}

template <typename T>
TPropertyValue ToPropertyValue(const T& value) {
    if constexpr (std::is_same_v<T, TColor>)
        return std::int64_t{value.Value};
    else if constexpr (TIsEnumSet<T>::value)
        return static_cast<std::int64_t>(value.Bits());
    else if constexpr (std::is_enum_v<T> || std::is_integral_v<T>)
        return static_cast<std::int64_t>(value);
    else
        return std::string(value);
}

[[noreturn]] void RefuseNumber(std::int64_t number);

[[noreturn]] void RefuseValue();
// EConvertError for a value of another kind than the property's.
template <typename T>
const T& Held(const TPropertyValue& value) {
    if (const T* const held = std::get_if<T>(&value))
        return *held;
    RefuseValue();
}

// EConvertError for a number that the property's type cannot hold.
template <typename T>
T FromPropertyValue(const TPropertyValue& value) {
    if constexpr (std::is_same_v<T, TColor>)
        return TColor{static_cast<std::int32_t>(Held<std::int64_t>(value))};
    else if constexpr (TIsEnumSet<T>::value)
        return T::FromBits(static_cast<std::uint64_t>(Held<std::int64_t>(value)));
    else if constexpr (std::is_same_v<T, bool>)
        return Held<std::int64_t>(value) != 0;
    else if constexpr (std::is_same_v<T, char>)
        return static_cast<T>(Held<std::int64_t>(value));
    else if constexpr (std::is_enum_v<T>) {
        const std::int64_t ordinal = Held<std::int64_t>(value);
        if (ordinal < 0 || ordinal >= EnumCount<T>)
            RefuseNumber(ordinal);
        return static_cast<T>(ordinal);
    } else if constexpr (std::is_integral_v<T>) {
        const std::int64_t number = Held<std::int64_t>(value);
        if (!std::in_range<T>(number))
            RefuseNumber(number);
        return static_cast<T>(number);
    } else
        return Held<std::string>(value);
}

} // namespace detail

// A property with a simple value, from its getter and its setter.
template <typename C, typename R, typename A>
TPropertyInfo Property(std::string_view name, R (C::*get)() const, void (C::*set)(A),
                       const std::type_identity_t<std::remove_cvref_t<R>>& defaultValue) {
    using T = std::remove_cvref_t<R>;
    return {
        name,
        detail::PropertyKind<T>(),
        detail::ValueNames<T>(),
        detail::ToPropertyValue<T>(defaultValue),
        [get](TPersistent& object) { return detail::ToPropertyValue<T>((static_cast<C&>(object).*get)()); },
        [set](TPersistent& object, const TPropertyValue& value) {
            (static_cast<C&>(object).*set)(detail::FromPropertyValue<T>(value));
        }};
}

// A string list; it is written to a form when it differs from the default text (LF line ends).
template <typename C>
TPropertyInfo StringsProperty(std::string_view name, const TStringList& (C::*get)() const,
                              void (C::*set)(const TStringList&), std::string defaultText = {}) {
    return {name,
            pkStrings,
            {},
            std::move(defaultText),
            [get](TPersistent& object) { return &(static_cast<C&>(object).*get)(); },
            [set](TPersistent& object, const TPropertyValue& value) {
                (static_cast<C&>(object).*set)(*detail::Held<const TStringList*>(value));
            }};
}

// A reference to another component of class T; a component of another class is refused with EConvertError.
[[noreturn]] void RefuseReference(std::string_view property, const TComponent& component);
template <typename C, typename T>
TPropertyInfo ComponentProperty(std::string_view name, T* (C::*get)() const, void (C::*set)(T*)) {
    return {name,
            pkComponent,
            {},
            static_cast<TComponent*>(nullptr),
            [get](TPersistent& object) -> TPropertyValue {
                return static_cast<TComponent*>((static_cast<C&>(object).*get)());
            },
            [set, name](TPersistent& object, const TPropertyValue& value) {
                TComponent* const component = detail::Held<TComponent*>(value);
                T* const reference = dynamic_cast<T*>(component);
                if (component && !reference)
                    RefuseReference(name, *component);
                (static_cast<C&>(object).*set)(reference);
            }};
}

// An object that the component owns and publishes with its own properties.
template <typename C, typename T>
TPropertyInfo ObjectProperty(std::string_view name, T& (C::*get)()) {
    return {name,
            pkObject,
            {},
            {},
            [get](TPersistent& object) -> TPropertyValue {
                return static_cast<TPersistent*>(&(static_cast<C&>(object).*get)());
            },
            {}};
}

inline TPropertyInfo EventProperty(std::string_view name) {
    return {name, pkEvent, {}, {}, {}, {}};
}

// A class's table: the properties of its base, then its own.
std::vector<TPropertyInfo> ExtendProperties(std::span<const TPropertyInfo> base,
                                            std::vector<TPropertyInfo> own);

} // namespace lumora
