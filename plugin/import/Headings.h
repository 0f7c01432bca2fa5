// What a column of a table means, told by its heading.
#pragma once

#include "plugin/basket/BasketOrder.h"
#include "plugin/import/Table.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// A column whose heading says nothing that is known is not read.
inline constexpr BasketField kNotRead = BasketField::count;

enum class AmountUnit : std::uint8_t { undecided, rupees, paise, count };
// In which order a date's numbers stand, or from when a spreadsheet counts its days.
enum class DatePattern : std::uint8_t {
    undecided,
    dayFirst,
    monthFirst,
    yearFirst,
    since1900,
    since1904,
    count
};

// A field that files may give, in the order in which it is shown.
struct ImportField {
    BasketField field;
    const char* word;     // in a kept mapping and in reasons
    const char* synonyms; // of the heading, with ";" between, as HeadingKey makes them
    bool hasDefault;      // may stand for all rows
};
inline constexpr ImportField kImportFields[] = {
    {BasketField::account, "client",
     "client;clientid;clientcode;clientno;ucc;ucccode;account;accountid;accountcode;partycode", false},
    {BasketField::exchange, "exchange", "exchange;exch;segment;exchangesegment;market", true},
    {BasketField::series, "series", "series;group;scripgroup", true},
    {BasketField::symbol, "symbol", "symbol;scrip;scripname;scripcode;stock;ticker;security;instrument", true},
    {BasketField::token, "token", "token;tokenno;exchangetoken;instrumenttoken", false},
    {BasketField::tradingSymbol, "trading symbol", "tradingsymbol;tradesymbol;tsym", false},
    {BasketField::product, "product", "product;producttype;productcode", true},
    {BasketField::amount, "amount",
     "amount;amt;sipamount;value;installmentamount;instalmentamount;investmentamount", false},
    {BasketField::quantity, "quantity", "quantity;qty;units;shares;noofshares", false},
    {BasketField::frequency, "frequency", "frequency;freq;sipfrequency;periodicity;interval", true},
    {BasketField::startDateText, "start date",
     "startdate;start;date;from;fromdate;sipdate;sipstartdate;begindate;firstdate", true},
    {BasketField::totalPeriod, "periods",
     "periods;period;totalperiod;totalperiods;installments;instalments;noofinstallments;noofinstalments;tenure",
     true},
    {BasketField::orderType, "order type", "ordertype;type", true},
    {BasketField::side, "action", "action;side;buysell;transaction;transactiontype;siptype;plan", true},
    {BasketField::investType, "invest type", "investtype;investmenttype;investby;amountorquantity;sipby", true},
};
const ImportField* FindImportField(BasketField field);
// "start date"; nothing for any other word.
std::optional<BasketField> FieldOfWord(std::string_view word);

// Letters and digits, small, without what stands in parentheses: "Start Date (dd/mm/yyyy)" is "startdate".
std::string HeadingKey(std::string_view heading);
// kNotRead for an unknown one.
BasketField FieldOfHeading(std::string_view heading);
// What it says of its unit; undecided when nothing.
AmountUnit UnitOfHeading(std::string_view heading);
DatePattern PatternOfHeading(std::string_view heading);

struct Headings {
    int line = 0; // 0: none were found
    std::vector<std::string> texts;
    std::size_t known = 0; // so many fields
};
// Of the first rows the one that names the most fields. Two are the least: a word alone may be a title.
Headings FindHeadings(TableReader& table);

} // namespace planfold
