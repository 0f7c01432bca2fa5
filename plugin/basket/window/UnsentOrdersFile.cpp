#include "plugin/basket/window/UnsentOrdersFile.h"

#include "framework/Files.h"
#include "plugin/base/Text.h"

namespace planfold {

namespace {

constexpr int kMostTerminals = 20; // that run at a time for one user

std::string Numbered(const std::string& start, int number) {
    return start + (number > 1 ? Format("-%d", number) : std::string()) + ".csv";
}

} // namespace

// What one terminal holds another must not offer. Files that were left behind are taken before new ones are
// made.
bool UnsentOrdersFile::Take() {
    const std::string& directory = m_session.userDirectory;
    if (!m_name.empty() || m_released || directory.empty()) return !m_name.empty();
    for (const bool leftBehind : {true, false})
        for (int number = 1; number <= kMostTerminals; ++number) {
            const std::string name = Numbered(directory + "\\PlanfoldBasket", number);
            if (leftBehind && !framework::FileExists(framework::Utf8(name))) continue;
            m_hold = framework::HoldFile(framework::Utf8(name + ".lock"));
            if (!m_hold) continue;
            m_name = name;
            return true;
        }
    return false;
}

std::optional<std::string> UnsentOrdersFile::Read() {
    if (!Take()) return std::nullopt;
    return framework::ReadWhole(framework::Utf8(m_name));
}

std::string UnsentOrdersFile::Replace(std::string_view text) {
    if (m_released || m_session.userDirectory.empty()) return {};
    if (!Take()) return text.empty() ? std::string() : "No file can be made in\n" + m_session.userDirectory;
    const std::string name = framework::Utf8(m_name);
    return text.empty() ? framework::RemoveFile(name)
                        : framework::WriteWhole(name, framework::WithLineEnds(text));
}

std::string UnsentOrdersFile::SaveAside(std::string_view text, const LocalDateTime& now) {
    const std::string start = m_session.userDirectory
                              + Format("\\PlanfoldBasket %04d-%02d-%02d %02d.%02d", now.year, now.month,
                                       now.day, now.hour, now.minute);
    int number = 1;
    while (framework::FileExists(framework::Utf8(Numbered(start, number))))
        ++number;
    const std::string name = Numbered(start, number);
    return framework::WriteWhole(framework::Utf8(name), std::string(text)).empty() ? name : std::string();
}

void UnsentOrdersFile::Release() {
    m_released = true;
    m_name.clear();
    m_hold.Reset();
}

} // namespace planfold
