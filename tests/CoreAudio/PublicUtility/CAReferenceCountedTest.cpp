// Objects that several holders share.
#include "CoreAudio/PublicUtility/CAReferenceCounted.h"

#include "tests/support/TableOffset.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace
{

class Witness : public CAReferenceCounted
{
public:
    explicit Witness(int& ioDestroyed) : mDestroyed(ioDestroyed) {}
    ~Witness() override { ++mDestroyed; }

private:
    int& mDestroyed;
};

class Pooled : public CAReferenceCounted
{
public:
    static std::ptrdiff_t ReleaseOffset()
    {
        return testing_support::TableOffset(&Pooled::releaseObject);
    }

    int mReleases = 0;

protected:
    void releaseObject() override { ++mReleases; }
};

TEST(SharedObject, EndsWithItsLastReference)
{
    int destroyed = 0;
    Witness* const object = new Witness(destroyed);
    object->retain();
    object->retain();
    object->release();
    object->release();
    EXPECT_EQ(destroyed, 0);
    object->release();
    EXPECT_EQ(destroyed, 1);
}

TEST(SharedObject, MayDoSomethingElseThanEnd)
{
    Pooled object;
    object.retain();
    object.release();
    EXPECT_EQ(object.mReleases, 0);
    object.release();
    EXPECT_EQ(object.mReleases, 1);
}

TEST(SharedObject, HasItsReleaseBehindTheDestructor)
{
    EXPECT_EQ(Pooled::ReleaseOffset(), 16);
}

TEST(SharedObject, CountsExactlyAcrossThreads)
{
    int destroyed = 0;
    Witness* const object = new Witness(destroyed);
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back(
            [object]
            {
            for (int round = 0; round < 20000; ++round)
            {
                object->retain();
                object->release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(destroyed, 0);
    object->release();
    EXPECT_EQ(destroyed, 1);
}

}  // namespace
