#include "lumora/model/sql_formats.h"

#include "lumora/platform/formats.h"
#include "lumora/platform/properties.h"
#include "lumora/support/string_helpers.h"

namespace lumora {

void TQuoteSymbols::Append(std::string& out, std::string_view name, TNameQuoting quoting) const {
    const TQuoteSymbols symbols =
        AreTaken(quoting) ? *this : TQuoteSymbols{quoting.Taken[0], quoting.Taken[1]};
    out += symbols.Open;
    if (quoting.Doubled)
        AppendDoubled(out, name, symbols.Close);
    else
        out.append(name);
    out += symbols.Close;
}

bool TQuoteSymbols::AreTaken(TNameQuoting quoting) const {
    if (!quoting.Taken)
        return true;
    for (const char* pair = quoting.Taken; *pair; pair += 2)
        if (pair[0] == Open && pair[1] == Close)
            return true;
    return false;
}

TSQLFormats::TSQLFormats(std::function<void()> quotesChanged)
    : quotesChanged_(std::move(quotesChanged)),
      date_(FormatSettings().ShortDateFormat),
      time_(FormatSettings().ShortTimeFormat),
      dateTime_(FormatSettings().ShortDateFormat + " " + FormatSettings().ShortTimeFormat) {}

std::span<const TPropertyInfo> TSQLFormats::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = {
        Property("Date", &TSQLFormats::GetDate, &TSQLFormats::SetDate, "yyyy-mm-dd"),
        Property("Time", &TSQLFormats::GetTime, &TSQLFormats::SetTime, "hh:nn"),
        Property("DateTime", &TSQLFormats::GetDateTime, &TSQLFormats::SetDateTime, "yyyy-mm-dd hh:nn"),
        Property("QuoteSymbol1", &TSQLFormats::GetQuoteSymbol1, &TSQLFormats::SetQuoteSymbol1, '"'),
        Property("QuoteSymbol2", &TSQLFormats::GetQuoteSymbol2, &TSQLFormats::SetQuoteSymbol2, '"'),
    };
    return properties;
}

const std::string& TSQLFormats::MaskFor(TFieldType type) const {
    return type == ftDate ? date_ : type == ftTime ? time_ : dateTime_;
}

void TSQLFormats::SetQuoteSymbol1(char symbol) {
    SetQuoteSymbol(quotes_.Open, symbol);
}

void TSQLFormats::SetQuoteSymbol2(char symbol) {
    SetQuoteSymbol(quotes_.Close, symbol);
}

void TSQLFormats::SetQuoteSymbol(char& symbol, char value) {
    if (value == symbol)
        return;
    symbol = value;
    if (quotesChanged_)
        quotesChanged_();
    if (OnQuotesChange)
        OnQuotesChange();
}

void TSQLFormats::AssignTo(TPersistent& dest) const {
    auto* const formats = dynamic_cast<TSQLFormats*>(&dest);
    if (!formats)
        return TPersistent::AssignTo(dest);
    formats->SetDate(date_);
    formats->SetTime(time_);
    formats->SetDateTime(dateTime_);
    formats->SetQuoteSymbol1(quotes_.Open);
    formats->SetQuoteSymbol2(quotes_.Close);
}

} // namespace lumora
