#include "framework/Wide.h"

namespace framework {

std::wstring Wide(std::string_view text, UINT codePage) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Narrow(std::wstring_view wide, UINT codePage) {
    const int length = static_cast<int>(wide.size());
    const auto convert = [&](char* to, std::size_t most) {
        return static_cast<std::size_t>(WideCharToMultiByte(codePage, 0, wide.data(), length, to,
                                                            static_cast<int>(most), nullptr, nullptr));
    };
    std::string text(convert(nullptr, 0), '\0');
    convert(text.data(), text.size());
    return text;
}

std::string Utf8(std::string_view ansi) {
    return Narrow(Wide(ansi, CP_ACP), CP_UTF8);
}

} // namespace framework
