// Orders that turn out to be registered twice: the dealer is told of all of them at once, and may have the
// later registrations cancelled.
#pragma once

#include "plugin/messaging/Answer.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace planfold {

class DoubtsView;

class Twins final : private RecordListener {
public:
    // The control may be null.
    Twins(Session& session, DoubtsView& view, std::function<RxControl*()> control);
    Twins(const Twins&) = delete;
    Twins& operator=(const Twins&) = delete;
    ~Twins() { m_session.record.RemoveListener(*this); }

    // Those of the record, of which an earlier session may not have told, or whose cancelling came to nothing.
    void LookForAll();
    bool MustAsk() const { return !m_found.empty(); }
    void Ask();
    void OnCancelled(const Answer& answer);

private:
    using Found = std::vector<std::pair<OrderPlace, std::string>>; // and the later number

    void OnRegisteredTwice(OrderPlace place, std::string_view second) override;
    OrderPlace CancellationOf(std::string_view number) const;
    bool Cancel(const std::vector<std::string>& numbers);

    Session& m_session;
    DoubtsView& m_view;
    const std::function<RxControl*()> m_control;
    Found m_found;
    std::set<std::string, std::less<>> m_told;
    std::set<std::string, std::less<>> m_cancelling; // not answered yet
    std::vector<std::string> m_cancelled;
    std::size_t m_refused = 0;
    std::string m_refusals; // a line for each of the first
};

} // namespace planfold
