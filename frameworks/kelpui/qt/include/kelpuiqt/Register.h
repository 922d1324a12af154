// Register: the one function of libkelpuiQt, which shows kelpui's dialogs with Qt Widgets.
//
// A host loads the library when it is about to open a dialog; kelpui itself links no toolkit.
#ifndef KELPUIQT_REGISTER_H
#define KELPUIQT_REGISTER_H

#ifdef __cplusplus
extern "C" {
#endif

/// Registers the presenter with kelpui. Null on success, else an English text that says why dialogs
/// cannot be shown, with no display above all; it stays valid. May be called again at any time.
///
/// A process without a Qt application gets one, which stays to its end. Its locale for numbers
/// stays what it was. Such a process must be on its only thread, which is the one for dialogs.
__attribute__((visibility("default"))) const char* KelpuiQtRegister(void);
typedef const char* (*KelpuiQtRegisterFunction)(void);

#ifdef __cplusplus
}
#endif

#endif
