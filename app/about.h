// The About box, "about_dlg". Main thread only.
#pragma once

class QWidget;

namespace tav {

int help_about(QWidget *widget);

} // namespace tav
