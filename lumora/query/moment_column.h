// How a column keeps days and moments, and how a strict statement names them there.
#pragma once

#include "lumora/model/date_storage.h"
#include "lumora/model/sql_formats.h"
#include "lumora/platform/formats.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace lumora {

struct TDialect;

class TMomentColumn {
public:
    // `quoted`: the model writes values of the type in quotes.
    TMomentColumn(TFieldType type, TDateStorage storage, const TSQLFormats& formats, const TDialect& dialect,
                  bool quoted)
        : type_(type), storage_(storage), formats_(formats), dialect_(dialect), quoted_(quoted) {}

    // The milliseconds that a value stands for in the column: a day with all its moments, or a moment as far
    // as it is said. A point where the column keeps nothing between one such value and the next.
    struct TStretch {
        std::int64_t Start = 0;
        std::int64_t Next = 0; // the first one behind it
        bool IsPoint = false;
    };
    TStretch StretchOf(const TReadDateTime& value) const;

    // False for a moment within a day where only days are kept.
    bool CanKeep(const TReadDateTime& value) const;

    // No value of the column lies behind the moment, so it is no bound.
    static bool IsAfterTime(std::int64_t milliseconds);
    // A literal that no value of the column before the moment reaches, and every one from then on does; and
    // what is compared with it.
    void AppendBound(std::string& out, std::int64_t milliseconds) const;
    void AppendColumn(std::string& out, std::string_view column, std::int64_t bound) const;
    // The moment as the column has it: with its quotes, and without.
    void AppendLiteral(std::string& out, std::int64_t milliseconds) const;
    void AppendPoint(std::string& out, std::int64_t milliseconds) const;

private:
    bool KeepsTimes() const;
    bool KeepsFinerMoments() const;
    bool IsText() const;

    TFieldType type_;
    TDateStorage storage_;
    const TSQLFormats& formats_;
    const TDialect& dialect_;
    bool quoted_;
};

bool IsNumberStorage(TDateStorage storage);

} // namespace lumora
