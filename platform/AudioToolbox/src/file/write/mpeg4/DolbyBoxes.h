// DolbyBoxes: what files tell of AC-3 and E-AC-3, taken from the stream's own first packet.
#ifndef AUDIOTOOLBOX_FILE_WRITE_MPEG4_DOLBYBOXES_H
#define AUDIOTOOLBOX_FILE_WRITE_MPEG4_DOLBYBOXES_H

#include "file/write/mpeg4/SampleEntries.h"

namespace audiotoolbox::mpeg4writer
{

/// Put in 'dac3' and 'dec3'. Without a packet they tell what the format does.
void PutAC3(const EntryFacts& inFacts, BoxBuilder& ioBoxes);
void PutEAC3(const EntryFacts& inFacts, BoxBuilder& ioBoxes);

}  // namespace audiotoolbox::mpeg4writer

#endif
