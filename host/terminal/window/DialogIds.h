// Identifiers of the terminal's dialogs, for the resource compiler too.
#pragma once

#define IDD_COUNT 10
#define IDD_COUNT_OF 11
#define IDC_COUNT_LABEL 600
#define IDC_COUNT 601
#define IDC_TEXT_LABEL 602
#define IDC_TEXT 603
