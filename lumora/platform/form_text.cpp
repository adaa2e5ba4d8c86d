#include "lumora/platform/form_text.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/convert.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/form_lexer.h"
#include "lumora/platform/properties.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <unordered_map>

namespace lumora {

TFormValue TFormValue::FromString(std::string text) {
    TFormValue value;
    value.Kind = fvString;
    value.Text = std::move(text);
    return value;
}

TFormValue TFormValue::FromStrings(const TStringList& lines) {
    TFormValue value;
    value.Kind = fvList;
    value.Items.reserve(static_cast<std::size_t>(lines.Count()));
    for (const std::string_view line : lines)
        value.Items.push_back(FromString(std::string(line)));
    return value;
}

TStringList TFormValue::ToStrings() const {
    if (Kind != fvList)
        throw EReadError("A list of strings is expected here");
    TStringList lines;
    for (const TFormValue& item : Items) {
        if (item.Kind != fvString)
            throw EReadError("A list of strings holds something that is no string");
        lines.Add(item.Text);
    }
    return lines;
}

namespace {

using TFactories = std::unordered_map<std::string, TComponentFactory, TNoCaseHash, TNoCaseEqual>;

TFactories& Factories() {
    static TFactories factories;
    return factories;
}

} // namespace

void RegisterComponentClass(std::string_view className, TComponentFactory factory) {
    Factories()[std::string(className)] = factory;
}

// Writing.

class TFormWriter : public TFiler {
public:
    explicit TFormWriter(TComponent& root) : root_(root) {}

    std::string Write() {
        WriteComponent(root_);
        return std::move(text_);
    }

    void DefineProperty(std::string_view name, const std::function<void(const TFormValue&)>&,
                        const std::function<TFormValue()>& write, bool hasData) override {
        if (hasData && write)
            WriteProperty(name, write());
    }

private:
    void WriteComponent(TComponent& component) {
        if (level_ >= MaxFormNesting)
            throw EConvertError("The components are nested too deeply for a form text");
        BeginLine();
        text_ += "object ";
        if (!component.GetName().empty())
            text_.append(component.GetName()).append(": ");
        text_.append(component.ClassName()) += '\n';
        ++level_;
        WriteProperties(component, {});
        component.DefineProperties(*this);
        for (TComponent* const owned : component.components_.Items())
            if (!owned->GetName().empty())
                WriteComponent(*owned);
        --level_;
        BeginLine();
        text_ += "end\n";
    }

    void WriteProperties(TPersistent& object, const std::string& prefix) {
        for (const TPropertyInfo& property : object.PublishedProperties())
            if (property.Kind != pkEvent)
                WritePublished(property, property.Read(object), prefix + std::string(property.Name));
    }

    void WritePublished(const TPropertyInfo& property, const TPropertyValue& value, const std::string& name) {
        if (property.Kind == pkObject) {
            if (TPersistent* const object = std::get<TPersistent*>(value))
                WriteProperties(*object, name + ".");
        } else if (property.Kind == pkStrings) {
            const TStringList& lines = *std::get<const TStringList*>(value);
            if (lines.GetText() != std::get<std::string>(property.Default))
                WriteProperty(name + ".Strings", TFormValue::FromStrings(lines));
        } else if (value != property.Default) {
            const TFormValue stored = ToFormValue(property, value);
            if (property.Kind != pkComponent || !stored.Text.empty())
                WriteProperty(name, stored);
        }
    }

    TFormValue ToFormValue(const TPropertyInfo& property, const TPropertyValue& value) const {
        TFormValue stored;
        if (const std::string* const text = std::get_if<std::string>(&value))
            return TFormValue::FromString(*text);
        if (TComponent* const* const component = std::get_if<TComponent*>(&value)) {
            stored.Kind = fvIdentifier;
            stored.Text = *component ? ReferenceTo(**component) : "nil";
            return stored;
        }
        const std::int64_t number = std::get<std::int64_t>(value);
        switch (property.Kind) {
        case pkChar:
            return TFormValue::FromString(std::string(1, static_cast<char>(number)));
        case pkBoolean:
            stored.Kind = fvIdentifier;
            stored.Text = number != 0 ? "True" : "False";
            break;
        case pkEnumeration:
            if (number < 0 || static_cast<std::size_t>(number) >= property.Names.size())
                throw EConvertError("Property " + std::string(property.Name) + " has a value without a name");
            stored.Kind = fvIdentifier;
            stored.Text = property.Names[static_cast<std::size_t>(number)];
            break;
        case pkSet:
            stored.Kind = fvSet;
            for (std::size_t i = 0; i < property.Names.size(); ++i)
                if ((static_cast<std::uint64_t>(number) >> i & 1) != 0)
                    stored.Items.push_back(TFormValue::FromString(std::string(property.Names[i])));
            break;
        default:
            stored.Integer = number;
        }
        return stored;
    }

