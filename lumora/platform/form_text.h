// Form text: a component tree written and read as "object NAME: CLASS ... end" with its published properties
// and the extra properties that its components store.
#pragma once

#include "lumora/platform/component.h"
#include "lumora/platform/string_list.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

enum TFormValueKind : std::uint8_t {
    fvInteger,
    fvFloat,
    fvString,
    fvIdentifier, // True, False, an enumeration name or a component's name
    fvSet,        // [a, b]; the element names stand in Items
    fvList        // ( ... ); a string list is a list of strings
};

// One value as a form text holds it.
struct TFormValue {
    TFormValueKind Kind = fvInteger;
    std::int64_t Integer = 0;
    double Float = 0;
    std::string Text;
    std::vector<TFormValue> Items;

    static TFormValue FromString(std::string text);
    static TFormValue FromStrings(const TStringList& lines);
    // The lines of a list of strings; EReadError when it is none.
    TStringList ToStrings() const;
};

// Makes a component of a registered class, owned by `owner`. A class that is registered again gets the new
// factory.
using TComponentFactory = TComponent* (*)(TComponent* owner);
void RegisterComponentClass(std::string_view className, TComponentFactory factory);

// What a form text may hold, so that no text can exhaust the stack or the machine's patience.
inline constexpr int MaxFormNesting = 200;     // of components, and of lists in one value
inline constexpr int MaxFormComponents = 4000; // in one text

// The form text of a component and of all that it owns, LF line ends. An owned component without a name is
// its owner's private affair and is not written; neither are events, nor references to what is not part of
// this form. EConvertError for what has no form text (a number that is none, nesting too deep).
std::string WriteFormText(TComponent& root);

// Reads a form text into an existing component (of the class the text names). The components in it are made,
// each owned by the one it stands in. A reference is the path of names below `root` ("Child",
// "Child.GrandChild"), the name of `root`, or a name that only one component of the whole form bears; it may
// point forward. Once all is read and referred, `Loaded` is called on each component, in reading order but
// after those that it owns, so `root` comes last. EReadError names the line of what is wrong; what a setter
// or `Loaded` throws becomes one too. Components that were made until then stay owned, and none is left in
// the loading state. A setter must not free components of the form.
void ReadFormText(std::string_view text, TComponent& root);

} // namespace lumora
