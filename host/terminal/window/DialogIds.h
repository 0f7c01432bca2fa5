// Identifiers of the terminal's dialogs, for the resource compiler too.
#pragma once

#define IDD_COUNT 10
#define IDC_COUNT_LABEL 600
#define IDC_COUNT 601
