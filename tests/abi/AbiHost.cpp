// A host of another make: calls every entry point of the plug-in as a compiler with the Microsoft ABI lays the
// calls out. AbiHost.exe PATH-OF-PLUGIN
#include "Boxes.h"
#include "HostSide.h"
#include "Image.h"
#include "Plugin.h"
#include "Strings.h"
#include "Support.h"
#include "Watch.h"

namespace {

constexpr int kFrequency = 1026, kValue = 1025, kPeriod = 1037, kSubmit = 1034, kClient = 1053;

void Pick(const Plugin& plugin, const char* entry) {
    const CString text(entry);
    plugin.init(nullptr, "LOGIN", 3, text);
    Pump();
}

void CheckMenu(const Plugin& plugin, bool fourth, const char* what) {
    CString name("an old text"), version;
    CStringArray menu;
    menu.SetOnly("of the host");
    unsigned stamp = 0, interfaceNumber = 0;
    CheckNumber(plugin.info(&name, &version, &menu, &stamp, &interfaceNumber), 1, what);
    CheckText(name.Text(), "Planfold", "name");
    CheckNumber(name.Length(), 8, "its length");
    CheckText(version.Text(), "4.5.2.10", "version");
    CheckNumber(stamp, 29032010, "build stamp");
    CheckNumber(interfaceNumber, 58, "interface number");
    CheckNumber(menu.Size(), fourth ? 5 : 4, "menu entries behind the one that was there");
    constexpr const char* expected[] = {"of the host", "Order Entry", "SIP Basket Entry",
                                        "SIP Registration Book", "SIP Set Restricted Date"};
    for (int i = 0; i < (fourth ? 5 : 4); ++i)
        CheckText(menu.At(i), expected[i], "menu entry");
}

void CheckInformation(const Plugin& plugin) {
    Host().mayRestrictDates = true;
    CheckMenu(plugin, true, "information with the right to restrict dates");
    Host().mayRestrictDates = false;
    CheckMenu(plugin, false, "information without that right");
    Host().mayRestrictDates = true;
    {
        const image::HiddenExport hidden("pu_is_actionright_enabled");
        CheckMenu(plugin, false, "information by a host that knows no rights");
    }
    CheckMenu(plugin, true, "information asked for once more");

    CString root;
    CStringArray rights;
    plugin.rights(&root, &rights, nullptr, nullptr);
    CheckText(root.Text(), "QV", "rights root");
    CheckNumber(rights.Size(), 3, "rights");
    CheckText(rights.At(0), "QV: Planfold", "first right");
    CheckText(rights.At(1), "QV: Planfold: Custom", "second right");
    CheckText(rights.At(2), "QV: Planfold: SIP Set Restricted Date", "third right");
}

void CheckNumbers(const Plugin& plugin) {
    CheckNumber(plugin.version(), 221216, "version of the window library");
    constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int i = 0; i < 12; ++i)
        CheckNumber(plugin.month(months[i]), i + 1, months[i]);
    constexpr const char* others[] = {"", "jan", "JAN", "Ja", "Janu", "1"};
    for (const char* other : others)
        CheckNumber(plugin.month(other), 0, "a text that is no month");
    CheckNumber(plugin.month(nullptr), 0, "no month at all");
    CheckNumber(plugin.message(&Host()), 0, "messages are not handled");
}

void CheckBeforeAnyPick(const Plugin& plugin) {
    plugin.exit();
    CString client("C001");
    CheckNumber(plugin.activate(&client), 0, "client activation before any pick");
    plugin.font(nullptr, nullptr, nullptr, nullptr);
    CheckNumber(WindowCount(), 0, "windows before any pick");
    CheckText(Host().kinds, "", "controls taken before any pick");
}

void CheckRefusal(const Plugin& plugin, const char* text) {
    const int before = boxes::Count();
    Pick(plugin, "Order Entry");
    CheckNumber(boxes::Count(), before + 1, "boxes of a refused pick");
    CheckText(boxes::LastText(), text, "refusal");
    CheckNumber(WindowCount(), 0, "windows after a refused pick");
    CheckNumber(watch::Seen().scratchOpened, 0, "handles opened by it");
}

void CheckRefusals(const Plugin& plugin) {
    Host().mayUse = false;
    CheckRefusal(plugin, "You are not enabled on Planfold.");
    Host().mayUse = true;
    {
        const image::HiddenExport hidden("pu_get_exe_app");
        CheckRefusal(plugin, "Exe is not compatible with ZUP");
    }
    constexpr const char* bothRequired[] = {"pu_get_peer_data", "pu_is_actionright_enabled"};
    for (const char* required : bothRequired) {
        const image::HiddenExport hidden(required);
        CheckRefusal(plugin, "Initialisation failed. ZUP not compatible with Trader version.");
    }
    CheckText(Host().kinds, "", "controls taken by refused picks");
}

