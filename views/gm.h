// The Go menu: Back, Forward, Up, Home. Handlers guard themselves: their keys work whatever is
// dimmed.
#pragma once

class QMenu;
class QObject;
class QWidget;

namespace tav {

int gm_setup(QMenu *menu); // dims what leads nowhere; whenever the menu opens
int gm_back(QWidget *widget);
int gm_forward(QWidget *widget);
int gm_up(QWidget *widget);
int gm_home(QWidget *widget); // nothing without "HOME"

// Lets the mouse's side buttons lead Back and Forward wherever they are pressed in the window.
void gm_watch_buttons(QObject *window);

} // namespace tav
