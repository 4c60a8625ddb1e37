// What assistive technology sees of the list. Nobody asks for a million items: one is made when it
// is asked for and forgotten with the next rebuild of the rows.
#include "views/fl_access.h"

#include "model/dir.h"
#include "platform/shown.h"
#include "views/fl.h"
#include "views/fl_header.h"
#include "views/fl_view.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>

namespace tav {

void (*gFlAccessHeard)(QAccessibleEvent *event) = nullptr;

namespace {

constexpr int sFirstRow = 1; // child 0 is the header

// One row, by its number; it is looked up in gDir at every question.
class FlRowAccess : public QAccessibleInterface {
public:
    FlRowAccess(FlView *view, int row) : m_view(view), m_row(row) {}

    bool isValid() const override { return m_row < fl_row_count(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_view->window()->windowHandle(); }
    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_view);
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override
    {
        const QRect area = m_view->row_rect(m_row);
        return {m_view->viewport()->mapToGlobal(area.topLeft()), area.size()};
    }
    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;

    int row() const { return m_row; }

private:
    FlView *m_view;
    int m_row;
};

QString FlRowAccess::text(QAccessible::Text kind) const
{
    const int index = fl_row_index(m_row);
    if (kind == QAccessible::Name)
        return shown_text(fl_row_column(index, FL_COLUMN_NAME));
    if (kind != QAccessible::Description || index < 0)
        return {};
    QStringList columns;
    if (fl_row_image(index) == FL_IMAGE_CUT)
        columns << FlView::tr("cut");
    for (int column = FL_COLUMN_SIZE; column <= FL_COLUMNS; ++column)
        columns << shown_text(fl_row_column(index, column)).trimmed();
    columns.removeAll(QString());
    return columns.join(QLatin1String(", "));
}

QAccessible::State FlRowAccess::state() const
{
    QAccessible::State state;
    const int index = fl_row_index(m_row);
    state.selectable = index >= 0;
    state.focusable = true;
    state.focused = index == gDir.current && m_view->hasFocus();
    state.selected = index >= 0 && (gDir.entries[static_cast<size_t>(index)]->flags & DIR_SELECTED);
    state.offscreen = !m_view->viewport()->rect().intersects(m_view->row_rect(m_row));
    return state;
}

class FlViewAccess : public QAccessibleWidget {
public:
    explicit FlViewAccess(FlView *view) : QAccessibleWidget(view, QAccessible::List) {}
    ~FlViewAccess() override { forget(); }

    int childCount() const override { return sFirstRow + fl_row_count(); }
    QAccessibleInterface *child(int index) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    void forget();

private:
    FlView *view() const { return static_cast<FlView *>(widget()); }

    mutable QHash<int, QAccessible::Id> m_rows; // made so far, by row
};

QAccessibleInterface *FlViewAccess::child(int index) const
{
    if (index == 0)
        return QAccessible::queryAccessibleInterface(view()->header());
    const int row = index - sFirstRow;
    if (row < 0 || row >= fl_row_count())
        return nullptr;
    const auto made = m_rows.constFind(row);
    if (made != m_rows.constEnd())
        return QAccessible::accessibleInterface(*made);
    QAccessibleInterface *item = new FlRowAccess(view(), row); // the registry owns it
    m_rows.insert(row, QAccessible::registerAccessibleInterface(item));
    return item;
}

QAccessibleInterface *FlViewAccess::childAt(int x, int y) const
{
    const int row = view()->row_at(view()->viewport()->mapFromGlobal(QPoint(x, y)));
    return row < 0 ? nullptr : child(row + sFirstRow);
}

QAccessibleInterface *FlViewAccess::focusChild() const
{
    const int row = fl_row_of_index(gDir.current);
    return row < 0 ? nullptr : child(row + sFirstRow);
}

int FlViewAccess::indexOfChild(const QAccessibleInterface *child) const
{
    if (child->object() == view()->header())
        return 0;
    const auto *item = dynamic_cast<const FlRowAccess *>(child);
    return item ? item->row() + sFirstRow : -1;
}

void FlViewAccess::forget()
{
    for (QAccessible::Id id : std::as_const(m_rows))
        QAccessible::deleteAccessibleInterface(id);
    m_rows.clear();
}

QAccessibleInterface *x_make(const QString &, QObject *object)
{
    FlView *view = qobject_cast<FlView *>(object);
    return view ? new FlViewAccess(view) : nullptr;
}

bool x_is_heard() { return gFlAccessHeard || QAccessible::isActive(); }

void x_tell(QAccessibleEvent &event)
{
    if (gFlAccessHeard)
        gFlAccessHeard(&event);
    else
        QAccessible::updateAccessibility(&event);
}

} // namespace

void fl_access_install(FlView *view)
{
    static bool sInstalled = false;
    if (!sInstalled)
        QAccessible::installFactory(x_make);
    sInstalled = true;
    // While the widget was being made the toolkit may have kept an interface of a plainer kind.
    QAccessibleInterface *kept = QAccessible::queryAccessibleInterface(view);
    if (!dynamic_cast<FlViewAccess *>(kept))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(kept));
}

void fl_access_current()
{
    FlView *view = fl_view();
    const int row = fl_row_of_index(gDir.current);
    if (!x_is_heard() || !view || !view->hasFocus() || row < 0)
        return;
    QAccessibleEvent event(view, QAccessible::Focus);
    event.setChild(row + sFirstRow);
    x_tell(event);
}

void fl_access_rows_changed()
{
    FlView *view = fl_view();
    if (!view)
        return;
    if (auto *list = dynamic_cast<FlViewAccess *>(QAccessible::queryAccessibleInterface(view)))
        list->forget();
    if (!x_is_heard())
        return;
    QAccessibleEvent event(view, QAccessible::ObjectReorder);
    x_tell(event);
}

} // namespace tav
