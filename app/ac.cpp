// The action registry.
#include "app/ac.h"

#include "app/kb.h"

#include <algorithm>

namespace tav {

std::forward_list<AcAction> gActions;
std::forward_list<AcLink> gLinks;

AcAction *x_get_action(const char *name)
{
    auto found = std::find_if(gActions.begin(), gActions.end(),
                              [name](const AcAction &action) { return action.name == name; });
    return found == gActions.end() ? nullptr : &*found;
}

AcCb *x_get_cb(AcAction &action, AcCallback callback)
{
    auto found = std::find_if(action.callbacks.begin(), action.callbacks.end(),
                              [callback](const AcCb &cb) { return cb.callback == callback; });
    return found == action.callbacks.end() ? nullptr : &*found;
}

AcAction &ac_need_action(const char *name)
{
    if (AcAction *action = x_get_action(name))
        return *action;
    return gActions.emplace_front(AcAction{name, {}});
}

int ac_register(const char *name, AcCallback callback)
{
    AcAction &action = ac_need_action(name);
    if (!x_get_cb(action, callback))
        action.callbacks.emplace_front(AcCb{callback});
    return 0;
}

int ac_link_widget(QWidget *widget, const char *section)
{
    KbSection *found = &kb_need_section(section);
    for (AcLink &link : gLinks)
        if (link.widget == widget) {
            link.section = found;
            return 0;
        }
    gLinks.emplace_front(AcLink{found, widget});
    return 0;
}

void ac_unlink_widget(QWidget *widget)
{
    for (auto before = gLinks.before_begin(); std::next(before) != gLinks.end(); ++before)
        if (std::next(before)->widget == widget) {
            gLinks.erase_after(before);
            return;
        }
}

void init_actions() {}

void init_kb_defaults() {}

} // namespace tav
