#include "kelpcore/config/Localizer.h"

#include "DictionaryFile.h"
#include "kelpcore/utility/FileBytes.h"
#include "kelpcore/utility/StringConversion.h"

namespace kelpcore::config
{
namespace
{

constexpr std::size_t kMaxDictionaryBytes = std::size_t{16} << 20;

}  // namespace

struct Localizer::State
{
    Dictionary mDictionary;
};

Localizer::Localizer() : mState(std::make_unique<State>()) {}

Localizer::~Localizer() = default;

Localizer& Localizer::Get()
{
    static Localizer sLocalizer;
    return sLocalizer;
}

UTF16String Localizer::Translate(const char* inLiteral) const
{
    const std::string_view literal(inLiteral);
    const std::size_t equals = literal.find('=');
    const auto entry = mState->mDictionary.find(literal.substr(0, equals));
    if (entry != mState->mDictionary.end())
        return entry->second;
    return utility::UTF8to16(equals == std::string_view::npos ? literal
                                                              : literal.substr(equals + 1));
}

bool Localizer::LoadDictionary(const char* inPath)
{
    std::vector<char> bytes;
    Dictionary entries;
    if (!utility::ReadFileBytes(inPath, kMaxDictionaryBytes, bytes) ||
        !ParseDictionary(std::string_view(bytes.data(), bytes.size()), entries))
        return false;
    entries.merge(mState->mDictionary);  // where both have a key, the new entry stays
    mState->mDictionary.swap(entries);
    return true;
}

void Localizer::Clear()
{
    mState->mDictionary.clear();
}

}  // namespace kelpcore::config
