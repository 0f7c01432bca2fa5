// The order record in the user's folder of the host: PlanfoldOrders\\2027-03-05.csv, in UTF-8.
#pragma once

#include "framework/Files.h"
#include "plugin/messaging/Session.h"
#include "plugin/record/OrderRecord.h"

namespace planfold {

class RecordFile final : public RecordFiles {
public:
    explicit RecordFile(const Session& session) : m_session(session) {}

    bool HasFolder() const override { return !m_session.userDirectory.empty(); }
    std::optional<std::string> Read(const LocalDateTime& day) override;
    bool Append(const LocalDateTime& day, std::string_view lines, bool flush, std::size_t& whole) override;

private:
    std::string NameOf(const LocalDateTime& day) const;

    const Session& m_session;
    framework::File m_file; // of the day
    std::string m_name;
};

} // namespace planfold
