// The look and the handling of menus of directories.
#include "commands/dtm_menu.h"

#include <QActionEvent>
#include <QApplication>
#include <QCommonStyle>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QStyleOptionMenuItem>
#include <algorithm>

namespace tav {

namespace {

constexpr QRgb GREY = 0xFF909090; // of an item that is still being examined

// Of the arrows in a menu that shows its rows by and by, not of the toolkit's own.
bool x_is_arrow(const QStyleOption *option)
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    return item && item->menuItemType == QStyleOptionMenuItem::Scroller;
}

// A menu longer than the screen scrolls instead of growing columns. Its items are neither narrower
// than its widest label nor too wide for the screen. All else is left to the program's style.
class ScrollStyle : public QCommonStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        return QApplication::style()->pixelMetric(metric, option, widget);
    }
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        QApplication::style()->drawPrimitive(element, option, painter, widget);
    }
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override
    {
        const auto *menu = type == CT_MenuItem ? qobject_cast<const DtmMenu *>(widget) : nullptr;
        if (!menu)
            return QApplication::style()->sizeFromContents(type, option, size, widget);
        if (x_is_arrow(option))
            return {size.width(), pixelMetric(PM_MenuScrollerHeight, option, widget)};
        const int width = std::min(std::max(size.width(), menu->room()), menu->limit());
        return QApplication::style()->sizeFromContents(type, option, QSize(width, size.height()),
                                                       widget);
    }
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        const bool arrow = element == CE_MenuItem && x_is_arrow(option);
        const bool live = option->state & State_Enabled;
        QApplication::style()->drawControl(!arrow ? element
                                           : live ? CE_MenuScroller
                                                  : CE_MenuEmptyArea,
                                           option, painter, widget);
    }
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *result) const override
    {
        return hint == SH_Menu_Scrollable
                   ? 1
                   : QApplication::style()->styleHint(hint, option, widget, result);
    }
};

QStyle *x_style()
{
    static QPointer<QStyle> style;
    if (!style) {
        style = new ScrollStyle;
        style->setParent(qApp);
    }
    return style;
}

bool x_go_to(QMenu &menu, const QString &beginning)
{
    const QList<QAction *> all = menu.actions();
    const qsizetype from = all.indexOf(menu.activeAction());
    for (qsizetype i = 1; i <= all.size(); i++) {
        auto *item = qobject_cast<DtmAnyItem *>(all[(from + i + all.size()) % all.size()]);
        if (item && item->text().startsWith(beginning, Qt::CaseInsensitive)) {
            dtm_menu_highlight(menu, *item);
            return true;
        }
    }
    return false;
}

bool x_go_to_letter(QMenu &menu, const QString &text)
{
    if (text.isEmpty() || !text[0].isPrint() || text[0].isSpace())
        return false;
    auto *own = qobject_cast<DtmMenu *>(&menu);
    return own ? own->go_to(text) : x_go_to(menu, text);
}

// Takes a menu's presses and keys before the menu does. Its child.
class Attendant : public QObject {
public:
    explicit Attendant(QMenu *menu) : QObject(menu), m_menu(menu)
    {
        menu->installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override;

private:
    bool take_press(const QMouseEvent &event);
    bool take_key(const QKeyEvent &event);
    bool go_to_shared_mnemonic(int key);

    QMenu *m_menu;
    QPointer<DtmAnyItem> m_pressed; // what the last press hit
    QElapsedTimer m_since;          // that press
};

// Some platforms call the second press a double click, some do not when a submenu opened in
// between.
bool Attendant::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return take_press(*static_cast<QMouseEvent *>(event));
    case QEvent::KeyPress:
        return take_key(*static_cast<QKeyEvent *>(event));
    default:
        return false;
    }
}

