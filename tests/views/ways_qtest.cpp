// Status bar, Back and Forward, and the Go, View and Hotlist menus.
#include "views/fl_header_menu.h"
#include "views/fl_sort.h"
#include "ways_fixture.h"

namespace tav {

class WaysTest : public QObject {
    Q_OBJECT

    std::unique_ptr<WaysWindow> m;
    std::unique_ptr<QMenu> m_menu;

    // A menu with items of those names.
    QMenu *menu(std::initializer_list<const char *> names)
    {
        m_menu = std::make_unique<QMenu>();
        for (const char *name : names)
            m_menu->addAction(QLatin1String(name))->setObjectName(QLatin1String(name));
        return m_menu.get();
    }
    bool enabled(const char *name) { return menu_item_find(m_menu.get(), name)->isEnabled(); }
    std::vector<std::string> back()
    {
        std::vector<std::string> paths;
        fl_get_back_list(paths);
        return paths;
    }
    std::vector<std::string> forward()
    {
        std::vector<std::string> paths;
        fl_get_forward_list(paths);
        return paths;
    }
    void visit(const char *name) { QCOMPARE(fl_newpath(nullptr, m->dir.dir(name).c_str()), 0); }

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void cleanupTestCase() { ui_gate_close(); }
    void init() { m = std::make_unique<WaysWindow>(); }
    void cleanup()
    {
        m_menu.reset();
        m.reset();
    }

    void status_of_one_item()
    {
        m->dir.file("a", 512);
        fl_refresh();
        QCOMPARE(m->right(), QStringLiteral("1 item, 512 bytes"));
        QCOMPARE(m->left(), QString());
    }

    void status_of_nothing_reads_0_item()
    {
        fl_refresh();
        QCOMPARE(m->right(), QStringLiteral("0 item, 0 bytes"));
    }

    void status_of_two_selected_files()
    {
        m->dir.file("a", 1024);
        m->dir.file("b", 2048);
        m->dir.file("c", 1);
        fl_refresh();
        const QString total = m->right();
        QVERIFY(total.startsWith(QStringLiteral("3 items, ")));
        fl_select("a", FL_EXACT);
        fl_select("b", FL_EXACT);
        status_bar_update();
        QCOMPARE(m->left(), QStringLiteral("2 selected items, 3.0KB"));
        QCOMPARE(m->right(), total); // keeps its text
        fl_unselect("b", FL_EXACT);
        status_bar_update();
        QCOMPARE(m->left(), QStringLiteral("1 selected item, 1.0KB"));
    }

    void status_sums_the_low_32_bits_of_sizes()
    {
        m->dir.file("big", (off_t(5) << 30));
        fl_refresh();
        fl_select_all();
        status_bar_update();
        QCOMPARE(m->left(),
                 QStringLiteral("1 selected item, %1").arg(QLatin1String(ll2str(1u << 30))));
    }

    void status_shows_what_is_typed()
    {
        fl_refresh();
        status_bar_key("ab<c");
        QCOMPARE(m->left(), QStringLiteral("ab<c"));
        QCOMPARE(m->right(), QString());
        status_bar_update();
        QCOMPARE(m->left(), QString());
        QCOMPARE(m->right(), QStringLiteral("0 item, 0 bytes"));
    }

    void back_and_forward_walk_the_stacks()
    {
        const std::string start = m->dir.path();
        for (const char *name : {"a", "b", "c"})
            visit(name);
        QCOMPARE(back(), (std::vector{m->dir.at("b"), m->dir.at("a"), start}));
        QCOMPARE(fl_get_forward_count(), 0);
        fl_back();
        QCOMPARE(gDir.path, m->dir.at("b"));
        QCOMPARE(back(), (std::vector{m->dir.at("a"), start}));
        QCOMPARE(forward(), (std::vector{m->dir.at("c")}));
        visit("d");
        QCOMPARE(fl_get_forward_count(), 0);
        QCOMPARE(back(), (std::vector{m->dir.at("b"), m->dir.at("a"), start}));
    }

    void twelve_changes_leave_ten_paths()
    {
        for (int i = 0; i < 12; ++i)
            visit(("d" + std::to_string(i)).c_str());
        QCOMPARE(fl_get_back_count(), 10);
        QCOMPARE(back().back(), m->dir.at("d1"));
    }

