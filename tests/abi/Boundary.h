// The boundary as a host built with the Microsoft ABI declares it: plain classes whose layout, slots and
// passing by value are decided by the compiler alone. Nothing is shared with the plug-in's own headers.
#pragma once

#include "Platform.h"

inline void* operator new(size_t, void* place) noexcept {
    return place;
}

class StringManager;

struct StringData {
    StringManager* manager;
    int length;
    int allocated;
    long references;
};

class StringManager {
public:
    virtual StringData* Allocate(int chars, int charSize) = 0;
    virtual void Free(StringData* data) = 0;
    virtual StringData* Reallocate(StringData* data, int chars, int charSize) = 0;
    virtual StringData* GetNilString() = 0;
    virtual StringManager* Clone() = 0;
};

class CString {
public:
    CString();
    explicit CString(const char* text);
    CString(const CString& other);
    ~CString();
    CString& operator=(const CString&) = delete;
    CString& operator=(const char* text);

    const char* Text() const { return m_text; }
    int Length() const { return Data()->length; }
    StringManager* Manager() const { return Data()->manager; }

private:
    StringData* Data() const { return reinterpret_cast<StringData*>(m_text) - 1; }

    char* m_text;
};

class CObject {
public:
    virtual void RuntimeClass() {}
    virtual void Serialize() {}
};

class CStringArray : public CObject {
public:
    CStringArray() = default;
    CStringArray(const CStringArray&) = delete;
    ~CStringArray();

    // Storage with room for just this one, so that the next one must grow it.
    void SetOnly(const char* text);
    int64_t Size() const { return m_size; }
    const char* At(int64_t index) const { return index < m_size ? m_data[index].Text() : "(none)"; }

private:
    CString* m_data = nullptr;
    int64_t m_size = 0;
    int64_t m_capacity = 0;
    [[maybe_unused]] int64_t m_growBy = 0;
};

struct QmxDatum {
    const char* data;
    unsigned length;
};
struct QmxField {
    unsigned tag, count;
};
struct QmxError {
    int code;
    char text[252];
};

class RxControl {
public:
    virtual void Slot0() = 0;
    virtual void Slot1() = 0;
    virtual void Slot2() = 0;
    virtual void Slot3() = 0;
    virtual int SendRequest(uint64_t* number, void* message, int zero, QmxError* error) = 0;
    virtual int Subscribe(uint64_t* out, const unsigned* tags, const QmxDatum* values, unsigned count,
                          RxControl* self, int, int, int, QmxError* error) = 0;
    virtual void Slot6() = 0;
    virtual void Slot7() = 0;
    virtual void Slot8() = 0;
    virtual void Slot9() = 0;
    virtual void Slot10() = 0;
    virtual void Slot11() = 0;
    virtual void Slot12() = 0;
    virtual void Slot13() = 0;
    virtual void Slot14() = 0;
    virtual int Stop(int zero) = 0;
};

class CKeloRxNotifierBase {
public:
    virtual void OnBroadcast(void* message, unsigned value, void*) = 0;
    virtual void OnResponse(void*, void* message, void*) = 0;
};

struct ScripDetails {
    int decimals, reserved;
    double priceMultiplier;
    int64_t tickSize;
    char token[32];
    char tradingSymbol[64];
};
struct ClientResult {
    const char *clientId, *clientName;
};
struct NonTradingDates {
    unsigned count, reserved;
    const unsigned* dates;
};
struct VeskApp {
    unsigned size, reserved;
    HWND mainFrame;
    HINSTANCE instance;
};
