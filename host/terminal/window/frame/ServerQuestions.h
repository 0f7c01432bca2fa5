// What the commands of the "Server" menu ask the user for. The identifiers are for the resource compiler too.
#pragma once

#define IDD_COUNT 10
#define IDD_COUNT_OF 11
#define IDC_COUNT_LABEL 600
#define IDC_COUNT 601
#define IDC_TEXT_LABEL 602
#define IDC_TEXT 603

#ifndef RC_INVOKED

#include <windows.h>

#include <string>

namespace vesk {

class ServerLink;

// Each runs until the user has answered: a line as ServerCommands takes, empty when he cancels.
using ServerQuestion = std::string(HWND owner, const ServerLink& server);
ServerQuestion AskForRegistrations;
ServerQuestion AskForOtherOrders;
ServerQuestion AskForExecution;
ServerQuestion AskForClock;

} // namespace vesk

#endif
