// Layouts: the channel orders that a host can hand over, and what becomes of them in a file.
#ifndef TESTS_ROADS_EXPORT_MATRIX_LAYOUTS_H
#define TESTS_ROADS_EXPORT_MATRIX_LAYOUTS_H

#include "Pairs.h"

#include <cstdint>
#include <vector>

namespace export_matrix
{

using Labels = std::vector<std::uint32_t>;  // the host's numbers

/// Those of the platform's layout tags, as a reader tells them to a host, and the usual ones
/// backwards; of 2 to 8 channels.
const std::vector<Labels>& EveryLayout();

/// The labels that a reader of the file tells for the channels of inLabels, one for one. Empty: the
/// file cannot name them, so that each channel keeps its place.
Labels LabelsInFile(const Pair& inPair, const Labels& inLabels);

/// The order in which the channels of such a file stand, by the labels of LabelsInFile: that of
/// the channel mask, or the one in which they were handed over.
Labels OrderInFile(const Pair& inPair, const Labels& inLabelsInFile);

}  // namespace export_matrix

#endif
