// Light or dark, as the desktop wishes: the portal's colour scheme, followed while the program
// runs. The variable TAV_SCHEME ("light", "dark") decides instead when it is set. Main thread only.
#pragma once

namespace tav {

// Applies the scheme and goes on following it. A desktop whose theme brings its own palette is left
// alone; without a session bus nothing happens. Never waits for an answer.
void scheme_follow_desktop();

} // namespace tav
