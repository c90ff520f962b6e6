// Ids of dialogs and controls shared by the resource scripts and the code. Plain defines, so that
// the resource compiler can read them too.
#pragma once

#define IDD_MAIN 1000
// The About box, opened by Register and About.
#define IDD_ABOUT 1001
#define IDC_ABOUT_NAME 4010
#define IDC_ABOUT_VERSION 4011
// The text control of the boxes "MessageBox" and "YesnoBox".
#define IDC_MESSAGE_TEXT 4000

// Controls of the main dialog. An updown partner has the id of its edit field plus 10000.
#define IDC_BUILD 1
#define IDC_CANCEL 2
#define IDC_HELP_BUTTON 9
#define IDC_TRUE_COLOUR 10
#define IDC_DELAY 11
#define IDC_SIZE_LABEL 12
#define IDC_PALETTE 13
#define IDC_CUSTOM_PALETTE 14
#define IDC_DITHER 15
#define IDC_REGISTER 16
#define IDC_LOGO 17
#define IDC_ABOUT 18
#define IDC_SUPERCOMPRESS 19
#define IDC_ADD_COMMENT 20
#define IDC_MASK_BACKGROUND 21
#define IDC_ANIMATED 22
#define IDC_PAUSE 23
#define IDC_TEST 24
#define IDC_SAMPLE 25
#define IDC_TRANSPARENT 35
#define IDC_OPEN_SAVE 36
#define IDC_ANTIALIAS 51
#define IDC_TEXT 52
#define IDC_FONT 53
#define IDC_BOLD 54
#define IDC_ITALIC 55
#define IDC_FONT_SIZE 57
#define IDC_EFFECT 58
#define IDC_PADDING 59
#define IDC_CHARACTER_SPACE 61
#define IDC_ALPHA_TRANSPARENCY 62
#define IDC_ALPHA_BACKGROUND 63
#define IDC_FIT_SAMPLE 64
#define IDC_UPDOWN_OFFSET 10000

// The default matrix tile, a 24-bit bitmap of 90 by 90 pixels.
#define IDB_DEFAULT_TILE 9908

// The Matrix dialog and the dialog that names a new matrix group.
#define IDD_MATRIX 9981
#define IDC_MATRIX_PREVIEW 101
#define IDC_MATRIX_TILES 102
#define IDC_MATRIX_ADD 103
#define IDC_MATRIX_DELETE 104
#define IDC_MATRIX_SIZE 106
#define IDC_MATRIX_GROUP 108
#define IDD_MATRIX_NAME 9967
#define IDC_MATRIX_NAME_TEXT 4020
