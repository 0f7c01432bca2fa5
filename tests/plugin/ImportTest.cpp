// Import: what cells and headings mean, and that what is in doubt is refused with its line and its column.
#include "plugin/import/Encoding.h"
#include "plugin/import/PreviewTexts.h"
#include "plugin/import/XlsxTable.h"
#include "tests/plugin/ImportDouble.h"

#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace planfold {
namespace {

using test::Taken;

TEST(Import, ReadsMoneyInEveryWritingAndRefusesWhatIsInDoubt) {
    using enum AmountUnit;
    const struct {
        const char* said;
        AmountUnit unit;
        const char* paise; // empty: refused
        Fault fault = Fault::none;
        CellKind kind = CellKind::text;
    } cases[] = {
        {"1500", rupees, "150000"},
        {"1500", paise, "1500"},
        {"1500", undecided, "", Fault::undecidedUnit},
        {"1500.5", undecided, "150050"},
        {"Rs. 1,00,000/-", undecided, "10000000"},
        {"Rs 1500", undecided, "150000"},
        {"01500", rupees, "150000"},
        {"\xE2\x82\xB9 12,34,567.89", undecided, "123456789"},
        {"1,00,000", rupees, "10000000"},
        {"1,000,000", rupees, "100000000"},
        {"1.500,50", rupees, "150050"},
        {"1\xC2\xA0"
         "500,5",
         rupees, "150050"},
        {"1.500.000", rupees, "150000000"},
        {"1,500", rupees, "150000"},
        {"1.500", rupees, "", Fault::grouping},
        {"1.500", rupees, "150", Fault::none, CellKind::number},
        {"1,00,00", rupees, "", Fault::grouping},
        {"10,00,0000", rupees, "", Fault::grouping},
        {"1,000,00,000", rupees, "", Fault::grouping},
        {"1500.005", rupees, "", Fault::partOfPaisa},
        {"1500.50", paise, "", Fault::partOfPaisa},
        {"1500.00", paise, "1500"},
        {"1E+05", rupees, "", Fault::shortened},
        {"1,5E+11", rupees, "", Fault::shortened},
        {"-1500", rupees, "", Fault::noNumber},
        {"1500 kg", rupees, "", Fault::noNumber},
        {"1234567890123456", rupees, "", Fault::noNumber},
        {"123,456,789,012,345", paise, "123456789012345"},
        {" ", rupees, "", Fault::missing},
    };
    for (const auto& [said, unit, paise, fault, kind] : cases) {
        std::string read;
        EXPECT_EQ(ReadMoney({said, kind}, unit, read), fault) << said;
        EXPECT_EQ(fault == Fault::none ? read : "", paise) << said;
    }
}

TEST(Import, NeverGuessesWhichNumberOfADateIsTheDay) {
    using enum DatePattern;
    const struct {
        const char* said;
        DatePattern pattern;
        const char* date; // empty: refused
        Fault fault = Fault::none;
        CellKind kind = CellKind::text;
    } cases[] = {
        {"03/05/2027", undecided, "", Fault::undecidedDate},
        {"03/05/2027", dayFirst, "03/May/2027"},
        {"03/05/2027", monthFirst, "05/Mar/2027"},
        {"25.03.2027", undecided, "25/Mar/2027"},
        {"03-25-2027", undecided, "25/Mar/2027"},
        {"03/25/2027", dayFirst, "", Fault::noDate},
        {"05/05/2027", undecided, "05/May/2027"},
        {"25/03/1971", undecided, "25/Mar/1971"},
        {"25/03/1970", undecided, "", Fault::noDate},
        {"25/03/9998", undecided, "25/Mar/9998"},
        {"25/03/9999", undecided, "", Fault::noDate},
        {"25/03/27", undecided, "", Fault::undecidedDate},
        {"25/03/27", dayFirst, "25/Mar/2027"},
        {"2027-03-05 00:00:00", undecided, "05/Mar/2027"},
        {"5 March 2027", undecided, "05/Mar/2027"},
        {"Mar 5, 2027", undecided, "05/Mar/2027"},
        {"5-mar-27", undecided, "05/Mar/2027"},
        {"5 January 2028", undecided, "05/Jan/2028"},
        {"5 dec 2027", undecided, "05/Dec/2027"},
        {"46451", undecided, "", Fault::undecidedSerial},
        {"46451", since1900, "05/Mar/2027"},
        {"44989", since1904, "05/Mar/2027"},
        {"20270305", yearFirst, "05/Mar/2027"},
        {"03052027", undecided, "", Fault::undecidedDate},
        {"03052027", dayFirst, "03/May/2027"},
        {"03052027", monthFirst, "05/Mar/2027"},
        {"2027-03-05", monthFirst, "05/Mar/2027", Fault::none, CellKind::date},
        {"29/02/2027", dayFirst, "", Fault::noDate},
        {"5 Foo 2027", undecided, "", Fault::noDate},
        {"5 March", undecided, "", Fault::noDate},
        {"05/03/4294969323", dayFirst, "", Fault::noDate}, // 2027, and 2 to the 32nd
        {"05/03/2027 tea", dayFirst, "", Fault::noDate},
        {"4.6E+04", since1900, "", Fault::shortened},
    };
    for (const auto& [said, pattern, date, fault, kind] : cases) {
        std::string read;
        EXPECT_EQ(ReadDay({said, kind}, pattern, read), fault) << said;
        EXPECT_EQ(fault == Fault::none ? read : "", date) << said;
    }
}

constexpr char kGood[] = "C001,NSE,EQ,ALPHA,1500.00,monthly,25/03/2027,12,SIP\n";
const std::string kHead = "Client Code,Exchange,Series,Scrip,Amount (Rs),Frequency,Start Date,Periods,Action\n";

TEST(Import, TellsLineAndColumnOfWhatItRefuses) {
    const struct {
        const char* rows;
        const char* told;
    } cases[] = {
        {kGood, "2:C001 ALPHA-EQ value 150000 monthly 25/Mar/2027 12 B|"},
        {"1E+05,NSE,EQ,ALPHA,1,m,25/03/2027,12,SIP", "2! client (column 1): \"1E+05\" was shortened by a "
                                                     "spreadsheet; the digits are lost|"},
        {"001,NSE,EQ,ALPHA,1,m,25/03/2027,12,SIP\n12,NSE,EQ,ALPHA,1,m,25/03/2027,12,SIP",
         "2:001 ALPHA-EQ value 100 monthly 25/Mar/2027 12 B|3! client (column 1): \"12\" has lost its leading "
         "zeros|"},
        {"\"A,B\",NSE,EQ,ALPHA,1,m,25/03/2027,12,SIP",
         "2! client (column 1): \"A,B\" has a comma, a line end, or more than 127 characters|"},
        {"C1,NSE,EQ,NONE,1,m,25/03/2027,12,SIP",
         "2! symbol (column 4): \"NONE\" is not a scrip that the terminal knows|"},
        {"C1,NSE,EQ,ALPHA,1,m,03/05/2027,12,SIP",
         "2! start date (column 7): \"03/05/2027\" may be two dates; the mapping must say the order of day and "
         "month|"},
        {"C1,NSE,EQ,ALPHA,1,fortnightly,25/03/2027,12,SIP",
         "2! frequency (column 6): \"fortnightly\" is not known|"},
        {"C1,NSE,EQ,ALPHA,1,m,25/03/2027,61,SIP", "2! column 8: Period Should be Between 1 and 60|"},
        {"C1,NSE,EQ,ALPHA,1,m,25/03/2026,12,SIP", "2! column 7: Invalid Date|"},
        {"C1,NSE,EQ", "2! frequency (column 6): there is nothing|"},
        {"\"C1,NSE\n'=C1,NSE,EQ,ALPHA,1,m,25/03/2027,12,SIP",
         "2! the line is longer than 65536 characters, or a quote in it is not closed|3:=C1 ALPHA-EQ value 100 "
         "monthly 25/Mar/2027 12 B|"},
        {"\"C1\nx\"y,NSE\n,,,,,,,,\n=\"C1\",NSE,EQ,alpha,1,m,25/03/2027,12,SIP",
         "2! there is text behind a closing quote|3! frequency (column 6): there is nothing|"
         "5:C1 ALPHA-EQ value 100 monthly 25/Mar/2027 12 B|"},
    };
    for (const auto& [rows, told] : cases)
        EXPECT_EQ(Imported(kHead + rows), told) << rows;
}

TEST(Import, FindsColumnsUnitsAndValuesByTheirHeadings) {
    const struct {
        const char* text;
        const char* told;
    } cases[] = {
        {"UCC\tTrading Symbol\tQty\tAmt in paise\tSegment\tFreq.\tDate (mm/dd/yyyy)\tTenure\tBuy/Sell\tToken\n"
         "C1\tALPHA-EQ\t5\t-\tnse\tD\t03/05/2027\t12\tSell\t0042\n"
         "C1\tALPHA-EQ\t0\t250000\tnse\tD\t03/05/2027\t12\tSell\t42\n",
         "2:C1 ALPHA-EQ qty 5 daily 05/Mar/2027 12 S|3! token (column 10): \"42\" has lost its leading zeros|"},
        // Of two headings alike the first is read, and says how.
        {"UCC\tTrading Symbol\tAmt (Rs)\tAmt in paise\tSegment\tFreq.\tDate (dd/mm/yyyy)\tDate "
         "(mm/dd/yyyy)\tTenure\tBuy/Sell\n"
         "C1\tALPHA-EQ\t1500\t150000\tnse\tD\t05/03/2027\t03/05/2027\t12\tBuy\n",
         "2:C1 ALPHA-EQ value 150000 daily 05/Mar/2027 12 B|"},
        {"sep=;\nNotes, on top\nClient;Symbol;Amount;Quantity\nC1;ALPHA;1,5;3\n",
         "4! exchange: no column says it, and no default|"},
        {"Client,Client\nC1,C2\n", "fault: it has no line of headings, such as \"Client Code\" and \"Amount\"; "
                                   "Load reads a basket file without them"},
        {"PK\x03\x04 not a workbook", "fault: the workbook is damaged or was cut off"},
    };
    for (const auto& [text, told] : cases)
        EXPECT_EQ(Imported(text), told) << text;
}

TEST(Import, TheHeadingsStandInOneOfTheFirstFiftyRows) {
    const std::string order = kHead + "C1,NSE,EQ,ALPHA,1,m,25/03/2027,12,SIP\n";
    std::string notes;
    for (int i = 1; i < 50; ++i)
        notes += "a note\n";
    EXPECT_EQ(Imported(notes + order), "51:C1 ALPHA-EQ value 100 monthly 25/Mar/2027 12 B|");
    EXPECT_TRUE(Imported("a note\n" + notes + order).starts_with("fault: it has no line of headings"));
}

TEST(Import, AHeadingThatADateContradictsDecidesNothing) {
    std::string head = kHead;
    head.replace(head.find("Start Date"), 10, "Start Date (dd/mm/yyyy)");
    const std::string doubtful = "C1,NSE,EQ,ALPHA,1,m,03/05/2027,12,SIP\n";
    EXPECT_EQ(Imported(head + doubtful), "2:C1 ALPHA-EQ value 100 monthly 03/May/2027 12 B|");
    ImportFile file;
    ASSERT_EQ(file.Open(head + doubtful + "C1,NSE,EQ,ALPHA,1,m,12/31/2027,12,SIP\n", {}), "");
    Scrips scrips;
    file.Try(kRules, scrips);
    EXPECT_EQ(DoubtText(file), "03/05/2027 may be 03/May/2027 or 05/Mar/2027: choose how dates are written.");
    EXPECT_EQ(FaultsText(file), "Of 2 rows 1 is an order. Rejected: 1 date in doubt");
    file.Mapping().pattern = DatePattern::monthFirst;
    file.Try(kRules, scrips);
    EXPECT_EQ(DoubtText(file) + FaultsText(file), "Of 2 rows 2 are orders.");
    EXPECT_EQ(PreviewText(file.Rows()[0], 10), "05/Mar/2027");
}

TEST(Import, AMappingIsFoundAgainByItsHeadings) {
    ImportFile file;
    const std::string text =
        "Code;Was;Amount;Frequency;Date;Periods;Action\nC1;ALPHA;1500;m;03/05/2027;12;SIP\n";
    ASSERT_EQ(file.Open(text, {}), "");
    EXPECT_EQ(file.NotRead(), (std::vector<std::string>{"Code", "Was"}));
    file.ReadColumnAs(0, Field::account);
    file.ReadColumnAs(1, Field::symbol);
    file.Mapping().name = "Andheri";
    file.Mapping().unit = AmountUnit::rupees;
    file.Mapping().pattern = DatePattern::dayFirst;
    file.Mapping().defaults[Field::exchange] = "NSE";
    file.Mapping().defaults[Field::series] = "EQ";
    KeptMappings kept, again;
    kept.Keep(file.Columns(), file.Mapping());
    ASSERT_EQ(again.Read(kept.Text()), "") << kept.Text();
    EXPECT_EQ(again.Text(), kept.Text());
    EXPECT_EQ(Imported(text, again), "2:C1 ALPHA-EQ value 150000 monthly 03/May/2027 12 B|");
    const std::pair<const char*, const char*> faults[] = {
        {"[A]\ncolumns = client;nonsense\n", "line 2: columns cannot be set so"},
        {"[A]\nclient digits = 33\n", "line 2: client digits cannot be set so"},
        {"[A]\nclient digits = 32\n", ""},
        {"amount = rupees\n", "line 1: a mapping begins with its [name]"},
        {"[A\n", "line 1: a mapping begins with its [name]"},
    };
    for (const auto& [setting, told] : faults)
        EXPECT_EQ(again.Read(setting), told) << setting;
}

TEST(Import, LettersBeyondSixteenBitsAreTwoUnitsAndHalfOfOneIsNone) {
    const std::pair<std::string_view, const char*> rows[] = {
        {{"\xFF\xFE\x00\xD8\x00\xDC", 6}, "\xF0\x90\x80\x80"},
        {{"\xFF\xFE\xFF\xDB\xFF\xDF", 6}, "\xF4\x8F\xBF\xBF"},
        {{"\xFF\xFE\x00\xD8"
          "a\0",
          6},
         "\xEF\xBF\xBD"
         "a"},
        {{"\xFF\xFE\x00\xE0\xFF\xDF", 6}, "\xEE\x80\x80\xEF\xBF\xBD"},
    };
    for (const auto& [bytes, text] : rows) {
        std::string kept;
        EXPECT_EQ(TextInUtf8(bytes, kept), text);
    }
}

TEST(Import, BytesThatNoUtf8HasAreOfWindows) {
    for (const std::string text :
         {"\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        std::string kept;
        EXPECT_EQ(TextInUtf8(text, kept), text);
    }
    for (const std::string text : {"\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                                   "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}) {
        std::string kept;
        EXPECT_NE(TextInUtf8(text, kept), text);
    }
}

std::string Content(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// tests/import/make-files.py makes them anew.
TEST(Import, FilesOfRealProgramsAreTheSameOrders) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(IMPORT_FILES)) {
        const std::string name = entry.path().filename().string();
        ImportFile file;
        ASSERT_EQ(file.Open(Content(entry.path()), {}), "") << name;
        const bool isAmerican = name == "calc-en-US.csv";
        file.Mapping().pattern = isAmerican ? DatePattern::monthFirst : DatePattern::dayFirst;
        std::string text = Imported(file);
        // Where a cell of two lines stands, the lines behind it are counted differently.
        for (const char* number : {"4:", "5:", "6:", "7:", "8:"})
            for (std::size_t at; (at = text.find(number)) != text.npos;)
                text.replace(at, 2, "");
        EXPECT_EQ(text, "001234 ALPHATEX-EQ value 15000050 monthly 05/Mar/2099 12 B|"
                        "CL100 ALPHACHEM-EQ qty 25 weekly 03/May/2099 24 B|"
                        "CL101 ALPHASTEEL-EQ value 250000 daily 31/Dec/2099 60 B|"
                        "CL102 ALPHAFOODS-EQ value 10000000 monthly 28/Jan/2099 6 S|")
            << name;
        ++files;
    }
    EXPECT_EQ(files, 13u);
}

TEST(Import, ACutOrDamagedWorkbookIsRefusedOrEndsWithALine) {
    const std::string whole = Content(std::filesystem::path(IMPORT_FILES) / "openpyxl.xlsx");
    const std::string good = Imported(whole);
    for (std::size_t size = 4; size < whole.size(); size += 37)
        EXPECT_EQ(Imported(whole.substr(0, size)), "fault: the workbook is damaged or was cut off") << size;
    for (std::size_t at = 0; at < whole.size(); at += 13) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
        const std::string told = Imported(damaged);
        EXPECT_TRUE(told == good || told.starts_with("fault: ") || told.find("! ") != told.npos) << at << told;
    }
}

