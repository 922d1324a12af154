#include "Introduction.h"

#include <inttypes.h>
#include <stdio.h>

enum
{
    host_major = 3,
    host_minor = 7,
    max_extensions = 1000
};

/* The list is a ring: behind the last node, and before the first, stands the head. */
struct extension_node
{
    const struct extension_node* next;
    const struct extension_node* previous;
    const char* text;
};

struct extension_list
{
    const struct extension_node* first;
    const struct extension_node* last;
};

static void set_interface_version(struct host_object* self, int32_t major, int32_t minor)
{
    (void)self;
    printf("SetPluginInterfaceVersion %" PRId32 " %" PRId32 "\n", major, minor);
}

static void get_host_version(struct host_object* self, int32_t* major, int32_t* minor)
{
    (void)self;
    const char* const places = major == NULL || minor == NULL ? "nowhere"
                               : major == minor               ? "one place"
                                                              : "two places";
    printf("GetHostInterfaceVersion %s\n", places);
    if (major != NULL)
        *major = host_major;
    if (minor != NULL)
        *minor = host_minor;
}

static void set_identity(struct host_object* self, const char* guid, const uint16_t* name)
{
    (void)self;
    printf("SetPluginIdentity %s", guid);
    print_characters(name);
    putchar('\n');
}

/* A list that never comes back to its head is cut. */
static void print_extensions(const struct extension_list* list, int backwards)
{
    const void* const head = list;
    const struct extension_node* node = backwards ? list->last : list->first;
    int count = 0;
    fputs(backwards ? "backwards" : "forwards", stdout);
    for (; node != head && count < max_extensions; ++count)
    {
        printf(" %s", node->text);
        node = backwards ? node->previous : node->next;
    }
    puts(node == head ? "" : " without end");
}

static void print_filter(const char* operation_name, const uint16_t* name, const uint16_t* id,
                         const struct extension_list* extensions, const void* reserved)
{
    static const uint16_t no_id[] = {'-', 0};
    fputs(operation_name, stdout);
    print_characters(name);
    putchar(',');
    print_characters(id == NULL ? no_id : id);
    puts(reserved == NULL ? ", null" : ", something");
    print_extensions(extensions, 0);
    print_extensions(extensions, 1);
}

static void add_import_filter(struct host_object* self, const uint16_t* name, const uint16_t* id,
                              const struct extension_list* extensions, void* reserved)
{
    (void)self;
    print_filter("AddImportFilter", name, id, extensions, reserved);
}

static void add_export_filter(struct host_object* self, const uint16_t* name, const uint16_t* id,
                              const struct extension_list* extensions, void* reserved)
{
    (void)self;
    print_filter("AddExportFilter", name, id, extensions, reserved);
}

void ask_for_introduction(entry_function entry)
{
    operation table[max_places];
    clear_table(table);
    put(table, 1, (operation)&set_interface_version);
    put(table, 2, (operation)&get_host_version);
    put(table, 3, (operation)&set_identity);
    put(table, 4, (operation)&add_import_filter);
    put(table, 5, (operation)&add_export_filter);

    struct host_object object = {table};
    (void)call(entry, 0, NULL, &object);
}