    // The path of names from the root; empty for what is not below it or has no name on the way.
    std::string ReferenceTo(const TComponent& component) const {
        if (&component == &root_)
            return root_.GetName();
        std::string path;
        for (const TComponent* at = &component; at != &root_; at = at->GetOwner()) {
            if (!at || at->GetName().empty())
                return {};
            path.insert(0, path.empty() ? at->GetName() : at->GetName() + '.');
        }
        return path;
    }

    void WriteProperty(std::string_view name, const TFormValue& value) {
        BeginLine();
        text_.append(name).append(" = ");
        WriteValue(value);
        text_ += '\n';
    }

    void WriteValue(const TFormValue& value) {
        switch (value.Kind) {
        case fvInteger:
            text_ += std::to_string(value.Integer);
            break;
        case fvFloat:
            WriteFloat(value.Float);
            break;
        case fvString:
            WriteString(value.Text);
            break;
        case fvIdentifier:
            text_ += value.Text;
            break;
        case fvSet:
            text_ += '[';
            for (std::size_t i = 0; i < value.Items.size(); ++i)
                text_.append(i == 0 ? "" : ", ").append(value.Items[i].Text);
            text_ += ']';
            break;
        case fvList:
            WriteList(value.Items);
        }
    }

    void WriteFloat(double number) {
        if (!std::isfinite(number))
            throw EConvertError("A form text cannot hold a number that is infinite or none");
        const std::string text = FloatToStr(number);
        text_ += text;
        if (text.find_first_of(".E") == std::string::npos)
            text_ += ".0"; // it is read back as a floating-point number, not as an integer
    }

    void WriteList(const std::vector<TFormValue>& items) {
        text_ += '(';
        ++level_;
        for (const TFormValue& item : items) {
            text_ += '\n';
            BeginLine();
            WriteValue(item);
        }
        --level_;
        text_ += ')';
    }

    // Long strings go on in the next line after a "+", but never inside a character.
    void WriteString(std::string_view text) {
        constexpr std::size_t lineLength = 80;
        std::size_t lineStart = text_.size();
        bool quoted = false;
        const auto setQuoted = [&](bool on) {
            if (quoted != on)
                text_ += '\'';
            quoted = on;
        };
        if (text.empty())
            text_ += "''";
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (text_.size() - lineStart >= lineLength && (byte & 0xC0) != 0x80) {
                setQuoted(false);
                text_ += " +\n";
                ++level_;
                BeginLine();
                --level_;
                lineStart = text_.size();
            }
            setQuoted(byte >= ' ' && byte != 0x7F);
            if (!quoted) {
                text_.append("#").append(std::to_string(byte));
                continue;
            }
            text_ += c;
            if (c == '\'')
                text_ += c;
        }
        setQuoted(false);
    }

    void BeginLine() { text_.append(static_cast<std::size_t>(level_) * 2, ' '); }

    TComponent& root_;
    std::string text_;
    int level_ = 0;
};

std::string WriteFormText(TComponent& root) {
    return TFormWriter(root).Write();
}

// Reading.

namespace {

// A component by its owner and name.
struct TNameKey {
    const TComponent* Owner;
    std::string_view Name;
    bool operator==(const TNameKey& other) const {
        return Owner == other.Owner && SameText(Name, other.Name);
    }
};
struct TNameKeyHash {
    std::size_t operator()(const TNameKey& key) const {
        return TNoCaseHash()(key.Name) * 31 + std::hash<const TComponent*>()(key.Owner);
    }
};

// Finds the components of a form by name.
class TNameIndex {
public:
    explicit TNameIndex(TComponent& root) : root_(root) {
        std::vector<TComponent*> waiting = {&root};
        while (!waiting.empty()) {
            const TComponent* const owner = waiting.back();
            waiting.pop_back();
            for (int i = 0; i < owner->GetComponentCount(); ++i) {
                Add(*owner->GetComponent(i));
                waiting.push_back(owner->GetComponent(i));
            }
        }
    }