TEST(Import, FaultsAreCountedToTheEndOfTheFile) {
    std::string text = kHead;
    for (int row = 0; row < 2100; ++row)
        text += row == 2050 ? "C1,NSE,EQ,ALPHA,x,m,05/Mar/2027,12,SIP\n"
                            : "C1,NSE,EQ,ALPHA,1,m,05/Mar/2027,12,SIP\n";
    ImportFile file;
    ASSERT_EQ(file.Open(text, {}), "");
    Scrips scrips;
    file.Try(kRules, scrips);
    EXPECT_EQ(FaultsText(file), "Of the first 1999 rows 1999 are orders.");
    while (file.TryMore(64)) {
    }
    EXPECT_EQ(FaultsText(file), "Of 2100 rows 2099 are orders. Rejected: 1 no number");
    EXPECT_EQ(file.Rows().size(), ImportFile::kRowsShown);
}

class ImportFlow : public test::BasketStage {};

TEST_F(ImportFlow, RejectedLinesSavedWithReasonsAreMendedInASpreadsheet) {
    Open();
    Load(test::Line("=C1", "77") + test::Line("C2", "77", "qty"));
    ASSERT_EQ(basket.Rejected().size(), 2u);
    basket.Saving().SaveReasons();
    std::string table = view.files["basket.csv"];
    for (std::size_t at; (at = table.find(",77,")) != table.npos;)
        table.replace(at, 4, ",1013,");
    ImportFile file;
    ASSERT_EQ(file.Open(table, {}), "");
    EXPECT_EQ(file.NotRead().back(), "Reason");
    view.import = file.Begin();
    basket.Runs().Import();
    Run();
    EXPECT_EQ(Rows(Field::account) + Rows(Field::amount) + Rows(Field::quantity), "C2 =C1 1500007 ");
    EXPECT_TRUE(basket.Rejected().empty());
}

