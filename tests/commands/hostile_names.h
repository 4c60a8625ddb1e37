// Names that a shell, a splitter or a template would love to read as something else.
#pragma once

#include <string>
#include <vector>

namespace tav {

inline std::vector<std::string> hostile_names()
{
    using namespace std::string_literals;
    std::vector<std::string> names;
    for (const char byte : "!\"#$%&'()*+;<=>?[\\]^`{|}~@\t\n\r "s) {
        names.emplace_back(1, byte);
        names.push_back("a"s + byte + "b" + byte + byte);
    }
    const char *more[] = {
        "$(touch PWNED)",
        "`touch PWNED`",
        "a;touch PWNED",
        "a|touch PWNED",
        "a&touch PWNED&",
        "a\ntouch PWNED\n",
        "$HOME",
        "${HOME}",
        "$PWD",
        "$@",
        "$*",
        "$1",
        "$$",
        "$((1+1))",
        "\";touch PWNED;\"",
        "';touch PWNED;'",
        "'\"'\"'",
        "\"'\"'\"",
        "\\\"",
        "\\'",
        "\\\\\"",
        "\\$(touch PWNED)",
        "\\`touch PWNED\\`",
        "a\\",
        "a\\\\",
        "a\\\\\\",
        "a\\\"",
        "a'\\",
        "-rf",
        "--",
        "-",
        "--help",
        "-o x",
        " leading",
        "trailing ",
        "  ",
        "two  blanks",
        "a\tb",
        "\ta",
        "a\nb",
        "\n",
        "a\n",
        "\\\n",
        "\\\nb",
        "a\\\nb",
        "@",
        "@@",
        "'@'",
        "\"@\"",
        "a@b",
        "' '",
        "' '@",
        "\xFF",
        "a\xFF",
        "\xFF@\xFF",
        "\xFF\"\xFF",
        "a\xFF\xFE",
        "\x80",
        "\xC3",
        "\xC3\x28",
        "\xE2\x82",
        "\xED\xA0\x80",
        "\x81\x82\x83\x84\x85\x86\x87\x88",
        "\x01",
        "\x7F",
        "\x1B[31m",
        "*",
        "?",
        "[a-z]*",
        "~",
        "~root",
        "~root x;",
        "=",
        "a=b c",
        "{a,b}",
        "!!",
        "!x",
        "#",
        "# x",
        "a #b",
        "<x",
        ">PWNED",
        "2>PWNED",
        "<<EOF",
        "&&",
        "||",
        "exec",
        "sh -c \"touch PWNED\"",
        "$'x'",
        "$\"x\"",
        "%s%n",
        "\xC2\xA0",
        "\xE2\x80\xAE"
        "fdp.exe",
    };
    names.insert(names.end(), std::begin(more), std::end(more));
    names.emplace_back(255, '"');
    names.emplace_back(255, '\\');
    names.emplace_back(255, '\xFF');
    names.push_back("-" + std::string(254, '\''));
    return names;
}

} // namespace tav
