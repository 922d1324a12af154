/* Introduction: the plug-in tells a host what it is and which filters it has. */
#ifndef TESTS_ROADS_FOREIGN_INTRODUCTION_H
#define TESTS_ROADS_FOREIGN_INTRODUCTION_H

#include "HostObject.h"

/* Prints each call. A filter is a line with its name, its id ("-" for none) and the reserved
   argument, then a line with its extensions from first to last and one from last to first. */
void ask_for_introduction(entry_function entry);

#endif
