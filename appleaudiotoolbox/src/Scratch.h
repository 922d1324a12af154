// Scratch: short-lived memory of the reader. Blocks are recycled, so that reading takes nothing
// from the general heap once it runs.
#ifndef APPLEAUDIOTOOLBOX_SRC_SCRATCH_H
#define APPLEAUDIOTOOLBOX_SRC_SCRATCH_H

#include <kelpcore/utility/RecycledMemory.h>
#include <kelpcore/utility/SmallBlockAllocator.h>

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstddef>

namespace appleaudiotoolbox
{

using Scratch = boost::shared_ptr<kelpcore::utility::RecycledMemory>;

/// A block of inBytes bytes, contents undefined. Its Get() is null for 0 bytes and when there is no
/// memory for the block; std::bad_alloc when there is none for the holder.
inline Scratch MakeScratch(std::size_t inBytes)
{
    using kelpcore::utility::RecycledMemory;
    using Allocator = kelpcore::utility::SmallBlockAllocator<RecycledMemory>;
    return boost::allocate_shared<RecycledMemory>(Allocator(), inBytes);
}

}  // namespace appleaudiotoolbox

#endif
