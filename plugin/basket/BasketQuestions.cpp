#include "plugin/basket/BasketQuestions.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/HostQuestions.h"

#include <algorithm>

namespace planfold {

bool BasketQuestions::MayAsk(const Act& act) {
    if (m_view.MayAsk()) return true;
    if (act.onWait) act.onWait();
    if (std::ranges::find(m_later, &act) == m_later.end()) m_later.push_back(&act);
    return false;
}

bool BasketQuestions::MayAskFirst(const Act& act) {
    if (m_view.MayAsk()) return true;
    m_later.insert(m_later.begin(), &act);
    return false;
}

bool BasketQuestions::OnBoxGone(bool busy) {
    if (busy || m_later.empty()) return m_later.empty();
    const Act& act = *m_later.front();
    m_later.erase(m_later.begin());
    act.begin();
    return m_later.empty();
}

bool BasketQuestions::Ask(const std::string& question, const Act& act) {
    if (!MayAsk(act)) return false;
    return Alone([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes;
}

Choice BasketQuestions::Choose(const std::string& question, const Act& act) {
    if (!MayAsk(act)) return Choice::cancel;
    return Alone([&](Pass pass) { return m_view.Choose(pass, question); }).value_or(Choice::cancel);
}

bool BasketQuestions::AskAboutUnknown(const std::set<std::string>& clients, const char* question,
                                      const Act& act) {
    constexpr std::size_t mostNamed = 20;
    std::size_t unknown = 0;
    std::string names;
    for (const std::string& client : clients) {
        const Reply reply = Alone([&](Pass pass) { return IsUnknownClient(pass, m_session, client); });
        if (reply == Reply::over) return false;
        if (reply == Reply::yes && ++unknown <= mostNamed)
            names.append(names.empty() ? "" : ", ").append(client);
    }
    if (unknown == 0) return true;
    if (unknown > mostNamed) names += Format(" and %zu more", unknown - mostNamed);
    return Ask(Format("The terminal knows no client %s.\n%s", names.c_str(), question), act);
}

} // namespace planfold
