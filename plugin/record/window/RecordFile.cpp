#include "plugin/record/window/RecordFile.h"

#include "plugin/base/Text.h"

namespace planfold {

namespace {

constexpr char kFolder[] = "\\PlanfoldOrders";

} // namespace

std::string RecordFile::NameOf(const LocalDateTime& day) const {
    return framework::Utf8(m_session.userDirectory + kFolder)
           + Format("\\%04d-%02d-%02d.csv", day.year, day.month, day.day);
}

std::optional<std::string> RecordFile::Read(const LocalDateTime& day) {
    const std::string name = NameOf(day);
    if (!framework::FileExists(name)) return std::string();
    const auto text = framework::ReadWhole(name);
    if (!text) return std::nullopt;
    return framework::Narrow(framework::Wide(*text, CP_UTF8), CP_ACP);
}

bool RecordFile::Append(const LocalDateTime& day, std::string_view lines, bool flush, std::size_t& whole) {
    if (std::string name = NameOf(day); !m_file || name != m_name) {
        framework::MakeFolders(framework::Utf8(m_session.userDirectory + kFolder));
        m_file = framework::OpenToAppend(name);
        m_name = std::move(name);
    }
    return m_file
           && framework::AppendLines(m_file.Get(), RecordHeading(), kTornEnd, framework::Utf8(lines), flush,
                                     whole);
}

} // namespace planfold
