// The scanner and the SELECT parser: any bytes give a tree or ESQLParserError. The first byte chooses
// strictness.
#include "lumora/sqlparse/Vsqlpars.h"
#include "lumora/sqlparse/parse_tree_text.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    static lumora::TVSQLParser parser;
    parser.SetStrict(data[0] % 2 == 0);
    parser.SetSQLText({reinterpret_cast<const char*>(data) + 1, size - 1});
    try {
        parser.Parse();
        lumora::TStringList lines;
        lumora::ParseTreeToStrings(parser.GetResult(), lines);
    } catch (const lumora::ESQLParserError&) {
    }
    return 0;
}
