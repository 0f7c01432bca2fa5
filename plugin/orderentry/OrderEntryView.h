// The order entry window as the code that decides sees it.
#pragma once

#include "plugin/controls/DialogView.h"

#include <cstdint>
#include <string_view>

namespace planfold {

class OrderEntryView : public DialogView {
public:
    // False while another box is open. That one comes to the front, and OrderEntry hears when it is gone.
    virtual bool MayAsk() = 0;
    // A question with Yes and No, No being the default; true for Yes.
    virtual bool Ask(Pass pass, std::string_view question) = 0;
    // What the form says of the order in it. What alarms is drawn so; the words say it as well.
    virtual void ShowSummary(std::string_view text, bool alarms) = 0;
    // A clock that only goes forward.
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~OrderEntryView() = default;
};

} // namespace planfold
