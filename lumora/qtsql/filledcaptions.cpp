#include "lumora/qtsql/filledcaptions.h"

#include "lumora/platform/ascii.h"
#include "lumora/qtsql/captions.h"
#include "lumora/qtsql/tablename.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <unordered_set>

namespace lumora {

namespace {

using NameSet = std::unordered_set<std::string, TNoCaseHash, TNoCaseEqual>;
using Words = std::vector<std::string>;

// The words of a name in lower case.
Words wordsOf(std::string_view name) {
    Words words;
    const std::string caption = readableCaption(name);
    for (const std::string_view word : SplitText(caption, ' '))
        words.push_back(LowerAscii(word));
    return words;
}

std::string joined(const Words& words) {
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// "airports" and "airport" are one word, and so are "categories" and "category".
std::string singular(std::string word) {
    if (word.size() > 3 && word.ends_with("ies"))
        return word.replace(word.size() - 3, 3, "y");
    if (word.size() > 3 && word.ends_with("s") && !word.ends_with("ss"))
        word.pop_back();
    return word;
}

Words singulars(Words words) {
    for (std::string& word : words)
        word = singular(std::move(word));
    return words;
}

bool isKeyWord(std::string_view word) {
    return isOneOf(word, {"id", "fk", "key"});
}

// "genreid" where the table is "genres".
std::string withoutGluedID(std::string word, const Words& table) {
    const std::string name = table.empty() ? std::string() : singular(table.back());
    return word.size() > 2 && word.ends_with("id") && !name.empty() && word.ends_with(name + "id")
               ? word.substr(0, word.size() - 2)
               : word;
}

// Of several columns the first that is not called as the one that it refers to.
const std::string& nameOf(const ForeignKey& key) {
    for (std::size_t i = 0; i < key.columns.size(); ++i)
        if (!SameText(key.columns[i], key.referencedColumns[i]))
            return key.columns[i];
    return key.columns[0];
}

// The words of a foreign key's column without those that only say that it is one.
Words keyWords(const ForeignKey& key) {
    const Words table = wordsOf(fromModelName(key.referencedTable).name);
    Words words = wordsOf(nameOf(key));
    if (words.size() > 1 && isKeyWord(words.back()))
        words.pop_back();
    else if (words.size() > 1 && words.front() == "fk")
        words.erase(words.begin());
    else if (!words.empty())
        words.back() = withoutGluedID(words.back(), table);
    return words;
}

bool isNumberOrGuid(const SourceColumn& column) {
    return IsNumber(column.type) || column.type == ftGuid;
}

// --- What a record is known by.

bool isReadableText(const DatabaseContents& contents, const SourceColumn& column) {
    constexpr int longest = 255;
    return column.comparison == Comparison::Text && column.size <= longest && column.storage == dsAsType &&
           !IsDateOrTime(column.type) && !IsNumber(column.type) && !contents.keyOf(column);
}

// The smaller the better; a large number for what tells nothing.
int rankOf(const Words& words, const Words& table) {
    constexpr int none = 100;
    const std::string last = words.empty() ? std::string() : words.back();
    const bool isQualified = words.size() > 1;
    if (joined(words) == "name" || joined(words) == "full name")
        return 0;
    if (joined(singulars(words)) == joined(singulars(table)))
        return 1;
    if (last == "name" && isQualified && singular(words[0]) == singular(table.back()))
        return 2;
    if (last == "name" && isQualified &&
        !isOneOf(words[words.size() - 2], {"first", "last", "middle", "given", "family", "user", "file",
                                           "nick", "sur", "host", "domain", "short", "contact"}))
        return 3;
    // 4: a person's first and last name
    constexpr std::string_view others[] = {"title", "label", "caption", "subject"};
    for (const std::string_view other : others)
        if (last == other)
            return isQualified ? 6 : 5;
    if (isOneOf(last, {"code", "symbol", "abbreviation", "abbr"}))
        return 7;
    return last == "description" ? 8 : none;
}

bool isFirstName(const Words& words) {
    return isOneOf(joined(words), {"first name", "firstname", "given name", "forename", "fname"});
}
bool isLastName(const Words& words) {
    return isOneOf(joined(words), {"last name", "lastname", "family name", "surname", "lname"});
}

// --- Captions.

class ColumnNamer {
public:
    ColumnNamer(DatabaseContents& contents, SourceTable& table) : contents_(contents), table_(table) {}

    void name() {
        NameSet plain;
        for (const SourceColumn& column : table_.columns)
            plain.insert(readableCaption(column.name));
        for (SourceColumn& column : table_.columns) {
            column.caption = readableCaption(column.name);
            const ForeignKey* const key = contents_.keyOf(column);
            const std::string shorter = key ? readableCaption(joined(keyWords(*key))) : std::string();
            if (!shorter.empty() && plain.insert(shorter).second)
                column.caption = shorter;
        }
    }

    void sort() {
        const std::vector<std::string> telling = tellingColumns(contents_, table_);
        const auto placeOf = [&](const SourceColumn& column) {
            if (const auto found = std::find(telling.begin(), telling.end(), column.name);
                found != telling.end())
                return static_cast<int>(found - telling.begin()) - 2;
            if (contents_.keyOf(column))
                return 1;
            return table_.isInPrimaryKey(column.name) && isNumberOrGuid(column) ? 2 : 0;
        };
        std::stable_sort(
            table_.columns.begin(), table_.columns.end(),
            [&](const SourceColumn& a, const SourceColumn& b) { return placeOf(a) < placeOf(b); });
    }

private:
    DatabaseContents& contents_;
    SourceTable& table_;
};

} // namespace

void nameColumns(DatabaseContents& contents) {
    for (SourceTable& table : contents.tables) {
        ColumnNamer namer(contents, table);
        namer.name();
        namer.sort();
    }
}

std::vector<std::string> tellingColumns(const DatabaseContents& contents, const SourceTable& table) {
    constexpr int personRank = 4;
    const Words tableWords = wordsOf(fromModelName(table.name).name);
    const SourceColumn* best = nullptr;
    const SourceColumn* first = nullptr;
    const SourceColumn* last = nullptr;
    int bestRank = 100;
    for (const SourceColumn& column : table.columns) {
        if (!isReadableText(contents, column))
            continue;
        const Words words = wordsOf(column.name);
        first = !first && isFirstName(words) ? &column : first;
        last = !last && isLastName(words) ? &column : last;
        if (const int rank = rankOf(words, tableWords); rank < bestRank) {
            bestRank = rank;
            best = &column;
        }
    }
    if (bestRank > personRank && last)
        return first ? std::vector<std::string>{first->name, last->name}
                     : std::vector<std::string>{last->name};
    return best ? std::vector<std::string>{best->name} : std::vector<std::string>();
}

std::string roleOf(const ForeignKey& key) {
    Words known = singulars(wordsOf(fromModelName(key.referencedTable).name));
    for (std::string& word : singulars(wordsOf(key.referencedColumns[0])))
        known.push_back(std::move(word));
    Words words = keyWords(key);
    std::erase_if(words, [&](const std::string& word) {
        return isKeyWord(word) || std::find(known.begin(), known.end(), singular(word)) != known.end();
    });
    return joined(words);
}

} // namespace lumora
