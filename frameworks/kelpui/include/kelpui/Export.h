// Export: marks what libkelpui.so offers.
#ifndef KELPUI_EXPORT_H
#define KELPUI_EXPORT_H

#define KELPUI_EXPORT __attribute__((visibility("default")))

#endif
