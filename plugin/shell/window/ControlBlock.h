// The plug-in's one global object: the session with the server, the windows, and the host's preferences.
#pragma once

#include "framework/KeyboardHook.h"
#include "framework/MessageBoxes.h"
#include "plugin/basket/window/BasketUpload.h"
#include "plugin/changes/window/ChangesDlg.h"
#include "plugin/dayreport/window/DayReportDlg.h"
#include "plugin/doubts/window/DoubtsWindow.h"
#include "plugin/history/window/SIPOrderHistoryDlg.h"
#include "plugin/messaging/Session.h"
#include "plugin/morning/window/CopyPlansDlg.h"
#include "plugin/morning/window/PeriodRunsDlg.h"
#include "plugin/morning/window/UpcomingRunsDlg.h"
#include "plugin/orderbook/window/OrderBookDlgBar.h"
#include "plugin/orderentry/window/OrderEntryDlg.h"
#include "plugin/record/window/RecordFile.h"
#include "plugin/restricted/window/SetRestrictedDateDlg.h"

#include <optional>

namespace planfold {

// Finds an export of the host executable.
AnyFunction FindInHost(const char* name);

// What the host handed over with its last word about its font, for it to get back whenever it is asked.
struct FontArguments {
    void* third = nullptr;
    void* fourth = nullptr;
};

class CPlanfoldControlBlock {
public:
    // `font` is the host's latest and outlives the block.
    CPlanfoldControlBlock(HINSTANCE module, Identity identity, StringManager& strings,
                          framework::MessageBoxes& boxes, const FontArguments& font);
    CPlanfoldControlBlock(const CPlanfoldControlBlock&) = delete;
    CPlanfoldControlBlock& operator=(const CPlanfoldControlBlock&) = delete;

    // Calls into the plug-in hold their block, so that it ends after the last of them.
    void SetOwner(std::weak_ptr<void> owner) { m_session.owner = std::move(owner); }
    // The exit: no window, control or hook is left, whatever call is still under way.
    void ShutDown();

    // What every menu pick does before its window is shown.
    void PrepareForPick(Pass pass, Notices& notices);
    void SetLoginMode(std::int32_t mode) { m_session.m_nLoginMode = mode; }
    // Asks the host for its font preference and lays the windows out anew.
    void ApplyFontPreference(Pass pass);

    // Opens the window of a menu entry; nothing for the text of another.
    void Pick(std::string_view entry, HWND mainFrame);
    // An empty client removes the filter of the book's lists.
    void FilterByClient(std::string_view client) { m_orderBook.FilterByClient(client); }

private:
    // What the block does with a window. The table's order is that in which they go at the exit.
    struct WindowRow {
        std::string_view entry; // of the menu; empty when another window opens it
        void (*open)(CPlanfoldControlBlock& block, HWND mainFrame);
        void (*shutDown)(CPlanfoldControlBlock& block);
        framework::Dialog* (*inHostsFont)(CPlanfoldControlBlock& block); // null: it has its own
    };
    template <auto window>
    static constexpr WindowRow RowOf(std::string_view entry);
    static const WindowRow kWindows[];

    // Before the dialog is made. False when the session has ended meanwhile.
    [[nodiscard]] bool SetHostsFont(const framework::Dialog& dialog);
    void OpenForModify(const sOrderinfo& record);
    // The order form hears of it, should it be open for the record.
    void TellChanged(const sOrderinfo& record);
    void OpenOrderHistory(Pass pass, const std::string& registrationNumber);
    void OpenDayReport();
    void OpenUpcomingRuns();
    void OpenRunsOfPeriod();
    void OpenCopyPlans(HWND owner, std::vector<std::string> numbers, bool areRuns);
    void CopyToBasket(Pass pass, std::vector<sSipOrderData> orders);
    void ChangesCommand(int command);
    void RecordCommand(int command);
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders);
    void FindSettingsPaths(Pass pass);

    RecordFile m_recordFile{m_session};
    OrderRecord m_record{m_recordFile, LocalNow};
    Session m_session;
    const FontArguments& m_font;
    std::optional<framework::KeyboardHook> m_keyboard{std::in_place};
    // The windows take their controls in this order.
    COrderEntryDlg m_orderEntry;
    CBasketUpload m_basket;
    CSetRestrictedDateDlg m_restrictedDates;
    CSIPOrderHistoryDlg m_orderHistory;
    CDayReportDlg m_dayReport;
    COrderBookDlgBar m_orderBook;
    CUpcomingRunsDlg m_upcomingRuns;
    CPeriodRunsDlg m_runsOfPeriod;
    CCopyPlansDlg m_copyPlans;
    CChangesDlg m_changes;
    CDoubtsWindow m_doubts;
    std::intptr_t m_nFontVariation = 0; // points
    std::intptr_t m_nFontSize = 0;      // points; 0 is the template's
};

} // namespace planfold
