// Resource numbers of the selection window.
#pragma once

#define IDD_SELECTION 101
#define IDC_CANDIDATES 1001