void CheckPicks(const Plugin& plugin) {
    Host().hasMainFrame = false;
    Pick(plugin, "Order Entry");
    CheckNumber(watch::Seen().scratchOpened, 0, "handles opened without a main frame");
    Check(!OrderEntry(), "no window without a main frame");
    Host().hasMainFrame = true;

    int picks = 0;
    constexpr const char* unknownTexts[] = {"", "Order entry", "ORDER ENTRY", "Order Entry ",
                                            "A text of some other plug-in"};
    for (const char* unknown : unknownTexts) {
        Pick(plugin, unknown);
        CheckNumber(watch::Seen().scratchOpened, ++picks, "scratch buffers opened, unknown texts too");
        Check(!OrderEntry(), "an unknown text opens nothing");
    }
    const int requests = Host().requests;
    Pick(plugin, "Order Entry");
    HWND dialog = OrderEntry();
    Check(dialog && IsWindowVisible(dialog), "the order entry window opens");
    CheckNumber(Host().requests, requests + 1, "requests sent by opening it");
    CheckText(watch::Seen().request, "0=get_sip_operation_mode;", "the request");
    const int windows = WindowCount();
    Pick(plugin, "Order Entry");
    Check(OrderEntry() == dialog, "a second pick brings up the same window");
    CheckNumber(WindowCount(), windows, "windows after the second pick");
    CheckNumber(Host().requests, requests + 1, "requests after the second pick");
    picks += 2;
    CheckNumber(watch::Seen().scratchOpened, picks, "scratch buffers of the agreed size opened");
    CheckNumber(watch::Seen().messageOpened, picks, "message handles opened");
    CheckNumber(watch::Seen().scratchClosed + watch::Seen().messageClosed, 0, "handles closed so far");

    CString client("C001");
    CheckNumber(plugin.activate(&client), 1, "client activation after a pick");
    plugin.font(reinterpret_cast<void*>(1), reinterpret_cast<void*>(2), reinterpret_cast<void*>(3),
                reinterpret_cast<void*>(4));
    CheckNumber(Host().fontArguments[0] * 10 + Host().fontArguments[1], 34,
                "the font call's arguments passed on");
}

void CheckOperationMode() {
    constexpr Value values[] = {
        {32767, "get_sip_operation_mode"}, {10012, "monthly"}, {10012, "yearly"}, {54101, "6"}, {54101, "2"}};
    // A broadcast means nothing to this window.
    Host().firstNotifier->OnBroadcast(nullptr, 0, nullptr);
    Answer(values, sizeof values / sizeof *values);
    HWND frequency = GetDlgItem(OrderEntry(), kFrequency);
    CheckNumber(SendMessageA(frequency, kCbGetCount, 0, 0), 2, "frequencies");
    CheckNumber(SendMessageA(frequency, kCbGetCurSel, 0, 0), 0, "selected frequency");
    char text[32] = "";
    SendMessageA(frequency, kCbGetLbText, 1, reinterpret_cast<intptr_t>(text));
    CheckText(text, "yearly", "second frequency");
    Check(FindWindowExA(OrderEntry(), nullptr, "Static", "SIP Periods") != nullptr,
          "the period's label changes");
}

// Cuts the value of the start date, which is another one every day.
void CutStartDate(char* request) {
    constexpr char tag[] = ";49165=";
    for (char* at = request; *at; ++at) {
        size_t same = 0;
        while (same < sizeof tag - 1 && at[same] == tag[same])
            ++same;
        if (same < sizeof tag - 1) continue;
        char* from = at += same;
        while (*from && *from != ';')
            ++from;
        CheckNumber(from - at, 10, "digits of the start date");
        while ((*at++ = *from++)) {
        }
        return;
    }
}

void SetText(int control, const char* text) {
    SendMessageA(GetDlgItem(OrderEntry(), control), kWmSetText, 0, reinterpret_cast<intptr_t>(text));
}

