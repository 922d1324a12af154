/* RefusingPlatform: one of the platform's calls, defined by the executable, so that it comes before
   the library's. */
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
