// Finds out whether a condition's SQL text is what a template makes, and with which values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora {

// What stood in a template's value places. Texts in quotes are without them, doubled quotes inside are one.
struct TCapture {
    std::string Text;
    bool Quoted = false;
    bool Found = false;
};

class TSQLPattern {
public:
    TSQLPattern();
    explicit TSQLPattern(std::string_view templateText);
    TSQLPattern(TSQLPattern&& other) noexcept;
    TSQLPattern& operator=(TSQLPattern&& other) noexcept;
    ~TSQLPattern();

    // The literal before "@f" and behind it, lower-cased and without blanks: what can be told from a text's
    // first characters without matching.
    const std::string& Head() const { return head_; }
    const std::string& Tail() const { return tail_; }

    // Matches the whole text; "@f" stands for exactly the stretch of it that begins at `fieldStart`. Literal
    // parts are compared without regard to blanks and case. A place in quotes also takes an unquoted value.
    // `captures` gets the values from the first on.
    bool Match(std::string_view text, std::size_t fieldStart, std::size_t fieldLength,
               std::vector<TCapture>& captures) const;
    // The same where "@f" may stand for any stretch, which `field` gets; empty for a template without "@f".
    bool Match(std::string_view text, std::string_view& field, std::vector<TCapture>& captures) const;
    bool Match(std::string_view text, std::vector<TCapture>& captures) const;

private:
    enum TElementKind : unsigned char { elLiteral, elField, elValue };
    struct TElement {
        TElementKind Kind = elLiteral;
        int Value = 0;
        bool Quoted = false;
        std::string Text;   // of a literal, folded
        std::string Before; // in the quotes with a value
        std::string After;
        char Escape = '\0'; // of a pattern whose wildcards are meant as they stand behind it
    };
    class TMatcher;

    void AddLiteral(std::string_view text);
    void FindEscapes();

    std::vector<TElement> elements_;
    std::string head_;
    std::string tail_;
};

} // namespace lumora
