#include "Strings.h"

#include "Boundary.h"
#include "Support.h"
#include "Watch.h"

namespace {

constexpr unsigned char kPoison = 0xDD, kCanary = 0xFB;
constexpr size_t kCanaryBytes = 8;

struct Block {
    StringData* data;
    size_t bytes;
    bool freed;
};
constinit Block g_blocks[8192] = {};
constinit int g_blockCount = 0;
constinit int g_live = 0;
constinit int g_faults = 0;

bool Holds(const Block& block, size_t from, size_t to, unsigned char value) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(block.data);
    for (size_t i = from; i < to; ++i)
        if (bytes[i] != value) return false;
    return true;
}

class HostStrings final : public StringManager {
public:
    StringData* Allocate(int chars, int charSize) override {
        if (chars < 0 || g_blockCount == sizeof g_blocks / sizeof *g_blocks) return nullptr;
        const size_t bytes =
            sizeof(StringData) + (static_cast<size_t>(chars) + 1) * static_cast<size_t>(charSize);
        auto* data = static_cast<StringData*>(HeapAlloc(GetProcessHeap(), 0, bytes + kCanaryBytes));
        if (!data) return nullptr;
        memset(data, 0, bytes);
        memset(reinterpret_cast<char*>(data) + bytes, kCanary, kCanaryBytes);
        data->manager = this;
        data->allocated = chars;
        data->references = 1;
        g_blocks[g_blockCount++] = {data, bytes, false};
        ++g_live;
        return data;
    }
    void Free(StringData* data) override {
        if (data == &Nil()) return;
        Block* block = Find(data);
        if (!block || block->freed) {
            ++g_faults;
            return;
        }
        g_faults += !Holds(*block, block->bytes, block->bytes + kCanaryBytes, kCanary);
        memset(data, kPoison, block->bytes);
        block->freed = true;
        --g_live;
    }
    StringData* Reallocate(StringData* data, int chars, int charSize) override {
        StringData* grown = Allocate(chars, charSize);
        if (!grown) return nullptr;
        memcpy(grown + 1, data + 1, static_cast<size_t>(data->length) + 1);
        grown->length = data->length;
        grown->references = data->references;
        Free(data);
        return grown;
    }
    StringData* GetNilString() override {
        ++Nil().references;
        return &Nil();
    }
    StringManager* Clone() override { return this; }

private:
    struct NilText {
        StringData data;
        char zero[8];
    };
    StringData& Nil() {
        m_nil.data.manager = this;
        return m_nil.data;
    }
    static Block* Find(const StringData* data) {
        for (int i = g_blockCount; i-- > 0;)
            if (g_blocks[i].data == data) return &g_blocks[i];
        return nullptr;
    }

    NilText m_nil = {{nullptr, 0, 0, 2}, {}};
};
constinit HostStrings g_strings;

void Release(StringData* data) {
    if (__atomic_sub_fetch(&data->references, 1, __ATOMIC_SEQ_CST) <= 0) data->manager->Free(data);
}

} // namespace

namespace strings {

int Live() {
    return g_live;
}

int Faults() {
    int faults = g_faults;
    for (int i = 0; i < g_blockCount; ++i)
        faults += g_blocks[i].freed && !Holds(g_blocks[i], 0, g_blocks[i].bytes, kPoison);
    return faults;
}

} // namespace strings

CString::CString() : m_text(reinterpret_cast<char*>(g_strings.GetNilString() + 1)) {}

CString::CString(const char* text) : CString() {
    *this = text;
}

CString::CString(const CString& other) : m_text(other.m_text) {
    __atomic_add_fetch(&Data()->references, 1, __ATOMIC_SEQ_CST);
}

CString::~CString() {
    Release(Data());
}

CString& CString::operator=(const char* text) {
    const auto length = static_cast<int>(::Length(text));
    StringData* data = Data();
    if (data->references > 1) {
        StringData* fork = data->manager->Clone()->Allocate(length, 1);
        Release(data);
        data = fork;
    } else if (data->allocated < length) {
        data = data->manager->Reallocate(data, length, 1);
    }
    m_text = reinterpret_cast<char*>(data + 1);
    memcpy(m_text, text, static_cast<size_t>(length) + 1);
    data->length = length;
    return *this;
}

void CStringArray::SetOnly(const char* text) {
    m_data = static_cast<CString*>(HeapAlloc(GetProcessHeap(), 0, sizeof(CString)));
    watch::AllocatedByHost(m_data);
    new (static_cast<void*>(m_data)) CString(text);
    m_size = m_capacity = 1;
}

CStringArray::~CStringArray() {
    for (int64_t i = 0; i < m_size; ++i)
        m_data[i].~CString();
    if (!m_data) return;
    watch::FreedByHost(m_data);
    HeapFree(GetProcessHeap(), 0, m_data);
}
