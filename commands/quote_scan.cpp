// The quoting of a command line, byte by byte: of the splitter's two kinds of argument, and of the
// shell's quotes, substitutions and comments as far as a template may sensibly use them around a
// name.
#include "commands/quote_scan.h"

#include <cstring>

namespace tav {

const std::string_view QUOTE_WRAPPER = "sh -c \"";

QuoteScan::QuoteScan(std::string_view command)
    : mWrapper(0), mShell(command.substr(0, QUOTE_WRAPPER.size()) == QUOTE_WRAPPER)
{
    if (mShell)
        mWrapper = QUOTE_WRAPPER.size();
}

void QuoteScan::feed(char byte)
{
    if (mWrapper > 0) {
        mWrapper--;
        return;
    }
    if (mShell)
        feed_shell(byte == QUOTE_MARK ? '"' : byte);
    else
        feed_direct(byte);
}

QuotePlace QuoteScan::place() const
{
    if (mUnknown)
        return QuotePlace::Unknown;
    char top = mNest.empty() ? 0 : mNest.back();
    if (!mShell)
        return top ? QuotePlace::DirectQuoted : QuotePlace::Direct;
    switch (top) {
    case '\'':
        return QuotePlace::Single;
    case '"':
        return QuotePlace::Double;
    case '#':
        return QuotePlace::Comment;
    default:
        return QuotePlace::Bare;
    }
}

// The splitter: an argument that begins with a double quote ends at the next one without a
// backslash.
void QuoteScan::feed_direct(char byte)
{
    bool quoted = !mNest.empty();
    if (quoted && byte == '"' && !mEscaped) {
        mNest.clear();
        mStart = true;
    } else if (!quoted && mStart && byte == '"' && !mEscaped) {
        mNest.assign(1, '"');
    } else if (!quoted && (byte == ' ' || byte == '\t')) {
        mStart = true;
    } else if (byte != QUOTE_MARK) {
        mStart = false;
    }
    mEscaped = byte == '\\';
}

void QuoteScan::feed_shell(char byte)
{
    char top = mNest.empty() ? 0 : mNest.back();
    bool dollar = mDollar;
    mDollar = false;
    if (mEscaped) {
        mEscaped = false;
        mStart = mStart && byte == '\n'; // which the two make vanish
        mWord = true;
        mLess = false;
    } else if (top == '\'') {
        if (byte == '\'')
            mNest.pop_back();
        else
            mStart = false;
    } else if (top == '#') {
        if (byte == '\n') {
            mNest.pop_back();
            mStart = true;
        }
    } else if (byte == '\\') {
        mEscaped = true;
        mLess = false;
    } else if (byte == '`' || (dollar && std::strchr("{'\"", byte) != nullptr && top != '"') ||
               (dollar && byte == '{')) {
        mUnknown = true; // these read their content by rules of their own
    } else if (dollar && byte == '(') {
        mNest.push_back('$');
        mStart = true;
        mWord = false;
        mLetters.assign(1, '(');
    } else if (top == '"') {
        feed_double(byte);
    } else {
        feed_bare(byte);
    }
}

void QuoteScan::feed_double(char byte)
{
    if (byte == '"') {
        mNest.pop_back();
        return;
    }
    mDollar = byte == '$';
    mStart = false;
}

void QuoteScan::feed_bare(char byte)
{
    if (byte == '#' && !mWord) {
        mNest.push_back('#');
        return;
    }
    bool document = byte == '<' && mLess;
    bool arithmetic = byte == '(' && mLetters == "(";
    mUnknown = mUnknown || document || arithmetic;
    mLess = byte == '<';
    mDollar = byte == '$';
    if (byte == '\'' || byte == '"') {
        mNest.push_back(byte);
        mWord = true;
        mLetters.clear();
    } else if (std::strchr(" \t\n;&|<>()", byte) != nullptr) {
        end_word(byte);
    } else {
        mWord = true;
        mStart = false;
        mLetters += byte;
    }
}

void QuoteScan::end_word(char byte)
{
    // Its branches end in a ")" that opens nowhere: from here on nothing is sure.
    mUnknown = mUnknown || (mLetters == "case" && !mNest.empty());
    mLetters.clear();
    mWord = false;
    mStart = true;
    if (byte == '(') {
        mNest.push_back('(');
    } else if (byte == ')' && !mNest.empty()) {
        mWord = mNest.back() == '$'; // the word goes on behind a substitution
        mStart = !mWord;
        mNest.pop_back();
    }
}

} // namespace tav
