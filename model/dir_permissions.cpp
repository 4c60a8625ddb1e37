// The permission text of a mode, part by part, and back from letters to bits.
#include "model/dir.h"

namespace tav {

namespace {

// The letters of one part and the bits they stand for.
struct Part {
    mode_t read;
    mode_t write;
    mode_t execute;
    mode_t special; // set-user-id, set-group-id
};
constexpr Part PARTS[] = {
    {0x100, 0x80, 0x40, 0x800}, {0x20, 0x10, 0x08, 0x400}, {0x04, 0x02, 0x01, 0}};
constexpr mode_t STICKY = 0x200;

char x_execute_letter(mode_t mode, const Part &part)
{
    if (mode & part.special)
        return mode & part.execute ? 's' : 'S';
    return mode & part.execute ? 'x' : '-';
}

// Tests of bits, not of the type field, and meant so: a directory is "b", as its bits overlap.
char x_type_letter(mode_t mode)
{
    struct Letter {
        mode_t bits;
        char letter;
    };
    constexpr Letter LETTERS[] = {{0x6000, 'b'}, {0x2000, 'c'}, {0x4000, 'd'},
                                  {0x1000, 'p'}, {0xA000, 'l'}, {0x5000, 'n'}};
    for (const Letter &each : LETTERS)
        if (mode & each.bits)
            return each.letter;
    return mode & 0xC000 ? 's' : '-';
}

mode_t x_bit(char letter, int part)
{
    if (part == 4)
        return letter == 's' ? STICKY : 0;
    const Part &bits = PARTS[part - 1];
    switch (letter) {
    case 'r':
        return bits.read;
    case 'w':
        return bits.write;
    case 'x':
        return bits.execute;
    case 's':
    case 'S':
        return bits.special;
    default:
        return 0;
    }
}

} // namespace

void dir_get_permissions(mode_t mode, char *text, int part)
{
    if (part == 0)
        text[0] = x_type_letter(mode);
    if (part == 4)
        text[0] = mode & STICKY ? 's' : '-';
    if (part < 1 || part > 3)
        return;
    const Part &bits = PARTS[part - 1];
    text[0] = mode & bits.read ? 'r' : '-';
    text[1] = mode & bits.write ? 'w' : '-';
    text[2] = part == 3 && (mode & STICKY) ? 't' : x_execute_letter(mode, bits);
}

void dir_set_permissions(mode_t *mode, const char *letters, int part, int set)
{
    if (part < 1 || part > 4)
        return;
    for (; *letters; letters++) {
        mode_t bit = x_bit(*letters, part);
        *mode = set ? *mode | bit : *mode & ~bit;
    }
}

} // namespace tav
