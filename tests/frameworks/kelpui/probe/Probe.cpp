// A library in a bundle with resources; nothing of it is called.
extern "C" __attribute__((visibility("default"))) const int kProbe = 1;
