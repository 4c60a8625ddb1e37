// The toolbars: buttons and their states, the path box, the filter box, which bars are shown.
#include "platform/shown.h"
#include "ways_fixture.h"

#include <QAbstractItemView>
#include <QClipboard>

namespace tav {

class TbTest : public QObject {
    Q_OBJECT

    std::unique_ptr<WaysWindow> m;

    void type(const QString &text)
    {
        m->path()->edit()->setFocus();
        m->path()->edit()->clear();
        QTest::keyClicks(m->path(), text);
    }
    void enter() { QTest::keyClick(m->path(), Qt::Key_Return); }
    QString selected() const { return m->path()->edit()->selectedText(); }
    QColor colour() const { return m->path()->edit()->palette().color(QPalette::Text); }

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void cleanupTestCase() { ui_gate_close(); }
    void init() { m = std::make_unique<WaysWindow>(); }
    void cleanup() { m.reset(); }

    void every_button_is_there_with_its_key_in_the_tip()
    {
        const QStringList names = {QStringLiteral("tb_back"),       QStringLiteral("tb_forward"),
                                   QStringLiteral("tb_up"),         QStringLiteral("tb_home"),
                                   QStringLiteral("tb_refresh"),    QStringLiteral("tb_cut"),
                                   QStringLiteral("tb_copy"),       QStringLiteral("tb_paste"),
                                   QStringLiteral("tb_new_folder"), QStringLiteral("tb_properties"),
                                   QStringLiteral("tb_terminal"),   QStringLiteral("tb_delete"),
                                   QStringLiteral("tb_hotlist"),    QStringLiteral("tb_add")};
        for (const QString &name : names) {
            const auto *button = m->window.findChild<QToolButton *>(name);
            QVERIFY2(button, qPrintable(name));
            QVERIFY(!button->icon().isNull());
            QVERIFY(!button->accessibleName().isEmpty());
            QVERIFY(!button->toolTip().isEmpty());
        }
        QCOMPARE(m->button("tb_copy")->toolTip(), QStringLiteral("Copy (Ctrl-C)"));
        QCOMPARE(m->button("tb_back")->toolTip(), QStringLiteral("Back (Alt-&lt;-)"));
    }

    void the_bars_hold_these_in_this_order()
    {
        const std::pair<const char *, const char *> bars[] = {
            {"nav_tb", "tb_back tb_forward tb_up tb_home tb_refresh"},
            {"clip_tb", "tb_cut tb_copy tb_paste"},
            {"misc_tb", "tb_new_folder tb_properties tb_terminal tb_delete"},
            {"hotlist_tb", "tb_hotlist tb_add"},
            {"path_tb", "tb_curpath"},
            {"filter_tb", "tb_filespec"},
        };
        for (const auto &[name, wanted] : bars) {
            const auto *bar = m->find<QToolBar>(name);
            QStringList names;
            for (QAction *action : bar->actions())
                names += bar->widgetForAction(action)->objectName();
            QCOMPARE(names.join(u' '), QLatin1String(wanted));
        }
    }

    void buttons_call_what_higher_floors_filled_in()
    {
        m->dir.file("a");
        fl_refresh();
        fl_select_all();
        fl_status_flush();
        for (const char *name : {"tb_cut", "tb_copy", "tb_paste", "tb_new_folder", "tb_properties",
                                 "tb_terminal", "tb_delete"})
            QTest::mouseClick(m->button(name), Qt::LeftButton);
        QCOMPARE(gWaysPressed, 7);
    }

    void navigation_buttons_lead_about()
    {
        m->dir.dir("a");
        fl_newpath(nullptr, m->dir.at("a").c_str());
        QTest::mouseClick(m->button("tb_back"), Qt::LeftButton);
        QCOMPARE(gDir.path, m->dir.path());
        QTest::mouseClick(m->button("tb_forward"), Qt::LeftButton);
        QCOMPARE(gDir.path, m->dir.at("a"));
        QTest::mouseClick(m->button("tb_up"), Qt::LeftButton);
        QCOMPARE(gDir.path, m->dir.path());
        QTest::mouseClick(m->button("tb_home"), Qt::LeftButton);
        QCOMPARE(gDir.path, m->home.path());
        m->home.file("new");
        const int before = gDir.count;
        QTest::mouseClick(m->button("tb_refresh"), Qt::LeftButton);
        QCOMPARE(gDir.count, before + 1);
    }

