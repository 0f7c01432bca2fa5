#include "tests/window/PluginTest.h"

#include "tests/support/FreedMemory.h"

#include <ctime>

void PluginTest::TearDown() {
    plugin->Exit();
    EXPECT_TRUE(PluginWindows().empty()) << "windows left, the first: " << probe::Text(PluginWindows().front());
    EXPECT_EQ(LoadedPlugin::LiveHooks(), 0);
    EXPECT_EQ(host.LiveControls(), 0);
    EXPECT_TRUE(host.misuses.empty()) << host.misuses.front();
    EXPECT_FALSE(boxes.AnyNested());
    plugin.reset();
    EXPECT_EQ(GetModuleHandleA("Planfold.zup"), nullptr);
    EXPECT_EQ(freed::WrittenBlocks(), 0) << "written after they were freed";
    EXPECT_EQ(host.strings.Live(), 0);
    EXPECT_EQ(host.strings.Faults(), 0);
}

HWND PluginTest::OpenOrderEntry() {
    plugin->Pick("Order Entry");
    return OrderEntry();
}

void PluginTest::AnswerDefaults() {
    host.Answer(kOrderEntryControl, {{32767, "get_sip_operation_mode"}, {10012, "0"}});
}

void PluginTest::ChooseClient(HWND dialog, std::string_view client) {
    const bool search = probe::IsShown(dialog, order::kClientSearch);
    probe::SetEdit(dialog, search ? order::kClientSearch : order::kClient, client);
}

void PluginTest::FillGoodOrder(HWND dialog) {
    EXPECT_TRUE(probe::Select(dialog, order::kSymbol, "BYTEFIN"));
    ChooseClient(dialog, "C002");
    EXPECT_TRUE(probe::Select(dialog, order::kFrequency, "monthly"));
    probe::SetEdit(dialog, order::kValue, "1234.5");
    probe::SetEdit(dialog, order::kPeriod, "12");
}

std::vector<HWND> PluginTest::PluginWindows() const {
    std::vector<HWND> windows = probe::TopWindows();
    std::erase(windows, host.MainFrame());
    return windows;
}

bool PluginTest::HasChildWithText(HWND dialog, std::string_view text) const {
    for (HWND child : probe::Children(dialog))
        if (probe::Text(child) == text) return true;
    return false;
}

std::string WithoutDate(std::string request) {
    constexpr std::string_view tag = ";49165=";
    const auto from = request.find(tag);
    if (from == request.npos) return request;
    const auto value = from + tag.size();
    return request.replace(value, request.find(';', value) - value, "DATE");
}

std::string WireDate(const SYSTEMTIME& date) {
    std::tm midnight{};
    midnight.tm_year = date.wYear - 1900;
    midnight.tm_mon = date.wMonth - 1;
    midnight.tm_mday = date.wDay;
    return std::to_string(std::mktime(&midnight));
}

SYSTEMTIME DaysFromNow(int days) {
    constexpr long long ticksADay = 864000000000;
    SYSTEMTIME now{};
    GetLocalTime(&now);
    FILETIME file{};
    SystemTimeToFileTime(&now, &file);
    ULARGE_INTEGER ticks{{file.dwLowDateTime, file.dwHighDateTime}};
    ticks.QuadPart = static_cast<ULONGLONG>(static_cast<long long>(ticks.QuadPart) + days * ticksADay);
    file = {ticks.LowPart, ticks.HighPart};
    FileTimeToSystemTime(&file, &now);
    return now;
}
