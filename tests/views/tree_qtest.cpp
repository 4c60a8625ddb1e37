// The directory tree: its two modes, its levels, its clicks and keys.
#include "ways_fixture.h"

#include <QScrollBar>

namespace tav {

class TreeTest : public QObject {
    Q_OBJECT

    std::unique_ptr<WaysWindow> m;

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void cleanupTestCase() { ui_gate_close(); }
    void init() { m = std::make_unique<WaysWindow>(); }
    void cleanup() { m.reset(); }

    void hotlist_rows_stand_in_the_lists_order_never_sorted()
    {
        QVERIFY(gOptions & OPTION_TREE_SORTED);
        m->hotlist({"/usr", "/", "/tmp"});
        QCOMPARE(m->labels(), std::string("/usr / /tmp"));
        tree_add(m->tree, "/etc");
        QCOMPARE(m->labels(), std::string("/usr / /tmp /etc"));
        tree_remove(m->tree, "/");
        QCOMPARE(m->labels(), std::string("/usr /tmp /etc"));
        tree_sort(m->tree);
        QCOMPARE(m->labels(), std::string("/etc /tmp /usr"));
    }

    void expanding_lists_subdirectories_with_dot_directories()
    {
        m->dir.dir("top/.hidden");
        m->dir.dir("top/b/c");
        m->dir.dir("top/a");
        m->dir.file("top/file");
        m->dir.link("top/link", m->dir.at("top/b"));
        m->hotlist({"/", m->dir.at("top")});
        m->expand(m->row(1));
        QCOMPARE(m->labels(m->row(1)), std::string(".hidden a b link"));
    }

    void expanding_leaves_dot_directories_out_without_the_option()
    {
        gOptions &= ~OPTION_TREE_DOT;
        m->dir.dir("top/.hidden");
        m->dir.dir("top/b");
        m->hotlist({m->dir.at("top")});
        m->expand(m->row(0));
        QCOMPARE(m->labels(m->row(0)), std::string("b"));
    }

    void levels_are_in_the_order_of_the_disk_without_the_option()
    {
        gOptions &= ~OPTION_TREE_SORTED;
        for (const char *name : {"top/c", "top/a", "top/b"})
            m->dir.dir(name);
        m->hotlist({m->dir.at("top")});
        m->expand(m->row(0));
        QCOMPARE(m->row(0)->childCount(), 3);
        QVERIFY(x_add_item(m->tree, m->row(0), "a", false)); // refused only when sorted
        QCOMPARE(m->row(3, m->row(0))->name, std::string("a"));
    }

    void a_sorted_level_refuses_a_label_that_is_there()
    {
        m->dir.dir("top/b");
        m->hotlist({m->dir.at("top")});
        m->expand(m->row(0));
        QVERIFY(!x_add_item(m->tree, m->row(0), "b", true));
        QVERIFY(x_add_item(m->tree, m->row(0), "a", true));
        QVERIFY(x_add_item(m->tree, m->row(0), "c", true));
        QVERIFY(x_add_item(m->tree, m->row(0), "..", true));
        QVERIFY(x_add_item(m->tree, m->row(0), "!", true));
        QCOMPARE(m->labels(m->row(0)), std::string(".. ! a b c"));
    }

    void rows_show_whether_they_can_be_expanded()
    {
        m->dir.dir("with/inner");
        m->dir.dir("without");
        m->hotlist({m->dir.at("with"), m->dir.at("without")});
        QCOMPARE(m->row(0)->look, TreeLook::Expandable);
        QCOMPARE(m->row(0)->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);
        QCOMPARE(m->row(0)->childCount(), 0); // the level has not been read for that
        QCOMPARE(m->row(1)->look, TreeLook::Leaf);
        QCOMPARE(m->row(1)->childIndicatorPolicy(), QTreeWidgetItem::DontShowIndicator);
    }

    void a_vanished_path_shows_as_a_file_that_cannot_be_expanded()
    {
        m->hotlist({m->dir.at("gone"), m->dir.file("plain"), "relative", ""});
        const QIcon file = m->row(0)->data(0, Qt::DecorationRole).value<QIcon>();
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(m->row(i)->look, TreeLook::Unreadable);
            QCOMPARE(m->row(i)->childIndicatorPolicy(), QTreeWidgetItem::DontShowIndicator);
        }
        QVERIFY(!file.isNull());
    }

