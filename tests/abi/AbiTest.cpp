// A host of another make: every entry point of the plug-in called as a compiler with the Microsoft ABI lays the
// calls out, twice over, because what the first life leaves behind would meet the second.
#include "tests/abi/Boundary.h"

#include "host/connectvesk/QmxHost.h"
#include "tests/support/BoxRecorder.h"
#include "tests/support/ImageEdit.h"
#include "tests/support/LoadedPlugin.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <optional>

namespace {

constexpr int kClient = 1053, kValue = 1025, kFrequency = 1026, kPeriod = 1037, kSubmit = 1034;
constexpr unsigned char kPoison = 0xDD, kCanary = 0xFB;
constexpr std::size_t kCanaryBytes = 8;

// Strings of the host stay, poisoned, when they are freed; blocks on the process heap belong to whoever frees
// them.
struct Block {
    std::size_t bytes;
    bool freed;
};
std::map<unsigned char*, Block> g_strings;
std::map<void*, bool> g_heap; // freed
int g_faults = 0;
std::string g_request;

bool Holds(const unsigned char* memory, std::size_t count, unsigned char value) {
    return std::all_of(memory, memory + count, [&](unsigned char byte) { return byte == value; });
}

LPVOID WINAPI Allocate(HANDLE heap, DWORD flags, SIZE_T bytes) {
    void* memory = HeapAlloc(heap, flags, bytes);
    g_heap[memory] = false;
    return memory;
}
BOOL WINAPI Free(HANDLE heap, DWORD flags, LPVOID memory) {
    if (const auto known = g_heap.find(memory); known != g_heap.end()) {
        g_faults += known->second;
        known->second = true;
    }
    return HeapFree(heap, flags, memory);
}

int Left() {
    int left = 0;
    for (const auto& [memory, block] : g_strings) {
        left += !block.freed;
        g_faults += block.freed && !Holds(memory, block.bytes, kPoison);
        std::free(memory);
    }
    for (const auto& [memory, freed] : g_heap)
        left += !freed;
    g_strings.clear();
    g_heap.clear();
    return left;
}

void Answer(std::initializer_list<std::pair<std::uint32_t, std::vector<const char*>>> fields) {
    qmx::MessageWriter writer;
    for (const auto& [tag, texts] : fields) {
        std::vector<QmxDatum> values;
        for (const char* text : texts)
            values.push_back(qmx::Datum(text));
        writer.AddValues(tag, values.data(), static_cast<std::uint32_t>(values.size()));
    }
    const std::string bytes = writer.Finish();
    const qmx::MessageReader reader(bytes);
    give_broadcast(reader.Handle()); // which means nothing to this window
    give_answer(reader.Handle());
    probe::Pump();
}

void* EntryOf(const LoadedPlugin& plugin, const char* name) {
    return reinterpret_cast<void*>(plugin.Entry<void()>(name));
}

void LiveOnce(BoxRecorder& boxes) {
    host_seen = {};
    std::optional<LoadedPlugin> plugin(std::in_place);
    ReplaceImport(plugin->Module(), "kernel32.dll", "HeapAlloc", Allocate);
    ReplaceImport(plugin->Module(), "kernel32.dll", "HeapFree", Free);
    EXPECT_EQ(plugin->Entry<sdk::plugin::GetBCGCBProVersion>("GetBCGCBProVersion")(), 221216);
    const auto month =
        plugin->Entry<sdk::plugin::vesku_get_formatted_month_in_number>("vesku_get_formatted_month_in_number");
    EXPECT_EQ(month("Dec") * 100 + month("dec") + month(nullptr), 1200);
    EXPECT_EQ(plugin->Entry<sdk::plugin::ProcessVeskPluginMsg>("ProcessVeskPluginMsg")(&boxes), 0);

    char text[1024] = "";
    unsigned stamp = 0, number = 0;
    call_information(EntryOf(*plugin, "GetVeskPluginInfo"), EntryOf(*plugin, "GetOptionalVeskPluginInfo"), text,
                     &stamp, &number);
    EXPECT_STREQ(text, "Planfold|4.5.2.10|of the host|Order Entry|SIP Basket Entry|SIP Registration Book|"
                       "SIP Set Restricted Date|QV|of the host|QV: Planfold|QV: Planfold: Custom|"
                       "QV: Planfold: SIP Set Restricted Date|");
    EXPECT_EQ(stamp, 29032010u);
    EXPECT_EQ(number, 58u);

    void* activate = EntryOf(*plugin, "AlertOn_ClientActivation");
    EXPECT_EQ(call_activate(activate, "C001"), 0);
    call_init(EntryOf(*plugin, "InitVeskPlugin"), "Order Entry");
    probe::Pump();
    HWND dialog = probe::FindDialog("Planfold Order Entry");
    ASSERT_NE(dialog, nullptr) << boxes.Texts();
    EXPECT_EQ(g_request, "0=get_sip_operation_mode");
    EXPECT_EQ(call_activate(activate, "C001"), 1);
    using Font = void(void*, std::intptr_t, std::intptr_t, std::intptr_t);
    plugin->Entry<Font>("ApplyFontVarPreference")(nullptr, 0, 3, 4);
    EXPECT_EQ(host_seen.fontArguments, 34);
    host_seen.fontArguments = 0;
    call_init(EntryOf(*plugin, "InitVeskPlugin"), "SIP Basket Entry");
    EXPECT_EQ(host_seen.fontArguments, 34) << "the same, when a window asks by itself";
    SendMessageA(probe::FindDialog("Planfold Basket Order"), WM_CLOSE, 0, 0);

    Answer({{32767, {"get_sip_operation_mode"}}, {10012, {"monthly", "yearly"}}, {54101, {"6", "2"}}});
    EXPECT_EQ(probe::Items(dialog, kFrequency), (std::vector<std::string>{"monthly", "yearly"}));
    probe::Select(dialog, kClient, "C001");
    probe::SetEdit(dialog, kValue, "1234.5");
    probe::SetEdit(dialog, kPeriod, "6");
    probe::Press(dialog, kSubmit);
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_STREQ(host_seen.caution, "C001;value;CNC;123450;ARBORTEX-EQ;nse_cm;");
    EXPECT_TRUE(g_request.starts_with("0=add_sip_orders 63001=nse_cm 10100=1013 63100=ARBORTEX-EQ "))
        << g_request;
    EXPECT_TRUE(
        g_request.ends_with(" 64056=PEERA 64053=PEERB 54158=an identifier that is longer than any text the "
                            "plug-in had in this string before 53405=N 63715=1 64756=TWS"))
        << g_request;
    EXPECT_EQ(host_seen.logLines, 1);
    EXPECT_STREQ(host_seen.log,
                 "NSE BUY SIP Order : Status : Trigger Pending CNC ARBORTEX-EQ at 1234.50 DAY monthly "
                 "for period : 6 Months Client ID : C001 by LOGIN");
    Answer({{32767, {"add_sip_orders"}}, {20008, {"SIP registered"}}, {54001, {"C001"}}});
    EXPECT_EQ(boxes.Texts(), "SIP registered|");

    plugin->Exit();
    EXPECT_EQ(call_activate(activate, "C001"), 0);
    EXPECT_EQ(probe::TopWindows(), std::vector<HWND>{static_cast<HWND>(host_frame)});
    EXPECT_GT(LoadedPlugin::watched.hooksSet, 0);
    EXPECT_EQ(LoadedPlugin::watched.hooksLive, 0);
    EXPECT_EQ(LoadedPlugin::watched.scratchClosed * 10 + LoadedPlugin::watched.messagesClosed, 11);
    EXPECT_EQ(host_seen.liveControls, 0);
    EXPECT_EQ(host_seen.wrongCalls, 0);
    plugin.reset();
    EXPECT_EQ(GetModuleHandleA("Planfold.zup"), nullptr);
    EXPECT_EQ(LoadedPlugin::WrittenAfterFree(), 0);
    EXPECT_EQ(Left(), 0) << "strings of the host or shared memory";
    EXPECT_EQ(g_faults, 0) << "freed twice, written late or overrun";
}

TEST(Abi, EveryEntryPointWorksForAHostOfAnotherCompilerAndNothingIsLeft) {
    BoxRecorder boxes;
    HWND frame = CreateWindowExA(0, "Static", "Host", WS_OVERLAPPEDWINDOW, 0, 0, 800, 600, nullptr, nullptr,
                                 nullptr, nullptr);
    host_frame = frame;
    for (int life = 0; life < 2; ++life)
        LiveOnce(boxes);
    DestroyWindow(frame);
}

} // namespace

void* watched_allocate(std::size_t bytes) {
    auto* memory = static_cast<unsigned char*>(std::malloc(bytes + kCanaryBytes));
    std::memset(memory + bytes, kCanary, kCanaryBytes);
    g_strings[memory] = {bytes, false};
    return memory;
}
void watched_free(void* memory) {
    const auto known = g_strings.find(static_cast<unsigned char*>(memory));
    if (known == g_strings.end() || known->second.freed) {
        ++g_faults;
        return;
    }
    auto& [bytes, freed] = known->second;
    g_faults += !Holds(known->first + bytes, kCanaryBytes, kCanary);
    std::memset(memory, kPoison, bytes);
    freed = true;
}
void* heap_allocate(std::size_t bytes) {
    return Allocate(GetProcessHeap(), 0, bytes);
}
void heap_free(void* memory) {
    Free(GetProcessHeap(), 0, memory);
}
void sent(void* message) {
    g_request = qmx::Dump(message);
}
void fill_combo(void* dialog, int combo, const char* item) {
    HWND window = GetDlgItem(static_cast<HWND>(dialog), combo);
    SendMessageA(window, CB_RESETCONTENT, 0, 0);
    SendMessageA(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
}
