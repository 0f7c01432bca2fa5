#include "plugin/orderbook/BookStatus.h"

#include "plugin/base/Numbers.h"

namespace planfold {

namespace {

constexpr const char* kGap = "   ";

std::string SideText(const SideSum& sum) {
    std::string text = (sum.side.empty() ? "" : sum.side + " ") + GroupedCount(sum.rows) + ": ";
    if (sum.paise || !sum.shares) text += FormatRupees(sum.paise);
    if (sum.shares)
        text += (sum.paise ? ", " : "") + GroupedCount(sum.shares) + (sum.shares == 1 ? " share" : " shares");
    return text;
}

} // namespace

std::string BookStatus::Text() const {
    if (loading) return "Loading... " + GroupedCount(rows);
    std::string text;
    const auto append = [&](const std::string& part) { text += (text.empty() ? "" : kGap) + part; };
    const std::string why =
        (client.empty() ? "" : "client " + client) + (client.empty() || view.empty() ? "" : ", ") + view;
    if (shown < rows || !why.empty())
        append(GroupedCount(shown) + " of " + GroupedCount(rows) + " shown"
               + (why.empty() ? "" : " (" + why + ")"));
    if (selected > 1) append(GroupedCount(selected) + " selected");
    if (sums)
        for (const SideSum& sum : *sums)
            append(SideText(sum));
    return text;
}

const char* BookStatus::EmptyText() const {
    return loading ? "Loading..." : "No registrations yet";
}

void BookFilling::OnTime(std::size_t rows) {
    if (!IsUnderWay()) return;
    if (rows != m_rows)
        m_left = kPatience;
    else
        --m_left;
    m_rows = rows;
}

void ConnectionNews::Hear(std::optional<bool> connected, const std::string& time) {
    if (connected == m_connected) return;
    m_connected = connected;
    m_text = !connected ? "" : *connected ? "Live" : "No connection since " + time;
}

} // namespace planfold