    // The component that a reference names; null for none.
    TComponent* Find(std::string_view path) const {
        std::size_t dot = path.find('.');
        TComponent* component = FindFirst(path.substr(0, dot));
        while (component && dot != std::string_view::npos) {
            path.remove_prefix(dot + 1);
            dot = path.find('.');
            component = Lookup({component, path.substr(0, dot)});
        }
        return component;
    }

private:
    void Add(TComponent& component) {
        if (component.GetName().empty())
            return;
        components_.emplace(TNameKey{component.GetOwner(), component.GetName()}, &component);
        const auto [at, isNew] = components_.emplace(TNameKey{nullptr, component.GetName()}, &component);
        if (!isNew)
            at->second = nullptr; // several bear it: it says nothing
    }

    TComponent* Lookup(const TNameKey& key) const {
        const auto found = components_.find(key);
        return found == components_.end() ? nullptr : found->second;
    }

    TComponent* FindFirst(std::string_view name) const {
        if (TComponent* const component = Lookup({&root_, name}))
            return component;
        return SameText(root_.GetName(), name) ? &root_ : Lookup({nullptr, name});
    }

    TComponent& root_;
    std::unordered_map<TNameKey, TComponent*, TNameKeyHash> components_;
};

// What the text gives for a property, as the property's writer takes it.
TPropertyValue ToEnumOrdinal(const TPropertyInfo& property, const std::string& name) {
    for (std::size_t i = 0; i < property.Names.size(); ++i)
        if (SameText(property.Names[i], name))
            return static_cast<std::int64_t>(i);
    throw EReadError("Property " + std::string(property.Name) + " has no value \"" + name.substr(0, 60) +
                     "\"");
}

TPropertyValue ToSetBits(const TPropertyInfo& property, const TFormValue& value) {
    std::uint64_t bits = 0;
    for (const TFormValue& item : value.Items)
        bits |= std::uint64_t{1} << std::get<std::int64_t>(ToEnumOrdinal(property, item.Text));
    return static_cast<std::int64_t>(bits);
}

// Colours are written as signed or as unsigned numbers of 32 bits.
TPropertyValue ToColor(std::int64_t number) {
    if (number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::uint32_t>::max())
        throw EReadError("The number is no colour");
    return std::int64_t{static_cast<std::int32_t>(static_cast<std::uint32_t>(number))};
}

constexpr std::string_view KindNames[] = {"an integer",
                                          "True or False",
                                          "a character",
                                          "a colour's number",
                                          "a name",
                                          "a set",
                                          "a string",
                                          "a list of strings (as .Strings)",
                                          "no value itself, its properties do",
                                          "a component's name",
                                          "no value from a form text"};

TPropertyValue ToPropertyValue(const TPropertyInfo& property, const TFormValue& value) {
    switch (property.Kind) {
    case pkInteger:
        if (value.Kind == fvInteger)
            return value.Integer;
        break;
    case pkBoolean:
        if (value.Kind == fvIdentifier && (SameText(value.Text, "True") || SameText(value.Text, "False")))
            return std::int64_t{SameText(value.Text, "True")};
        break;
    case pkChar:
        if (value.Kind == fvString && value.Text.size() == 1)
            return std::int64_t{value.Text[0]};
        break;
    case pkColor:
        if (value.Kind == fvInteger)
            return ToColor(value.Integer);
        break;
    case pkEnumeration:
        if (value.Kind == fvIdentifier)
            return ToEnumOrdinal(property, value.Text);
        break;
    case pkSet:
        if (value.Kind == fvSet)
            return ToSetBits(property, value);
        break;
    case pkString:
        if (value.Kind == fvString)
            return value.Text;
        break;
    default: // string lists and references have their own way; objects and events have no value
        break;
    }
    throw EReadError("Property " + std::string(property.Name) + " takes " +
                     std::string(KindNames[property.Kind]));
}

// Calls `action`; what it throws becomes an EReadError of the line.
template <typename TAction>
void OnLine(std::size_t line, const TAction& action) {
    try {
        action();
    } catch (const std::exception& error) {
        RaiseReadError(line, error.what());
    }
}

} // namespace

