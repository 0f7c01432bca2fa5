// The boundary as a host built with the Microsoft ABI declares it: plain classes whose layout, slots and
// passing by value are decided by the compiler alone. Nothing is shared with the plug-in's own headers.
#include "Boundary.h"

#include <stdint.h>

extern "C" {
size_t strlen(const char* text);
int strcmp(const char* a, const char* b);
char* strcpy(char* to, const char* from);
char* strcat(char* to, const char* from);
void* memcpy(void* to, const void* from, size_t count);
void* memset(void* to, int value, size_t count);
[[noreturn]] void abort();
int _purecall();
int _purecall() {
    abort();
}
HostSeen host_seen;
void* host_frame;
}

inline void* operator new(size_t, void* place) noexcept {
    return place;
}

namespace {

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

class HostStrings final : public StringManager {
public:
    StringData* Allocate(int chars, int charSize) override {
        const size_t bytes =
            sizeof(StringData) + static_cast<size_t>(chars + 1) * static_cast<size_t>(charSize);
        auto* data = static_cast<StringData*>(watched_allocate(bytes));
        memset(data, 0, bytes);
        *data = {this, 0, chars, 1};
        return data;
    }
    void Free(StringData* data) override {
        if (data != &m_nil.data) watched_free(data);
    }
    StringData* Reallocate(StringData* data, int chars, int charSize) override {
        StringData* grown = Allocate(chars, charSize);
        memcpy(grown + 1, data + 1, static_cast<size_t>(data->length) + 1);
        grown->length = data->length;
        Free(data);
        return grown;
    }
    StringData* GetNilString() override {
        m_nil.data.manager = this;
        ++m_nil.data.references;
        return &m_nil.data;
    }
    StringManager* Clone() override { return this; }

private:
    struct {
        StringData data;
        char zero[8];
    } m_nil = {{nullptr, 0, 0, 2}, {}};
};
constinit HostStrings g_strings;

class CString {
public:
    CString() : m_text(reinterpret_cast<char*>(g_strings.GetNilString() + 1)) {}
    explicit CString(const char* text) : CString() { *this = text; }
    CString(const CString& other) : m_text(other.m_text) { ++Data()->references; }
    CString& operator=(const CString&) = delete;
    ~CString() { Release(Data()); }
    CString& operator=(const char* text) {
        const auto length = static_cast<int>(strlen(text));
        StringData* data = Data();
        if (data->references > 1) {
            StringData* fork = data->manager->Clone()->Allocate(length, 1);
            Release(data);
            data = fork;
        } else if (data->allocated < length) {
            data = data->manager->Reallocate(data, length, 1);
        }
        m_text = strcpy(reinterpret_cast<char*>(data + 1), text);
        data->length = length;
        return *this;
    }
    const char* Text() const {
        return Data()->length == static_cast<int>(strlen(m_text)) ? m_text : "(bad length)";
    }

private:
    StringData* Data() const { return reinterpret_cast<StringData*>(m_text) - 1; }
    static void Release(StringData* data) {
        if (--data->references <= 0) data->manager->Free(data);
    }

    char* m_text;
};

class CObject {
public:
    virtual void RuntimeClass() {}
    virtual void Serialize() {}
};

class CStringArray : public CObject {
public:
    // Storage with room for just this one, so that the next one must grow it.
    explicit CStringArray(const char* only) : m_data(static_cast<CString*>(heap_allocate(sizeof(CString)))) {
        new (static_cast<void*>(m_data)) CString(only);
    }
    CStringArray(const CStringArray&) = delete;
    ~CStringArray() {
        for (int64_t i = 0; i < m_size; ++i)
            m_data[i].~CString();
        heap_free(m_data);
    }
    void AppendTo(char* text) const {
        for (int64_t i = 0; i < m_size; ++i)
            strcat(strcat(text, m_data[i].Text()), "|");
    }

private:
    CString* m_data;
    int64_t m_size = 1;
    [[maybe_unused]] int64_t m_capacity = 1, m_growBy = 0;
};

struct QmxError;

class RxControl {
public:
    virtual void Slot0() { ++host_seen.wrongCalls; }
    virtual void Slot1() { ++host_seen.wrongCalls; }
    virtual void Slot2() { ++host_seen.wrongCalls; }
    virtual void Slot3() { ++host_seen.wrongCalls; }
    virtual int SendRequest(uint64_t* number, void* message, int zero, QmxError* error) = 0;
    virtual int Subscribe(uint64_t* out, const unsigned* tags, const void* values, unsigned count,
                          RxControl* self, int, int, int, QmxError* error) = 0;
    virtual void Slot6() { ++host_seen.wrongCalls; }
    virtual void Slot7() { ++host_seen.wrongCalls; }
    virtual void Slot8() { ++host_seen.wrongCalls; }
    virtual void Slot9() { ++host_seen.wrongCalls; }
    virtual void Slot10() { ++host_seen.wrongCalls; }
    virtual void Slot11() { ++host_seen.wrongCalls; }
    virtual void Slot12() { ++host_seen.wrongCalls; }
    virtual void Slot13() { ++host_seen.wrongCalls; }
    virtual void Slot14() { ++host_seen.wrongCalls; }
    virtual int Stop(int zero) = 0;
};

class RequestControl final : public RxControl {
    int SendRequest(uint64_t* number, void* message, int zero, QmxError* error) override {
        host_seen.wrongCalls += !message || zero != 0 || !error;
        if (number) *number = 1;
        sent(message);
        return 1;
    }
    int Subscribe(uint64_t*, const unsigned* tags, const void* values, unsigned count, RxControl* self, int a,
                  int b, int one, QmxError* error) override {
        host_seen.wrongCalls += !tags || !values || !count || self != this || a || b || one != 1 || !error;
        return 1;
    }
    int Stop(int zero) override {
        host_seen.wrongCalls += zero != 0;
        return 1;
    }
};
constinit RequestControl g_control;

class CKeloRxNotifierBase {
public:
    virtual void OnBroadcast(void* message, unsigned value, void*) = 0;
    virtual void OnResponse(void*, void* message, void*) = 0;
};
constinit CKeloRxNotifierBase* g_notifier = nullptr;

struct NonTradingDates {
    unsigned count, reserved;
    const unsigned* dates;
};
struct VeskApp {
    unsigned size, reserved;
    void *mainFrame, *instance;
};

} // namespace