bool Attendant::take_press(const QMouseEvent &event)
{
    const QPoint place = event.position().toPoint();
    if (event.button() != Qt::LeftButton || !m_menu->rect().contains(place))
        return false;
    auto *item = qobject_cast<DtmAnyItem *>(m_menu->actionAt(place));
    const bool again = item && item == m_pressed && m_since.isValid() &&
                       m_since.elapsed() < QApplication::doubleClickInterval();
    m_pressed = again ? nullptr : item;
    m_since.start();
    if (again)
        item->choose();
    return again;
}

bool Attendant::take_key(const QKeyEvent &event)
{
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    auto *item = qobject_cast<DtmAnyItem *>(m_menu->activeAction());
    if (enter && event.modifiers() & Qt::ControlModifier && item) {
        item->choose();
        return true;
    }
    return !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) &&
           (x_go_to_letter(*m_menu, event.text()) || go_to_shared_mnemonic(event.key()));
}

bool x_has_mnemonic(const QAction *action, int key)
{
    const QKeySequence mnemonic = QKeySequence::mnemonic(action->text());
    return action->isVisible() && !mnemonic.isEmpty() && mnemonic[0].key() == key;
}

// A menu goes no further than a dimmed item of the letter. When some of those that share it are
// dimmed, the others take turns, and a single one is chosen.
bool Attendant::go_to_shared_mnemonic(int key)
{
    QList<QAction *> sharing = m_menu->actions();
    sharing.removeIf([key](const QAction *action) { return !x_has_mnemonic(action, key); });
    const qsizetype all = sharing.size();
    sharing.removeIf([](const QAction *action) { return !action->isEnabled(); });
    if (sharing.isEmpty() || sharing.size() == all)
        return false;
    const bool only = sharing.size() == 1;
    QAction *next = sharing[(sharing.indexOf(m_menu->activeAction()) + 1) % sharing.size()];
    m_menu->setActiveAction(next);
    if (only && next->menu() == nullptr) {
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(m_menu, &enter);
    }
    return true;
}

} // namespace

DtmMenu::DtmMenu(QWidget *parent) : QMenu(parent)
{
    setStyle(x_style());
    dtm_menu_attend(this);
}

int DtmMenu::limit() const
{
    const QScreen *at = parentWidget() ? parentWidget()->screen() : screen();
    return at->availableGeometry().width() / 3;
}

bool DtmMenu::go_to(const QString &beginning) { return x_go_to(*this, beginning); }

void DtmMenu::initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const
{
    QMenu::initStyleOption(option, action);
    const auto *item = qobject_cast<const DtmAnyItem *>(action);
    if (item == nullptr)
        return;
    option->text = option->fontMetrics.elidedText(option->text, Qt::ElideMiddle, limit(),
                                                  Qt::TextShowMnemonic);
    option->menuItemType = item->state() == DtmState::cascade ? QStyleOptionMenuItem::SubMenu
                                                              : QStyleOptionMenuItem::Normal;
    if (item->state() == DtmState::unknown)
        for (QPalette::ColorRole role :
             {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            option->palette.setColor(role, QColor::fromRgb(GREY));
}

// A submenu that comes or goes changes no item's size: without this an open menu would lay out all
// of its items again, and grow past the screen.
void DtmMenu::actionEvent(QActionEvent *event)
{
    if (event->type() == QEvent::ActionChanged && qobject_cast<DtmAnyItem *>(event->action()))
        update();
    else
        QMenu::actionEvent(event);
}

void dtm_menu_attend(QMenu *menu)
{
    for (QObject *child : menu->children())
        if (dynamic_cast<Attendant *>(child))
            return;
    new Attendant(menu);
}

// A menu opens the submenu of what is made active, unless there is none yet.
void dtm_menu_highlight(QMenu &menu, DtmAnyItem &item)
{
    QMenu *submenu = item.menu();
    item.setMenu(nullptr);
    {
        const QSignalBlocker unarmed(item);
        menu.setActiveAction(&item);
    }
    if (submenu)
        item.setMenu(submenu);
    else
        item.arm();
}

void dtm_menu_dismiss()
{
    while (QWidget *popup = QApplication::activePopupWidget())
        if (!popup->close())
            break;
}

} // namespace tav