class TFormReader : public TFiler {
public:
    TFormReader(std::string_view text, TComponent& root) : lexer_(text), root_(root) {}
    ~TFormReader() override {
        for (const TRead& read : started_)
            read.Component->state_.Exclude(csLoading);
    }

    void Read() {
        const THeader header = ReadHeader();
        if (!SameText(header.ClassName, root_.ClassName()))
            RaiseReadError(header.Line, "The text is of a " + header.ClassName.substr(0, 60) + ", not of a " +
                                            std::string(root_.ClassName()));
        ReadComponent(root_, header);
        if (lexer_.Token() != ftkEnd)
            lexer_.FailExpected("the end of the text");
        ResolveReferences();
        for (const TRead& read : finished_)
            OnLine(read.Line, [&read] { read.Component->Loaded(); });
    }

    // Asked of a component for a property that is not published: is it this one?
    void DefineProperty(std::string_view name, const std::function<void(const TFormValue&)>& read,
                        const std::function<TFormValue()>&, bool) override {
        if (extraTaken_ || !SameText(name, extraName_))
            return;
        extraTaken_ = true;
        if (read)
            read(*extraValue_);
    }

private:
    struct THeader {
        std::string Name, ClassName;
        std::size_t Line;
    };
    struct TRead {
        TComponent* Component;
        std::size_t Line;
    };
    struct TReference {
        TPersistent* Object;
        const TPropertyInfo* Property;
        std::string Path;
        std::size_t Line;
        TComponent* Target = nullptr;
    };

    THeader ReadHeader() {
        THeader header;
        header.Line = lexer_.Line();
        if (!lexer_.IsWord("object"))
            lexer_.FailExpected("\"object\"");
        lexer_.Next();
        header.ClassName = lexer_.TakeName("a component's name");
        if (lexer_.Skip(':')) {
            header.Name = std::move(header.ClassName);
            header.ClassName = lexer_.TakeName("a component's class");
        }
        return header;
    }

    void ReadComponent(TComponent& component, const THeader& header) {
        started_.push_back({&component, header.Line});
        component.state_.Include(csLoading);
        if (!header.Name.empty())
            OnLine(header.Line, [&] { component.SetName(header.Name); });
        while (!lexer_.IsWord("end")) {
            if (lexer_.IsWord("object"))
                ReadOwned(component);
            else
                ReadProperty(component);
        }
        lexer_.Next();
        finished_.push_back({&component, header.Line});
    }

    void ReadOwned(TComponent& owner) {
        const THeader header = ReadHeader();
        if (++depth_ >= MaxFormNesting)
            RaiseReadError(header.Line, "The components are nested too deeply");
        if (started_.size() >= static_cast<std::size_t>(MaxFormComponents))
            RaiseReadError(header.Line, "The text holds too many components");
        const auto factory = Factories().find(header.ClassName);
        if (factory == Factories().end())
            RaiseReadError(header.Line, "Class " + header.ClassName.substr(0, 60) + " is not known");
        TComponent* component = nullptr;
        OnLine(header.Line, [&] { component = factory->second(&owner); });
        if (!component)
            RaiseReadError(header.Line, "Class " + header.ClassName + " makes no components");
        ReadComponent(*component, header);
        --depth_;
    }

    // A name, or several joined by dots.
    std::string ReadPath(std::string_view what) {
        std::string path = lexer_.TakeName(what);
        while (lexer_.Skip('.'))
            path.append(".").append(lexer_.TakeName("a name"));
        return path;
    }

    void ReadProperty(TComponent& component) {
        const std::size_t line = lexer_.Line();
        const std::string path = ReadPath("a property, \"object\" or \"end\"");
        if (!lexer_.Skip('='))
            lexer_.FailExpected("\"=\"");
        const TFormValue value = ReadValue(0);
        OnLine(line, [&] {
            if (!SetPublished(component, path, value, line) && !SetExtra(component, path, value))
                throw EReadError("A " + std::string(component.ClassName()) + " has no property \"" +
                                 path.substr(0, 60) + "\"");
        });
    }

