#include "host/server/Registration.h"

#include <charconv>
#include <nlohmann/json.hpp>

namespace vesk {

std::string_view Registration::Text(std::uint32_t tag) const {
    const auto found = m_fields.find(tag);
    return found == m_fields.end() ? std::string_view() : std::string_view(found->second);
}

void Registration::Set(std::uint32_t tag, std::string_view text) {
    m_fields.insert_or_assign(tag, text);
}

std::string Registration::Message(qmx::MessageWriter& writer) const {
    writer.Start();
    for (const auto& [tag, text] : m_fields)
        writer.Add(tag, text);
    return writer.Finish();
}

// The wire's texts are bytes in any code page, while JSON is UTF-8: each byte becomes the code point of the
// same number, and comes back.
namespace {

std::string ToUtf8(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

// False for a code point above 255. `text` is valid UTF-8.
bool FromUtf8(std::string_view text, std::string& bytes) {
    bytes.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto lead = static_cast<unsigned char>(text[i]);
        if (lead < 0x80) {
            bytes += text[i];
        } else if (lead <= 0xC3 && i + 1 < text.size()) {
            bytes += static_cast<char>(((lead & 0x03) << 6) | (static_cast<unsigned char>(text[++i]) & 0x3F));
        } else {
            return false;
        }
    }
    return true;
}

} // namespace

std::string Registration::Json() const {
    nlohmann::json fields = nlohmann::json::object();
    for (const auto& [tag, text] : m_fields)
        fields[std::to_string(tag)] = ToUtf8(text);
    return nlohmann::json{{"registration", std::move(fields)}}.dump();
}

std::optional<Registration> Registration::FromJson(std::string_view text) {
    const nlohmann::json root = nlohmann::json::parse(text, nullptr, false);
    if (!root.is_object() || !root.contains("registration") || !root["registration"].is_object())
        return std::nullopt;
    Registration registration;
    for (const auto& [name, value] : root["registration"].items()) {
        std::uint32_t tag = 0;
        const char* end = name.data() + name.size();
        const auto [stop, fault] = std::from_chars(name.data(), end, tag);
        std::string bytes;
        if (fault != std::errc() || stop != end || !value.is_string()
            || !FromUtf8(value.get_ref<const std::string&>(), bytes))
            return std::nullopt;
        registration.Set(tag, bytes);
    }
    if (registration.Number().empty()) return std::nullopt;
    return registration;
}

} // namespace vesk
