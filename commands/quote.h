// How names get into command lines without ever becoming commands. A command line is a text in
// which three bytes have a meaning of their own until it has been split into arguments:
//   QUOTE_MARK     a double quote that does not end a quoted argument
//   QUOTE_LITERAL  the byte behind it is that byte and nothing else: no separator, quote or
//   placeholder
//   '@'            the place of the name(s), while the line is a template
// Names of ordinary characters (quote_is_plain) go in as they are; in any other name each special
// character is escaped where it stands, by the quoting that surrounds it. Pure functions, any
// thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tav {

constexpr char QUOTE_MARK = '\xFF';
constexpr char QUOTE_LITERAL = '\0'; // neither a template nor a name can hold one

// What surrounds a place in a command line.
enum class QuotePlace {
    Direct,       // an argument that no shell reads
    DirectQuoted, // the same between double quotes
    Bare,         // shell text outside quotes
    Single,       // shell text between single quotes
    Double,       // shell text between double quotes
    SingleText, // between double quotes in a text that is itself between single quotes: a shell's,
                // maybe
    DoubleText, // the same between double quotes
    Comment,    // shell text that the shell skips
    Unknown,    // shell text of a kind in which nothing can be escaped reliably
};

// Only letters, digits, blanks, "._-+=:,%/~^" and valid UTF-8 beyond ASCII, and no "-" at the
// front.
bool quote_is_plain(std::string_view name);

// The same for a directory that an unquoted "$PWD" stands for: no blanks either.
bool quote_is_plain_word(std::string_view text);

// The command line of a template: the template itself when it holds "@" and no blank, else what
// runs it through the shell, with " @" appended where it has no "@".
std::string quote_wrap(std::string_view command);

// Puts the marks around each "@". plain: by the characters beside it, which is right for names of
// ordinary characters in ordinary templates; otherwise by the quoting it stands in.
std::string quote_mark(std::string_view command, bool plain);

// Whether "@" stands between the template's own double quotes or in a line that no shell reads:
// there the marks must follow the quoting for every name.
bool quote_needs_care(std::string_view command);

// Puts double quotes around each unquoted $PWD, so that it stays one word.
std::string quote_pwd(std::string_view command);

// The name as it has to stand at a place; first: it begins an argument, so that a leading "-"
// becomes "./-".
std::string quote_name(std::string_view name, QuotePlace place, bool first);

// Replaces every marker by all the names, each an argument of its own. False, out then holds
// nothing of use, when a special name would stand where it cannot be escaped.
bool quote_fill(std::string &out, std::string_view command, const std::vector<std::string> &names,
                char marker);

// Where the first marker stands that is no literal; npos when there is none.
size_t quote_find(std::string_view command, char marker);

// Any bytes as one argument of a command line that no shell reads: between double quotes.
std::string quote_argument(std::string_view bytes);

// Any bytes as one word of shell text, as they are when nothing in them is special to a shell.
std::string quote_word(std::string_view bytes);

// Splits a command line into at most limit arguments and resolves marks and literals.
std::vector<std::string> quote_split(std::string_view command, size_t limit);

// The command line as text for a shell that is to pass it on as the same arguments. careful false:
// as it is, but each mark becomes backslash and double quote.
std::string quote_again(std::string_view command, bool careful);

} // namespace tav
