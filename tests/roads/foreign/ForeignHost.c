/* ForeignHost: a host in C that knows the plug-in by its binary interface alone.

   ForeignHost PLUGIN [-i] [-k] [-b FRAMES] [-w FILE] FILE...

   Opens each file, asks its format, reads it to the end in blocks and closes it; with -k it stays
   open. Each -i asks the plug-in what it is and has, each -w writes a file. Every call that the
   plug-in makes is a line on standard output, as is each result of an entry call ("= SELECTOR
   RESULT") and each delivered sample ("CHANNEL FRAME VALUE"). */
#include "HostObject.h"
#include "Introduction.h"
#include "Writing.h"

#include <dlfcn.h>
#include <inttypes.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum
{
    max_channels = 16
};

struct error_object
{
    struct host_object base;
};

struct open_object
{
    struct host_object base;
    struct error_object* errors;
    const char* path;
    void* handle;
};

struct format_object
{
    struct host_object base;
    struct error_object* errors;
    int32_t flags;
    int32_t channels;
    int32_t sample_type;
};

struct read_object
{
    struct host_object base;
    int64_t start;
    int64_t count;
    int64_t buffer_bytes;
    char* buffers[max_channels];
    int64_t delivered;
    int at_end;
};

static void set_error_text(struct error_object* self, const uint16_t* text)
{
    (void)self;
    print_text("SetErrorText", text);
}

static void* open_get_error(struct open_object* self)
{
    puts("GetErrorInterface");
    return self->errors;
}

static const char* open_get_path(struct open_object* self)
{
    puts("GetFilePath");
    return self->path;
}

static void open_set_handle(struct open_object* self, void* handle)
{
    puts("SetFileHandle");
    self->handle = handle;
}

static void open_set_status(struct open_object* self, int32_t status)
{
    (void)self;
    printf("SetOpenStatus %" PRId32 "\n", status);
}

static void open_set_description(struct open_object* self, const uint16_t* text)
{
    (void)self;
    print_text("SetFormatDescription", text);
}

static void open_set_bitrate(struct open_object* self, uint32_t bits_per_second)
{
    (void)self;
    printf("SetBitrate %" PRIu32 "\n", bits_per_second);
}

static void* format_get_error(struct format_object* self)
{
    puts("GetErrorInterface");
    return self->errors;
}

static void format_set_rate(struct format_object* self, int32_t rate)
{
    (void)self;
    printf("SetSampleRate %" PRId32 "\n", rate);
}

static void format_set_type(struct format_object* self, int32_t type)
{
    printf("SetSampleType %" PRId32 "\n", type);
    self->sample_type = type;
}

static void format_set_channels(struct format_object* self, int32_t count)
{
    printf("SetChannelCount %" PRId32 "\n", count);
    self->channels = count;
}

static void format_set_label(struct format_object* self, int64_t channel, uint32_t label)
{
    (void)self;
    printf("SetChannelLabel %" PRId64 " %" PRIu32 "\n", channel, label);
}

static void format_set_settings(struct format_object* self, const uint16_t* text)
{
    (void)self;
    print_text("SetPrivateSettings", text);
}

static void format_set_flags(struct format_object* self, int32_t flags)
{
    printf("SetFormatFlags %" PRId32 "\n", flags);
    self->flags = flags;
}

static int32_t format_get_flags(struct format_object* self)
{
    puts("GetFormatFlags");
    return self->flags;
}

static void format_set_count(struct format_object* self, int64_t count)
{
    (void)self;
    printf("SetSampleCount %" PRId64 "\n", count);
}

static int64_t read_get_start(struct read_object* self)
{
    puts("GetStartSample");
    return self->start;
}

static int64_t read_get_count(struct read_object* self)
{
    puts("GetSampleCount");
    return self->count;
}

static char* read_get_buffer(struct read_object* self, int32_t channel)
{
    printf("GetChannelBuffer %" PRId32 "\n", channel);
    return self->buffers[channel];
}

static int64_t read_get_size(struct read_object* self)
{
    puts("GetBufferSize");
    return self->buffer_bytes;
}

static void read_set_delivered(struct read_object* self, int64_t count)
{
    printf("SetSamplesRead %" PRId64 "\n", count);
    self->delivered = count;
}

static void read_set_total(struct read_object* self, int64_t count)
{
    printf("SetTotalSampleCount %" PRId64 "\n", count);
    self->at_end = 1;
}

static operation error_table[max_places];
static operation open_table[max_places];
static operation format_table[max_places];
static operation read_table[max_places];

