// The language of scripted sessions: one command a line, words separated by blanks, texts with blanks in
// quotes (\" \\ \n inside them), "#" begins a comment.
//
//     menu "Planfold" "Order Entry"
//     window "Planfold Order Entry"
//     select 1040 "SIP"
//     expect text 1034 "Submit"
//     box "Enter Amount" OK
#pragma once

#include "host/files/FileFault.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

enum class Verb : std::size_t {
    menu,
    window,
    mainWindow,
    select,
    edit,
    date,
    type,
    key,
    focus,
    press,
    command,
    row,
    selectRows,
    header,
    tab,
    context,
    file,
    box,
    boxStarting,
    answer,
    expectText,
    expectWindow,
    expectNoWindow,
    expectMenu,
    expectLog,
    expectNoLog,
    expectCombo,
    expectEnabled,
    expectVisible,
    expectFocus,
    expectRows,
    expectCell,
    expectHeadings,
    expectFocusRow,
    expectSelectedRows,
    expectContext,
    expectTabs,
    expectSelected,
    expectStatus,
    expectJournal,
    expectExecuted,
    expectBox,
    expectBoxStarting,
    screenshot,
    client,
    font,
    right,
    mode,
    clock,
    fill,
    other,
    execute,
    fault,
    dpi,
    locale,
    measure,
    dock,
    hidePane,
    showPane,
    expectDocked,
    timeout,
    close,
    exit,
    count
};

struct VerbRule {
    Verb verb;
    std::string_view name;
    // One letter a word: t text, n whole number, k key, b "on" or "off", a answer to a message box,
    // d place of a pane; behind the last, "*": any number of such words, or none; "?": it may be missing.
    std::string_view words;
    std::string_view meaning;
};
std::span<const VerbRule> VerbRules();

struct ScriptCommand {
    Verb verb;
    std::vector<std::string> words; // checked against the rule
    std::size_t line = 0;

    int Number(std::size_t word) const;
    bool On(std::size_t word) const { return words[word] == "on"; }
    // As it would be written.
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
