#include "HostObject.h"

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

static void never_called(void)
{
    puts("a place that is not used was called");
    fflush(stdout);
    abort();
}

void clear_table(operation* table)
{
    for (int place = 0; place < max_places; ++place)
        table[place] = &never_called;
}

void put(operation* table, int order, operation function)
{
    table[order + 1] = function;
}

void print_characters(const uint16_t* text)
{
    putchar(' ');
    for (; *text != 0; ++text)
        if (*text >= 0x20 && *text < 0x7F)
            putchar(*text);
        else
            printf("\\u%04X", *text);
}

void print_text(const char* name, const uint16_t* text)
{
    fputs(name, stdout);
    print_characters(text);
    putchar('\n');
}

int32_t call(entry_function entry, int selector, void* handle, void* object)
{
    const int32_t result = entry(selector, handle, object);
    printf("= %d %" PRId32 "\n", selector, result);
    return result;
}
