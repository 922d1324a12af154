// Localizer: from a text's key and English default to the text in the user's language.
#ifndef KELPCORE_CONFIG_LOCALIZER_H
#define KELPCORE_CONFIG_LOCALIZER_H

#include "kelpcore/Strings.h"

#include <memory>

namespace kelpcore::config
{

/// One dictionary for the process, English defaults without one.
///
/// Translate may be called on any thread; LoadDictionary and Clear belong to start-up.
class KELPCORE_EXPORT Localizer
{
public:
    static Localizer& Get();

    /// inLiteral is "$$$/key=English text" in UTF-8. The dictionary's text for the key, else what
    /// stands behind the first "=", else (no "=") the whole literal.
    UTF16String Translate(const char* inLiteral) const;

    /// Adds the entries of a dictionary file (UTF-8, one "$$$/key=text" a line, "#" starts a
    /// comment line, empty lines say nothing, "\n" stands for a line feed and "\\" for a
    /// backslash); a later entry replaces an earlier one. False, with the dictionary as it was,
    /// when the file cannot be read, is no UTF-8 or has a line of another form.
    bool LoadDictionary(const char* inPath);

    /// Back to the English defaults.
    void Clear();

    Localizer(const Localizer&) = delete;
    Localizer& operator=(const Localizer&) = delete;

private:
    Localizer();
    ~Localizer();

    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace kelpcore::config

#endif
