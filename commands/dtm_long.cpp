// A menu of any number of directories.
#include "commands/dtm_long.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QStyleOptionMenuItem>
#include <QWheelEvent>
#include <algorithm>

namespace tav {

namespace {

constexpr int TICK_MS = 50;      // between two steps while the pointer rests on an arrow
constexpr int TICKS_FASTER = 10; // after so many steps each one is a row longer
constexpr int WHEEL_ROW = 40;    // an eighth of a degree each: a notch is three rows

} // namespace

size_t DtmLongMenu::room_for(size_t count)
{
    ensurePolished();
    const QAction probe(QStringLiteral("x"));
    QStyleOptionMenuItem option;
    DtmMenu::initStyleOption(&option, &probe);
    const QSize text(1, fontMetrics().height());
    const int row = style()->sizeFromContents(QStyle::CT_MenuItem, &option, text, this).height();
    const auto metric = [this](QStyle::PixelMetric which) {
        return style()->pixelMetric(which, nullptr, this);
    };
    const int frame = metric(QStyle::PM_MenuPanelWidth) + metric(QStyle::PM_MenuVMargin) +
                      metric(QStyle::PM_MenuDesktopFrameWidth);
    const QScreen *screen = parentWidget() ? parentWidget()->screen() : this->screen();
    const int height = screen->availableGeometry().height() - 2 * frame;
    if (count <= static_cast<size_t>(std::max(height / row, 1)))
        return count;
    const int arrows = 2 * metric(QStyle::PM_MenuScrollerHeight);
    return static_cast<size_t>(std::max((height - arrows) / row, 1));
}

// A dimmed line, which keys and clicks go past; it looks otherwise.
QAction *DtmLongMenu::add_arrow()
{
    QAction *arrow = addSeparator();
    arrow->setEnabled(false);
    arrow->setObjectName(m_up ? QStringLiteral("dtm_down") : QStringLiteral("dtm_up"));
    return arrow;
}

void DtmLongMenu::set_rows(const QList<DtmAnyItem *> &items, DtmRows rows)
{
    m_rows = std::move(rows);
    m_items = items;
    if (m_items.isEmpty())
        m_rows.count = 0;
    setSeparatorsCollapsible(false);
    set_room(m_rows.room);
    if (scrolls())
        m_up = add_arrow();
    for (DtmAnyItem *item : m_items)
        addAction(item);
    if (scrolls())
        m_down = add_arrow();
    m_timer.setObjectName(QStringLiteral("dtm_timer"));
    m_timer.setInterval(TICK_MS);
    connect(&m_timer, &QTimer::timeout, this, &DtmLongMenu::tick);
}

void DtmLongMenu::scroll_to(size_t top)
{
    top = std::min(top, m_rows.count - shown());
    if (top == m_top)
        return;
    setActiveAction(nullptr);
    m_top = top;
    m_rows.show(top);
    update();
}

void DtmLongMenu::scroll_by(int rows)
{
    const size_t by = static_cast<size_t>(std::abs(rows));
    scroll_to(rows > 0 ? m_top + by : m_top - std::min(m_top, by));
}

void DtmLongMenu::go_to_row(size_t row)
{
    if (row < m_top)
        scroll_to(row);
    else if (row >= m_top + shown())
        scroll_to(row - shown() + 1);
    dtm_menu_highlight(*this, *m_items[static_cast<qsizetype>(row - m_top)]);
}

bool DtmLongMenu::go_to(const QString &beginning)
{
    const qsizetype active = m_items.indexOf(activeAction());
    const size_t from = active < 0 ? m_rows.count - 1 : m_top + static_cast<size_t>(active);
    for (size_t i = 1; i <= m_rows.count; i++) {
        const size_t row = (from + i) % m_rows.count;
        if (!m_rows.label(row).startsWith(beginning, Qt::CaseInsensitive))
            continue;
        go_to_row(row);
        return true;
    }
    return false;
}

// The keys that may leave the rows that are shown; with none highlighted the first or last of them.
bool DtmLongMenu::take_key(int key)
{
    const qsizetype active = m_items.indexOf(activeAction());
    const size_t last = m_rows.count - 1, page = shown() - 1;
    const size_t row = m_top + static_cast<size_t>(std::max<qsizetype>(active, 0));
    switch (key) {
    case Qt::Key_Down:
        go_to_row(active < 0 ? m_top : row == last ? 0 : row + 1);
        return true;
    case Qt::Key_Up:
        go_to_row(active < 0 ? m_top + page : row == 0 ? last : row - 1);
        return true;
    case Qt::Key_PageDown:
        go_to_row(std::min(row + page, last));
        return true;
    case Qt::Key_PageUp:
        go_to_row(row - std::min(row, page));
        return true;
    case Qt::Key_Home:
        go_to_row(0);
        return true;
    case Qt::Key_End:
        go_to_row(last);
        return true;
    default:
        return false;
    }
}

void DtmLongMenu::keyPressEvent(QKeyEvent *event)
{
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
    if (plain && m_rows.count > 0 && take_key(event->key()))
        event->accept();
    else
        DtmMenu::keyPressEvent(event);
}

void DtmLongMenu::wheelEvent(QWheelEvent *event)
{
    m_wheel -= event->angleDelta().y();
    scroll_by(m_wheel / WHEEL_ROW);
    m_wheel %= WHEEL_ROW;
    event->accept();
}

void DtmLongMenu::rest_on(const QAction *arrow)
{
    const int step = arrow && arrow == m_down ? 1 : arrow && arrow == m_up ? -1 : 0;
    if (step == m_step)
        return;
    m_step = step;
    m_ticks = 0;
    if (step)
        m_timer.start();
    else
        m_timer.stop();
}

void DtmLongMenu::tick() { scroll_by(m_step * (1 + m_ticks++ / TICKS_FASTER)); }

void DtmLongMenu::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint place = event->position().toPoint();
    rest_on(rect().contains(place) ? actionAt(place) : nullptr);
    DtmMenu::mouseMoveEvent(event);
}

void DtmLongMenu::leaveEvent(QEvent *event)
{
    rest_on(nullptr);
    DtmMenu::leaveEvent(event);
}

void DtmLongMenu::hideEvent(QHideEvent *event)
{
    rest_on(nullptr);
    DtmMenu::hideEvent(event);
}

void DtmLongMenu::initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const
{
    DtmMenu::initStyleOption(option, action);
    if (action == nullptr || (action != m_up && action != m_down))
        return;
    option->menuItemType = QStyleOptionMenuItem::Scroller;
    option->state.setFlag(QStyle::State_DownArrow, action == m_down);
    option->state.setFlag(QStyle::State_Enabled,
                          action == m_up ? m_top > 0 : m_top + shown() < m_rows.count);
}

} // namespace tav
