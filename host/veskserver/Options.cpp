#include "host/veskserver/Options.h"

#include "base/Text.h"
#include "host/files/OptionRows.h"

#include <algorithm>
#include <utility>

namespace vesk {
namespace {

bool ReadPort(ServerOptions& options, std::string_view text) {
    const auto port = base::ReadNumber<std::uint16_t>(text);
    options.port = port.value_or(0);
    return port.has_value();
}

// Where the terminal has its files.
bool ReadData(ServerOptions& options, std::string_view text) {
    options.data = text;
    if (options.journal.empty()) options.journal = std::string(text) + "/journal";
    if (options.config.empty()) options.config = std::string(text) + "/server.json";
    return !text.empty();
}

bool ReadHelp(ServerOptions& options, std::string_view) {
    return options.help = true;
}

bool ReadVersion(ServerOptions& options, std::string_view) {
    return options.tellsVersion = true;
}

bool ReadCheckJournal(ServerOptions& options, std::string_view) {
    return options.checksJournal = true;
}

bool ReadStatus(ServerOptions& options, std::string_view) {
    return options.tellsStatus = true;
}

// LOGIN, LOGIN:FIRM or LOGIN:FIRM:BRANCH.
bool ReadLogin(ServerOptions& options, std::string_view text) {
    UserIdentity user;
    for (std::string UserIdentity::*part :
         {&UserIdentity::loginId, &UserIdentity::peerIdA, &UserIdentity::peerIdB}) {
        const std::size_t end = std::min(text.find(':'), text.size());
        user.*part = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const bool isUser = text.empty() && !user.loginId.empty();
    if (isUser) options.logins.push_back(std::move(user));
    return isUser;
}

bool ReadAllowCommands(ServerOptions& options, std::string_view) {
    return options.takesCommands = true;
}

constexpr OptionRow<ServerOptions> kOptions[] = {
    {"--port", ReadPort},
    {"--journal", ReadText<&ServerOptions::journal>},
    {"--config", ReadText<&ServerOptions::config>},
    {"--data", ReadData},
    {"--login", ReadLogin},
    {"--allow-commands", ReadAllowCommands, ""},
    {"--check-journal", ReadCheckJournal, ""},
    {"--status", ReadStatus, ""},
    {"--help", ReadHelp, ""},
    {"--version", ReadVersion, ""},
};

} // namespace

constinit const std::string_view kServerHelp = R"(NAME
    veskserver - the trading server for several terminals of this machine

SYNOPSIS
    veskserver --port N --journal FILE [--config FILE] [--data FOLDER]
               [--login LOGIN[:FIRM[:BRANCH]]]... [--allow-commands]
    veskserver --check-journal --journal FILE
    veskserver --status --journal FILE
    veskserver --help | --version

DESCRIPTION
    Serves the terminals that connect to the port, over one journal, until it is
    interrupted or its standard input ends. When it is ready it prints

        listening on 127.0.0.1:PORT

    and then takes commands, a line of standard input each, and prints what became
    of each in a line:

        clock next           the server's clock goes to the next instalment
        clock DAYS           or so many days on
        clock 2027-03-05     or to this date
        fill COUNT           makes up registrations
        other COUNT          places orders as another user of the firm
        execute COUNT [NUMBER]
                             makes exchange orders for days gone by, of the latest
                             registration or the one with the number
        fault REQUEST KIND [VALUE]
                             plays a fault on a request, or on all ("*"):
                             delay MS                  handled so much later
                             error CODE                refused, not handled
                             silent                    handled, not answered
                             ignored                   neither handled nor answered
                             garbage                   handled, answered with rubbish
                             twice                     handled, answered twice
                             noserial                  answered without serial number
                             disconnect [TIMES]        handled, then the line is cut
                             disconnect-before [TIMES] cut before it has come
                             none

    With --allow-commands every terminal can give the same commands.

    It can be ended at any moment, even by force: what a terminal was answered is
    in the journal, and the next server goes on from there.

WHO MAY COME
    FILE.secrets, beside the journal, has a secret for each login, and only its
    owner can read it. A terminal proves that it knows its login's (it signs what
    the server makes up for each connection); one that cannot is refused. It then
    sees and changes its own orders, and sees its firm's; nobody streams another
    firm's. A login has 32 sessions at most: for another one the oldest goes that
    has wanted nothing for a minute, or else the new one is refused.

    When there is no such file it is made, with a secret for the user of
    "terminal.json" and for each --login. To let another one in, start with
    --login and hand him his part of the file: only that, for who knows a secret
    is that login. A secret is made anew when its part is removed before a start.

    Not protected is what can be read on the way: nothing is encrypted. Terminals
    of this machine alone can connect; who carries the port further carries it as
    it is. The journal and what stands beside it are made readable for their owner
    only; on Windows the folder's rights count for all but the secrets. Who can
    change these files, or this program's input, runs the server.

OPTIONS
    --port N         0, as without it: one that the system chooses
    --journal FILE   every change, on the disk before it is answered; made when
                     there is none. Only one server at a time can have it open.
                     Beside it stand FILE.head (how far it was written: an end that
                     is missing stops the start) and FILE.torn (what crashes tore)
    --login LOGIN    makes a secret for the login, where it has none; again for more
    --allow-commands terminals may move the clock, make up orders and play faults
    --check-journal  prints all that is wrong with the journal, a line each with its
                     place, and changes nothing
    --status         prints what the server of this journal has to do: sessions,
                     requests and updates a second, the journal's size, and how long
                     flushes took, over the last minute or less. It reads FILE.status,
                     which the server writes every 5 seconds, and so needs no login.
                     The server's log has the same line each minute
    --config FILE    frequencies and faults to play, as data/server.json
    --data FOLDER    where "journal" and "server.json" are, unless they are named, and
                     the market: "scrips.csv", "clients.csv", "nontrading.csv". In
                     "terminal.json" it says whose orders "fill" makes up. A missing
                     one of these four is reported and done without; a bad one stops
                     the start

EXIT STATUS
    0    it was ended; the journal has no fault; a server gave its status
    1    the journal has faults; no server has given its status for 30 seconds
    2    the words of the command were wrong, the port was taken, or a file could
         not be used; standard error says which

EXAMPLE
    veskserver --port 7040 --data data
)";

Complaint ReadServerOptions(std::span<const std::string> words, ServerOptions& options) {
    const auto noWord = [](const std::string&) { return false; };
    if (const Complaint complaint = ReadOptionRows<ServerOptions>(words, kOptions, options, noWord);
        !options.help && !options.tellsVersion)
        return complaint || !options.journal.empty() ? complaint : Complaint("a journal is needed");
    return std::nullopt;
}

} // namespace vesk
