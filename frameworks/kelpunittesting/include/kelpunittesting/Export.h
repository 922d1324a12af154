// Export: marks what libkelpunittesting.so offers.
#ifndef KELPUNITTESTING_EXPORT_H
#define KELPUNITTESTING_EXPORT_H

#define KELPUNITTESTING_EXPORT __attribute__((visibility("default")))

#endif