    TFormValue ReadValue(int depth) {
        if (depth >= MaxFormNesting)
            RaiseReadError(lexer_.Line(), "The lists are nested too deeply");
        TFormValue value;
        switch (lexer_.Token()) {
        case ftkInteger:
            value.Integer = lexer_.Integer();
            lexer_.Next();
            return value;
        case ftkFloat:
            value.Kind = fvFloat;
            value.Float = lexer_.Float();
            lexer_.Next();
            return value;
        case ftkString:
            return ReadString();
        case ftkName:
            value.Kind = fvIdentifier;
            value.Text = ReadPath("a value");
            return value;
        default:
            break;
        }
        if (lexer_.Skip('['))
            return ReadSet();
        if (!lexer_.Skip('('))
            lexer_.FailExpected("a value");
        value.Kind = fvList;
        while (!lexer_.Skip(')'))
            value.Items.push_back(ReadValue(depth + 1));
        return value;
    }

    TFormValue ReadString() {
        TFormValue value = TFormValue::FromString(lexer_.Text());
        lexer_.Next();
        while (lexer_.Skip('+')) {
            if (lexer_.Token() != ftkString)
                lexer_.FailExpected("a string");
            value.Text += lexer_.Text();
            lexer_.Next();
        }
        return value;
    }

    TFormValue ReadSet() {
        TFormValue value;
        value.Kind = fvSet;
        if (lexer_.Skip(']'))
            return value;
        do {
            TFormValue item;
            item.Kind = fvIdentifier;
            item.Text = lexer_.TakeName("the name of a set's element");
            value.Items.push_back(std::move(item));
        } while (lexer_.Skip(','));
        if (!lexer_.Skip(']'))
            lexer_.FailExpected("\",\" or \"]\"");
        return value;
    }

    // False when the object has no such published property.
    bool SetPublished(TPersistent& component, std::string_view path, const TFormValue& value,
                      std::size_t line) {
        TPersistent* object = &component;
        for (;;) {
            const std::size_t dot = path.find('.');
            const TPropertyInfo* const property = object->FindProperty(path.substr(0, dot));
            const std::string_view rest =
                dot == std::string_view::npos ? std::string_view() : path.substr(dot + 1);
            if (!property)
                return false;
            if (rest.empty()) {
                SetValue(*object, *property, value, line);
                return true;
            }
            if (property->Kind == pkStrings && SameText(rest, "Strings")) {
                const TStringList lines = value.ToStrings();
                property->Write(*object, &lines);
                return true;
            }
            if (property->Kind != pkObject || !(object = std::get<TPersistent*>(property->Read(*object))))
                return false;
            path = rest;
        }
    }

    void SetValue(TPersistent& object, const TPropertyInfo& property, const TFormValue& value,
                  std::size_t line) {
        if (property.Kind != pkComponent)
            property.Write(object, ToPropertyValue(property, value));
        else if (value.Kind != fvIdentifier)
            throw EReadError("Property " + std::string(property.Name) + " takes a component's name");
        else
            references_.push_back({&object, &property, value.Text, line});
    }

    bool SetExtra(TComponent& component, std::string_view name, const TFormValue& value) {
        extraName_ = name;
        extraValue_ = &value;
        extraTaken_ = false;
        component.DefineProperties(*this);
        return extraTaken_;
    }

    // All are found before the first is set: a setter may rename what the index knows by name.
    void ResolveReferences() {
        const TNameIndex names(root_);
        for (TReference& reference : references_) {
            if (SameText(reference.Path, "nil"))
                continue;
            reference.Target = names.Find(reference.Path);
            if (!reference.Target)
                RaiseReadError(reference.Line, "There is no component \"" + reference.Path.substr(0, 60) +
                                                   "\", or there are several");
        }
        for (const TReference& reference : references_)
            OnLine(reference.Line, [&] { reference.Property->Write(*reference.Object, reference.Target); });
    }

    TFormLexer lexer_;
    TComponent& root_;
    int depth_ = 0;
    std::vector<TRead> started_;  // as their texts begin
    std::vector<TRead> finished_; // as their texts end
    std::vector<TReference> references_;
    std::string_view extraName_;
    const TFormValue* extraValue_ = nullptr;
    bool extraTaken_ = false;
};

void ReadFormText(std::string_view text, TComponent& root) {
    TFormReader(text, root).Read();
}

} // namespace lumora
