// The filters of datasets: any bytes give a truth or EFilterError. The first byte chooses the options and how
// the columns are typed.
#include "lumora/platform/filter_expression.h"

#include <cstddef>
#include <cstdint>

namespace {

class TRow : public lumora::TFilterValueSource {
public:
    lumora::TFilterValue Value(int column) const override {
        switch (column) {
        case 0:
            return lumora::TFilterValue::OfText("abcabc*%_\xc3\xbc");
        case 1:
            return lumora::TFilterValue::OfNumber(2.5);
        case 2:
            return lumora::TFilterValue::OfDateTime(36955, 37800000);
        default:
            return {};
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumora;
    if (size == 0)
        return 0;
    TFilterOptions options;
    options.CaseInsensitive = data[0] % 2 == 0;
    options.NoPartialCompare = data[0] / 2 % 2 == 0;
    const bool typed = data[0] / 4 % 2 == 0;
    const TFilterColumn columns[] = {{"a", typed ? ftString : ftUnknown},
                                     {"b", typed ? ftFloat : ftUnknown},
                                     {"c", typed ? ftDateTime : ftUnknown},
                                     {"d e", typed ? ftDate : ftUnknown}};
    try {
        TFilterExpression filter({reinterpret_cast<const char*>(data) + 1, size - 1}, options);
        filter.Bind(columns);
        filter.Evaluate(TRow());
    } catch (const EFilterError&) {
    }
    return 0;
}
