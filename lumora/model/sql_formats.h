// The date and time formats and the quote symbols with which SQL text is produced.
#pragma once

#include "lumora/model/sql_syntax.h"
#include "lumora/platform/field_types.h"
#include "lumora/platform/persistent.h"

#include <functional>
#include <string>

namespace lumora {

class TSQLFormats : public TPersistent {
public:
    TSQLFormats() : TSQLFormats(nullptr) {}
    // The owning model is told by `quotesChanged` when a quote symbol changes.
    explicit TSQLFormats(std::function<void()> quotesChanged);

    std::string_view ClassName() const override { return "TSQLFormats"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    const std::string& GetDate() const { return date_; }
    void SetDate(const std::string& mask) { date_ = mask; }
    const std::string& GetTime() const { return time_; }
    void SetTime(const std::string& mask) { time_ = mask; }
    const std::string& GetDateTime() const { return dateTime_; }
    void SetDateTime(const std::string& mask) { dateTime_ = mask; }
    // The mask for values of a date, time or date-time type.
    const std::string& MaskFor(TFieldType type) const;

    char GetQuoteSymbol1() const { return quotes_.Open; }
    void SetQuoteSymbol1(char symbol);
    char GetQuoteSymbol2() const { return quotes_.Close; }
    void SetQuoteSymbol2(char symbol);
    const TQuoteSymbols& Quotes() const { return quotes_; }

    // Called when a quote symbol changes.
    std::function<void()> OnQuotesChange;

protected:
    void AssignTo(TPersistent& dest) const override;

private:
    void SetQuoteSymbol(char& symbol, char value);

    const std::function<void()> quotesChanged_;
    std::string date_;
    std::string time_;
    std::string dateTime_;
    TQuoteSymbols quotes_;
};

} // namespace lumora
