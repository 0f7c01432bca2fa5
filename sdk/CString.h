// The framework's narrow string as it lies in memory on both sides of the boundary.
//
// Thread:   one buffer may be shared by strings on several threads (its count is interlocked); one
//           CString object is used by one thread at a time. All boundary calls are on the GUI thread.
// Owner:    a buffer belongs to the manager named in its own header and is grown and freed only through
//           it, so a module may write into a string that another module made.
// Lifetime: the manager outlives its buffers. The host releases every string that the plug-in made
//           before it unloads the library.
// Failure:  std::bad_alloc when a manager has no memory; the string keeps its old text.
//
// A CString passed by value travels as a pointer to a temporary that the callee destroys: declare the
// parameter as CString*, hand over with `PassedString`, take over with `TakenString`.
// Text is in the system's ANSI code page.
//
// Example, an export of the host that takes a string by value, and its caller:
//
//     void pu_add_to_tabbed_log(CString* text) { const TakenString taken(text); Show(taken.View()); }
//
//     PassedString line("Order placed", manager);
//     log(line.Hand());
#pragma once

#include <atomic>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

class StringManager;

struct StringHeader {
    StringManager* manager;
    std::int32_t length;     // characters, the closing zero not counted
    std::int32_t allocated;  // room for that many characters, the closing zero not counted
    std::int32_t references; // negative while the buffer is locked for writing
    std::int32_t padding;

    char* Text() { return reinterpret_cast<char*>(this + 1); }
};
static_assert(sizeof(void*) == 8 && sizeof(StringHeader) == 24);
static_assert(offsetof(StringHeader, length) == 8 && offsetof(StringHeader, references) == 16);

// The slot order is the boundary. No virtual destructor: that would be a slot.
class StringManager {
public:
    // A header with this manager, length 0 and one reference, or null. `chars` leaves out the closing zero.
    virtual StringHeader* Allocate(int chars, int charSize) = 0;
    virtual void Free(StringHeader* header) = 0;
    // Keeps the text; null when there is no memory, and the old header then stays valid.
    virtual StringHeader* Reallocate(StringHeader* header, int chars, int charSize) = 0;
    // A counted reference to the shared empty string; its count never reaches 0 and Free ignores it.
    virtual StringHeader* GetNilString() = 0;
    // The manager for a copy of one of its buffers.
    virtual StringManager* Clone() = 0;

protected:
    ~StringManager() = default;
};

class CString {
public:
    explicit CString(StringManager& manager) : m_text(Nil(manager)) {}
    CString(std::string_view text, StringManager& manager) : m_text(Nil(manager)) { AssignOrRelease(text); }
    CString(const CString& other) : m_text(Share(other)) {}
    ~CString() { Release(Header()); }

    CString& operator=(const CString& other) {
        if (this == &other) return *this;
        char* shared = Share(other);
        Release(Header());
        m_text = shared;
        return *this;
    }
    CString& operator=(std::string_view text) {
        Assign(text);
        return *this;
    }

    const char* c_str() const { return m_text; }
    int Length() const { return Header()->length; }
    std::string_view View() const { return {m_text, static_cast<std::size_t>(Length())}; }
    bool IsEmpty() const { return Length() == 0; }
    StringManager& Manager() const { return *Header()->manager; }

    // `text` may lie inside this string's own buffer.
    void Assign(std::string_view text) {
        if (text.size() > INT_MAX) throw std::bad_alloc();
        const int length = static_cast<int>(text.size());
        StringHeader* header = Header();
        if (References(header).load() > 1) {
            StringHeader* fork = Checked(header->manager->Clone()->Allocate(length, 1));
            Fill(fork, text);
            Release(header);
            header = fork;
        } else {
            // A text inside this buffer is never longer than the buffer, so growing cannot move it away.
            if (header->allocated < length) header = Checked(header->manager->Reallocate(header, length, 1));
            m_text = header->Text();
            Fill(header, text);
        }
        m_text = header->Text();
    }

private:
    static std::atomic_ref<std::int32_t> References(StringHeader* header) {
        return std::atomic_ref<std::int32_t>(header->references);
    }
    static StringHeader* Checked(StringHeader* header) {
        if (!header) throw std::bad_alloc();
        return header;
    }
    static char* Nil(StringManager& manager) { return Checked(manager.GetNilString())->Text(); }
    static void Fill(StringHeader* header, std::string_view text) {
        if (!text.empty()) std::memmove(header->Text(), text.data(), text.size());
        header->Text()[text.size()] = '\0';
        header->length = static_cast<std::int32_t>(text.size());
    }
    static char* Share(const CString& other) {
        StringHeader* header = other.Header();
        if (References(header).load() >= 0) {
            References(header).fetch_add(1);
            return other.m_text;
        }
        StringHeader* copy = Checked(header->manager->Clone()->Allocate(header->length, 1));
        Fill(copy, other.View());
        return copy->Text();
    }
    static void Release(StringHeader* header) {
        if (References(header).fetch_sub(1) <= 1) header->manager->Free(header);
    }
    void AssignOrRelease(std::string_view text) {
        try {
            Assign(text);
        } catch (...) {
            Release(Header());
            throw;
        }
    }
    StringHeader* Header() const { return reinterpret_cast<StringHeader*>(m_text) - 1; }

    char* m_text;
};
static_assert(sizeof(CString) == 8);

// A string to be passed by value to another module: the callee destroys it. Not handed over, it ends here.
class PassedString {
public:
    PassedString(std::string_view text, StringManager& manager) : m_string(text, manager) {}
    PassedString(const PassedString&) = delete;
    PassedString& operator=(const PassedString&) = delete;
    ~PassedString() {
        if (!m_handed) m_string.~CString();
    }

    // Call once, as the argument itself.
    CString* Hand() {
        m_handed = true;
        return &m_string;
    }

private:
    union {
        CString m_string;
    };
    bool m_handed = false;
};

// A string received by value: destroyed when this scope ends. A null argument reads as empty.
class TakenString {
public:
    explicit TakenString(CString* string) : m_string(string) {}
    TakenString(const TakenString&) = delete;
    TakenString& operator=(const TakenString&) = delete;
    ~TakenString() {
        if (m_string) m_string->~CString();
    }

    std::string_view View() const { return m_string ? m_string->View() : std::string_view(); }

private:
    CString* m_string;
};
