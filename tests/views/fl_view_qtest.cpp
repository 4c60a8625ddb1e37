// The look of the list: header, widths, scrolling, painting, assistive technology, drops.
#include "fl_fixture.h"

#include "views/fl_access.h"
#include "views/fl_paint.h"

#include <QAccessible>
#include <QDropEvent>
#include <QHelpEvent>
#include <QMimeData>
#include <QTextDocument>
#include <QToolTip>

namespace tav {

namespace {

QAccessibleInterface *x_access(FlView *list) { return QAccessible::queryAccessibleInterface(list); }

} // namespace

class FlViewTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    void show(int count = 8)
    {
        m_dir->many("f", count);
        fl_setpath(m_dir->path().c_str());
        QCoreApplication::processEvents();
    }

    FlHeader *header() const { return m_window->list->header(); }

    // How often a colour stands in a row of pixels of the list.
    int colour_count(const QColor &colour, int y) const
    {
        const QImage image = m_window->list->viewport()->grab().toImage();
        int count = 0;
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour;
        return count;
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
    }
    void cleanup()
    {
        m_window.reset();
        m_dir.reset();
    }

    void header_has_seven_named_sections()
    {
        const std::pair<const char *, const char *> expected[] = {
            {"fh_filename", "Name"}, {"fh_size", "Size"},   {"fh_date", "Date"},
            {"fh_owner", "Owner"},   {"fh_group", "Group"}, {"fh_permissions", "Permissions"},
            {"fh_link", "Link"}};
        auto *divider = m_window->window.findChild<QWidget *>(QStringLiteral("filelist_divider"));
        QVERIFY(divider);
        int left = 0;
        for (const auto &[name, label] : expected) {
            auto *button = divider->findChild<QAbstractButton *>(QLatin1String(name));
            QVERIFY2(button, name);
            QCOMPARE(button->text(), QLatin1String(label));
            QCOMPARE(button->x(), left);
            left += button->width();
        }
    }

    void widths_are_set_and_read_by_column()
    {
        for (int column = 1; column <= FL_COLUMNS; ++column) {
            fl_set_column_width(column, 40 + column);
            QCOMPARE(fl_get_column_width(column), 40 + column);
            QCOMPARE(header()->section(column).width() >= 40 + column, true);
        }
        QCOMPARE(header()->button(2)->width(), 42);
        for (int bad : {-1, 0, 8, 100}) {
            fl_set_column_width(bad, 50);
            QCOMPARE(fl_get_column_width(bad), -1);
        }
    }

    void widths_out_of_reason_are_kept_but_not_shown()
    {
        for (int width : {-1000, 0, 2147483647, -2147483647 - 1}) {
            fl_set_column_width(1, width);
            QCOMPARE(fl_get_column_width(1), width);
            QVERIFY(header()->button(1)->width() >= FL_WIDTH_MIN);
            QVERIFY(header()->button(1)->width() <= FL_WIDTH_MAX);
        }
    }

    void handle_drags_the_border()
    {
        fl_set_column_width(2, 60);
        auto *handle = header()->findChild<QWidget *>(QStringLiteral("fh_size_handle"));
        const QPoint at = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, at);
        const auto move = [&](int by) {
            const QPointF global = handle->mapToGlobal(at) + QPoint(by, 0);
            QMouseEvent event(QEvent::MouseMove, handle->mapFromGlobal(global), global,
                              Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(handle, &event);
        };
        move(25);
        QCOMPARE(fl_get_column_width(2), 85);
        move(-500);
        QCOMPARE(fl_get_column_width(2), FL_WIDTH_MIN);
        QTest::mouseRelease(handle, Qt::LeftButton, {}, at);
        move(100);
        QCOMPARE(fl_get_column_width(2), FL_WIDTH_MIN);
    }

