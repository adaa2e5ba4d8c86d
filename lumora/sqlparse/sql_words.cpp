#include "lumora/sqlparse/sql_words.h"

#include "lumora/sqlparse/word_table.h"

namespace lumora {

TSQLWord SQLWordOf(std::string_view identifier) {
    if (identifier.size() > detail::LongestWord)
        return swNone;
    char characters[detail::LongestWord] = {};
    std::copy(identifier.begin(), identifier.end(), characters);
    return detail::WordAt(characters, identifier.size());
}

std::string_view SQLWordText(TSQLWord word) {
    return detail::Words[word];
}

} // namespace lumora
