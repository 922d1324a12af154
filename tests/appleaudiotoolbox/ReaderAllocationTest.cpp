// Reading takes nothing from the general heap once it runs.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <cstdlib>

#if defined(__has_feature)
#define HAS_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#elif defined(__SANITIZE_ADDRESS__)
#define HAS_ADDRESS_SANITIZER 1
#else
#define HAS_ADDRESS_SANITIZER 0
#endif

#if HAS_ADDRESS_SANITIZER
// Of the sanitizer's interface; not every compiler brings its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*,
                                                                  std::size_t),
                                                         void (*)(const volatile void*));
#else
extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_calloc(std::size_t, std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);
extern "C" void* __libc_memalign(std::size_t, std::size_t);
#endif

namespace
{

bool sIsCounting = false;
int sAllocations = 0;

void NoteAllocation()
{
    if (sIsCounting)
        ++sAllocations;
}

}  // namespace

// The sanitizer has the heap in hand and tells of each block; without it the heap's own functions
// are put in between.
#if HAS_ADDRESS_SANITIZER
const int sHooks = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { NoteAllocation(); }, [](const volatile void*) {});
#else
extern "C" void* malloc(std::size_t inBytes)
{
    NoteAllocation();
    return __libc_malloc(inBytes);
}
extern "C" void* calloc(std::size_t inCount, std::size_t inBytes)
{
    NoteAllocation();
    return __libc_calloc(inCount, inBytes);
}
extern "C" void* realloc(void* inBlock, std::size_t inBytes)
{
    NoteAllocation();
    return __libc_realloc(inBlock, inBytes);
}
extern "C" void* aligned_alloc(std::size_t inAlignment, std::size_t inBytes)
{
    NoteAllocation();
    return __libc_memalign(inAlignment, inBytes);
}
extern "C" int posix_memalign(void** outBlock, std::size_t inAlignment, std::size_t inBytes)
{
    NoteAllocation();
    *outBlock = __libc_memalign(inAlignment, inBytes);
    return *outBlock ? 0 : 12;
}
#endif

namespace
{

using namespace testing_support;

class ReaderAllocation : public ReaderTest
{
protected:
    // Allocations of the reader during inReads reads of inFrames stereo frames of 16 bits; what the
    // scripted platform takes for its own notes does not count.
    int CountReads(int inReads, int inFrames)
    {
        std::vector<UInt16> left(static_cast<std::size_t>(inFrames));
        std::vector<UInt16> right(static_cast<std::size_t>(inFrames));
        char* planes[] = {reinterpret_cast<char*>(left.data()),
                          reinterpret_cast<char*>(right.data())};
        bool isGood = true;
        sAllocations = 0;
        mPlatform.OnCrossing([](bool isInside) { sIsCounting = !isInside; });
        sIsCounting = true;
        for (int read = 0; read < inReads; ++read)
        {
            int count = inFrames;
            isGood = mReader->ReadSamples(0, &count, planes, 2, mInfo) && isGood;
        }
        sIsCounting = false;
        mPlatform.OnCrossing(nullptr);
        EXPECT_TRUE(isGood);
        return sAllocations;
    }

    void ScriptReads(int inReads, int inFrames)
    {
        const Bytes frames(static_cast<std::size_t>(4 * inFrames), 1);
        for (int read = 0; read < inReads; ++read)
        {
            mPlatform.ReadPackets({{Bytes(4096, 2), 1024}});
            mPlatform.Fill(
                {FillStep::Pull(1024), FillStep::Deliver(static_cast<UInt32>(inFrames), frames)});
        }
    }
};

TEST_F(ReaderAllocation, IsCountedAtAll)
{
    sAllocations = 0;
    sIsCounting = true;
    void* volatile block = std::malloc(10);
    auto* volatile number = new int;
    sIsCounting = false;
    std::free(block);
    delete number;
    EXPECT_EQ(sAllocations, 2);
}

TEST_F(ReaderAllocation, DoesNotHappenOnceReadingRuns)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open());
    for (const int frames : {16, 1000, 65536})
    {
        ScriptReads(12, frames);
        CountReads(2, frames);  // the recycler gets its blocks
        EXPECT_EQ(CountReads(10, frames), 0) << frames << " frames a read";
    }
}

}  // namespace
