// Takes the names of the user, the computer and the network out of texts that go to somebody else.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class Redaction {
public:
    Redaction() = default; // changes nothing

    // Of the user and the computer that run the program: folders of the profile in their long and
    // short spelling, and names.
    static Redaction OfThisUser();

    // The folder of a profile becomes %USERPROFILE%, names become <user>, <computer> and <domain>,
    // in any case; slashes and doubled backslashes count as backslashes. All else stays as it is.
    std::wstring Apply(std::wstring_view text) const;

    // A name that is not empty becomes the word. Of two that fit, the one added first is taken.
    void Add(std::wstring_view name, const wchar_t* word);

private:
    struct Name {
        std::wstring Text;
        const wchar_t* Word;
    };

    std::vector<Name> m_names;
};
