// Export: marks what libkelpcore.so offers.
#ifndef KELPCORE_EXPORT_H
#define KELPCORE_EXPORT_H

#define KELPCORE_EXPORT __attribute__((visibility("default")))

#endif
