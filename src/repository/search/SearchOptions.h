#pragma once

namespace LibraryBrowser {

// The three switches of a name search. Separate types, so that the flags of
// a call cannot change places unnoticed.
struct SearchOptions {
    enum RegExp { RegExpOff = 0, RegExpOn = 1 };
    enum WholeWord { WholeWordOff = 0, WholeWordOn = 1 };
    enum MatchCase { MatchCaseOff = 0, MatchCaseOn = 1 };
};

} // namespace LibraryBrowser
