/* RefusingPlatform: two of the platform's calls, defined by the executable, so that they come
   before the library's. */
#include <stdint.h>

int32_t AudioFileOpenURL(const void* url, int8_t permissions, uint32_t hint, void** out_file);

int32_t AudioFileOpenURL(const void* url, int8_t permissions, uint32_t hint, void** out_file)
{
    (void)url;
    (void)permissions;
    (void)hint;
    (void)out_file;
    return 0x6E6F7065; /* 'nope' */
}

int32_t ExtAudioFileCreateWithURL(const void* url, uint32_t type, const void* format,
                                  const void* layout, uint32_t flags, void** out_file);

int32_t ExtAudioFileCreateWithURL(const void* url, uint32_t type, const void* format,
                                  const void* layout, uint32_t flags, void** out_file)
{
    (void)url;
    (void)type;
    (void)format;
    (void)layout;
    (void)flags;
    (void)out_file;
    return 0x6E6F7021; /* 'nop!' */
}
