// "Refresh" of the File menu.
#pragma once

class QWidget;

namespace tav {

int fm_refresh(QWidget *widget); // reads the listed directory again; W_CONTINUE

} // namespace tav
