// The smallest host: loads the plug-in that it is told of, asks what it is, tells it the active client, and
// ends it.
//
//     ExampleHost.exe C:\full\path\Planfold.zup
//
// It is one file, without the plug-in's headers, to show what the boundary is made of: plain classes, whose
// layout the compiler decides. Any compiler for 64-bit Windows makes the same of it. sdk/HostExports.h tells of
// the exports that are left out here; planfold-hostcheck tells what each costs.
#include <stddef.h>
#include <stdint.h>

extern "C" {
int printf(const char* format, ...);
size_t strlen(const char* text);
char* strcpy(char* to, const char* from);
int strcmp(const char* a, const char* b);
__declspec(dllimport) void* LoadLibraryExA(const char* path, void* zero, unsigned long flags);
__declspec(dllimport) void* GetProcAddress(void* library, const char* name);
__declspec(dllimport) int FreeLibrary(void* library);
__declspec(dllimport) unsigned long GetLastError();
__declspec(dllimport) void* GetModuleHandleA(const char* name);
__declspec(dllimport) void* GetProcessHeap();
__declspec(dllimport) void* HeapAlloc(void* heap, unsigned long flags, size_t bytes);
__declspec(dllimport) int HeapFree(void* heap, unsigned long flags, void* memory);
}

namespace {

constexpr unsigned long kDefaultFolders = 0x1000; // LOAD_LIBRARY_SEARCH_DEFAULT_DIRS

// --- Strings. A string is a pointer to its letters; before them stands this header, whose manager made it.
// Each module has a manager, and frees what it made itself: so strings can cross between run-time libraries.

class StringManager;

struct StringHeader {
    StringManager* manager;
    int length, allocated;
    long references; // of the whole string; below 0: locked
};
static_assert(sizeof(StringHeader) == 24, "manager, two lengths, references, four bytes of nothing");

class StringManager {
public:
    virtual StringHeader* Allocate(int chars, int charSize) = 0;
    virtual void Free(StringHeader* string) = 0;
    virtual StringHeader* Reallocate(StringHeader* string, int chars, int charSize) = 0;
    virtual StringHeader* GetNilString() = 0;
    virtual StringManager* Clone() = 0;
};

class HostStrings final : public StringManager {
public:
    StringHeader* Allocate(int chars, int charSize) override {
        const size_t letters = static_cast<size_t>(chars + 1) * static_cast<size_t>(charSize);
        void* memory = HeapAlloc(GetProcessHeap(), 0, sizeof(StringHeader) + letters);
        if (!memory) return nullptr;
        auto* made = static_cast<StringHeader*>(memory);
        made->manager = this;
        made->length = 0;
        made->allocated = chars;
        made->references = 1;
        *reinterpret_cast<char*>(made + 1) = '\0';
        return made;
    }
    void Free(StringHeader* string) override {
        if (string != &m_nil.header) HeapFree(GetProcessHeap(), 0, string);
    }
    StringHeader* Reallocate(StringHeader* string, int chars, int charSize) override {
        StringHeader* grown = Allocate(chars, charSize);
        if (!grown) return nullptr;
        strcpy(reinterpret_cast<char*>(grown + 1), reinterpret_cast<char*>(string + 1));
        grown->length = string->length;
        Free(string);
        return grown;
    }
    StringHeader* GetNilString() override {
        m_nil.header.manager = this;
        ++m_nil.header.references;
        return &m_nil.header;
    }
    StringManager* Clone() override { return this; }

private:
    struct {
        StringHeader header;
        char zero[8];
    } m_nil = {{nullptr, 0, 0, 2}, {}}; // every empty string; never freed
};
constinit HostStrings g_strings;

class CString {
public:
    CString() : m_text(reinterpret_cast<char*>(g_strings.GetNilString() + 1)) {}
    explicit CString(const char* text) : CString() { Set(text); }
    CString(const CString&) = delete;
    CString& operator=(const CString&) = delete;
    ~CString() { Release(Header()); }

    // The plug-in's string stays its manager's, whoever fills it.
    void Set(const char* text) {
        const int length = static_cast<int>(strlen(text));
        StringHeader* made = Header()->manager->Clone()->Allocate(length, 1);
        if (!made) return;
        Release(Header());
        m_text = strcpy(reinterpret_cast<char*>(made + 1), text);
        made->length = length;
    }
    const char* Text() const { return m_text; }

private:
    StringHeader* Header() const { return reinterpret_cast<StringHeader*>(m_text) - 1; }
    static void Release(StringHeader* string) {
        if (--string->references <= 0) string->manager->Free(string);
    }