    void back_and_forward_are_dimmed_where_they_lead_nowhere()
    {
        const auto states = [this] {
            return std::pair(m->button("tb_back")->isEnabled(),
                             m->button("tb_forward")->isEnabled());
        };
        tb_update();
        QCOMPARE(states(), std::pair(false, false));
        m->dir.dir("a");
        fl_newpath(nullptr, m->dir.at("a").c_str());
        QCOMPARE(states(), std::pair(true, false));
        fl_back();
        QCOMPARE(states(), std::pair(false, true));
        fl_forward();
        QCOMPARE(states(), std::pair(true, false));
        fl_forward(); // with nothing ahead: one more on the back stack
        QCOMPARE(states(), std::pair(true, false));
    }

    void buttons_for_the_selection_follow_it()
    {
        m->dir.file("a");
        fl_refresh();
        for (bool selected : {true, false}) {
            selected ? fl_select_all() : fl_unselect_all(nullptr);
            fl_status_flush();
            for (const char *name : {"tb_cut", "tb_copy", "tb_delete", "tb_properties"})
                QCOMPARE(m->button(name)->isEnabled(), selected);
            for (const char *name : {"tb_paste", "tb_new_folder", "tb_terminal", "tb_refresh"})
                QVERIFY(m->button(name)->isEnabled());
        }
    }

    void up_is_dimmed_in_the_root_directory()
    {
        QVERIFY(m->button("tb_up")->isEnabled());
        fl_setpath("/");
        QVERIFY(!m->button("tb_up")->isEnabled());
        fl_setpath("/usr");
        QVERIFY(m->button("tb_up")->isEnabled());
    }

    void home_is_dimmed_at_home_and_without_one()
    {
        QVERIFY(m->button("tb_home")->isEnabled());
        fl_setpath(m->home.path().c_str());
        QVERIFY(!m->button("tb_home")->isEnabled());
        fl_setpath("/");
        QVERIFY(m->button("tb_home")->isEnabled());
        const TestEnv unset("HOME", nullptr);
        tb_update();
        QVERIFY(!m->button("tb_home")->isEnabled());
    }

    void add_is_dimmed_when_the_hotlist_has_the_directory()
    {
        QVERIFY(m->button("tb_add")->isEnabled());
        QTest::mouseClick(m->button("tb_add"), Qt::LeftButton);
        QCOMPARE(tree_lookup(gDir.path.c_str()), 1);
        QVERIFY(!m->button("tb_add")->isEnabled());
        hm_remove(nullptr);
        QVERIFY(m->button("tb_add")->isEnabled());
    }

    void the_path_box_shows_the_directory_and_its_end()
    {
        const std::string deep =
            m->dir.dir(std::string(200, 'a') + "/" + std::string(200, 'b') + "/z");
        fl_newpath(nullptr, deep.c_str());
        QCOMPARE(m->path()->currentText().toStdString(), deep);
        QCOMPARE(m->path()->edit()->cursorPosition(), static_cast<int>(deep.size()));
    }

    void entering_a_path_goes_there_and_remembers_it()
    {
        m->dir.dir("a");
        type(QString::fromStdString(m->dir.at("a")));
        enter();
        QCOMPARE(gDir.path, m->dir.at("a"));
        QCOMPARE(std::string(cl_get(gPathList, 1)), m->dir.at("a"));
        QCOMPARE(m->path()->count(), 1);
        QCOMPARE(fl_get_back_count(), 1);
    }

    void the_same_directory_again_is_not_remembered()
    {
        type(QString::fromStdString(m->dir.path() + "/"));
        enter();
        QVERIFY(!cl_get(gPathList, 1));
        QCOMPARE(m->path()->currentText().toStdString(), m->dir.path());
    }