void CheckSubmit() {
    SendMessageA(GetDlgItem(OrderEntry(), kClient), kCbSetCurSel, 0, 0);
    SetText(kValue, "1234.5");
    SetText(kPeriod, "6");
    const int lines = Host().logLines, boxCount = boxes::Count();
    SendMessageA(OrderEntry(), kWmCommand, kSubmit,
                 reinterpret_cast<intptr_t>(GetDlgItem(OrderEntry(), kSubmit)));
    Pump();
    CheckNumber(boxes::Count(), boxCount, "boxes at a good order");
    CheckText(Host().caution, "C001;value;CNC;123450;ARBORTEX-EQ;nse_cm;", "what the host is asked to confirm");
    char request[sizeof watch::Counts::request];
    Copy(request, sizeof request, watch::Seen().request);
    CutStartDate(request);
    CheckText(
        request,
        "0=add_sip_orders;63001=nse_cm;10100=1013;63100=ARBORTEX-EQ;12003=B;12008=MKT;64030=CNC;54152=value;"
        "53063=123450;10012=monthly;49165=;63415=6;31003=LOGIN;54056=C;54001=C001;12005=DAY;64056=PEERA;"
        "64053=PEERB;54158=an identifier that is longer than any text the plug-in had in this string before;"
        "53405=N;63715=1;64756=TWS;",
        "the order's fields");
    CheckNumber(Host().logLines, lines + 1, "log lines of a good order");
    CheckText(
        Host().log,
        "NSE BUY SIP Order : Status : Trigger Pending CNC ARBORTEX-EQ at 1234.50 DAY monthly for period : 6 "
        "Months Client ID : C001 by LOGIN",
        "the log line");

    constexpr Value refused[] = {{32767, "add_sip_orders"}, {32766, "17"}};
    Answer(refused, 2);
    CheckText(Host().log, "Error in response : add_sip_orders . Error Code : 17", "the log line of an error");
    constexpr Value accepted[] = {{32767, "add_sip_orders"}, {20008, "SIP registered"}, {54001, "C001"}};
    Answer(accepted, 3);
    Pump();
    CheckText(boxes::LastText(), "SIP registered", "the box of an answer");
}

void CheckExit(const Plugin& plugin) {
    plugin.exit();
    Pump();
    const watch::Counts& seen = watch::Seen();
    CheckNumber(WindowCount(), 0, "windows after exit");
    CheckNumber(seen.scratchClosed, 1, "scratch buffers closed");
    CheckNumber(seen.messageClosed, 1, "message handles closed");
    Check(seen.hooksSet > 0, "the plug-in does the keyboard of its windows");
    CheckNumber(seen.hooksRemoved, seen.hooksSet, "hooks removed of those set");
    CheckNumber(Host().liveControls, 0, "controls not given back");
    CheckNumber(Host().wrongSlots, 0, "wrong operations or arguments at the controls");
    // Kinds in the agreed order; the book's come last.
    constexpr char kinds[] = "0000012";
    bool prefix = Host().kinds[0] != 0;
    for (size_t i = 0; Host().kinds[i]; ++i)
        prefix = prefix && i < sizeof kinds && Host().kinds[i] == kinds[i];
    Check(prefix, "kinds of the controls in order");
    CString client("C001");
    CheckNumber(plugin.activate(&client), 0, "client activation after exit");
    plugin.exit();
}

void LiveOnce(const char* path) {
    HostState& host = Host();
    host = {.mainFrame = host.mainFrame, .mayUse = true, .hasMainFrame = true};
    Plugin plugin = {};
    if (!Load(path, plugin)) return;
    watch::Install(plugin.module);
    CheckNumbers(plugin);
    CheckInformation(plugin);
    CheckBeforeAnyPick(plugin);
    CheckRefusals(plugin);
    CheckPicks(plugin);
    if (OrderEntry()) {
        CheckOperationMode();
        CheckSubmit();
    }
    CheckExit(plugin);
    Unload(plugin);
    CheckNumber(strings::Live(), 0, "strings of the host that are left");
    CheckNumber(strings::Faults(), 0, "faults at strings of the host");
    CheckNumber(watch::Seen().heapBlocks, 0, "shared memory of the plug-in that is left");
    CheckNumber(watch::Seen().heapFaults, 0, "shared memory freed twice");
}

void CreateMainFrame() {
    WindowClass frame = {};
    frame.proc = DefWindowProcA;
    frame.name = "AbiHostFrame";
    frame.instance = GetModuleHandleA(nullptr);
    RegisterClassA(&frame);
    constexpr unsigned overlapped = 0x00CF0000;
    Host().mainFrame = CreateWindowExA(0, frame.name, "Host", overlapped, 0, 0, 800, 600, nullptr, nullptr,
                                       frame.instance, nullptr);
}

// The last argument of the command line, which may stand in quotes.
const char* LastArgument() {
    static char line[512];
    Copy(line, sizeof line, GetCommandLineA());
    size_t end = Length(line);
    while (end && (line[end - 1] == ' ' || line[end - 1] == '"'))
        line[--end] = 0;
    const char stop = GetCommandLineA()[end] == '"' ? '"' : ' ';
    while (end && line[end - 1] != stop)
        --end;
    return line + end;
}

} // namespace

extern "C" [[noreturn]] void Entry();
extern "C" [[noreturn]] void Entry() {
    CreateMainFrame();
    boxes::Install();
    // Twice: what the first life leaves behind would meet the second.
    for (int life = 0; life < 2; ++life)
        LiveOnce(LastArgument());
    boxes::Remove();
    DestroyWindow(Host().mainFrame);
    ExitProcess(Finish());
}
