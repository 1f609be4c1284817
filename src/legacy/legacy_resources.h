// The numbers of the legacy windows' resources and controls; the resource script and the code share them.
#pragma once

// Dialog templates.
#define IDD_RESULTS 117
#define IDD_SAVE_OPTION 118

// Controls of the results page.
#define IDC_SIGNERS 201
#define IDC_SHOW_ENCRYPTER 1003
#define IDC_SHOW_SIGNER 1004
#define IDC_DECRYPTION_STATUS 1005
#define IDC_ENCRYPTER 1006
#define IDC_VERIFICATION_STATUS 1007
#define IDC_DECRYPTION_ICON 1021
#define IDC_VERIFICATION_ICON 1022
#define IDC_HEADER_ICON 1023
#define IDC_HEADER 1024
#define IDC_DECRYPTION_LABEL 1025
#define IDC_ENCRYPTER_LABEL 1026
#define IDC_VERIFICATION_LABEL 1027
#define IDC_VERIFICATION_LINE 1028
#define IDC_HEADER_LINE 1029

// The control of the save-option panel.
#define IDC_KEEP_SIGNED 119

// Icons.
#define IDI_HEADER_GOOD 1101
#define IDI_HEADER_REMARKS 1102
#define IDI_HEADER_FAILED 1103
#define IDI_SIGNER_GOOD 1104
#define IDI_SIGNER_FAILED 1105
#define IDI_SIGNER 1106
#define IDI_ENCRYPTION 1107
#define IDI_VERIFICATION 1108
#define IDI_DECRYPTION_FAILED 1109
#define IDI_DECRYPTION_GOOD 1110
#define IDI_CERTIFICATE 1111
#define IDI_HEADER_UNSIGNED 1112

// The caption of the file-open entry's messages.
#define IDS_OPEN_CAPTION 100
