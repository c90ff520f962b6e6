// Ids of dialogs and controls shared by the resource scripts and the code. Plain defines, so that
// the resource compiler can read them too.
#pragma once

#define IDD_MAIN 1000
// The text control of the boxes "MessageBox" and "YesnoBox".
#define IDC_MESSAGE_TEXT 4000
