#include "plugin/shell/window/ControlBlock.h"

#include "plugin/shell/Globals.h"
#include "plugin/shell/HostCheck.h"
#include "sdk/korvex/CommonListCtrl.h"

#include <ranges>
#include <type_traits>

namespace planfold {

AnyFunction FindInHost(const char* name) {
    return reinterpret_cast<AnyFunction>(GetProcAddress(g_hHostModule, name));
}

CPlanfoldControlBlock::CPlanfoldControlBlock(HINSTANCE module, Identity identity, StringManager& strings,
                                             framework::MessageBoxes& boxes, const FontArguments& font)
    : m_session(FindInHost, identity, strings, m_record), m_font(font), m_orderEntry(module, m_session, boxes),
      m_basket(module, m_session, boxes, [this](Pass, int command) { RecordCommand(command); }),
      m_restrictedDates(module, m_session, boxes), m_orderHistory(module, m_session, boxes),
      m_dayReport(module, m_session, m_recordFile),
      m_orderBook(
          module, m_session, boxes,
          {[this](Pass, const sOrderinfo& record) { OpenForModify(record); },
           [this](Pass, const sOrderinfo& record) { TellChanged(record); }},
          [this](Pass pass, const std::string& number) { OpenOrderHistory(pass, number); },
          [this](Pass, int command) { RecordCommand(command); }),
      m_upcomingRuns(module, m_session, m_orderBook.Records(),
                     [this](Pass pass, const std::string& number) { OpenOrderHistory(pass, number); }),
      m_runsOfPeriod(module, m_session, m_orderBook.Records(),
                     {[this](Pass pass, const std::string& number) { OpenOrderHistory(pass, number); },
                      [this](Pass, std::vector<std::string> numbers) {
                          OpenCopyPlans(m_runsOfPeriod.Handle(), std::move(numbers), true);
                      }}),
      m_copyPlans(
          module, m_session, m_orderBook.Records(),
          [this](Pass pass, std::vector<sSipOrderData> orders) { CopyToBasket(pass, std::move(orders)); }),
      m_changes(module, m_session, boxes, m_orderBook.Records(),
                [this] { return m_orderBook.SelectedNumbers(); }),
      m_doubts(module, m_session, boxes,
               {[this](Pass) { OpenDayReport(); },
                [this](Pass pass, std::span<const OrderPlace> orders) { return TakeBack(pass, orders); }}) {
    m_session.host = ResolveHostCallbacks(FindInHost);
    constexpr INITCOMMONCONTROLSEX classes{sizeof classes,
                                           ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES | ICC_DATE_CLASSES};
    InitCommonControlsEx(&classes);
}

template <auto window>
constexpr CPlanfoldControlBlock::WindowRow CPlanfoldControlBlock::RowOf(std::string_view entry) {
    WindowRow row{entry, nullptr, [](CPlanfoldControlBlock& block) { (block.*window).ShutDown(); }, nullptr};
    using Window = std::remove_reference_t<decltype(std::declval<CPlanfoldControlBlock&>().*window)>;
    if constexpr (std::is_base_of_v<framework::Dialog, Window>)
        row.inHostsFont = [](CPlanfoldControlBlock& block) -> framework::Dialog* { return &(block.*window); };
    if constexpr (requires(Window & one, HWND mainFrame) { one.Open(mainFrame); })
        row.open = [](CPlanfoldControlBlock& block, HWND mainFrame) { (block.*window).Open(mainFrame); };
    else if constexpr (requires(Window & one) { one.Open(); })
        row.open = [](CPlanfoldControlBlock& block, HWND) {
            if (block.SetHostsFont(block.*window)) (block.*window).Open();
        };
    return row;
}

const CPlanfoldControlBlock::WindowRow CPlanfoldControlBlock::kWindows[] = {
    RowOf<&CPlanfoldControlBlock::m_doubts>({}),
    RowOf<&CPlanfoldControlBlock::m_copyPlans>({}),
    RowOf<&CPlanfoldControlBlock::m_changes>({}),
    RowOf<&CPlanfoldControlBlock::m_runsOfPeriod>({}),
    RowOf<&CPlanfoldControlBlock::m_upcomingRuns>({}),
    RowOf<&CPlanfoldControlBlock::m_orderBook>(kBookMenu),
    RowOf<&CPlanfoldControlBlock::m_dayReport>({}),
    RowOf<&CPlanfoldControlBlock::m_orderHistory>({}),
    RowOf<&CPlanfoldControlBlock::m_restrictedDates>(kRestrictedDatesMenu),
    RowOf<&CPlanfoldControlBlock::m_basket>(kBasketMenu),
    RowOf<&CPlanfoldControlBlock::m_orderEntry>(kOrderEntryMenu),
};

void CPlanfoldControlBlock::ShutDown() {
    m_session.End();
    for (const WindowRow& row : kWindows)
        row.shutDown(*this);
    m_keyboard.reset();
    m_record.OnSessionEnd();
}

void CPlanfoldControlBlock::Pick(std::string_view entry, HWND mainFrame) {
    for (const WindowRow& row : kWindows)
        if (row.open && row.entry == entry) {
            row.open(*this, mainFrame);
            if (!m_session.Ended()) m_doubts.OnPick();
        }
}

namespace {

SipRegistration ReadRegistration(const sOrderinfo& record) {
    struct Row {
        std::string SipRegistration::*member;
        OrderField field;
    };
    static constexpr Row rows[] = {
        {&SipRegistration::number, OrderField::registrationNumber},
        {&SipRegistration::exchange, OrderField::exchange},
        {&SipRegistration::frequency, OrderField::frequency},
        {&SipRegistration::orderType, OrderField::orderType},
        {&SipRegistration::product, OrderField::product},
        {&SipRegistration::totalPeriod, OrderField::totalPeriod},
        {&SipRegistration::installments, OrderField::installmentsRegistered},
        {&SipRegistration::tradingSymbol, OrderField::tradingSymbol},
        {&SipRegistration::action, OrderField::side},
        {&SipRegistration::investType, OrderField::investType},
        {&SipRegistration::amount, OrderField::amount},
        {&SipRegistration::quantity, OrderField::quantity},
        {&SipRegistration::startDate, OrderField::startDate},
        {&SipRegistration::account, OrderField::account},
        {&SipRegistration::nextExecutionDate, OrderField::nextExecutionDate},
        {&SipRegistration::endDate, OrderField::endDate},
        {&SipRegistration::status, OrderField::sipStatus},
    };
    SipRegistration registration;
    for (const auto& [member, field] : rows)
        registration.*member = record.Text(field);
    const bool cancelled = IsCancelled(registration.status) && !record.Text(OrderField::cancelledBy).empty();
    registration.changedBy = record.Text(cancelled ? OrderField::cancelledBy : OrderField::loginId);
    return registration;
}

} // namespace

void CPlanfoldControlBlock::OpenForModify(const sOrderinfo& record) {
    // A copy: the host is asked on the way, and may let the record change.
    const SipRegistration registration = ReadRegistration(record);
    if (SetHostsFont(m_orderEntry)) m_orderEntry.OpenForModify(registration);
}

void CPlanfoldControlBlock::OpenOrderHistory(Pass pass, const std::string& registrationNumber) {
    if (SetHostsFont(m_orderHistory)) m_orderHistory.Open(pass, registrationNumber);
}

void CPlanfoldControlBlock::RecordCommand(int command) {
    if (command == kDayReportCommand) OpenDayReport();
    if (command == kCompareCommand) m_doubts.Compare();
    if (command == kUpcomingRunsCommand) OpenUpcomingRuns();
    if (command == kRunsOfPeriodCommand) OpenRunsOfPeriod();
    if (command == kCopyToBasketCommand)
        OpenCopyPlans(m_orderBook.Handle(), m_orderBook.SelectedNumbers(), false);
    if (IsChangesCommand(command)) ChangesCommand(command);
}

std::size_t CPlanfoldControlBlock::TakeBack(Pass pass, std::span<const OrderPlace> orders) {
    if (!SetHostsFont(m_basket)) return 0;
    m_basket.Open();
    return m_session.Ended() ? 0 : m_basket.TakeBack(pass, orders);
}

void CPlanfoldControlBlock::OpenDayReport() {
    if (m_recordFile.HasFolder() && SetHostsFont(m_dayReport)) m_dayReport.BringUp();
}

void CPlanfoldControlBlock::OpenUpcomingRuns() {
    if (SetHostsFont(m_upcomingRuns)) m_upcomingRuns.BringUp();
}

void CPlanfoldControlBlock::OpenRunsOfPeriod() {
    if (SetHostsFont(m_runsOfPeriod)) m_runsOfPeriod.BringUp();
}

void CPlanfoldControlBlock::OpenCopyPlans(HWND owner, std::vector<std::string> numbers, bool areRuns) {
    if (!numbers.empty() && SetHostsFont(m_copyPlans)) m_copyPlans.Open(owner, std::move(numbers), areRuns);
}

void CPlanfoldControlBlock::CopyToBasket(Pass pass, std::vector<sSipOrderData> orders) {
    if (!SetHostsFont(m_basket)) return;
    m_basket.Open();
    if (!m_session.Ended()) m_basket.Add(pass, std::move(orders));
}

void CPlanfoldControlBlock::ChangesCommand(int command) {
    if (SetHostsFont(m_changes)) m_changes.OnBookCommand(command, m_orderBook.Handle());
}

bool CPlanfoldControlBlock::SetHostsFont(const framework::Dialog& dialog) {
    return m_session.life.Across([&](Pass pass) {
        if (!dialog.HasWindow()) ApplyFontPreference(pass);
    });
}

void CPlanfoldControlBlock::TellChanged(const sOrderinfo& record) {
    if (m_orderEntry.Modifies(record.Number())) m_orderEntry.OnRegistrationChanged(ReadRegistration(record));
}

void CPlanfoldControlBlock::PrepareForPick(Pass pass, Notices& notices) {
    m_session.OpenHandles(pass, notices);
    for (const Frequency& frequency : kFrequencies)
        m_session.MinimumPeriods(frequency) = 0.0;
    if (m_session.host.pu_get_non_trading_dates_map && !m_session.m_pNonTradingDates)
        m_session.m_pNonTradingDates = m_session.host.pu_get_non_trading_dates_map(pass);
    if (m_session.userDirectory.empty()) FindSettingsPaths(pass);
}

void CPlanfoldControlBlock::FindSettingsPaths(Pass pass) {
    std::string dialogPositions;
    std::string userSettings;
    CString directory = m_session.String();
    if (m_session.host.pu_get_UserDirectory && m_session.host.pu_get_UserDirectory(pass, &directory)) {
        m_session.userDirectory = directory.View();
        dialogPositions = m_session.userDirectory + "\\DialogPos.ini";
        userSettings = m_session.userDirectory + "\\UserSetting.ini";
    }
    PassedString userSettingsPath(userSettings, m_session.strings);
    PassedString dialogPositionsPath(dialogPositions, m_session.strings);
    CCommonListCtrl::SetRecoveryFiles(userSettingsPath.Hand(), dialogPositionsPath.Hand());
}

void CPlanfoldControlBlock::ApplyFontPreference(Pass pass) {
    if (!m_session.host.pu_get_FontVariation) return;
    m_session.host.pu_get_FontVariation(pass, &m_nFontVariation, &m_nFontSize, m_font.third, m_font.fourth);
    for (const WindowRow& row : kWindows | std::views::reverse) {
        framework::Dialog* dialog = row.inHostsFont ? row.inHostsFont(*this) : nullptr;
        if (dialog)
            dialog->SetFontSize(PreferredPointSize(dialog->TemplateFontSize(), m_nFontSize, m_nFontVariation));
    }
}

} // namespace planfold
