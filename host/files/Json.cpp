#include "host/files/Json.h"

#include <iterator>

namespace vesk {

using nlohmann::json;

// The parser's way through the text. It may have read one character more than it has understood, such as the
// line feed behind a number, so the line is the one on which the last character stands.
struct ParsedJson {
    std::size_t line = 1;
    char last = 0;
};

namespace {

class Position {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Position(const char* at, ParsedJson& parsed) : m_at(at), m_parsed(&parsed) {}

    reference operator*() const { return *m_at; }
    Position& operator++() {
        m_parsed->line += m_parsed->last == '\n';
        m_parsed->last = *m_at++;
        return *this;
    }
    friend bool operator==(const Position& one, const Position& other) { return one.m_at == other.m_at; }

private:
    const char* m_at;
    ParsedJson* m_parsed;
};

} // namespace

// Follows the parser and notes the line of each value.
class JsonLines {
public:
    JsonLines(const ParsedJson& parsed, JsonObject& object) : m_parsed(parsed), m_object(object) {}

    bool operator()(int, json::parse_event_t event, json& parsed) {
        switch (event) {
        case json::parse_event_t::key:
            m_open.back().key = parsed.get<std::string>();
            Note();
            break;
        case json::parse_event_t::object_start:
        case json::parse_event_t::array_start:
            BeginValue();
            m_open.push_back({event == json::parse_event_t::array_start, 0, {}});
            break;
        case json::parse_event_t::value:
            BeginValue();
            EndValue();
            break;
        default:
            m_open.pop_back();
            EndValue();
        }
        return true;
    }

private:
    struct Open {
        bool isArray;
        std::size_t element;
        std::string key;
    };

    // A member's line is its name's.
    void BeginValue() {
        if (m_open.empty() || m_open.back().isArray) Note();
    }
    void EndValue() {
        if (!m_open.empty()) ++m_open.back().element;
    }
    void Note() {
        constexpr std::size_t deepest = 8;
        if (m_open.size() > deepest) return;
        json::json_pointer place;
        for (const Open& open : m_open)
            if (open.isArray)
                place /= open.element;
            else
                place /= open.key;
        m_object.m_lines.emplace_back(std::move(place), m_parsed.line);
    }

    const ParsedJson& m_parsed;
    JsonObject& m_object;
    std::vector<Open> m_open;
};

std::size_t JsonObject::LineOf(const json& value) const {
    // Of a name that stands there twice the last value counts.
    for (auto noted = m_lines.rbegin(); noted != m_lines.rend(); ++noted)
        if (m_root.contains(noted->first) && &m_root.at(noted->first) == &value) return noted->second;
    return 0;
}

Loaded<JsonObject> ParseJsonObject(std::string_view text, std::string_view fileName) {
    const std::string name(FileNameOf(fileName));
    // What is missing at the end is missing behind the last word, not below it.
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    JsonObject object;
    ParsedJson parsed;
    try {
        object.m_root = json::parse(Position(text.data(), parsed), Position(text.data() + text.size(), parsed),
                                    JsonLines(parsed, object));
        if (!object.Root().is_object()) return FileFault{name, 1, "an object { } is expected"};
        return object;
    } catch (const json::parse_error&) {
        return FileFault{name, parsed.line, "this is not JSON"};
    } catch (const json::out_of_range&) {
        return FileFault{name, parsed.line, "a number is too large"};
    }
}

} // namespace vesk
