// The toolkit's style with what it lacks for us. Main thread only.
#pragma once

namespace tav {

// Puts our own style over the one that the user or the desktop chose. Before the first widget.
void style_install();

} // namespace tav