    void images_tell_open_closed_and_unreadable()
    {
        m->dir.dir("top/inner");
        m->hotlist({m->dir.at("top"), m->dir.at("gone")});
        const auto image = [this](int row) {
            return m->row(row)->data(0, Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
        };
        const QImage closed = image(0);
        m->expand(m->row(0));
        QVERIFY(image(0) != closed);
        QVERIFY(image(1) != closed);
        QVERIFY(image(1) != image(0));
    }

    void collapsing_frees_the_level_and_expanding_reads_it_again()
    {
        m->dir.dir("top/a");
        m->hotlist({m->dir.at("top")});
        m->expand(m->row(0));
        m->tree->setCurrentItem(m->row(0, m->row(0)));
        m->row(0)->setExpanded(false);
        QCOMPARE(m->row(0)->childCount(), 0);
        QCOMPARE(m->tree->current(), m->row(0)); // the cursor stays on a row
        m->dir.dir("top/b");
        m->expand(m->row(0));
        QCOMPARE(m->labels(m->row(0)), std::string("a b"));
    }

    void full_paths_are_built_from_the_rows()
    {
        m->dir.dir("a/b/c");
        m->hotlist({m->dir.path(), "/"});
        m->expand(m->row(0));
        TreeItem *a = m->row(0, m->row(0));
        m->expand(a);
        std::string path;
        QCOMPARE(x_get_fullpath(m->row(0, a), path), static_cast<int>(m->dir.at("a/b").size()));
        QCOMPARE(path, m->dir.at("a/b"));
        x_get_fullpath(m->row(1), path);
        QCOMPARE(path, std::string("/"));
    }

    void a_click_shows_the_directory_and_keeps_the_keyboard()
    {
        m->dir.dir("top");
        m->hotlist({m->dir.at("top")});
        m->tree->setFocus();
        m->click(m->row(0));
        QCOMPARE(gDir.path, m->dir.at("top"));
        QCOMPARE(m->tree->current(), m->row(0));
        QVERIFY(m->tree->hasFocus());
        QVERIFY(m->tree->selectedItems().isEmpty());
        QCOMPARE(fl_get_back_count(), 1);
    }

    void a_click_on_the_shown_directory_does_not_read_it_again()
    {
        m->hotlist({m->dir.path()});
        m->dir.file("new");
        m->click(m->row(0));
        QCOMPARE(gDir.count, 0);
        QCOMPARE(fl_get_back_count(), 0);
    }

    void arrows_move_and_enter_shows()
    {
        m->dir.dir("one");
        m->dir.dir("two");
        m->hotlist({m->dir.at("one"), m->dir.at("two")});
        m->tree->setFocus();
        m->tree->setCurrentItem(m->row(0));
        QTest::keyClick(m->tree, Qt::Key_Down);
        QCOMPARE(gDir.path, m->dir.path());
        QTest::keyClick(m->tree, Qt::Key_Return);
        QCOMPARE(gDir.path, m->dir.at("two"));
        QVERIFY(m->tree->hasFocus());
    }

    void arrows_open_and_close_levels()
    {
        m->dir.dir("top/inner");
        m->hotlist({m->dir.at("top")});
        m->tree->setFocus();
        m->tree->setCurrentItem(m->row(0));
        QTest::keyClick(m->tree, Qt::Key_Right);
        QVERIFY(m->row(0)->isExpanded());
        QTest::keyClick(m->tree, Qt::Key_Left);
        QVERIFY(!m->row(0)->isExpanded());
        QTest::keyClick(m->tree, Qt::Key_Asterisk); // would read the whole disk
        QVERIFY(!m->row(0)->isExpanded());
    }

    void entering_by_double_click_and_back_by_the_parent_row()
    {
        m->dir.dir("a/b/c");
        m->hotlist({m->dir.path()});
        m->double_click(m->row(0));
        QCOMPARE(std::string(tree_root()), m->dir.path());
        QCOMPARE(m->labels(), std::string(".. a"));
        m->double_click(m->row(1));
        QCOMPARE(std::string(tree_root()), m->dir.at("a"));
        QCOMPARE(tree_depth(), 2);
        m->double_click(m->row(0)); // ".."
        QCOMPARE(std::string(tree_root()), m->dir.path());
        QCOMPARE(tree_depth(), 1);
        m->double_click(m->row(0));
        QVERIFY(!tree_root());
        QCOMPARE(m->labels(), m->dir.path());
    }

    void entering_by_ctrl_enter()
    {
        m->dir.dir("a/b");
        m->hotlist({m->dir.path()});
        m->tree->setFocus();
        m->tree->setCurrentItem(m->row(0));
        QTest::keyClick(m->tree, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(std::string(tree_root()), m->dir.path());
        QVERIFY(m->tree->current()); // the keys go on from here
    }

    void entering_gives_the_path_and_nothing_back_in_the_hotlist()
    {
        m->dir.dir("a/b");
        m->hotlist({m->dir.path(), m->dir.at("a/b")});
        std::string path;
        x_enter_item(m->tree, m->row(1), path); // has no subdirectories
        QVERIFY(!tree_root());
        QCOMPARE(path, m->dir.at("a/b"));
        x_enter_item(m->tree, m->row(0), path);
        QCOMPARE(path, m->dir.path());
        QCOMPARE(x_enter_item(m->tree, m->row(0), path), 0);
        QCOMPARE(path, std::string());
    }

    void rows_below_the_parent_row_do_not_count_as_deeper()
    {
        m->dir.dir("a/b/c");
        m->dir.dir("side/x");
        m->hotlist({m->dir.at("a")});
        std::string path;
        x_enter_item(m->tree, m->row(0), path);
        QCOMPARE(tree_depth(), 1);
        m->expand(m->row(0)); // ".."
        x_enter_item(m->tree, m->row_named("side", m->row(0)), path);
        QCOMPARE(std::string(tree_root()), m->dir.at("side"));
        QCOMPARE(tree_depth(), 1);
    }

    void the_same_root_again_reads_nothing()
    {
        m->dir.dir("a");
        tree_set_contents(m->tree, m->dir.path().c_str());
        m->settle();
        QCOMPARE(m->labels(), std::string(".. a"));
        m->dir.dir("b");
        tree_set_contents(m->tree, m->dir.path().c_str());
        m->settle();
        QCOMPARE(m->labels(), std::string(".. a"));
        tree_set_contents(m->tree, nullptr);
        QVERIFY(!tree_root());
    }

    void below_the_root_directory_every_level_shows_its_way_back()
    {
        tree_set_contents(m->tree, "/");
        m->settle();
        QCOMPARE(m->row(0)->name, std::string(".."));
        TreeItem *tmp = m->row_named("tmp");
        m->expand(tmp);
        QCOMPARE(m->row(0, tmp)->name, std::string(".."));
        std::string path;
        x_get_fullpath(m->row(0, tmp), path);
        QCOMPARE(path, std::string("/"));
    }

    void additions_in_entered_mode_show_when_the_hotlist_is_back()
    {
        m->dir.dir("a");
        tree_set_contents(m->tree, m->dir.path().c_str());
        m->settle();
        tree_add(m->tree, "/usr");
        QCOMPARE(m->labels(), std::string(".. a"));
        tree_set_contents(m->tree, nullptr);
        QCOMPARE(m->labels(), std::string("/usr"));
    }

    void context_menu_row_is_added_and_removed()
    {
        static int opened;
        opened = 0;
        gTreeHooks.context_menu = [](const QPoint &) { ++opened; };
        m->dir.dir("top/inner");
        m->hotlist({m->dir.at("top"), "/usr"});
        m->expand(m->row(0));
        TreeItem *inner = m->row(0, m->row(0));
        const QPoint place = m->at(inner);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, place,
                               m->tree->viewport()->mapToGlobal(place));
        QApplication::sendEvent(m->tree->viewport(), &menu);
        QCOMPARE(opened, 1);
        QCOMPARE(gTree.menu_item, inner);
        tree_add_cb(nullptr);
        QCOMPARE(tree_lookup(m->dir.at("top/inner").c_str()), 1);
        QCOMPARE(m->tree->topLevelItemCount(), 3);
        gTree.menu_item = m->row(1);
        tree_delete_cb(nullptr);
        QVERIFY(!gTree.menu_item);
        QCOMPARE(tree_lookup("/usr"), 0);
        QCOMPARE(m->tree->topLevelItemCount(), 2);
        tree_delete_cb(nullptr); // no row: nothing
        QCOMPARE(m->tree->topLevelItemCount(), 2);
    }

    void the_context_menus_row_is_forgotten_with_its_row()
    {
        m->hotlist({"/usr"});
        gTree.menu_item = m->row(0);
        tree_remove(m->tree, "/usr");
        QVERIFY(!gTree.menu_item);
    }

    void names_are_shown_plainly()
    {
        m->hotlist({"/a<b>&x\n", "/\xff\x01"});
        QVERIFY(m->row(0)->text(0).contains(QStringLiteral("<b>&x")));
        QVERIFY(!m->row(0)->text(0).contains(QLatin1Char('\n')));
        QVERIFY(!m->row(1)->text(0).contains(QChar(1)));
        QVERIFY(m->row(0)->toolTip(0).contains(QStringLiteral("&lt;b&gt;")));
    }

    void hotlist_rows_are_as_wide_as_the_pane_and_names_below_can_be_scrolled_to()
    {
        const std::string name(120, 'n');
        m->dir.dir("top/" + name);
        m->hotlist({m->dir.at("top"), "/" + name});
        const QScrollBar *bar = m->tree->horizontalScrollBar();
        for (const int width : {300, 120, 200}) {
            m->workspace->setSizes({width, 700 - width});
            QTRY_COMPARE(bar->maximum(), 0);
            QCOMPARE(m->tree->columnWidth(0), m->tree->viewport()->width());
        }
        m->expand(m->row(0));
        QTRY_VERIFY(bar->maximum() > 0);
        m->row(0)->setExpanded(false);
        QTRY_COMPARE(bar->maximum(), 0);
    }

    void a_line_that_names_no_place_is_reported()
    {
        m->hotlist({"relative"});
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        tree_selection_cb(m->tree, m->row(0));
        QCOMPARE(seen->text, QStringLiteral("Directory 'relative', not found"));
        QCOMPARE(gDir.path, m->dir.path());
    }

    void a_vanished_directory_is_reported_and_the_tree_stays()
    {
        m->hotlist({m->dir.at("gone")});
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        m->click(m->row(0));
        QVERIFY(seen->came);
        QCOMPARE(m->labels(), m->dir.at("gone"));
    }

    void a_root_that_cannot_be_read_still_leads_back()
    {
        m->hotlist({"/usr", "/etc"});
        m->tree->setCurrentItem(m->row(1));
        tree_set_contents(m->tree, m->dir.at("gone").c_str());
        m->settle();
        QCOMPARE(m->labels(), std::string(".."));
        std::string path;
        x_enter_item(m->tree, m->row(0), path);
        QVERIFY(!tree_root());
        QCOMPARE(m->labels(), std::string("/usr /etc"));
    }

    void the_cursor_comes_back_to_the_row_that_was_entered()
    {
        m->dir.dir("a/b/c");
        m->hotlist({"/usr", m->dir.path()});
        m->tree->setFocus();
        m->tree->setCurrentItem(m->row(1));
        for (int depth = 1; depth <= 2; ++depth) {
            QTest::keyClick(m->tree, Qt::Key_Return, Qt::ControlModifier);
            m->settle();
            QCOMPARE(tree_depth(), depth);
            QTest::keyClick(m->tree, Qt::Key_Down); // from ".." on to "a"
        }
        QTest::keyClick(m->tree, Qt::Key_Home);
        QTest::keyClick(m->tree, Qt::Key_Return, Qt::ControlModifier);
        m->settle();
        QCOMPARE(std::string(tree_root()), m->dir.path());
        QTest::keyClick(m->tree, Qt::Key_Home);
        QTest::keyClick(m->tree, Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(!tree_root());
        QCOMPARE(m->tree->current(), m->row(1));
        QVERIFY(m->tree->hasFocus());
    }

    void sorting_keeps_the_cursor_on_its_path()
    {
        m->hotlist({"/usr", "/etc"});
        m->tree->setCurrentItem(m->row(0));
        tree_sort(m->tree);
        QCOMPARE(m->tree->current(), m->row(1));
    }

    void a_hotlist_file_of_rubbish_is_shown_line_by_line()
    {
        std::string text = std::string("/usr\r\n/a\0b\nrelative\n<b>x</b>\n\x1b[31m\xff\n", 36) +
                           std::string(1000000, 'x') + "\n/usr\r\n";
        m->dir.text("hotlist.001", text);
        tree_load(m->tree, m->dir.path().c_str(), "hotlist.001");
        m->settle();
        // The long line is 976 full pieces, all alike, and a shorter one.
        QCOMPARE(m->tree->topLevelItemCount(), 7);
        QCOMPARE(m->row(0)->name, std::string("/usr\r"));
        QCOMPARE(m->row(1)->name, std::string("/a"));
        QCOMPARE(m->row(3)->text(0), QStringLiteral("<b>x</b>"));
        QCOMPARE(m->row(5)->name, std::string(1024, 'x'));
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(m->row(i)->look, TreeLook::Unreadable);
            auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
            m->click(m->row(i));
            QVERIFY(seen->came);
            QCOMPARE(gDir.path, m->dir.path());
        }
    }

    void dropping_beside_another_row_reorders_the_hotlist()
    {
        m->hotlist({"/usr", "/etc", "/tmp"});
        tree_input_cb(m->tree, m->row(2));
        QCOMPARE(tree_outbound_cb(m->tree), 0);
        tree_dnd_cb(m->tree, m->row(0), false);
        QCOMPARE(m->labels(), std::string("/tmp /usr /etc"));
        QCOMPARE(gTree.paths, (std::vector<std::string>{"/tmp", "/usr", "/etc"}));
        QCOMPARE(m->tree->current(), m->row(0)); // the cursor goes along
        tree_input_cb(m->tree, m->row(0));
        tree_dnd_cb(m->tree, m->row(2), true);
        QCOMPARE(m->labels(), std::string("/usr /etc /tmp"));
        tree_save(m->tree, m->dir.path().c_str(), "hotlist.001");
        QCOMPARE(m->dir.read("hotlist.001"), std::string("/usr\n/etc\n/tmp\n"));
    }

    void a_moved_row_keeps_its_open_level()
    {
        m->dir.dir("top/inner");
        m->hotlist({"/usr", m->dir.at("top")});
        m->expand(m->row(1));
        tree_input_cb(m->tree, m->row(1));
        tree_dnd_cb(m->tree, m->row(0), false);
        QVERIFY(m->row(0)->isExpanded());
        QCOMPARE(m->labels(m->row(0)), std::string("inner"));
    }

    void a_moved_row_keeps_the_levels_below_it()
    {
        m->dir.dir("top/inner/deep");
        m->hotlist({"/usr", m->dir.at("top")});
        m->expand(m->row(1));
        m->expand(m->row(0, m->row(1)));
        tree_input_cb(m->tree, m->row(1));
        tree_dnd_cb(m->tree, m->row(0), false);
        TreeItem *inner = m->row(0, m->row(0));
        QVERIFY(inner->isExpanded());
        QCOMPARE(m->labels(inner), std::string("deep"));
    }

    void a_drop_below_the_top_level_changes_nothing()
    {
        m->dir.dir("top/inner");
        m->hotlist({"/usr", m->dir.at("top")});
        m->expand(m->row(1));
        tree_input_cb(m->tree, m->row(0));
        tree_dnd_cb(m->tree, m->row(0, m->row(1)), true);
        QCOMPARE(gTree.paths, (std::vector<std::string>{"/usr", m->dir.at("top")}));
        tree_input_cb(m->tree, m->row(0, m->row(1))); // no top-level row: no drag
        QVERIFY(!tree_dnd_item());
        QCOMPARE(tree_outbound_cb(m->tree), -1);
    }

    void rows_of_entered_mode_are_not_reordered()
    {
        m->dir.dir("a");
        m->dir.dir("b");
        tree_set_paths({"/usr"});
        tree_set_contents(m->tree, m->dir.path().c_str());
        m->settle();
        tree_input_cb(m->tree, m->row(2));
        QCOMPARE(tree_outbound_cb(m->tree), -1);
        tree_dnd_cb(m->tree, m->row(1), false);
        QCOMPARE(m->labels(), std::string(".. a b"));
        QCOMPARE(gTree.paths, std::vector<std::string>{"/usr"});
    }

    void plain_characters_are_the_trees_own()
    {
        m->hotlist({"/usr"});
        m->tree->setFocus();
        const auto owned = [this](int key, Qt::KeyboardModifiers with, const char *text) {
            QKeyEvent event(QEvent::ShortcutOverride, key, with, QLatin1String(text));
            event.ignore();
            QApplication::sendEvent(m->tree, &event);
            return event.isAccepted();
        };
        QVERIFY(owned(Qt::Key_V, Qt::NoModifier, "v"));
        QVERIFY(owned(Qt::Key_Return, Qt::NoModifier, "\r"));
        QVERIFY(owned(Qt::Key_Return, Qt::ControlModifier, "\r"));
        QVERIFY(!owned(Qt::Key_Return, Qt::ShiftModifier, "\r"));
        QVERIFY(!owned(Qt::Key_E, Qt::ControlModifier, "\x05"));
        QVERIFY(!owned(Qt::Key_F5, Qt::NoModifier, ""));
    }

    void setting_up_gives_the_tree_its_font()
    {
        snprintf(gConfig->tree_font, sizeof gConfig->tree_font, "%s", "TextFont08");
        tree_setup();
        QCOMPARE(m->tree->font(), fonts_of_the_desktop());
        QCOMPARE(tree_goto("/usr"), 0);
    }

private:
    static QFont fonts_of_the_desktop() { return QApplication::font(); }
};

} // namespace tav

QTEST_MAIN(tav::TreeTest)
#include "tree_qtest.moc"
