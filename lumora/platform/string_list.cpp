#include "lumora/platform/string_list.h"

#include "lumora/platform/ascii.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/text_file.h"

#include <algorithm>
#include <cstring>

namespace lumora {

TStringList::TStringList() = default;
TStringList::TStringList(const TStringList& other) = default;
TStringList::TStringList(TStringList&& other) noexcept = default;
TStringList& TStringList::operator=(const TStringList& other) = default;
TStringList& TStringList::operator=(TStringList&& other) noexcept = default;
TStringList::~TStringList() = default;

TStringList::TStringList(std::string_view text) {
    SetText(text);
}

void TStringList::IndexError(int i) {
    throw EListError(i);
}

TStringList::TLine TStringList::Append(std::string_view text) {
    buffer_.resize(tail_); // drops a line that was begun and never ended
    const TLine line{tail_, text.size()};
    buffer_.append(text);
    buffer_ += '\n';
    tail_ = buffer_.size();
    return line;
}

int TStringList::Add(std::string_view line) {
    lines_.push_back(Append(line));
    return Count() - 1;
}

int TStringList::AddPair(std::string_view key, std::string_view value) {
    buffer_.append(key);
    buffer_ += '=';
    buffer_.append(value);
    EndLine();
    return Count() - 1;
}

void TStringList::EndLine() {
    lines_.push_back({tail_, buffer_.size() - tail_});
    buffer_ += '\n';
    tail_ = buffer_.size();
}

void TStringList::EndLineWithoutBreaks() {
    const std::size_t first = std::min(buffer_.find('\n', tail_), buffer_.find('\r', tail_));
    if (first != std::string::npos) {
        std::size_t to = first;
        for (std::size_t from = first; from < buffer_.size(); ++from) {
            if (buffer_[from] == '\r' && from + 1 < buffer_.size() && buffer_[from + 1] == '\n')
                continue;
            buffer_[to++] = buffer_[from] == '\r' || buffer_[from] == '\n' ? ' ' : buffer_[from];
        }
        buffer_.resize(to);
    }
    EndLine();
}

void TStringList::AddStrings(const TStringList& lines) {
    const int count = lines.Count(); // the list may be this one
    if (!lines.IsPacked()) {
        for (int i = 0; i < count; ++i)
            Add(lines[i]);
        return;
    }
    buffer_.resize(tail_);
    buffer_.append(lines.buffer_, 0, lines.tail_);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        lines_.push_back({lines.lines_[i].Start + tail_, lines.lines_[i].Length});
    tail_ = buffer_.size();
}

void TStringList::Insert(int i, std::string_view line) {
    if (i < 0 || i > Count())
        IndexError(i);
    lines_.insert(lines_.begin() + i, Append(line));
}

void TStringList::Put(int i, std::string_view line) {
    TLine& old = lines_[Check(i)];
    if (line.size() <= old.Length) {
        std::memmove(buffer_.data() + old.Start, line.data(), line.size());
        old.Length = line.size();
    } else {
        old = Append(line);
        CompactWhenWasteful();
    }
}

void TStringList::Delete(int i) {
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(Check(i)));
    CompactWhenWasteful();
}

void TStringList::Clear() {
    lines_.clear();
    buffer_.clear();
    tail_ = 0;
}

void TStringList::AppendToLast(std::string_view text) {
    TLine& last = lines_[Check(Count() - 1)];
    if (last.Start + last.Length + 1 == tail_) {
        buffer_.resize(tail_ - 1);
        buffer_.append(text);
        buffer_ += '\n';
        tail_ = buffer_.size();
        last.Length += text.size();
    } else {
        Put(Count() - 1, std::string(View(last)).append(text));
    }
}

// Changed lines leave holes; the buffer is packed again when they are the greater part of it. The sum of the
// line lengths is only taken when the buffer has grown far beyond the lines' number, so the cost stays
// linear.
void TStringList::CompactWhenWasteful() {
    if (lines_.empty()) {
        Clear();
        return;
    }
    if (buffer_.size() < 4096 || buffer_.size() < lines_.size() * 256)
        return;
    std::size_t used = 0;
    for (const TLine& line : lines_)
        used += line.Length;
    if (used * 4 > buffer_.size())
        return;
    std::string packed;
    packed.reserve(used + lines_.size());
    for (TLine& line : lines_) {
        const std::size_t start = packed.size();
        packed.append(View(line));
        packed += '\n';
        line.Start = start;
    }
    buffer_ = std::move(packed);
    tail_ = buffer_.size();
}

// A line feed stands behind every line as it was added, so lines that follow one another without a hole are
// the text itself.
bool TStringList::IsPacked() const {
    std::size_t end = 0;
    for (const TLine& line : lines_) {
        if (line.Start != end)
            return false;
        end += line.Length + 1;
    }
    return end == tail_;
}

int TStringList::IndexOf(std::string_view line) const {
    for (int i = 0; i < Count(); ++i)
        if (SameText((*this)[i], line))
            return i;
    return -1;
}

