// What a program without a run-time library must bring along: text helpers and the test report.
#pragma once

#include "Platform.h"

extern "C" void* memcpy(void* to, const void* from, size_t count);
extern "C" void* memset(void* to, int value, size_t count);
size_t Length(const char* text);
bool Same(const char* a, const char* b);
bool SameIgnoringCase(const char* a, const char* b);
// Both cut what does not fit.
void Copy(char* to, size_t room, const char* from);
void Append(char* to, size_t room, const char* from);
void AppendNumber(char* to, size_t room, int64_t number);

// One line a check.
void Check(bool holds, const char* what);
void CheckText(const char* got, const char* expected, const char* what);
void CheckNumber(int64_t got, int64_t expected, const char* what);
// The summary; the process's exit code.
unsigned Finish();
