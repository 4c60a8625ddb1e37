// Key bindings: binding, the default key of an action, dispatching.
#include "app/kb.h"

#include "app/ac.h"

#include <algorithm>

namespace tav {

std::forward_list<KbSection> gSections;

namespace {

// The key marked as the action's default in the section, null when there is none.
KbCap *x_get_default(KbSection &section, const AcAction *action)
{
    for (KbMod &mod : section.mods)
        for (KbCap &cap : mod.caps)
            if (cap.action == action && (cap.flags & KB_DEFAULT))
                return &cap;
    return nullptr;
}

KbCap &need_cap(KbSection &section, uint32_t mods, uint32_t cap, AcAction *action)
{
    KbMod *mod = x_get_mod(section, mods);
    if (!mod)
        mod = &section.mods.emplace_front(KbMod{mods, {}});
    KbCap *found = x_get_cap(*mod, cap);
    if (!found)
        found = &mod->caps.emplace_front(KbCap{cap, 0, action, mod});
    found->action = action;
    return *found;
}

const KbSection *section_of(const QWidget *widget)
{
    for (const AcLink &link : gLinks)
        if (link.widget == widget)
            return link.section;
    return nullptr;
}

} // namespace

KbSection *x_get_section(const char *name)
{
    auto found = std::find_if(gSections.begin(), gSections.end(),
                              [name](const KbSection &section) { return section.name == name; });
    return found == gSections.end() ? nullptr : &*found;
}

KbMod *x_get_mod(KbSection &section, uint32_t mods)
{
    auto found = std::find_if(section.mods.begin(), section.mods.end(),
                              [mods](const KbMod &mod) { return mod.mods == mods; });
    return found == section.mods.end() ? nullptr : &*found;
}

KbCap *x_get_cap(KbMod &mod, uint32_t cap)
{
    auto found = std::find_if(mod.caps.begin(), mod.caps.end(),
                              [cap](const KbCap &entry) { return entry.cap == cap; });
    return found == mod.caps.end() ? nullptr : &*found;
}

KbSection &kb_need_section(const char *name)
{
    if (KbSection *section = x_get_section(name))
        return *section;
    return gSections.emplace_front(KbSection{name, {}});
}

int kb_attach(const char *action, const char *section, uint32_t mods, uint32_t cap)
{
    AcAction &bound = ac_need_action(action);
    KbSection &place = kb_need_section(section);
    KbCap &key = need_cap(place, mods, cap, &bound);
    if (!x_get_default(place, &bound))
        key.flags |= KB_DEFAULT;
    return 0;
}

int kb_set_default(const char *action, const char *section, uint32_t mods, uint32_t cap)
{
    AcAction *bound = x_get_action(action);
    KbSection *place = x_get_section(section);
    KbMod *mod = place ? x_get_mod(*place, mods) : nullptr;
    KbCap *key = mod ? x_get_cap(*mod, cap) : nullptr;
    if (!bound || !key)
        return -1;
    if (KbCap *before = x_get_default(*place, bound))
        before->flags &= ~KB_DEFAULT;
    key->flags |= KB_DEFAULT;
    return 0;
}

char *kb_get_accel_text(const char *action, const char *section, char *buffer)
{
    const AcAction *bound = x_get_action(action);
    KbSection *place = x_get_section(section);
    return bound && place && x_get_default(*place, bound) ? buffer : nullptr;
}

int kb_process(QWidget *widget, void *data, void *info)
{
    const auto *event = static_cast<const KbKeyEvent *>(info);
    constexpr uint32_t tested = KB_KEY_DOWN | KB_KEY_REPEAT | KB_CAP_VALID;
    if ((event->flags & tested) != (KB_KEY_DOWN | KB_CAP_VALID))
        return 0;
    const KbSection *section = section_of(widget);
    if (!section)
        return 0;
    for (const KbMod &mod : section->mods) {
        if (mod.mods != event->mods)
            continue;
        for (const KbCap &cap : mod.caps)
            if (cap.cap == event->cap) {
                for (const AcCb &cb : cap.action->callbacks)
                    cb.callback(widget, data, info);
                return 1;
            }
        return 0;
    }
    return 0;
}

} // namespace tav
