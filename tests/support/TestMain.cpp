// The main of every test program. PLANFOLD_TEST_LOCALE names the C runtime's locale to run under, as another
// module of the process may set one: numbers are then written with a comma by whatever follows it.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    const char* const name = std::getenv("PLANFOLD_TEST_LOCALE");
    if (name && (!std::setlocale(LC_ALL, name) || std::strcmp(std::localeconv()->decimal_point, ",") != 0)) {
        std::fprintf(stderr, "no locale with a comma: %s\n", name);
        return 2;
    }
    return RUN_ALL_TESTS();
}
