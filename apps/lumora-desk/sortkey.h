// How the values of a column are put in order.
#pragma once

#include <QCollator>
#include <QVariant>

#include <cstdint>
#include <optional>

namespace lumora::desk {

struct SortKey {
    enum class Kind : std::uint8_t { Number, Text, None };

    Kind kind = Kind::None;
    long double number = 0; // holds every 64-bit integer
    std::optional<QCollatorSortKey> text{};
};

// Makes the keys of one column; texts compare as the language has it.
class SortKeyMaker {
public:
    // `decimal`: the column's texts are numbers.
    explicit SortKeyMaker(bool decimal);

    SortKey operator()(const QVariant& value) const;

private:
    const bool decimal_;
    QCollator collator_;
};

bool isBefore(const SortKey& a, const SortKey& b, bool descending);

} // namespace lumora::desk
