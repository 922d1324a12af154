// ScriptedProbe: the decoder's answer to what an AAC stream holds, as a test wants it.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_SCRIPTEDPROBE_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_SCRIPTEDPROBE_H

#include "StreamTesting.h"

namespace stream_testing
{

/// In effect while it lives; without one the probe answers false.
class ScriptedProbe
{
public:
    ScriptedProbe(bool inHasSBR, bool inHasPS);
    ~ScriptedProbe();
    ScriptedProbe(const ScriptedProbe&) = delete;
    ScriptedProbe& operator=(const ScriptedProbe&) = delete;

    int mCalls = 0;
    Bytes mFrames;  // as the last call got them
    const bool mHasSBR;
    const bool mHasPS;
};

}  // namespace stream_testing

#endif