    void home_and_relative_paths_are_made_absolute_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("below_home");
        QTest::newRow("home") << "~"
                              << "";
        QTest::newRow("below home") << "~/.ph"
                                    << "/.ph";
        QTest::newRow("relative") << ".ph"
                                  << "/.ph";
        QTest::newRow("here") << "./.ph"
                              << "/.ph";
        QTest::newRow("up and down") << "x/../.ph"
                                     << "/.ph";
        QTest::newRow("file address") << "file://HOME/.ph"
                                      << "/.ph";
    }
    void home_and_relative_paths_are_made_absolute()
    {
        QFETCH(QString, typed);
        QFETCH(QString, below_home);
        const QString home = QString::fromStdString(m->home.path());
        fl_setpath(typed.startsWith(QLatin1Char('~')) ? "/" : m->home.path().c_str());
        type(typed.replace(QStringLiteral("HOME"), home));
        enter();
        QCOMPARE(QString::fromStdString(gDir.path), home + below_home);
    }

    void a_failed_path_keeps_text_and_keyboard()
    {
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        type(QStringLiteral("/no/such/place"));
        enter();
        QCOMPARE(seen->text, QStringLiteral("Directory '/no/such/place', not found"));
        QCOMPARE(m->path()->currentText(), QStringLiteral("/no/such/place"));
        QVERIFY(QTest::qWaitFor([this] { return m->path()->edit()->hasFocus(); }));
        QCOMPARE(gDir.path, m->dir.path());
        QVERIFY(!cl_get(gPathList, 1));
    }

    void escape_restores_the_current_path()
    {
        type(QStringLiteral("/no/such"));
        QTest::keyClick(m->path(), Qt::Key_Escape);
        QCOMPARE(m->path()->currentText().toStdString(), m->dir.path());
        QVERIFY(m->list->hasFocus());
    }

    void a_refresh_leaves_alone_what_is_being_typed()
    {
        type(QStringLiteral("/half"));
        fl_refresh();
        QCOMPARE(m->path()->currentText(), QStringLiteral("/half"));
    }

    void a_path_of_a_million_characters_is_only_refused()
    {
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        m->path()->edit()->setFocus();
        QGuiApplication::clipboard()->setText(QString(1000000, QLatin1Char('/')) +
                                              QString(1000000, QLatin1Char('x')));
        m->path()->edit()->selectAll();
        m->path()->edit()->setMaxLength(INT_MAX);
        m->path()->edit()->paste();
        enter();
        QVERIFY(seen->came);
        QCOMPARE(gDir.path, m->dir.path());
    }

    void a_directory_with_a_line_break_is_shown_but_not_remembered()
    {
        const std::string odd = m->dir.dir("a\nb");
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        m->path()->addItem(QStringLiteral("odd"), QByteArray::fromStdString(odd));
        m->path()->setCurrentIndex(0);
        Q_EMIT m->path()->activated(0);
        QCOMPARE(gDir.path, odd);
        QVERIFY(seen->came);
        QVERIFY(!cl_get(gPathList, 1));
        auto again = test::boxes_answer_next(QStringLiteral("&Continue"));
        hm_add(nullptr);
        QVERIFY(again->came);
        QVERIFY(gTree.paths.empty());
    }

    void picks_from_the_list_count_when_they_are_final()
    {
        m->dir.dir("a");
        m->dir.dir("b");
        for (const char *name : {"a", "b"})
            fl_newpath(nullptr, m->dir.at(name).c_str()), cl_add(gPathList, gDir.path.c_str());
        fl_setpath(m->dir.path().c_str());
        cl_apply(gPathList, combo_box(m->path()));
        m->path()->setFocus();
        QTest::keyClick(m->path(), Qt::Key_Down); // opens the list
        QAbstractItemView *view = m->path()->view();
        QVERIFY(QTest::qWaitForWindowExposed(view->window()));
        view->setCurrentIndex(view->model()->index(0, 0));
        QTest::keyClick(view, Qt::Key_Down);
        QCOMPARE(gDir.path, m->dir.path()); // only looked at
        QTest::keyClick(view, Qt::Key_Return);
        QTRY_COMPARE(gDir.path, m->dir.at("a"));
    }

