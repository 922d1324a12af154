// Catalogue: what tarvo's command line says can be exported, as the model of the dialog reads it.
#ifndef TESTS_ROADS_DIALOG_CATALOGUE_H
#define TESTS_ROADS_DIALOG_CATALOGUE_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace testing_support
{

struct CatalogueVariant
{
    std::string mName;
    std::uint32_t mBits = 0;
    std::uint32_t mFlags = 0;

    bool operator==(const CatalogueVariant&) const = default;
};

struct CatalogueMode
{
    std::uint32_t mMode = 0;
    std::vector<std::pair<double, double>> mBitrates;  // low and high end, equal for one rate
};

struct CatalogueFormat
{
    std::string mCode;
    std::string mName;
    std::vector<CatalogueVariant> mVariants;
    std::vector<CatalogueMode> mModes;
};

struct CatalogueType
{
    std::string mCode;
    std::string mName;
    std::vector<CatalogueFormat> mFormats;
};

using Catalogue = std::vector<CatalogueType>;

/// tarvo formats --json --rate --channels, its lines for exports. Each answer is kept.
const Catalogue& CatalogueFor(int inRate, int inChannels);

}  // namespace testing_support

#endif