    void forward_with_nothing_ahead_records_the_directory()
    {
        fl_forward();
        QCOMPARE(gDir.path, m->dir.path());
        QCOMPARE(back(), (std::vector{m->dir.path()}));
    }

    void back_with_nothing_behind_does_nothing()
    {
        fl_back();
        QCOMPARE(fl_get_forward_count(), 0);
    }

    void a_back_that_fails_loses_one_path_and_keeps_the_pushed_one()
    {
        const std::string start = m->dir.path();
        visit("a");
        visit("b");
        m->dir.remove("a");
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        fl_back();
        QVERIFY(seen->came);
        QCOMPARE(gDir.path, m->dir.at("b"));
        QCOMPARE(back(), (std::vector{start}));
        QCOMPARE(forward(), (std::vector{m->dir.at("b")}));
    }

    void the_mouses_side_buttons_lead_back_and_forward()
    {
        visit("a");
        QTest::mouseClick(m->list->viewport(), Qt::BackButton);
        QCOMPARE(gDir.path, m->dir.path());
        QTest::mouseClick(m->tree->viewport(), Qt::ForwardButton);
        QCOMPARE(gDir.path, m->dir.at("a"));
        QTest::mouseClick(m->tree->viewport(), Qt::ForwardButton); // nothing ahead: nothing
        QCOMPARE(fl_get_back_count(), 1);
    }

    void the_headers_menu_sorts_and_puts_folders_first()
    {
        m->dir.file("a");
        m->dir.dir("b");
        fl_refresh();
        gConfig->folders_first = 0;
        std::unique_ptr<QMenu> header(fl_header_menu(m->list));
        QAction *first = menu_item_find(header.get(), "folders_first");
        QVERIFY(first && !first->isChecked());
        QVERIFY(menu_item_find(header.get(), "sort_fh_filename")->isChecked());
        fl_goto("a", 0, FL_EXACT);
        first->trigger();
        QCOMPARE(gConfig->folders_first, 1);
        QCOMPARE(std::string(gDir.entries[0]->name), std::string("b"));
        QCOMPARE(gDir.current, 1); // stays on "a"
        header.reset(fl_header_menu(m->list));
        QVERIFY(menu_item_find(header.get(), "folders_first")->isChecked());
        menu_item_find(header.get(), "folders_first")->trigger();
        QCOMPARE(std::string(gDir.entries[0]->name), std::string("a"));
        menu_item_find(header.get(), "sort_fh_date")->trigger();
        header.reset(fl_header_menu(m->list));
        QVERIFY(menu_item_find(header.get(), "sort_fh_date")->isChecked());
        fl_sort_reset();
    }

    void go_menu_offers_what_leads_somewhere()
    {
        QMenu *go = menu({"gm_back", "gm_forward", "gm_up", "gm_home"});
        gm_setup(go);
        QVERIFY(!enabled("gm_back") && !enabled("gm_forward") && enabled("gm_up") &&
                enabled("gm_home"));
        visit("a");
        gm_setup(go);
        QVERIFY(enabled("gm_back"));
        gm_back(nullptr);
        gm_setup(go);
        QVERIFY(!enabled("gm_back") && enabled("gm_forward"));
        gm_forward(nullptr);
        QCOMPARE(gDir.path, m->dir.at("a"));
        gm_up(nullptr);
        QCOMPARE(gDir.path, m->dir.path());
        gm_home(nullptr);
        QCOMPARE(gDir.path, m->home.path());
        QCOMPARE(back().front(), m->dir.path()); // Home enters the history
        gm_setup(go);
        QVERIFY(!enabled("gm_home"));
        fl_setpath("/");
        gm_setup(go);
        QVERIFY(!enabled("gm_up"));
    }

    void without_a_home_the_item_is_enabled_and_does_nothing()
    {
        const TestEnv unset("HOME", nullptr);
        gm_setup(menu({"gm_home"}));
        QVERIFY(enabled("gm_home"));
        QCOMPARE(gm_home(nullptr), W_CONTINUE);
        QCOMPARE(gDir.path, m->dir.path());
    }

    void hotlist_menu_offers_adding_or_removing()
    {
        QMenu *hotlist = menu({"hm_add", "hm_delete"});
        hm_setup(hotlist);
        QVERIFY(enabled("hm_add") && !enabled("hm_delete"));
        hm_add(nullptr);
        hm_add(nullptr);
        QCOMPARE(gTree.paths, (std::vector{m->dir.path()}));
        hm_setup(hotlist);
        QVERIFY(!enabled("hm_add") && enabled("hm_delete"));
        hm_remove(nullptr);
        QVERIFY(gTree.paths.empty());
        QCOMPARE(hm_add_selected(nullptr), W_CONTINUE);
    }

