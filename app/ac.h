// The action registry: named actions with their callbacks, and the widgets that are linked to a
// section of key bindings (app/kb.h). Records live as long as the program. Knows no Qt; main thread
// only.
#pragma once

#include <forward_list>
#include <string>

class QWidget;

namespace tav {

struct KbSection;

// A widget callback: the widget, what was given with the handler, what the event says.
using AcCallback = int (*)(QWidget *widget, void *data, void *info);

struct AcCb {
    AcCallback callback;
};

// An action: in a list, the newest record stands in front, here as everywhere below.
struct AcAction {
    std::string name;
    std::forward_list<AcCb> callbacks;
};

// Which section's bindings a widget's keys are looked up in.
struct AcLink {
    KbSection *section;
    QWidget *widget;
};

extern std::forward_list<AcAction> gActions;
extern std::forward_list<AcLink> gLinks;

// Adds a callback to the action, which is made when there is none of that name. The same callback
// is added only once. Always 0.
int ac_register(const char *name, AcCallback callback);

// Links the widget to a section, which is made when there is none of that name. A linked widget is
// moved to the new section. Always 0.
int ac_link_widget(QWidget *widget, const char *section);

// Forgets the widget's link.
void ac_unlink_widget(QWidget *widget);

// The first action of the name, null when there is none.
AcAction *x_get_action(const char *name);

// The action's entry for the callback, null when it has none.
AcCb *x_get_cb(AcAction &action, AcCallback callback);

// The action of the name, made when there is none.
AcAction &ac_need_action(const char *name);

// Start-up hooks: no action and no key is bound in this program; what comes goes here.
void init_actions();
void init_kb_defaults();

} // namespace tav