std::string_view TStringList::Name(int i) const {
    const std::string_view line = (*this)[i];
    const std::size_t at = line.find('=');
    return at == std::string_view::npos ? std::string_view() : line.substr(0, at);
}

std::string_view TStringList::ValueAt(int i) const {
    const std::string_view line = (*this)[i];
    const std::size_t at = line.find('=');
    return at == std::string_view::npos ? std::string_view() : line.substr(at + 1);
}

int TStringList::IndexOfName(std::string_view name) const {
    for (int i = 0; i < Count(); ++i) {
        const std::string_view line = (*this)[i];
        if (line.size() > name.size() && line[name.size()] == '=' &&
            SameText(line.substr(0, name.size()), name))
            return i;
    }
    return -1;
}

std::string_view TStringList::Value(std::string_view name) const {
    const int i = IndexOfName(name);
    return i < 0 ? std::string_view() : (*this)[i].substr(name.size() + 1);
}

void TStringList::SetValue(std::string_view name, std::string_view value) {
    const int i = IndexOfName(name);
    if (value.empty()) {
        if (i >= 0)
            Delete(i);
        return;
    }
    std::string line;
    line.append(name).append("=").append(value);
    if (i < 0)
        Add(line);
    else
        Put(i, line);
}

std::string TStringList::GetText() const {
    if (IsPacked())
        return buffer_.substr(0, tail_);
    std::size_t size = lines_.size();
    for (const TLine& line : lines_)
        size += line.Length;
    std::string text;
    text.reserve(size);
    for (const TLine& line : lines_) {
        text.append(View(line));
        text += '\n';
    }
    return text;
}

namespace {

// The text with LF line ends.
std::string WithLineFeeds(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 1);
    for (std::size_t start = 0;;) {
        const std::size_t cr = text.find('\r', start);
        result.append(text.substr(start, cr - start));
        if (cr == std::string_view::npos)
            return result;
        result += '\n';
        start = cr + (text.substr(cr + 1, 1) == "\n" ? 2 : 1);
    }
}

} // namespace

void TStringList::SetText(std::string_view text) {
    if (text.substr(0, 3) == "\xEF\xBB\xBF")
        text.remove_prefix(3);
    buffer_ = WithLineFeeds(text); // not in place: the text may be a view of this list
    if (!buffer_.empty() && buffer_.back() != '\n')
        buffer_ += '\n';
    tail_ = buffer_.size();
    lines_.clear();
    lines_.reserve(static_cast<std::size_t>(std::count(buffer_.begin(), buffer_.end(), '\n')));
    for (std::size_t start = 0; start < tail_;) {
        const std::size_t end = buffer_.find('\n', start);
        lines_.push_back({start, end - start});
        start = end + 1;
    }
}

void AppendCommaItem(std::string& text, std::string_view item, bool first) {
    if (!first)
        text += ',';
    bool quoted = false;
    for (const char c : item)
        quoted = quoted || IsBlank(c) || c == ',' || c == '"';
    if (!quoted) {
        text.append(item);
        return;
    }
    text += '"';
    for (const char c : item) {
        if (c == '"')
            text += '"';
        text += c;
    }
    text += '"';
}

std::string TStringList::GetCommaText() const {
    if (Count() == 1 && (*this)[0].empty())
        return "\"\"";
    std::string text;
    for (int i = 0; i < Count(); ++i)
        AppendCommaItem(text, (*this)[i], i == 0);
    return text;
}

void TStringList::SetCommaText(std::string_view text) {
    const std::string source(text); // the text may be a view of this list
    Clear();
    std::size_t at = 0;
    const auto skipBlanks = [&] {
        while (at < source.size() && IsBlank(source[at]))
            ++at;
    };
    skipBlanks();
    while (at < source.size()) {
        if (source[at] == '"') {
            for (++at; at < source.size(); ++at) {
                if (source[at] == '"' && (at + 1 == source.size() || source[at + 1] != '"'))
                    break;
                if (source[at] == '"')
                    ++at;
                buffer_ += source[at];
            }
            ++at;
        } else {
            const std::size_t start = at;
            while (at < source.size() && source[at] != ',' && !IsBlank(source[at]))
                ++at;
            buffer_.append(source, start, at - start);
        }
        EndLine();
        skipBlanks();
        if (at < source.size() && source[at] == ',') {
            ++at;
            skipBlanks();
            if (at == source.size())
                EndLine(); // a comma at the end stands before an empty item
        }
    }
}

void TStringList::LoadFromFile(const std::string& fileName) {
    SetText(ReadTextFile(fileName));
}

void TStringList::SaveToFile(const std::string& fileName) const {
    WriteTextFile(fileName, GetText());
}

bool TStringList::operator==(const TStringList& other) const {
    if (Count() != other.Count())
        return false;
    for (int i = 0; i < Count(); ++i)
        if ((*this)[i] != other[i])
            return false;
    return true;
}

} // namespace lumora
