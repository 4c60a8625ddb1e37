// The dialog "config_dlg": the preferences. Main thread only.
#pragma once

class QWidget;

namespace tav {

int em_edit_preferences(QWidget *widget);

} // namespace tav
