/* HostObject: what a host's objects look like to the plug-in, and the lines that tell of calls.

   A host object is a pointer to a table of functions, whose first two places are never called;
   operation n stands at place n + 1. */
#ifndef TESTS_ROADS_FOREIGN_HOSTOBJECT_H
#define TESTS_ROADS_FOREIGN_HOSTOBJECT_H

#include <stdint.h>

typedef void (*operation)(void);
typedef int32_t (*entry_function)(int selector, void* file_handle, void* host_object);

enum
{
    max_places = 40
};

struct host_object
{
    const operation* table;
};

/* Every place of the table becomes a function that ends the process. */
void clear_table(operation* table);

void put(operation* table, int order, operation function);

/* A space, then the text, with all but plain characters as numbers. No end of line. */
void print_characters(const uint16_t* text);

/* A whole line. */
void print_text(const char* name, const uint16_t* text);

/* Calls the entry and prints its result. */
int32_t call(entry_function entry, int selector, void* handle, void* object);

#endif
