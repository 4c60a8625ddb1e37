// Where the program starts: the start directory and the settings directory. Knows no Qt.
#pragma once

#include <string>

namespace tav {

extern std::string gStartPath; // absolute directory in which the list first opens
extern const char
    *gConfigPath; // the settings directory, or null when it could not be found or created

// The first word of the command line that does not begin with "-", made absolute. 0 when there is
// none, else non-zero with out filled. optstring is not looked at: the value of an option counts
// too.
int x_get_orphan_argument(std::string &out, const char *optstring, int argc,
                          const char *const *argv);

// The start directory for these words: the leftover one when it is a directory, else the working
// one.
std::string start_path(int argc, const char *const *argv);

// Makes a HOME that is given by a relative path absolute, as it was meant where the program began:
// the working directory moves along with the list.
void start_settle_home();

// The settings directory, found or created (its last component only). 0, or -1 after saying on
// standard error why there is none.
int x_get_config_path(std::string &out);

// Appends to PATH the folder of the platform programs that come along and the program's own folder,
// so that a program of the same name that is there already wins (but see platform/namesake).
// executable: the program's own file.
void start_append_path(const std::string &executable);

} // namespace tav