    char* m_text;
};

// The elements lie on the process heap: who appends may move them, who has the array frees them.
class CStringArray {
public:
    CStringArray() = default;
    CStringArray(const CStringArray&) = delete;
    CStringArray& operator=(const CStringArray&) = delete;
    ~CStringArray() {
        for (int64_t i = 0; i < m_size; ++i)
            m_data[i].~CString();
        if (m_data) HeapFree(GetProcessHeap(), 0, m_data);
    }
    void Print(const char* before) const {
        for (int64_t i = 0; i < m_size; ++i)
            printf("%s%s\n", before, m_data[i].Text());
    }

private:
    [[maybe_unused]] const void* m_vtable = nullptr;
    CString* m_data = nullptr;
    int64_t m_size = 0;
    [[maybe_unused]] int64_t m_capacity = 0, m_growBy = 0;
};
static_assert(sizeof(CStringArray) == 40 && sizeof(CString) == 8, "as the plug-in has them");

struct VeskApp {
    unsigned size, reserved;
    void *mainFrame, *instance; // no frame: menu entries open nothing
};

// --- The plug-in's entry points, by their names.

template <class Function>
Function* Entry(void* library, const char* name) {
    return reinterpret_cast<Function*>(GetProcAddress(library, name));
}

void TellWhatItIs(int (*info)(CString*, CString*, CStringArray*, unsigned*, unsigned*),
                  void (*optionalInfo)(CString*, CStringArray*, void*, void*)) {
    CString name, version, root;
    CStringArray menu, rights;
    unsigned buildDay = 0, interfaceNumber = 0;
    info(&name, &version, &menu, &buildDay, &interfaceNumber);
    printf("%s %s, interface %u\n", name.Text(), version.Text(), interfaceNumber);
    menu.Print("menu: ");
    if (optionalInfo) optionalInfo(&root, &rights, nullptr, nullptr);
    rights.Print("right: ");
}

} // namespace

// --- The host's functions, which the plug-in finds by name in this program. These three it must have; the log
// is here as the one that takes a string by value: the callee destroys it, in every compiler's code.
extern "C" {
__declspec(dllexport) VeskApp* pu_get_exe_app() {
    static VeskApp app;
    app = {sizeof app, 0, nullptr, GetModuleHandleA(nullptr)};
    return &app;
}
__declspec(dllexport) int pu_get_peer_data(CString* broker, CString* branch, CString* other) {
    broker->Set("BROKER");
    branch->Set("BRANCH");
    other->Set("");
    return 1;
}
__declspec(dllexport) int pu_is_actionright_enabled(const CString* right) {
    return strcmp(right->Text(), "QV: Planfold: Custom") != 0;
}
__declspec(dllexport) int pu_add_to_tabbed_log(CString* line) {
    printf("log: %s\n", line->Text());
    line->~CString();
    return 1;
}
}

int main(int count, char** words) {
    if (count != 2) {
        printf("ExampleHost PATH-OF-THE-PLUG-IN\n");
        return 2;
    }
    void* library = LoadLibraryExA(words[1], nullptr, kDefaultFolders);
    if (!library) {
        printf("%s cannot be loaded, error %lu\n", words[1], GetLastError());
        return 1;
    }
    const auto info =
        Entry<int(CString*, CString*, CStringArray*, unsigned*, unsigned*)>(library, "GetVeskPluginInfo");
    const auto exit = Entry<intptr_t()>(library, "ExitVeskPlugin");
    if (!info || !exit) {
        printf("%s is not a plug-in\n", words[1]);
        return 1;
    }
    TellWhatItIs(info,
                 Entry<void(CString*, CStringArray*, void*, void*)>(library, "GetOptionalVeskPluginInfo"));
    // A menu entry is picked with InitVeskPlugin, on the thread that has the message loop.
    CString client("C001");
    if (const auto activate = Entry<int(CString*)>(library, "AlertOn_ClientActivation")) activate(&client);
    exit();
    FreeLibrary(library);
    return 0;
}
