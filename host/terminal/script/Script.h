// The language of scripted sessions: one command a line, words separated by blanks, texts with blanks in
// quotes (\" \\ \n inside them), "#" begins a comment.
//
//     menu "Planfold" "Order Entry"
//     window "Planfold Order Entry"
//     select 1040 "SIP"
//     expect text 1034 "Submit"
//     box "Enter Amount" OK
#pragma once

#include "host/files/Files.h"
#include "host/terminal/script/Verbs.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// The verbs that the runner plays itself.
enum class RunnerVerb {
#define VESK_STAGE(...)
#define VESK_RUNNER(name, ...) name,
    VESK_SCRIPT_VERBS(VESK_STAGE, VESK_RUNNER)
#undef VESK_STAGE
#undef VESK_RUNNER
        none
};

struct VerbRule {
    std::string_view name;
    std::string_view words;
    RunnerVerb runner; // none: the stage's
};
std::span<const VerbRule> VerbRules();

struct ScriptCommand {
    std::size_t verb;               // its row among the rules
    std::vector<std::string> words; // checked against the rule
    std::size_t line = 0;

    const VerbRule& Rule() const { return VerbRules()[verb]; }
    int Number(std::size_t word) const;
    bool On(std::size_t word) const { return words[word] == "on"; }
    // The line that would be written for it.
    std::string Text() const;
};

// The answers of a message box and the identifiers of their buttons.
struct BoxAnswer {
    std::string_view name;
    int button;
};
std::optional<int> BoxButton(std::string_view answer);

struct Script {
    std::string fileName;
    std::vector<ScriptCommand> commands;

    static Loaded<Script> Load(const std::string& path);
    static Loaded<Script> Parse(std::string_view text, std::string_view fileName);
};

} // namespace vesk
