// The main of every test program. It gives the program a temporary folder of its own, since several programs,
// and the same one twice, run at a time. PLANFOLD_TEST_LOCALE names the C runtime's locale to run under, as
// another module of the process may set one: numbers are then written with a comma by whatever follows it.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace {

#ifdef _WIN32
constexpr char kTemporaryFolder[] = "TMP"; // where the system looks first
void SetVariable(const char* name, const std::string& value) {
    _putenv_s(name, value.c_str());
}
#else
constexpr char kTemporaryFolder[] = "TMPDIR";
void SetVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);
}
#endif

class OwnFolder {
public:
    OwnFolder()
        : m_path(std::filesystem::temp_directory_path() / ("planfold-test-" + std::to_string(getpid()))) {
        std::filesystem::create_directory(m_path);
        SetVariable(kTemporaryFolder, m_path.string());
        SetVariable("TEST_TMPDIR", m_path.string());
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;
    ~OwnFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

private:
    std::filesystem::path m_path;
};

} // namespace

int main(int count, char** words) {
    const OwnFolder folder;
    testing::InitGoogleTest(&count, words);
    const char* const name = std::getenv("PLANFOLD_TEST_LOCALE");
    if (name && (!std::setlocale(LC_ALL, name) || std::strcmp(std::localeconv()->decimal_point, ",") != 0)) {
        std::fprintf(stderr, "no locale with a comma: %s\n", name);
        return 2;
    }
    return RUN_ALL_TESTS();
}