    void hotlist_menu_sorts()
    {
        m->hotlist({"/usr", "/Tmp", "/home"});
        hm_sort(nullptr);
        QCOMPARE(m->labels(), std::string("/Tmp /home /usr"));
    }

    void hotlist_menu_holds_a_cascade_for_every_path()
    {
        static std::vector<std::string> asked;
        static int (*action)(const char *);
        asked.clear();
        gHmHooks.add_directory = [](QMenu *into, QAction *before, const std::string &path,
                                    unsigned flags, int (*chosen)(const char *)) {
            asked.push_back(path + ' ' + std::to_string(flags));
            action = chosen;
            auto *item = new QAction(into);
            into->insertAction(before, item);
        };
        QMenu *hotlist = menu({"hm_populate"});
        QAction *place = hotlist->actions().first();
        hm_populate(hotlist, place);
        QCOMPARE(hotlist->actions().size(), 1); // nothing without paths, no line either
        tree_set_paths({"/usr", m->dir.dir("a")});
        gConfig->flags = CONFIG_DEFAULT_FLAGS;
        hm_populate(hotlist, place);
        QCOMPARE(asked, (std::vector<std::string>{"/usr 4096", m->dir.at("a") + " 4096"}));
        QVERIFY(hotlist->actions().first()->isSeparator());
        QCOMPARE(hotlist->actions().size(), 4);
        QCOMPARE(hotlist->actions().last(), place);
        gConfig->flags |= CONFIG_HIDE_DOT;
        asked.clear();
        hm_populate(hotlist, place);
        QCOMPARE(asked.front(), std::string("/usr 4097"));
        QCOMPARE(action(m->dir.at("a").c_str()), W_CONTINUE);
        QCOMPARE(gDir.path, m->dir.at("a"));
        QCOMPARE(x_newpath_cb(nullptr, "/"), W_CONTINUE);
        QCOMPARE(gDir.path, std::string("/"));
    }

    void view_menu_dims_what_is_never_available()
    {
        vm_setup(menu({"vm_toolbar", "vm_icon", "vm_hotlist", "vm_status", "vm_other"}));
        QVERIFY(!enabled("vm_toolbar") && !enabled("vm_icon") && !enabled("vm_hotlist") &&
                !enabled("vm_status"));
        QVERIFY(enabled("vm_other"));
    }

    void the_clipboard_bar_is_shown_and_hidden()
    {
        auto *bar = m->find<QToolBar>("clip_tb");
        vm_clip_tb_toggle(nullptr);
        QVERIFY(bar->isHidden());
        vm_clip_tb_toggle(nullptr);
        QVERIFY(!bar->isHidden());
    }

    void the_hotlist_button_shows_and_hides_the_panel()
    {
        QVERIFY(m->button("tb_hotlist")->isChecked());
        QTest::mouseClick(m->button("tb_hotlist"), Qt::LeftButton);
        QVERIFY(m->panel->isHidden());
        QCOMPARE(gConfig->hotlist_shown, 0);
        QVERIFY(!m->button("tb_hotlist")->isChecked());
        vm_hotlist_toggle(nullptr);
        QVERIFY(!m->panel->isHidden());
        QCOMPARE(gConfig->hotlist_shown, 1);
        QVERIFY(m->button("tb_hotlist")->isChecked());
    }

    void the_other_items_of_the_view_menu_do_nothing()
    {
        for (auto handler : {vm_nav_tb_toggle, vm_misc_tb_toggle, vm_hotlist_tb_toggle,
                             vm_path_tb_toggle, vm_filter_tb_toggle, vm_icon_toggle,
                             vm_status_toggle, vm_text_and_images, vm_text_only, vm_images_only})
            QCOMPARE(handler(nullptr), W_CONTINUE);
        for (const char *name : {"nav_tb", "misc_tb", "hotlist_tb", "path_tb", "filter_tb"})
            QVERIFY(!m->find<QToolBar>(name)->isHidden());
    }
};

} // namespace tav

QTEST_MAIN(tav::WaysTest)
#include "ways_qtest.moc"
