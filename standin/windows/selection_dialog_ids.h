// The numbers of the selection window in the resources.
#pragma once

#define IDD_SELECTION 101
#define IDC_CANDIDATES 1001