TEST_F(ImportFlow, ImportedRowsComeInAsLoadedOnesDo) {
    Open();
    Add("C900");
    ImportFile file;
    ASSERT_EQ(file.Open("Client,Exchange,Series,Symbol,Amount (Rs),Frequency,Date,Periods,Action,Product\n"
                        "C1,NSE,EQ,ARBORTEX,1500,m,05/Mar/2027,12,SIP,CNC\nC2,NSE,EQ,ARBORTEX,1E+05,m,5/Mar/"
                        "2027,12,SIP,CNC\n",
                        {}),
              "");
    view.import = file.Begin();
    view.yes = false;
    basket.Runs().Import();
    EXPECT_EQ(Rows(Field::account), "C900");
    EXPECT_EQ(Taken(view.questions),
              test::Texts{"Orders in the basket that were not sent: 1.\nLoad the file in their place?"});
    view.yes = true;
    basket.Runs().Import();
    Run();
    EXPECT_EQ(Rows(Field::account), "C1");
    ASSERT_EQ(basket.Rejected().size(), 1u);
    EXPECT_EQ(basket.Rejected()[0].number, 3);
    EXPECT_EQ(basket.Rejected()[0].reason, "amount (column 5): \"1E+05\" was shortened by a spreadsheet; the "
                                           "digits are lost");
    // As a basket's line it must not become a thousand rupees.
    EXPECT_EQ(basket.Rejected()[0].text, "C2,nse_cm,EQ,ARBORTEX,,,CNC,,,monthly,,05/Mar/2027,12,MKT,B,,,,, ,");
    basket.Entry().ActivateRejected(0); // what could be read of it stands in the form
    EXPECT_EQ(view.Text(IDC_CLIENT_SEARCH), "C2");
}

} // namespace
} // namespace planfold
