// The order entry window as it stands after opening, and what follows a change of a control.
#include "tests/window/PluginTest.h"

#include <algorithm>
#include <filesystem>

namespace {

using probe::Items;
using probe::Text;
using Texts = std::vector<std::string>;

struct StartRow {
    int control;
    const char* text;
    Texts items;
};
const StartRow kStart[] = {
    // control           shown       offered
    {order::kExchange, "NSE", {"NSE", "BSE"}},
    {order::kSeries, "EQ", {"EQ", "BE"}},
    {order::kSymbol, "ARBORTEX", {"ARBORTEX", "BYTEFIN"}},
    {order::kAction, "SIP", {"SIP", "SWP"}},
    {order::kOrderType, "MARKET", {"MARKET"}},
    {order::kProduct, "CNC", {"CNC"}},
    {order::kInvestBy, "Amount", {"Amount", "Quantity"}},
    {order::kFrequency, "", {}},
    {order::kPeriod, "1", {}},
    {order::kValue, "", {}},
    {order::kSubmit, "Submit", {}},
    {order::kPeriodHint, "Minimum SIP Period : 1 Month", {}},
};

class OrderEntryWindow : public PluginTest {
protected:
    void ExpectStartState(HWND dialog) {
        for (const StartRow& row : kStart) {
            SCOPED_TRACE(row.control);
            EXPECT_EQ(Text(dialog, row.control), row.text);
            if (row.items.empty()) continue;
            EXPECT_EQ(Items(dialog, row.control), row.items);
        }
        EXPECT_EQ(Items(dialog, order::kFrequency), Texts{});
        for (const char* label :
             {"Exhg-Seg", "Inst Name", "Symbol", "Action", "Order Type", "Product Type", "Invest By", "Amount",
              "Frequency", "Start Date", "Total Period ( < 60 )", " Client ID"})
            EXPECT_TRUE(HasChildWithText(dialog, label)) << label;
        const SYSTEMTIME shown = probe::Date(dialog, order::kStartDate), tomorrow = DaysFromNow(1);
        EXPECT_EQ(WireDate(shown), WireDate(tomorrow));
        EXPECT_FALSE(probe::IsShown(dialog, order::kCancel));
        for (const int hidden : {1006, 1048, 1049, 1050, 1054, 1056})
            EXPECT_FALSE(probe::IsShown(dialog, hidden)) << hidden;
    }
};

TEST_F(OrderEntryWindow, OpensInItsStartState) {
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(IsWindowVisible(dialog));
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
    ExpectStartState(dialog);
    EXPECT_EQ(host.LastRequest(), "0=get_sip_operation_mode;");
    EXPECT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(OrderEntryWindow, OffersTheClientsInAComboWithoutASearch) {
    const HiddenExport hidden("pu_get_entered_text_results");
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(probe::IsShown(dialog, order::kClient));
    EXPECT_FALSE(probe::IsShown(dialog, order::kClientSearch));
    EXPECT_EQ(Items(dialog, order::kClient), (Texts{"C001", "C002"}));
    EXPECT_EQ(Text(dialog, order::kClient), "C001");
    EXPECT_EQ(host.CallsOf("pu_write_settings_to_json"), 0);
}

TEST_F(OrderEntryWindow, RemembersItsClientSearch) {
    OpenOrderEntry();
    EXPECT_EQ(
        std::ranges::count(host.calls, "pu_write_settings_to_json(Client_Search,Planfold Order Entry,1,1)"), 1);
}

TEST_F(OrderEntryWindow, ReopensInItsStartState) {
    HWND dialog = OpenOrderEntry();
    host.Answer(kOrderEntryControl, {{32767, "get_sip_operation_mode"}, {10012, "yearly"}, {54101, "2"}});
    probe::Select(dialog, order::kInvestBy, "Quantity");
    probe::Select(dialog, order::kExchange, "BSE");
    SendMessageA(dialog, WM_CLOSE, 0, 0);
    dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    ExpectStartState(dialog);
    EXPECT_EQ(host.requests.size(), 2u);
}

TEST_F(OrderEntryWindow, SwitchingInvestByClearsTheValueEachTime) {
    HWND dialog = OpenOrderEntry();
    HWND value = GetDlgItem(dialog, order::kValue);
    for (const char* type : {"Quantity", "Amount", "Quantity", "Quantity"}) {
        SCOPED_TRACE(type);
        probe::SetEdit(dialog, order::kValue, "12");
        ASSERT_TRUE(probe::Select(dialog, order::kInvestBy, type));
        EXPECT_EQ(Text(value), "");
        EXPECT_TRUE(HasChildWithText(dialog, type));
        const bool digitsOnly = (GetWindowLongPtrA(value, GWL_STYLE) & ES_NUMBER) != 0;
        EXPECT_EQ(digitsOnly, type == std::string("Quantity"));
    }
}

struct CleanRow {
    const char *set, *kept;
};
constexpr CleanRow kCleaned[] = {{"12.5.3", "12.53"}, {"1,234.50 Rs", "1234.50"}, {"-5", "5"}, {"1e3", "13"},
                                 {".", "."},          {"1234.50", "1234.50"},     {"abc", ""}};

TEST_F(OrderEntryWindow, ValueKeepsDigitsAndOnePoint) {
    HWND dialog = OpenOrderEntry();
    for (const char* type : {"Amount", "Quantity"}) {
        probe::Select(dialog, order::kInvestBy, type);
        for (const CleanRow& row : kCleaned) {
            probe::SetEdit(dialog, order::kValue, row.set);
            EXPECT_EQ(Text(dialog, order::kValue), row.kept) << type << ": " << row.set;
        }
    }
}

TEST_F(OrderEntryWindow, ExchangeAndSeriesRefillWhatDependsOnThem) {
    HWND dialog = OpenOrderEntry();
    host.calls.clear();
    ASSERT_TRUE(probe::Select(dialog, order::kExchange, "BSE"));
    EXPECT_EQ(host.calls, Texts{"pu_fill_scrip_combos(1003,1005,1008,1048,1049,1050,0)"});
    EXPECT_EQ(Text(dialog, order::kSeries), "EQ");
    EXPECT_EQ(Text(dialog, order::kSymbol), "INFOCAR");

    ASSERT_TRUE(probe::Select(dialog, order::kExchange, "NSE"));
    host.calls.clear();
    ASSERT_TRUE(probe::Select(dialog, order::kSeries, "BE"));
    EXPECT_EQ(host.calls, Texts{"pu_fill_scrip_combos(1003,1005,1008,1048,1049,1050,1)"});
    EXPECT_EQ(Text(dialog, order::kSeries), "BE");
    EXPECT_EQ(Text(dialog, order::kSymbol), "LUMENBANK");
}

// The settings file lies beside the program that is the host.
class SettingsFile {
public:
    explicit SettingsFile(const char* products) {
        char program[MAX_PATH] = "";
        GetModuleFileNameA(nullptr, program, sizeof program);
        m_folder = std::filesystem::path(program).parent_path() / "Vesk Plugins";
        std::filesystem::create_directory(m_folder);
        WritePrivateProfileStringA("SIP CUSTOM LIST", "CUSTOM PRODUCTS", products,
                                   (m_folder / "Planfold.ini").string().c_str());
    }
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;
    ~SettingsFile() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

private:
    std::filesystem::path m_folder;
};

struct ProductRow {
    const char* name;
    bool right;
    const char* setting;
    Texts offered;
};
const ProductRow kProducts[] = {
    {"known ones of the list", true, "MIS,CNC,UNKNOWN,NRML", {"CNC", "MIS", "NRML"}},
    {"without the right", false, "MIS,NRML", {"CNC"}},
    {"exact match only", true, "mis, NRML,NRM", {"CNC"}},
    {"empty", true, "", {"CNC"}},
};

TEST_F(OrderEntryWindow, OffersCustomProductsToThoseWhoMay) {
    for (const ProductRow& row : kProducts) {
        SCOPED_TRACE(row.name);
        const SettingsFile file(row.setting);
        host.rights = {"QV: Planfold"};
        if (row.right) host.rights.insert("QV: Planfold: Custom");
        HWND dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(Items(dialog, order::kProduct), row.offered);
        EXPECT_EQ(Text(dialog, order::kProduct), "CNC");
        SendMessageA(dialog, WM_CLOSE, 0, 0);
    }
    host.rights.insert("QV: Planfold: Custom");
    EXPECT_EQ(Items(OpenOrderEntry(), order::kProduct), Texts{"CNC"}) << "without a settings file";
}

} // namespace
