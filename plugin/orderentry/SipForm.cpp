#include "plugin/orderentry/SipForm.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/HostCallbacks.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr std::string_view kDefaultProduct = "CNC";
constexpr std::string_view kDefaultSeries = "EQ";

struct FirstEntry {
    int combo;
    std::string_view text;
};
constexpr FirstEntry kFirstEntries[] = {
    {IDC_EXCHANGE, "NSE"},      {IDC_EXCHANGE, "BSE"},          {IDC_ACTION, "SIP"},
    {IDC_ACTION, "SWP"},        {IDC_INVEST_BY, "Amount"},      {IDC_INVEST_BY, "Quantity"},
    {IDC_ORDER_TYPE, "MARKET"}, {IDC_PRODUCT, kDefaultProduct},
};

std::vector<std::string> SplitAtCommas(std::string_view list) {
    std::vector<std::string> parts;
    for (std::size_t end = 0; end != list.npos;) {
        end = list.find(',');
        parts.emplace_back(list.substr(0, end));
        if (end != list.npos) list.remove_prefix(end + 1);
    }
    return parts;
}

} // namespace

bool SipForm::ShowClientControl() {
    m_view.Show(IDC_CLIENT_SEARCH, SearchesClients());
    m_view.Show(IDC_CLIENT_SEARCH_MODE, SearchesClients());
    m_view.Show(IDC_CLIENT_COMBO, !SearchesClients());
    const auto load = m_session.host.pu_load_client_id_combo;
    if (SearchesClients() || !load) return true;
    return m_life.Across([&](Pass pass) { load(pass, m_view.Handle(), IDC_CLIENT_COMBO); });
}

int SipForm::ClientControl() const {
    return SearchesClients() ? IDC_CLIENT_SEARCH : IDC_CLIENT_COMBO;
}

bool SipForm::ShowActiveClient() {
    std::string client;
    const Reply known = m_life.Across([&](Pass pass) { return m_session.GetActiveClient(pass, client); });
    if (known == Reply::over) return false;
    client = m_session.identity.activeClient;
    if (SearchesClients()) {
        m_view.SetText(IDC_CLIENT_SEARCH, client);
        return true;
    }
    const std::vector<std::string> clients = m_view.Items(IDC_CLIENT_COMBO);
    const auto begins = [&](const std::string& entry) { return StartsWithIgnoringCase(entry, client); };
    const auto found = std::ranges::find_if(clients, begins);
    m_view.Select(IDC_CLIENT_COMBO, known == Reply::yes && found != clients.end()
                                        ? static_cast<int>(found - clients.begin())
                                        : 0);
    return true;
}

void SipForm::AddFirstEntries() {
    for (const auto& [combo, text] : kFirstEntries)
        m_view.AddItem(combo, text);
}

bool SipForm::FillProducts(std::string_view customProducts) {
    const auto load = Find<sdk::fn::pu_load_product_type_combo>(m_session.lookup, "pu_load_product_type_combo");
    const Reply custom = m_life.Across([&](Pass pass) {
        if (load) load(pass, m_view.Handle(), IDC_HOST_PRODUCTS);
        return m_session.HasRight(pass, kCustomRight);
    });
    if (custom != Reply::yes) return custom == Reply::no;
    const std::vector<std::string> known = m_view.Items(IDC_HOST_PRODUCTS);
    for (const std::string& product : SplitAtCommas(customProducts))
        if (product != kDefaultProduct && std::ranges::find(known, product) != known.end())
            m_view.AddItem(IDC_PRODUCT, product);
    return true;
}

bool SipForm::RefreshScrips(ScripLevel changed) {
    const bool isThere = m_life.Across([&](Pass pass) {
        if (const auto fill = m_session.host.pu_fill_scrip_combos)
            fill(pass, m_view.Handle(), IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_HOST_SCRIP_1,
                 IDC_HOST_SCRIP_2, IDC_HOST_SCRIP_3, static_cast<int>(changed));
    });
    if (!isThere) return false;
    if (changed == ScripLevel::exchange && !m_view.SelectText(IDC_SERIES, kDefaultSeries))
        m_view.Select(IDC_SERIES, 0);
    m_view.Select(IDC_SYMBOL, 0);
    return true;
}

bool SipForm::OnChosen(int combo) {
    if (combo == IDC_EXCHANGE) return RefreshScrips(ScripLevel::exchange);
    return combo != IDC_SERIES || RefreshScrips(ScripLevel::series);
}

bool SipForm::Choose(int combo, std::string_view text) {
    if (m_view.SelectText(combo, text)) return true;
    m_view.Select(combo, -1);
    return false;
}

void SipForm::Fix(int combo, std::string_view text) {
    m_view.ClearItems(combo);
    m_view.AddItem(combo, text);
    m_view.Select(combo, 0);
    m_view.Enable(combo, false);
}

void SipForm::FixClient(std::string_view client) {
    if (!SearchesClients()) return Fix(IDC_CLIENT_COMBO, client);
    m_view.SetText(IDC_CLIENT_SEARCH, client);
    m_view.Enable(IDC_CLIENT_SEARCH, false);
    m_view.Enable(IDC_CLIENT_SEARCH_MODE, false);
}

SipOrderForm SipForm::Read(int valueControl) const {
    struct FormRow {
        int control;
        std::string SipOrderForm::*member;
    };
    const FormRow rows[] = {
        {IDC_EXCHANGE, &SipOrderForm::exchange},    {IDC_SERIES, &SipOrderForm::series},
        {IDC_SYMBOL, &SipOrderForm::symbol},        {IDC_ACTION, &SipOrderForm::action},
        {IDC_ORDER_TYPE, &SipOrderForm::orderType}, {IDC_PRODUCT, &SipOrderForm::product},
        {IDC_FREQUENCY, &SipOrderForm::frequency},  {IDC_INVEST_BY, &SipOrderForm::investType},
        {valueControl, &SipOrderForm::value},       {IDC_PERIOD, &SipOrderForm::totalPeriod},
        {ClientControl(), &SipOrderForm::account},
    };
    SipOrderForm form;
    for (const auto& [control, member] : rows)
        form.*member = m_view.Text(control);
    form.startDate = m_view.Date(IDC_START_DATE);
    return form;
}

} // namespace planfold
