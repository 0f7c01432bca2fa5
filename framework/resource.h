#pragma once

#define IDD_RUN_PROGRESS 1012

#define IDC_RUN_TEXT 1701
#define IDC_RUN_BAR 1702
#define IDC_RUN_NOTE 1703
