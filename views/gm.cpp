// The Go menu.
#include "views/gm.h"

#include "model/dir.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_back.h"
#include "views/menu_item.h"

#include <QApplication>
#include <QMouseEvent>
#include <cstdlib>

namespace tav {

namespace {

class ButtonWatch : public QObject {
public:
    explicit ButtonWatch(QObject *window) : QObject(window) { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool press = event->type() == QEvent::MouseButtonPress ||
                           event->type() == QEvent::MouseButtonDblClick;
        auto *widget = press ? qobject_cast<QWidget *>(watched) : nullptr;
        if (!widget || widget->window() != parent())
            return false;
        const Qt::MouseButton button = static_cast<QMouseEvent *>(event)->button();
        if (button == Qt::BackButton)
            gm_back(widget);
        else if (button == Qt::ForwardButton && fl_get_forward_count() > 0)
            gm_forward(widget);
        return button == Qt::BackButton || button == Qt::ForwardButton;
    }
};

} // namespace

void gm_watch_buttons(QObject *window)
{
    new ButtonWatch(window); // the window's, as its child
}

int gm_setup(QMenu *menu)
{
    const char *home = getenv("HOME");
    menu_item_enable(menu, "gm_back", fl_get_back_count() != 0);
    menu_item_enable(menu, "gm_forward", fl_get_forward_count() != 0);
    menu_item_enable(menu, "gm_up", gDir.path != "/");
    menu_item_enable(menu, "gm_home", !home || gDir.path != home);
    return W_CONTINUE;
}

int gm_back(QWidget *)
{
    fl_back();
    return W_CONTINUE;
}

int gm_forward(QWidget *)
{
    fl_forward();
    return W_CONTINUE;
}

int gm_up(QWidget *)
{
    fl_up();
    return W_CONTINUE;
}

int gm_home(QWidget *widget)
{
    if (const char *home = getenv("HOME"))
        fl_newpath(widget, home);
    return W_CONTINUE;
}

} // namespace tav
