#include "Support.h"

extern "C" int _fltused;
extern "C" int _fltused = 1;

// The compiler calls these itself.
extern "C" void* memcpy(void* to, const void* from, size_t count) {
    for (size_t i = 0; i < count; ++i)
        static_cast<char*>(to)[i] = static_cast<const char*>(from)[i];
    return to;
}
extern "C" void* memset(void* to, int value, size_t count) {
    for (size_t i = 0; i < count; ++i)
        static_cast<char*>(to)[i] = static_cast<char>(value);
    return to;
}
extern "C" int _purecall();
extern "C" int _purecall() {
    ExitProcess(99);
}

namespace {

constinit int g_checks = 0;
constinit int g_failed = 0;

void Write(const char* text) {
    constexpr auto standardOutput = static_cast<unsigned>(-11);
    unsigned written = 0;
    WriteFile(GetStdHandle(standardOutput), text, static_cast<unsigned>(Length(text)), &written, nullptr);
}

void Line(bool holds, const char* what, const char* detail) {
    ++g_checks;
    g_failed += !holds;
    Write(holds ? "ok    " : "FAIL  ");
    Write(what);
    if (!holds) Write(detail);
    Write("\n");
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

} // namespace

size_t Length(const char* text) {
    size_t length = 0;
    while (text[length])
        ++length;
    return length;
}

bool Same(const char* a, const char* b) {
    for (; *a && *a == *b; ++a)
        ++b;
    return *a == *b;
}

bool SameIgnoringCase(const char* a, const char* b) {
    for (; *a && Lower(*a) == Lower(*b); ++a)
        ++b;
    return Lower(*a) == Lower(*b);
}

void Copy(char* to, size_t room, const char* from) {
    to[0] = 0;
    Append(to, room, from);
}

void Append(char* to, size_t room, const char* from) {
    size_t end = Length(to);
    while (*from && end + 1 < room)
        to[end++] = *from++;
    to[end] = 0;
}

void AppendNumber(char* to, size_t room, int64_t number) {
    char digits[24];
    size_t at = sizeof digits;
    digits[--at] = 0;
    const bool negative = number < 0;
    auto rest = negative ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
    do {
        digits[--at] = static_cast<char>('0' + rest % 10);
    } while ((rest /= 10) != 0);
    if (negative) digits[--at] = '-';
    Append(to, room, digits + at);
}

void Check(bool holds, const char* what) {
    Line(holds, what, "");
}

void CheckText(const char* got, const char* expected, const char* what) {
    char detail[2048] = ": got \"";
    Append(detail, sizeof detail, got);
    Append(detail, sizeof detail, "\", expected \"");
    Append(detail, sizeof detail, expected);
    Append(detail, sizeof detail, "\"");
    Line(Same(got, expected), what, detail);
}

void CheckNumber(int64_t got, int64_t expected, const char* what) {
    char detail[96] = ": got ";
    AppendNumber(detail, sizeof detail, got);
    Append(detail, sizeof detail, ", expected ");
    AppendNumber(detail, sizeof detail, expected);
    Line(got == expected, what, detail);
}

unsigned Finish() {
    char summary[96] = "";
    AppendNumber(summary, sizeof summary, g_checks);
    Append(summary, sizeof summary, " checks, ");
    AppendNumber(summary, sizeof summary, g_failed);
    Append(summary, sizeof summary, " failed\n");
    Write(summary);
    return g_failed ? 1 : 0;
}