    void leaving_the_box_picks_nothing()
    {
        m->dir.dir("a");
        cl_add(gPathList, m->dir.at("a").c_str());
        cl_apply(gPathList, combo_box(m->path()));
        type(QString::fromStdString(m->dir.at("a")));
        m->list->setFocus();
        QCOMPARE(gDir.path, m->dir.path());
    }

    void the_wheel_picks_nothing()
    {
        m->path()->addItems({QStringLiteral("/usr"), QStringLiteral("/tmp")});
        QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m->path(), &wheel);
        QCOMPARE(gDir.path, m->dir.path());
    }

    void typing_completes_and_selects_the_tail()
    {
        cl_add(gPathList, "/usr/local");
        type(QStringLiteral("/us"));
        QCOMPARE(m->path()->currentText(), QStringLiteral("/usr/local"));
        QCOMPARE(selected(), QStringLiteral("r/local"));
        QTest::keyClicks(m->path(), QStringLiteral("r"));
        QCOMPARE(selected(), QStringLiteral("/local"));
        QTest::keyClicks(m->path(), QStringLiteral("x"));
        QCOMPARE(m->path()->currentText(), QStringLiteral("/usrx"));
    }

    void a_completed_name_that_is_no_text_can_be_entered()
    {
        const std::string odd = m->dir.dir("odd\xff\x02");
        cl_add(gPathList, odd.c_str());
        cl_apply(gPathList, combo_box(m->path()));
        type(QString::fromStdString(m->dir.at("odd")));
        QCOMPARE(m->path()->currentText(), shown_text(odd));
        enter();
        QCOMPARE(gDir.path, odd);
    }

    void deleting_and_typing_in_the_middle_complete_nothing()
    {
        cl_add(gPathList, "/usr/local");
        type(QStringLiteral("/us"));
        QTest::keyClick(m->path(), Qt::Key_Delete);
        QCOMPARE(m->path()->currentText(), QStringLiteral("/us"));
        QTest::keyClick(m->path(), Qt::Key_Backspace);
        QCOMPARE(m->path()->currentText(), QStringLiteral("/u"));
        QTest::keyClick(m->path(), Qt::Key_Home);
        QTest::keyClicks(m->path(), QStringLiteral("/"));
        QCOMPARE(m->path()->currentText(), QStringLiteral("//u"));
    }

    void pasted_text_is_not_completed()
    {
        cl_add(gPathList, "/usr/local");
        QGuiApplication::clipboard()->setText(QStringLiteral("/us"));
        m->path()->edit()->setFocus();
        m->path()->edit()->clear();
        QTest::keySequence(m->path(), QKeySequence(QKeySequence::Paste));
        QCOMPARE(m->path()->currentText(), QStringLiteral("/us"));
    }

    void without_the_option_nothing_is_completed()
    {
        gOptions &= ~OPTION_COMPLETE;
        cl_add(gPathList, "/usr/local");
        type(QStringLiteral("/us"));
        QCOMPARE(m->path()->currentText(), QStringLiteral("/us"));
    }

    void a_completion_shorter_than_the_typed_text_selects_nothing()
    {
        cl_add(gPathList, "http://h/x");
        type(QStringLiteral("http://")); // the most recent entry, without its prefix
        QCOMPARE(m->path()->currentText(), QStringLiteral("h/x"));
        QCOMPARE(selected(), QString());
    }

    void web_addresses_are_blue()
    {
        type(QStringLiteral("ftp://h"));
        QCOMPARE(colour(), QColor(0, 0, 0xFF));
        type(QStringLiteral("/usr"));
        QCOMPARE(colour(), QColor(Qt::black));
        gOptions &= ~OPTION_COLOUR;
        type(QStringLiteral("ftp://h"));
        QCOMPARE(colour(), QColor(Qt::black));
    }

    void colours_stay_readable_on_dark()
    {
        QPalette dark = m->path()->palette();
        dark.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
        m->path()->setPalette(dark);
        type(QStringLiteral("ftp://h"));
        QVERIFY(colour().lightness() > 150);
    }

    void colours_follow_the_desktops()
    {
        type(QStringLiteral("ftp://h"));
        QCOMPARE(colour(), QColor(0, 0, 0xFF));
        QPalette dark = m->path()->palette();
        dark.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
        m->path()->setPalette(dark);
        QVERIFY(colour().lightness() > 150);
    }

    void the_boxes_do_not_complete_or_insert_by_themselves()
    {
        for (TbBox *box : {m->path(), m->filter()}) {
            QVERIFY(!box->completer());
            QCOMPARE(box->insertPolicy(), QComboBox::NoInsert);
        }
    }

    void a_filter_is_set_and_remembered()
    {
        m->dir.file("a.c");
        m->dir.file("b.h");
        fl_refresh();
        m->filter()->setEditText(QStringLiteral("*.c"));
        QTest::keyClick(m->filter(), Qt::Key_Return);
        QCOMPARE(gDir.count, 1);
        QCOMPARE(cl_get(gSpecList, 1), "*.c");
        QCOMPARE(m->filter()->count(), 1);
        QTest::keyClick(m->filter(), Qt::Key_Return); // the same: nothing
        QCOMPARE(gSpecList->count, 1);
        m->filter()->setEditText(QString());
        QTest::keyClick(m->filter(), Qt::Key_Return);
        QCOMPARE(gDir.filespec, std::string("*"));
        QCOMPARE(m->filter()->currentText(), QStringLiteral("*"));
        QCOMPARE(gDir.count, 2);
    }

    void a_filter_of_a_million_stars_takes_no_time_worth_telling()
    {
        m->dir.many("some-name-", 50);
        m->filter()->edit()->setMaxLength(INT_MAX);
        m->filter()->setEditText(QString(1000000, QLatin1Char('*')) + QStringLiteral("b"));
        QTest::keyClick(m->filter(), Qt::Key_Return);
        QCOMPARE(gDir.count, 0);
    }

    void escape_restores_the_filter()
    {
        m->filter()->edit()->setFocus();
        m->filter()->setEditText(QStringLiteral("*.c"));
        QTest::keyClick(m->filter(), Qt::Key_Escape);
        QCOMPARE(m->filter()->currentText(), QStringLiteral("*"));
        QVERIFY(m->list->hasFocus());
    }

    void hidden_bars_are_remembered_beside_the_settings()
    {
        m->dir.text("tav.conf", "[other]\nkey=1\n");
        tb_load_shown(m->dir.path().c_str());
        auto *clip = m->find<QToolBar>("clip_tb");
        QVERIFY(!clip->isHidden());
        clip->toggleViewAction()->trigger(); // as the menu on a toolbar does
        QVERIFY(clip->isHidden());
        const std::string text = m->dir.read("tav.conf");
        QVERIFY(text.find("clip_tb=0\n") != std::string::npos);
        QVERIFY(text.find("nav_tb=1\n") != std::string::npos);
        QVERIFY(text.starts_with("[other]\nkey=1\n"));
        clip->setVisible(true);
        tb_load_shown(m->dir.path().c_str());
        QVERIFY(clip->isHidden());
        QVERIFY(!m->find<QToolBar>("nav_tb")->isHidden());
    }

    void without_a_settings_directory_nothing_is_written()
    {
        tb_load_shown(nullptr);
        QCOMPARE(tb_save_shown(), -1);
        QVERIFY(!m->find<QToolBar>("clip_tb")->isHidden());
    }

    void the_desktops_menu_offers_every_bar()
    {
        std::unique_ptr<QMenu> menu(m->window.createPopupMenu());
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 6);
    }
};

} // namespace tav

QTEST_MAIN(tav::TbTest)
#include "tb_qtest.moc"
