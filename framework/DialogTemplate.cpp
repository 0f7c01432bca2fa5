#include "framework/DialogLayout.h"

#include <cstring>
#include <stdexcept>

namespace framework {

namespace {

// Walks a resource; going past its end is an exception, never a read.
class Reader {
public:
    Reader(const void* data, std::size_t size) : m_data(static_cast<const BYTE*>(data)), m_size(size) {}

    template <class T>
    T Take() {
        T value;
        if (m_size - m_at < sizeof value) throw std::runtime_error("dialog template is cut short");
        std::memcpy(&value, m_data + m_at, sizeof value);
        m_at += sizeof value;
        return value;
    }
    std::wstring TakeText() {
        std::wstring text;
        while (const wchar_t c = Take<wchar_t>())
            text += c;
        return text;
    }
    // A menu, class or title: nothing, a resource number or a text.
    void SkipNameOrNumber() {
        const auto first = Take<WORD>();
        if (first == 0xFFFF)
            Take<WORD>();
        else if (first != 0)
            TakeText();
    }
    void Skip(std::size_t bytes) {
        if (m_size - m_at < bytes) throw std::runtime_error("dialog template is cut short");
        m_at += bytes;
    }
    void AlignToDword() {
        if (const std::size_t over = m_at % 4) Skip(4 - over);
    }

private:
    const BYTE* m_data;
    std::size_t m_size;
    std::size_t m_at = 0;
};

RECT TakeUnits(Reader& reader) {
    const auto x = reader.Take<short>();
    const auto y = reader.Take<short>();
    const auto width = reader.Take<short>();
    const auto height = reader.Take<short>();
    return {x, y, x + width, y + height};
}

Reader OpenResource(HINSTANCE module, int resource) {
    // RT_DIALOG spelled out: the macro is wide or narrow as the build is.
    const HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(resource), MAKEINTRESOURCEA(5));
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const void* data = loaded ? LockResource(loaded) : nullptr;
    if (!data) throw std::runtime_error("no dialog resource " + std::to_string(resource));
    return {data, SizeofResource(module, found)};
}

} // namespace

DialogTemplate ReadDialogTemplate(HINSTANCE module, int resource) {
    Reader reader = OpenResource(module, resource);
    DialogTemplate result;
    const auto version = reader.Take<WORD>();
    const auto signature = reader.Take<WORD>();
    if (version != 1 || signature != 0xFFFF) throw std::runtime_error("not an extended dialog template");
    reader.Take<DWORD>(); // help identifier
    reader.Take<DWORD>(); // extended style
    const auto style = reader.Take<DWORD>();
    const auto count = reader.Take<WORD>();
    const RECT frame = TakeUnits(reader);
    result.units = {frame.right - frame.left, frame.bottom - frame.top};
    reader.SkipNameOrNumber(); // menu
    reader.SkipNameOrNumber(); // class
    reader.SkipNameOrNumber(); // title
    if (style & DS_SETFONT) {
        result.pointSize = reader.Take<WORD>();
        reader.Take<WORD>(); // weight
        reader.Take<WORD>(); // italic, character set
        result.face = reader.TakeText();
    }
    for (WORD i = 0; i < count; ++i) {
        reader.AlignToDword();
        reader.Take<DWORD>(); // help identifier
        reader.Take<DWORD>(); // extended style
        reader.Take<DWORD>(); // style
        const RECT units = TakeUnits(reader);
        const auto id = reader.Take<DWORD>();
        result.items.push_back({static_cast<int>(id), units});
        reader.SkipNameOrNumber(); // class
        reader.SkipNameOrNumber(); // title
        reader.Skip(reader.Take<WORD>());
    }
    return result;
}

} // namespace framework
