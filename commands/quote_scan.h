// Walks over a command line and knows, at each byte, by what quoting it is surrounded.
#pragma once

#include "commands/quote.h"

namespace tav {

extern const std::string_view
    QUOTE_WRAPPER; // what a command line that goes through the shell begins with

// Feed it every byte in order, with a literal's two bytes left out.
class QuoteScan {
public:
    explicit QuoteScan(std::string_view command);
    void feed(char byte);
    QuotePlace place() const;
    size_t depth() const { return mNest.size(); } // of open quotes and substitutions
    bool escaped() const { return mEscaped; }     // a backslash of the shell's stands right before
    bool at_argument() const { return mStart; } // nothing of the argument has been seen but quotes

private:
    void feed_direct(char byte);
    void feed_shell(char byte);
    void feed_double(char byte);
    void feed_bare(char byte);
    void end_word(char byte);

    size_t mWrapper; // bytes of the wrapper still to come
    bool mShell;     // the wrapper is there
    bool mEscaped = false;
    bool mDollar = false; // the byte before was an active "$"
    bool mLess = false;   // the byte before was an unquoted "<"
    bool mStart = true;
    bool mWord = false;    // something of the word, quotes included, has been seen
    bool mUnknown = false; // from a construct on that is not followed
    std::string mNest; // open constructs, outermost first: ' " $ for $( and ( and # for a comment
    std::string mLetters; // the bare word so far, as far as it may be a word of the shell's own
};

} // namespace tav
