#include "Writing.h"

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <uchar.h>

enum
{
    channel_count = 2,
    frame_count = 10,
    block_frames = 4,
    path_room = 1024
};

struct error_object
{
    struct host_object base;
};

struct format_object
{
    struct host_object base;
    struct error_object* errors;
};

struct start_object
{
    struct host_object base;
    struct error_object* errors;
    struct format_object* format;
    const char16_t* path;
    void* handle;
};

struct block_object
{
    struct host_object base;
    struct error_object* errors;
    int64_t start;
    int64_t count;
    const char* buffers[channel_count];
};

struct finish_object
{
    struct host_object base;
    struct error_object* errors;
    const struct format_object* format;
};

static const char16_t settings[] =
    u"AudioFileTypeID:0:1463899717;BitsPerChannel:0:16;BytesPerFrame:0:4;BytesPerPacket:0:4;"
    u"ChannelsPerFrame:0:2;FormatFlags:0:12;FormatID:0:1819304813;FramesPerPacket:0:1;"
    u"SampleRateHigh:0:1086275584;SampleRateLow:0:0;";

static void set_error_text(struct error_object* self, const uint16_t* text)
{
    (void)self;
    print_text("SetErrorText", text);
}

static const char16_t* format_get_settings(struct format_object* self)
{
    (void)self;
    puts("GetPrivateSettings");
    return settings;
}

static int32_t format_get_type(struct format_object* self)
{
    (void)self;
    puts("GetSampleType");
    return 20;
}

static int64_t format_get_channels(struct format_object* self)
{
    (void)self;
    puts("GetChannelCount");
    return channel_count;
}

static uint32_t format_get_label(struct format_object* self, int64_t channel)
{
    (void)self;
    printf("GetChannelLabel %" PRId64 "\n", channel);
    return (uint32_t)(100 + channel);
}

static int64_t format_get_count(struct format_object* self)
{
    (void)self;
    puts("GetSampleCount");
    return frame_count;
}

static void* start_get_error(struct start_object* self)
{
    puts("GetErrorInterface");
    return self->errors;
}

static const char16_t* start_get_path(struct start_object* self)
{
    puts("GetFilePath");
    return self->path;
}

static void* start_get_format(struct start_object* self)
{
    puts("GetFormatInterface");
    return self->format;
}

static void start_set_description(struct start_object* self, const uint16_t* text)
{
    (void)self;
    print_text("SetFormatDescription", text);
}

static void start_set_handle(struct start_object* self, void* handle)
{
    puts("SetWriterHandle");
    self->handle = handle;
}

static void* block_get_error(struct block_object* self)
{
    puts("GetErrorInterface");
    return self->errors;
}

static int64_t block_get_start(struct block_object* self)
{
    puts("GetStartSample");
    return self->start;
}

static int64_t block_get_count(struct block_object* self)
{
    puts("GetSampleCount");
    return self->count;
}

static const char* block_get_buffer(struct block_object* self, int64_t channel)
{
    printf("GetChannelBuffer %" PRId64 "\n", channel);
    return self->buffers[channel];
}

static void* finish_get_error(struct finish_object* self)
{
    puts("GetErrorInterface");
    return self->errors;
}

/* Only the low 8 bits are the flag. */
static int32_t finish_get_flag(struct finish_object* self)
{
    (void)self;
    puts("GetFinishFlag");
    return 0x7FFFFF00;
}

static const void* finish_get_format(struct finish_object* self)
{
    puts("GetFormatInterface");
    return self->format;
}

static operation error_table[max_places];
static operation format_table[max_places];
static operation start_table[max_places];
static operation block_table[max_places];
static operation finish_table[max_places];

static void fill_tables(void)
{
    clear_table(error_table);
    clear_table(format_table);
    clear_table(start_table);
    clear_table(block_table);
    clear_table(finish_table);

    put(error_table, 1, (operation)&set_error_text);

    put(format_table, 4, (operation)&format_get_type);
    put(format_table, 6, (operation)&format_get_channels);
    put(format_table, 8, (operation)&format_get_label);
    put(format_table, 13, (operation)&format_get_settings);
    put(format_table, 26, (operation)&format_get_count);

    put(start_table, 1, (operation)&start_get_error);
    put(start_table, 2, (operation)&start_get_path);
    put(start_table, 4, (operation)&start_get_format);
    put(start_table, 7, (operation)&start_set_description);
    put(start_table, 9, (operation)&start_set_handle);

    put(block_table, 1, (operation)&block_get_error);
    put(block_table, 2, (operation)&block_get_start);
    put(block_table, 3, (operation)&block_get_count);
    put(block_table, 4, (operation)&block_get_buffer);

    put(finish_table, 1, (operation)&finish_get_error);
    put(finish_table, 2, (operation)&finish_get_flag);
    put(finish_table, 3, (operation)&finish_get_format);
}

/* Paths of plain characters. */
static void widen(const char* path, char16_t* out_path)
{
    int length = 0;
    for (; path[length] != 0 && length < path_room - 1; ++length)
        out_path[length] = (unsigned char)path[length];
    out_path[length] = 0;
}

static void write_blocks(entry_function entry, void* handle, struct error_object* errors)
{
    int16_t left[frame_count];
    int16_t right[frame_count];
    for (int frame = 0; frame < frame_count; ++frame)
    {
        left[frame] = (int16_t)(1000 * frame);
        right[frame] = (int16_t)(-1000 * frame);
    }
    for (int first = 0; first < frame_count; first += block_frames)
    {
        const int left_over = frame_count - first;
        struct block_object block = {.base = {block_table}, .errors = errors, .start = first};
        block.count = left_over < block_frames ? left_over : block_frames;
        block.buffers[0] = (const char*)(left + first);
        block.buffers[1] = (const char*)(right + first);
        (void)call(entry, 18, handle, &block);
    }
}

void write_ten_frames(entry_function entry, const char* path)
{
    fill_tables();
    char16_t wide_path[path_room];
    widen(path, wide_path);
    struct error_object errors = {{error_table}};
    struct format_object format = {{format_table}, &errors};
    struct start_object start = {{start_table}, &errors, &format, wide_path, NULL};
    if (call(entry, 17, NULL, &start) != 0)
        return;
    write_blocks(entry, start.handle, &errors);
    struct finish_object finish = {{finish_table}, &errors, &format};
    (void)call(entry, 19, start.handle, &finish);
}
