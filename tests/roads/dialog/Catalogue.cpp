#include "tests/roads/dialog/Catalogue.h"

#include "tests/roads/tarvo/Program.h"

#include <nlohmann/json.hpp>

#include <map>
#include <sstream>
#include <stdexcept>

namespace testing_support
{

namespace
{

using nlohmann::json;

CatalogueMode ReadMode(const json& inMode)
{
    CatalogueMode mode{inMode["mode"], {}};
    for (const json& rate : inMode["bitrates"])
    {
        const bool isRange = rate.is_array();
        mode.mBitrates.emplace_back(isRange ? rate[0] : rate, isRange ? rate[1] : rate);
    }
    return mode;
}

CatalogueFormat ReadFormat(const json& inFormat)
{
    CatalogueFormat format{inFormat["format"], inFormat["name"], {}, {}};
    for (const json& variant : inFormat["variants"])
        format.mVariants.push_back(
            {variant["name"], variant["bitsPerChannel"], variant["formatFlags"]});
    for (const json& mode : inFormat["modes"])
        format.mModes.push_back(ReadMode(mode));
    return format;
}

Catalogue Ask(int inRate, int inChannels)
{
    const ProgramRun run =
        RunTarvo({"formats", "--lang", "en", "--json", "--rate", std::to_string(inRate),
                  "--channels", std::to_string(inChannels)});
    if (run.mExitCode != 0)
        throw std::runtime_error("tarvo formats: " + run.mErrors);
    Catalogue catalogue;
    std::istringstream lines(run.mOutput);
    for (std::string line; std::getline(lines, line);)
    {
        const json object = json::parse(line);
        if (object["direction"] != "export")
            continue;
        CatalogueType type{object["fileType"], object["name"], {}};
        for (const json& format : object["formats"])
            type.mFormats.push_back(ReadFormat(format));
        catalogue.push_back(std::move(type));
    }
    return catalogue;
}

}  // namespace

const Catalogue& CatalogueFor(int inRate, int inChannels)
{
    static std::map<std::pair<int, int>, Catalogue> sAnswers;
    const std::pair key(inRate, inChannels);
    if (!sAnswers.contains(key))
        sAnswers.emplace(key, Ask(inRate, inChannels));
    return sAnswers.at(key);
}

}  // namespace testing_support
