// One "[...]" of a name pattern against one character. Answers as the C library's fnmatch does, for
// odd brackets too; private to the es_ files.
#pragma once

namespace tav {

template <typename Char>
struct EsBracket {
    // Returned instead of a place: the bracket is never closed, its "[" stands for itself.
    static const Char *literal()
    {
        static const Char sLiteral = 0;
        return &sLiteral;
    }
};

// p stands at the "[". The place behind the bracket when it takes c, null when it does not (or is
// beyond repair), or EsBracket::literal().
const unsigned char *es_bracket(const unsigned char *p, unsigned char c);
const wchar_t *es_bracket(const wchar_t *p, wchar_t c);

} // namespace tav