static void fill_tables(void)
{
    clear_table(error_table);
    clear_table(open_table);
    clear_table(format_table);
    clear_table(read_table);

    put(error_table, 1, (operation)&set_error_text);

    put(open_table, 1, (operation)&open_get_error);
    put(open_table, 3, (operation)&open_get_path);
    put(open_table, 5, (operation)&open_set_handle);
    put(open_table, 7, (operation)&open_set_status);
    put(open_table, 9, (operation)&open_set_description);
    put(open_table, 11, (operation)&open_set_bitrate);

    put(format_table, 1, (operation)&format_get_error);
    put(format_table, 3, (operation)&format_set_rate);
    put(format_table, 5, (operation)&format_set_type);
    put(format_table, 7, (operation)&format_set_channels);
    put(format_table, 9, (operation)&format_set_label);
    put(format_table, 14, (operation)&format_set_settings);
    put(format_table, 19, (operation)&format_set_flags);
    put(format_table, 20, (operation)&format_get_flags);
    put(format_table, 25, (operation)&format_set_count);

    put(read_table, 1, (operation)&read_get_start);
    put(read_table, 2, (operation)&read_get_count);
    put(read_table, 3, (operation)&read_get_buffer);
    put(read_table, 4, (operation)&read_get_size);
    put(read_table, 5, (operation)&read_set_delivered);
    put(read_table, 6, (operation)&read_set_total);
}

/* Native byte order, packed: unsigned bytes, integers of 2 and 3 bytes, floats. */
static void print_sample(const char* at, int width, int channel, int64_t frame)
{
    int32_t number = 0;
    float real = 0;
    if (width == 1)
    {
        printf("%d %" PRId64 " %d\n", channel, frame, *(const unsigned char*)at);
        return;
    }
    if (width == 4)
    {
        memcpy(&real, at, 4);
        printf("%d %" PRId64 " %.9g\n", channel, frame, (double)real);
        return;
    }
    memcpy((char*)&number + 4 - width, at, (size_t)width);
    printf("%d %" PRId64 " %" PRId32 "\n", channel, frame, number / (1 << (8 * (4 - width))));
}

static void read_to_the_end(entry_function entry, void* handle, const struct format_object* format,
                            int64_t block_frames)
{
    const int width = format->sample_type / 10;
    struct read_object request = {.base = {read_table}, .count = block_frames};
    request.buffer_bytes = block_frames * width;
    for (int channel = 0; channel < format->channels; ++channel)
        request.buffers[channel] = malloc((size_t)request.buffer_bytes);

    while (!request.at_end && call(entry, 7, handle, &request) == 0)
    {
        for (int channel = 0; channel < format->channels; ++channel)
            for (int64_t frame = 0; frame < request.delivered; ++frame)
                print_sample(request.buffers[channel] + frame * width, width, channel,
                             request.start + frame);
        request.start += request.delivered;
    }
    for (int channel = 0; channel < format->channels; ++channel)
        free(request.buffers[channel]);
}

static void* open_and_read(entry_function entry, const char* path, int64_t block_frames)
{
    struct error_object errors = {{error_table}};
    struct open_object open = {{open_table}, &errors, path, NULL};
    struct format_object format = {{format_table}, &errors, 0, 0, 0};
    if (call(entry, 5, NULL, &open) != 0 || open.handle == NULL)
        return NULL;
    if (call(entry, 6, open.handle, &format) == 0 && format.channels <= max_channels)
        read_to_the_end(entry, open.handle, &format, block_frames);
    return open.handle;
}

static void find(void* library, const char* name, void* out_function)
{
    void* const found = dlsym(library, name);
    if (found == NULL)
    {
        fprintf(stderr, "%s\n", dlerror());
        exit(2);
    }
    memcpy(out_function, &found, sizeof found);
}

/* Where a session that stays open is kept, so that it is no leak. */
static void* kept_handle;

int main(int argc, char** argv)
{
    fill_tables();
    void* const library = argc > 1 ? dlopen(argv[1], RTLD_LAZY | RTLD_LOCAL) : NULL;
    if (library == NULL)
    {
        fprintf(stderr, "%s\n", argc > 1 ? dlerror() : "which plug-in?");
        return 2;
    }
    entry_function entry;
    operation start;
    operation stop;
    find(library, "TarvoInterface", &entry);
    find(library, "_ZN5tarvo6module10InitializeEv", &start);
    find(library, "_ZN5tarvo6module9TerminateEv", &stop);
    stop();
    start();
    start();

    int keep = 0;
    int64_t block_frames = 4;
    for (int index = 2; index < argc; ++index)
    {
        if (strcmp(argv[index], "-k") == 0)
            keep = 1;
        else if (strcmp(argv[index], "-i") == 0)
            ask_for_introduction(entry);
        else if (strcmp(argv[index], "-w") == 0 && index + 1 < argc)
            write_ten_frames(entry, argv[++index]);
        else if (strcmp(argv[index], "-b") == 0 && index + 1 < argc)
            block_frames = atoll(argv[++index]);
        else
        {
            void* const handle = open_and_read(entry, argv[index], block_frames);
            if (keep)
                kept_handle = handle;
            else if (handle != NULL)
                (void)call(entry, 12, handle, NULL);
        }
    }
    if (!keep)
        stop();
    exit(0);
}
