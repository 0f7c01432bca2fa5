#include "tools/planfold-basket/Commands.h"

namespace basket {

constinit const std::string_view kHelp = R"(NAME
    planfold-basket - checks baskets of SIP orders without the terminal

SYNOPSIS
    planfold-basket check FILE --scrips FILE [--products LIST] [--mode MODE]
                    [--today DATE] [--rejects OUT] [--normalised OUT] [--json]
                    [--limits FILE]
    planfold-basket import FILE --scrips FILE [--map FILE] [--date PATTERN]
                    [--amount UNIT] [--default FIELD=VALUE]... [the options of
                    check]
    planfold-basket template --scrips FILE [--lines N] [--products LIST]
                    [--mode MODE] [--today DATE] [--out OUT]
    planfold-basket changes OLD EDITED [--mode MODE] [--user ID] [--json]
    planfold-basket --help | --version

DESCRIPTION
    check reads a basket as the basket window does, by the same rules, and tells
    of each line that would be rejected where it stands and why, then how many
    lines there were and what their orders come to. FILE "-" is standard input.

    With --limits it also tells what the window's Check says of the orders: what
    is beyond the desk's limits, rows like another one, starts at a weekend; in
    JSON the totals by client, side, scrip and start date as well. A limit that is
    marked hard makes the exit status 1.

    import reads a table as the basket window's Import does: .xlsx, CSV or text
    with headings in any order. docs/basket-files.md has the headings that are
    known and the cure of each reason. What is in doubt is rejected, not guessed.

    template writes a basket that passes the check: an order a line, as an
    example, or as many as are asked for, to try something with.

    changes compares two files of registrations, as the book exports them: OLD as
    it was exported, EDITED as a spreadsheet left it. It tells what would be
    modified, old and new, and by the window's rules what is not possible and
    why; with --user what is another user's as well. Its exit status is 1 when
    something is not possible.

    A basket has no heading; it is ANSI or UTF-8 text. A line holds 19 fields,
    each followed by a comma, and one more that nobody reads; there are no
    quotes:

     1 client ID           8 amount in paise     15 action: B, S
     2 exchange            9 quantity            16 (filled in)
     3 series             10 frequency: daily,   17 (filled in)
     4 symbol                weekly, monthly,    18 (filled in)
     5 token                 yearly              19 by: value, qty
     6 trading symbol     11 (filled in)         20 (not read)
     7 product            12 start: day/month/year
                          13 number of periods
                          14 order type: MKT

OPTIONS
    --scrips FILE      the terminal's scrip master, such as data/scrips.csv
    --products LIST    products that may be used, with commas; "CNC" without it
    --mode MODE        "months": 1 to 60 periods, as without it; or the least
                       number of periods by frequency, as the server may set
                       them: "daily:5,weekly:4,monthly:6,yearly:2". A frequency
                       that is not named may not be used
    --today DATE       yyyy-mm-dd; the clock's without it. Orders start later
    --rejects OUT      writes the rejected lines as they stand, to be mended
    --normalised OUT   writes the other lines in the form in which the basket
                       window exports them, in the order of FILE
    --limits FILE      Planfold.ini with the section [Basket_Limits]: Amount and
                       Total in rupees, Quantity, Periods, FirstDate in days from
                       today, RowsPerClient; "hard" behind a value forbids
    --map FILE         the choices that the window's Import kept, which are
                       found by the headings of FILE
    --date PATTERN     how dates are written: dd/mm/yyyy, mm/dd/yyyy,
                       yyyy-mm-dd, "serial 1900" or "serial 1904"
    --amount UNIT      rupees or paise
    --default F=VALUE  for all rows, where no column has it: series=EQ
    --json             writes the findings as JSON
    --lines N          so many lines; 10 without it
    --out OUT          where to; "-", as without it, is standard output

EXIT STATUS
    0    no line was rejected
    1    a line was rejected, or a hard limit is exceeded
    2    the words of the command were wrong, or a file could not be read or
         written; standard error says which. No file is left half written

EXAMPLES
    planfold-basket template --scrips data/scrips.csv --lines 3
    planfold-basket check basket.csv --scrips data/scrips.csv --products CNC,MIS
    planfold-basket check - --scrips data/scrips.csv --json < basket.csv
    planfold-basket check basket.csv --scrips data/scrips.csv --limits Planfold.ini
    planfold-basket import branch.xlsx --scrips data/scrips.csv \
                    --date dd/mm/yyyy --default series=EQ --normalised basket.csv

REASONS
    The first that applies is reported, in this order:

    Invalid Format          not 20 or 21 fields, no client, a field of more
                            than 127 characters, a line of more than 1022
    InValid Token           trading symbol or token are not the scrip's
    Invalid Date            no date, or not after today
    Invalid Period          no number of periods
    Period Should be Between 1 and 60
    ... Frequency not set   not in the list of --mode
    Minimum SIP value is N  fewer periods than --mode demands
    InValid Action Type.    InValid Invest Type.    InValid Frequency.
    InValid Order Type      InValid Product
    InValid Quantity        Quantity cannot be zero
    Quantity should not be more than integer max value(2147483647)
    InValid Amount          Enter valid Amount
    Amount exceeds ...      more than prices can say
)";

} // namespace basket
