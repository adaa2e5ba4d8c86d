// An ordered list of text lines: the carrier of every text format of the package.
//
// The lines stand one behind the other in one buffer, each with a line feed behind it, so reading a text or
// adding a line allocates nothing per line, and the buffer mostly is the text. Views that the list gives out
// are valid until its next change.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TStringList {
public:
    TStringList();
    explicit TStringList(std::string_view text);
    TStringList(const TStringList& other);
    TStringList(TStringList&& other) noexcept;
    TStringList& operator=(const TStringList& other);
    TStringList& operator=(TStringList&& other) noexcept;
    ~TStringList();

    int Count() const { return static_cast<int>(lines_.size()); }
    bool Empty() const { return Count() == 0; }
    // Line i; EListError when there is none.
    std::string_view operator[](int i) const { return View(lines_[Check(i)]); }
    std::string_view Last() const { return (*this)[Count() - 1]; }

    int Add(std::string_view line);
    // Adds the line "key=value"; returns its index.
    int AddPair(std::string_view key, std::string_view value);
    void AddStrings(const TStringList& lines);
    // Inserts before line i; i may be Count().
    void Insert(int i, std::string_view line);
    void Put(int i, std::string_view line);
    void Delete(int i);
    void Clear();
    // Appends to the end of the last line; the list must not be empty.
    void AppendToLast(std::string_view text);
    // For writers that build a line in place: what is appended to Tail() until EndLine becomes the next line.
    std::string& Tail() { return buffer_; }
    void EndLine();
    // The same for text that must be one line: each line break in it becomes one blank.
    void EndLineWithoutBreaks();

    // Index of the first line equal to the text, letter case ignored; -1 when absent.
    int IndexOf(std::string_view line) const;

    // Lines of the form name=value. Names are compared without regard to case; the first of equal names
    // counts.
    int IndexOfName(std::string_view name) const;
    std::string_view Name(int i) const;
    std::string_view ValueAt(int i) const;
    std::string_view Value(std::string_view name) const;
    // Sets the value of the first line of that name, or adds one; an empty value deletes the line.
    void SetValue(std::string_view name, std::string_view value);

    // The lines, each ended by a line feed.
    std::string GetText() const;
    // Takes LF, CRLF and CR line ends and a leading byte order mark.
    void SetText(std::string_view text);

    // Comma text: items separated by ","; an item with a blank, comma or double quote is put in double
    // quotes, inner ones doubled. On reading, blanks separate unquoted items too.
    std::string GetCommaText() const;
    void SetCommaText(std::string_view text);

    // EFileError names a file that cannot be read or written. Saving is all or nothing.
    void LoadFromFile(const std::string& fileName);
    void SaveToFile(const std::string& fileName) const;

    bool operator==(const TStringList& other) const;

    class const_iterator {
    public:
        const_iterator(const TStringList& list, int i) : list_(&list), i_(i) {}
        std::string_view operator*() const { return (*list_)[i_]; }
        const_iterator& operator++() {
            ++i_;
            return *this;
        }
        bool operator!=(const const_iterator& other) const { return i_ != other.i_; }

    private:
        const TStringList* list_;
        int i_;
    };
    const_iterator begin() const { return {*this, 0}; }
    const_iterator end() const { return {*this, Count()}; }

private:
    struct TLine {
        std::size_t Start;
        std::size_t Length;
    };

    std::size_t Check(int i) const {
        if (i < 0 || static_cast<std::size_t>(i) >= lines_.size())
            IndexError(i);
        return static_cast<std::size_t>(i);
    }
    [[noreturn]] static void IndexError(int i);
    std::string_view View(const TLine& line) const { return {buffer_.data() + line.Start, line.Length}; }
    TLine Append(std::string_view text);
    bool IsPacked() const; // the buffer is the text
    void CompactWhenWasteful();

    std::string buffer_;
    std::vector<TLine> lines_;
    std::size_t tail_ = 0; // where the line under construction in buffer_ begins
};

using TStrings = TStringList;

void AppendCommaItem(std::string& text, std::string_view item, bool first);

} // namespace lumora