// The host's functions; those that are missing here are optional.
extern "C" {
VeskApp* pu_get_exe_app() {
    static VeskApp app;
    app = {sizeof app, 0, host_frame, nullptr};
    return &app;
}
int pu_is_actionright_enabled(const CString* right) {
    return strcmp(right->Text(), "QV: Planfold: Custom") != 0;
}
int pu_get_peer_data(CString* a, CString* b, CString* other) {
    *a = "PEERA";
    *b = "PEERB";
    *other = "";
    return 1;
}
int pu_get_uuid(CString* identifier) {
    *identifier = "an identifier that is longer than any text the plug-in had in this string before";
    return 1;
}
RxControl* GetKeloRxControl(int, CKeloRxNotifierBase* notifier) {
    if (host_seen.liveControls++ == 0) g_notifier = notifier;
    return &g_control;
}
void DestoryKeloRxCOntrol(RxControl* control) {
    host_seen.liveControls -= control == &g_control;
}
// By value: this compiler lets this function, the callee, destroy the plug-in's string.
int pu_add_to_tabbed_log(CString text) {
    strcpy(host_seen.log, text.Text());
    ++host_seen.logLines;
    return 1;
}
int pu_fill_scrip_combos(void* dialog, int, int series, int symbols, int, int, int, int) {
    fill_combo(dialog, series, "EQ");
    fill_combo(dialog, symbols, "ARBORTEX");
    return 1;
}
int pu_get_trading_symbol_n_token(void*, int, int, int, int, int, int, CString* symbol, CString* token) {
    *symbol = "ARBORTEX-EQ";
    *token = "nse_cm|1013";
    return 1;
}
int pu_load_client_id_combo(void* dialog, int combo) {
    fill_combo(dialog, combo, "C001");
    return 1;
}
int pu_invoke_caution_order_confirmation(const CString* client, const CString* investType,
                                         const CString* product, const CString* value, const CString* symbol,
                                         const CString* exchange) {
    host_seen.caution[0] = 0;
    const CString* const texts[] = {client, investType, product, value, symbol, exchange};
    for (const CString* text : texts)
        strcat(strcat(host_seen.caution, text->Text()), ";");
    return 0;
}
int pu_get_FontVariation(intptr_t* variation, intptr_t* size, void* third, void* fourth) {
    *variation = 2;
    *size = 0;
    host_seen.fontArguments =
        static_cast<int>(reinterpret_cast<intptr_t>(third) * 10 + reinterpret_cast<intptr_t>(fourth));
    return 1;
}
const NonTradingDates* pu_get_non_trading_dates_map() {
    static const NonTradingDates none = {};
    return &none;
}

void call_information(void* information, void* rights, char* text, unsigned* stamp, unsigned* number) {
    CString name("an old text"), version, root;
    CStringArray menu("of the host"), names("of the host");
    if (reinterpret_cast<int (*)(CString*, CString*, CStringArray*, unsigned*, unsigned*)>(information)(
            &name, &version, &menu, stamp, number)
        != 1)
        return;
    reinterpret_cast<void (*)(CString*, CStringArray*, void*, void*)>(rights)(&root, &names, nullptr, nullptr);
    strcat(strcat(strcat(strcpy(text, name.Text()), "|"), version.Text()), "|");
    menu.AppendTo(text);
    strcat(strcat(text, root.Text()), "|");
    names.AppendTo(text);
}
void call_init(void* function, const char* entry) {
    const CString text(entry);
    reinterpret_cast<void (*)(void*, const char*, int, CString)>(function)(nullptr, "LOGIN", 3, text);
}
int call_activate(void* function, const char* client) {
    CString text(client);
    return reinterpret_cast<int (*)(CString*)>(function)(&text);
}
void give_answer(void* message) {
    g_notifier->OnResponse(nullptr, message, nullptr);
}
void give_broadcast(void* message) {
    g_notifier->OnBroadcast(message, 0, nullptr);
}
}
