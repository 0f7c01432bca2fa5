// The framework's array of narrow strings as it lies in memory on both sides of the boundary.
//
// Thread:   the GUI thread. Owner: whoever constructed it; storage is on the process heap, so either
//           side may grow it.
// Failure:  std::bad_alloc; the array is then unchanged.
//
// Arrays that are handed over are appended to, never cleared.
//
// Example, a host that fills an array which the plug-in has handed over:
//
//     array->Append("C001", manager);
//     array->Append("C002", manager);
//
// and the plug-in behind the call:
//
//     for (const CString& account : array.Elements()) Know(account.View());
#pragma once

#include "sdk/CString.h"
#include "sdk/ProcessHeap.h"

#include <span>

class CStringArray {
public:
    CStringArray() = default;
    CStringArray(const CStringArray&) = delete;
    CStringArray& operator=(const CStringArray&) = delete;
    ~CStringArray() {
        for (CString& element : Elements())
            element.~CString();
        sdk::ProcessHeapRelease(m_data);
    }

    std::span<CString> Elements() { return {m_data, static_cast<std::size_t>(m_size)}; }
    std::span<const CString> Elements() const { return {m_data, static_cast<std::size_t>(m_size)}; }

    void Append(std::string_view text, StringManager& manager) {
        CString element(text, manager);
        if (m_size == m_capacity) Grow();
        new (m_data + m_size) CString(element);
        ++m_size;
    }

private:
    void Grow() {
        constexpr std::int64_t smallestStep = 4;
        const std::int64_t step = m_growBy > 0 ? m_growBy : m_size / 2 + smallestStep;
        const std::int64_t capacity = m_size + step;
        void* memory = sdk::ProcessHeapAllocate(static_cast<std::size_t>(capacity) * sizeof(CString));
        if (!memory) throw std::bad_alloc();
        // A string is one pointer that nothing points back to, so moving it is copying its bytes.
        if (m_size)
            std::memcpy(memory, static_cast<const void*>(m_data),
                        static_cast<std::size_t>(m_size) * sizeof(CString));
        sdk::ProcessHeapRelease(m_data);
        m_data = static_cast<CString*>(memory);
        m_capacity = capacity;
    }

    const void* m_vtable = nullptr; // the framework's; never called by us
    CString* m_data = nullptr;
    std::int64_t m_size = 0;
    std::int64_t m_capacity = 0;
    std::int64_t m_growBy = 0;

    friend struct CStringArrayLayout;
};
static_assert(sizeof(CStringArray) == 40);

struct CStringArrayLayout {
    static_assert(offsetof(CStringArray, m_data) == 8 && offsetof(CStringArray, m_size) == 16);
    static_assert(offsetof(CStringArray, m_capacity) == 24 && offsetof(CStringArray, m_growBy) == 32);
};
