// Messages written as text, for inputs that can be read and written by hand.
#pragma once

#include "fuzz/Fuzz.h"
#include "host/connectvesk/QmxHost.h"

#include <vector>

namespace fuzz {

// Received bytes as they are, or lines of "tag=value|value" made into a message.
inline std::string MessageBytes(Input input) {
    std::string text = input.Rest();
    if (text.starts_with("QMX1")) return text;
    qmx::MessageWriter writer;
    while (!input.AtEnd()) {
        const std::string line = input.Line();
        std::string_view rest = line;
        const auto tag =
            static_cast<std::uint32_t>(std::strtoul(std::string(Input::CutAt(rest, '=')).c_str(), nullptr, 10));
        std::vector<QmxDatum> values;
        while (!rest.empty())
            values.push_back(qmx::Datum(Input::CutAt(rest, '|')));
        writer.AddValues(tag, values.data(), static_cast<std::uint32_t>(values.size()));
    }
    return writer.Finish();
}

// The lines between those of "--".
inline std::vector<std::string> Messages(Input input) {
    std::vector<std::string> messages(1);
    while (!input.AtEnd()) {
        const std::string line = input.Line();
        if (line == "--")
            messages.emplace_back();
        else
            messages.back() += line + "\n";
    }
    return messages;
}

} // namespace fuzz