    void keys_on_a_section_sort_and_change_its_width()
    {
        show(2);
        FlHeaderButton *button = header()->button(2);
        button->setFocus(Qt::TabFocusReason);
        const int width = fl_get_column_width(2);
        QTest::keyClick(button, Qt::Key_Right, Qt::ControlModifier);
        QVERIFY(fl_get_column_width(2) > width);
        QTest::keyClick(button, Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(fl_get_column_width(2), width);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(button->property("sort_image").toString(), QStringLiteral("image_sort_up"));
    }

    void double_click_on_a_handle_fits_the_column()
    {
        m_dir->file(std::string(60, 'W'));
        show(300);
        auto *handle = header()->findChild<QWidget *>(QStringLiteral("fh_filename_handle"));
        QTest::mouseDClick(handle, Qt::LeftButton);
        const int wide = m_window->list->fontMetrics().horizontalAdvance(QString(60, u'W'));
        QVERIFY(fl_get_column_width(1) >= wide + FL_IMAGE_SIZE + 3 * FL_ROW_MARGIN);
        QVERIFY(fl_get_column_width(1) < wide + 100);
        auto *size = header()->findChild<QWidget *>(QStringLiteral("fh_size_handle"));
        QTest::mouseDClick(size, Qt::LeftButton);
        QVERIFY(fl_get_column_width(2) >= header()->button(2)->sizeHint().width() - 20);
    }

    void header_scrolls_along_with_the_rows()
    {
        show();
        for (int column = 1; column <= FL_COLUMNS; ++column)
            fl_set_column_width(column, 300);
        QScrollBar *bar = m_window->list->horizontalScrollBar();
        QVERIFY(bar->maximum() > 0);
        bar->setValue(120);
        QCOMPARE(header()->button(1)->x(), -120);
        QCOMPARE(m_window->list->row_rect(0).x(), -120);
        QCOMPARE(header()->button(3)->x(), 600 - 120);
    }

    void last_section_fills_the_rest()
    {
        for (int column = 1; column <= FL_COLUMNS; ++column)
            fl_set_column_width(column, 20);
        const FlHeaderButton *last = header()->button(FL_COLUMNS);
        QCOMPARE(last->x() + last->width(), header()->width());
        QCOMPARE(fl_get_column_width(FL_COLUMNS), 20);
    }

    void rows_are_hit_where_they_are_painted()
    {
        show(100);
        FlView *list = m_window->list;
        list->set_top(37);
        for (int y : {0, 5, 60, 133}) {
            const int row = list->row_at({10, y});
            QVERIFY(list->row_rect(row).contains(10, y));
        }
        QCOMPARE(list->row_at({10, -1}), -1);
        list->set_top(0);
        fl_setspec("nothing at all");
        QCOMPARE(list->row_at({10, 5}), 0); // the ".." row is left
        QCOMPARE(list->row_at({10, list->row_height() + 1}), -1);
    }

    void selected_rows_are_painted_in_the_palettes_colour()
    {
        show();
        const QColor highlight =
            m_window->list->palette().color(QPalette::Active, QPalette::Highlight);
        const int y = m_window->at(3).y() - m_window->list->row_height() / 2 + 2;
        QCOMPARE(colour_count(highlight, y), 0);
        m_window->click(3);
        QVERIFY(colour_count(highlight, y) > 300);
        m_window->field->setFocus();
        QCOMPARE(colour_count(highlight, y), 0); // calmer without the focus
    }

    void dark_palette_is_followed()
    {
        show();
        QPalette palette = m_window->list->palette();
        palette.setColor(QPalette::Base, QColor(20, 20, 20));
        palette.setColor(QPalette::AlternateBase, QColor(30, 30, 30));
        palette.setColor(QPalette::Text, Qt::white);
        m_window->list->setPalette(palette);
        const QImage image = m_window->list->viewport()->grab().toImage();
        const QPoint corner(image.width() - 3, image.height() - 3);
        QCOMPARE(image.pixelColor(corner), QColor(20, 20, 20));
    }

    void size_is_right_aligned()
    {
        m_dir->file("a", 1);
        fl_setpath(m_dir->path().c_str());
        fl_goto_index(DIR_PARENT);
        fl_set_column_width(2, 200);
        const QImage image = m_window->list->viewport()->grab().toImage();
        const QRect column = header()->section(2);
        const int y = m_window->at(0).y();
        const QColor ground = image.pixelColor(column.left() + 2, y);
        int first = -1;
        for (int x = column.left(); x < column.right() && first < 0; ++x)
            for (int dy = -6; dy <= 6; ++dy)
                if (image.pixelColor(x, y + dy) != ground)
                    first = x;
        QVERIFY2(first > column.right() - 30, qPrintable(QString::number(first)));
    }

    void font_of_the_settings_sets_the_height_of_rows()
    {
        show();
        QFont font = m_window->list->font();
        const int before = m_window->list->row_height();
        font.setPixelSize(40);
        m_window->list->setFont(font);
        QVERIFY(m_window->list->row_height() > before + 10);
        fl_set_font();
        QCOMPARE(m_window->list->row_height(), before);
    }

    // What a text looks like is kept between repaints, for one font.
    void texts_look_the_same_again_and_follow_the_font()
    {
        show();
        const auto look = [this] { return m_window->list->viewport()->grab().toImage(); };
        const QFont font = m_window->list->font();
        const QImage first = look();
        QCOMPARE(look(), first);
        QFont bold = font;
        bold.setBold(true);
        m_window->list->setFont(bold);
        QVERIFY(look() != first);
        m_window->list->setFont(font);
        QCOMPARE(look(), first);
    }

    void text_that_is_cut_off_is_told_whole_and_plain()
    {
        m_dir->file("<b>bold &amp; long enough to be cut off somewhere in the middle");
        m_dir->file("short");
        fl_setpath(m_dir->path().c_str());
        const auto hover = [&](int index) {
            const QPoint at = m_window->at(index);
            QHelpEvent event(QEvent::ToolTip, at, m_window->list->viewport()->mapToGlobal(at));
            QApplication::sendEvent(m_window->list->viewport(), &event);
        };
        hover(0);
        QVERIFY(QToolTip::isVisible());
        QTextDocument shown;
        shown.setHtml(QToolTip::text());
        QCOMPARE(shown.toPlainText(), QString::fromStdString(fl_test_name(0)));
        hover(1); // the tip goes away after a moment
        QTRY_VERIFY(!QToolTip::isVisible());
        fl_set_column_width(1, 1000);
        hover(0);
        QVERIFY(!QToolTip::isVisible());
    }

    void size_of_many_digits_is_shown_whole_in_a_column_of_the_usual_width()
    {
        m_dir->file("a", 4294967295);
        m_dir->file("b", 1);
        fl_setpath(m_dir->path().c_str());
        const int wide =
            m_window->list->fontMetrics().horizontalAdvance(QStringLiteral("4,294,967,295"));
        fl_set_column_width(2, wide * 3 / 4);
        QVERIFY(header()->section(2).width() < wide);
        const QImage image = m_window->list->viewport()->grab().toImage();
        const auto is_inked = [&](int index) {
            const int y = m_window->at(index).y();
            const QRgb ground = image.pixel(image.width() - 3, y);
            for (int x = header()->section(2).right() - wide; x < header()->section(2).left(); ++x)
                for (int dy = -6; dy <= 6; ++dy)
                    if (image.pixel(x, y + dy) != ground)
                        return true;
            return false;
        };
        fl_goto_index(DIR_PARENT);
        QVERIFY(is_inked(0));
        QVERIFY(!is_inked(1));
        const QPoint at(header()->section(2).center().x(), m_window->at(0).y());
        QCOMPARE(fl_paint_cut_text(*m_window->list, at), QString());
        fl_set_column_width(2, wide / 4); // hardly any of it would stand in its own column
        QCOMPARE(fl_paint_cut_text(*m_window->list,
                                   {header()->section(2).center().x(), m_window->at(0).y()}),
                 QStringLiteral("4,294,967,295"));
    }

    void size_that_takes_from_its_neighbour_ends_in_a_digit()
    {
        const off_t sizes[] = {111111111, 123456789, 127015936, 987654321, 4294967295};
        for (const off_t size : sizes)
            m_dir->file(std::to_string(size), size);
        fl_setpath(m_dir->path().c_str());
        fl_goto_index(DIR_PARENT);
        const int wide =
            m_window->list->fontMetrics().horizontalAdvance(QStringLiteral("111,111,111"));
        for (int missing = 1; missing < 8; ++missing) {
            fl_set_column_width(2, wide - missing);
            const QImage image = m_window->list->viewport()->grab().toImage();
            for (int index = 0; index < gDir.count; ++index) {
                const int y = m_window->at(index).y();
                const QRgb ground = image.pixel(image.width() - 3, y);
                bool inked = false; // above the line that the dots of a cut text stand on
                const int right = header()->section(2).right() - FL_ROW_MARGIN;
                for (int x = right - 8; x <= right; ++x)
                    for (int dy = -4; dy <= 0; ++dy)
                        inked = inked || image.pixel(x, y + dy) != ground;
                QVERIFY2(inked, gDir.entries[static_cast<size_t>(index)]->name);
            }
        }
    }

    void tiny_list_survives()
    {
        show(50);
        m_window->list->setMinimumSize(1, 1);
        m_window->list->setFixedSize(3, 3);
        QCoreApplication::processEvents();
        m_window->key(Qt::Key_PageDown);
        m_window->key(Qt::Key_End);
        QVERIFY(!m_window->list->grab().isNull());
        QCOMPARE(gDir.current, 49);
    }

    void assistive_technology_sees_the_rows()
    {
        show(5);
        fl_select_index(2);
        fl_goto_index(2);
        QAccessibleInterface *list = x_access(m_window->list);
        QVERIFY(list);
        QCOMPARE(list->role(), QAccessible::List);
        QCOMPARE(list->text(QAccessible::Name), QStringLiteral("Files"));
        QCOMPARE(list->childCount(), 1 + 6); // the header, "..", five files
        QAccessibleInterface *row = list->child(1 + 3);
        QVERIFY(row && row->isValid());
        QCOMPARE(row->role(), QAccessible::ListItem);
        QCOMPARE(row->text(QAccessible::Name), QStringLiteral("f000002"));
        QVERIFY(row->text(QAccessible::Description).contains(QStringLiteral("rw-")));
        QVERIFY(row->state().selected);
        QVERIFY(row->state().focused);
        QVERIFY(!list->child(1)->state().selectable); // ".."
        QCOMPARE(list->focusChild(), row);
        QCOMPARE(list->indexOfChild(row), 4);
        QCOMPARE(list->childAt(row->rect().center().x(), row->rect().center().y()), row);
        QVERIFY(!list->child(7));
        QCOMPARE(list->child(0)->object(), header());
    }

    void assistive_technology_hears_the_cursor_move()
    {
        static int sFocused;
        sFocused = -1;
        show(5);
        gFlAccessHeard = [](QAccessibleEvent *event) {
            if (event->type() == QAccessible::Focus)
                sFocused = event->child();
        };
        m_window->key(Qt::Key_Down);
        const int focused = sFocused;
        m_window->field->setFocus();
        fl_goto_index(3); // nobody's business while the keyboard is elsewhere
        gFlAccessHeard = nullptr;
        QCOMPARE(focused, 1 + fl_row_of_index(1));
        QCOMPARE(sFocused, focused);
    }

    void assistive_technology_gets_new_rows_after_a_rebuild()
    {
        show(2);
        QVERIFY(x_access(m_window->list)->child(3));
        m_dir->remove("f000001");
        fl_refresh();
        QVERIFY(!x_access(m_window->list)->child(3));
        QCOMPARE(x_access(m_window->list)->child(2)->text(QAccessible::Name),
                 QStringLiteral("f000000"));
    }

    void drop_seam_tells_the_row_it_hit()
    {
        m_dir->dir("d");
        m_dir->file("f");
        fl_setpath(m_dir->path().c_str());
        static std::vector<int> sDropped;
        sDropped.clear();
        gFlHooks.drop_is_files = [](const QDropEvent &) { return true; };
        gFlHooks.drop_accepts = [](QDropEvent &, int) { return true; };
        gFlHooks.drop = [](QDropEvent &, int index) { sDropped.push_back(index); };
        const QMimeData data;
        const auto drop = [&](const QPoint &at) {
            QDragEnterEvent enter(at, Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(m_window->list->viewport(), &enter);
            QDropEvent event(at, Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(m_window->list->viewport(), &event);
        };
        drop(m_window->at(0));
        drop(m_window->at(DIR_PARENT));
        drop(m_window->at(1)); // a file takes none
        drop(m_window->empty());
        QCOMPARE(sDropped, (std::vector<int>{0, DIR_PARENT, DIR_NONE, DIR_NONE}));
        QCOMPARE(m_window->list->drop_row(), -1);
    }

    void drop_target_is_marked_while_hovered()
    {
        m_dir->dir("d");
        m_dir->file("f");
        fl_setpath(m_dir->path().c_str());
        gFlHooks.drop_is_files = [](const QDropEvent &) { return true; };
        gFlHooks.drop_accepts = [](QDropEvent &, int) { return true; };
        const QMimeData data;
        QDragEnterEvent enter(m_window->at(0), Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(m_window->list->viewport(), &enter);
        QCOMPARE(m_window->list->drop_row(), 1);
        QDragMoveEvent move(m_window->at(1), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window->list->viewport(), &move);
        QCOMPARE(m_window->list->drop_row(), -1);
        QVERIFY(move.isAccepted());
        QDragLeaveEvent leave;
        QApplication::sendEvent(m_window->list->viewport(), &leave);
        QCOMPARE(m_window->list->drop_row(), -1);
    }
};

} // namespace tav

QTEST_MAIN(tav::FlViewTest)
#include "fl_view_qtest.moc"
