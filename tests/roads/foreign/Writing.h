/* Writing: the plug-in creates a file for a host and fills it. */
#ifndef TESTS_ROADS_FOREIGN_WRITING_H
#define TESTS_ROADS_FOREIGN_WRITING_H

#include "HostObject.h"

/* Writes ten frames of 16-bit stereo to a WAVE file of 8000 Hz, in blocks of four: left 0, 1000,
   ... 9000, right the same below zero. Prints each call. */
void write_ten_frames(entry_function entry, const char* path);

#endif
