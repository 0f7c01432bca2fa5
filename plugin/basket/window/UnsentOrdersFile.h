// The file in the user's directory that holds the basket's unsent orders.
#pragma once

#include "framework/Files.h"
#include "plugin/basket/BasketView.h"
#include "plugin/messaging/Session.h"

#include <string>

namespace planfold {

class UnsentOrdersFile final : public UnsentFile {
public:
    explicit UnsentOrdersFile(const Session& session) : m_session(session) {}

    std::optional<std::string> Read() override;
    std::string Replace(std::string_view text) override;
    std::string SaveAside(std::string_view text, const LocalDateTime& now) override;
    // For good, so that another session may have it.
    void Release();

private:
    bool Take();

    const Session& m_session;
    std::string m_name; // in the ANSI code page, as the host names the directory; empty until it is taken
    framework::File m_hold;
    bool m_released = false;
};

} // namespace planfold
