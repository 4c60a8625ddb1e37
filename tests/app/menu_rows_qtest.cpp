// Every row of every menu of the program, triggered by the mouse, by letters and arrows, and by its
// key, where it can act and where it must not. Goes through the tables themselves.
#include "menu_rows.h"

#include "app/about.h"
#include "commands/dtm_menu.h"
#include "commands/fm_dlg.h"
#include "commands/lcm.h"
#include "fileops/slot.h"

#include <QAbstractScrollArea>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QMenuBar>
#include <cstring>

namespace tav {

using namespace tav::test;

namespace {

constexpr int EDIT_MENU = 1;

const MenuTable *x_table(int index)
{
    for (const MenuTable *table = gMenuBar; table->name; table++)
        if (index-- == 0)
            return table;
    return index == 0 ? &gListMenu : &gHotlistMenu;
}

int x_bar_tables()
{
    int count = 0;
    while (gMenuBar[count].name)
        count++;
    return count;
}

const RowCase *x_case(const char *name)
{
    for (const RowCase &one : gRowCases)
        if (strcmp(one.name, name) == 0)
            return &one;
    for (const RowCase &one : gRunTimeCases)
        if (strcmp(one.name, name) == 0)
            return &one;
    return nullptr;
}

struct KeyPress {
    int key;
    Qt::KeyboardModifiers modifiers;
};

KeyPress x_key(const MenuRow &row)
{
    static const QHash<QString, int> special = {
        {QStringLiteral("Ret"), Qt::Key_Return},     {QStringLiteral("Del"), Qt::Key_Delete},
        {QStringLiteral("Bksp"), Qt::Key_Backspace}, {QStringLiteral("<-"), Qt::Key_Left},
        {QStringLiteral("->"), Qt::Key_Right},
    };
    const QString name = QLatin1String(row.key);
    KeyPress press = {special.value(name, QKeySequence(name)[0].key()), {}};
    press.modifiers |= row.modifiers & MENU_CTRL ? Qt::ControlModifier : Qt::NoModifier;
    press.modifiers |= row.modifiers & MENU_SHIFT ? Qt::ShiftModifier : Qt::NoModifier;
    press.modifiers |= row.modifiers & MENU_ALT ? Qt::AltModifier : Qt::NoModifier;
    return press;
}

Qt::Key x_letter(const QString &label)
{
    const QKeySequence mnemonic = QKeySequence::mnemonic(label);
    return mnemonic.isEmpty() ? Qt::Key_unknown : mnemonic[0].key();
}

// Lets everything happen that is under way.
void x_settle()
{
    for (int i = 0; i < 5; i++) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

QMenu *x_open_popup() { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }

// The item that stands for the row in the open menu: itself, or what its function has added.
QAction *x_item(const QMenu *menu, const MenuRow &row)
{
    QAction *found = nullptr;
    bool below = false;
    const bool root = strstr(row.name, "_root") != nullptr;
    for (QAction *action : menu->actions()) {
        if (root && qobject_cast<DtmAnyItem *>(action))
            return action;
        below = below || action->objectName() == QLatin1String(row.name);
        if (row.kind != MENU_FUNCTION && action->objectName() == QLatin1String(row.name))
            return action;
        if (row.kind == MENU_FUNCTION && !below && action->property("tav_populated").isValid() &&
            !action->isSeparator() && !found)
            found = action;
    }
    return found;
}

} // namespace

class MenuRowsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> m_window;

    static QWidget *widget(const char *name) { return w_find(name); }

    // Opens the menu of a table by the mouse or by the keyboard; null when it does not open.
    static QMenu *open_menu(int table, bool by_mouse)
    {
        if (table < x_bar_tables())
            open_bar_menu(table, by_mouse);
        else
            open_context_menu(
                w_find<QAbstractScrollArea>(x_table(table) == &gListMenu ? "filelist" : "tree"),
                by_mouse);
        x_settle();
        return x_open_popup();
    }
    static void open_bar_menu(int table, bool by_mouse)
    {
        auto *bar = w_find<QMenuBar>("menubar");
        QAction *title = bar->actions()[table];
        if (by_mouse)
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(title).center());
        else
            QTest::keyClick(fl_view(), x_letter(title->text()), Qt::AltModifier);
    }
    static void open_context_menu(QAbstractScrollArea *view, bool by_mouse)
    {
        QWidget *area = view->viewport();
        const auto *tree = qobject_cast<const QTreeWidget *>(view);
        QPoint place(area->width() / 2, area->height() - 5);
        if (tree && tree->currentItem())
            place = tree->visualItemRect(tree->currentItem()).center();
        if (!tree && gDir.nselected > 0)
            place = fl_view()->row_rect(fl_row_of_index(gDir.current)).center();
        if (by_mouse)
            QTest::mouseClick(area, Qt::RightButton, {}, place);
        const auto reason = by_mouse ? QContextMenuEvent::Mouse : QContextMenuEvent::Keyboard;
        QContextMenuEvent event(reason, place, area->mapToGlobal(place));
        QApplication::sendEvent(area, &event);
    }

    // Goes to the item and chooses it; its submenu, if it has one, is open then.
    static void choose(QMenu *menu, QAction *item, bool by_mouse)
    {
        if (const auto *directory = qobject_cast<const DtmAnyItem *>(item))
            QTRY_VERIFY(directory->state() != DtmState::unknown);
        if (by_mouse) {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
            return;
        }
        const Qt::Key letter = x_letter(item->text());
        const Qt::Key key = letter == Qt::Key_unknown ? Qt::Key_Down : letter;
        for (qsizetype tries = 0; tries < menu->actions().size(); tries++) {
            QTest::keyClick(menu, key);
            if (!menu->isVisible() || x_open_popup() != menu)
                return; // the letter has chosen it
            if (menu->activeAction() == item)
                break;
        }
        if (menu->activeAction() == item && item->isEnabled())
            QTest::keyClick(menu, Qt::Key_Return);
    }

    // Triggers a row through its menu, as far as it lets itself be triggered.
    static void trigger_by_menu(int table, const MenuRow *row, bool by_mouse)
    {
        const MenuRow *parent = row;
        while (parent->level > 1 && (parent->level != 1 || parent->kind != MENU_SUBMENU))
            parent--;
        QMenu *menu = open_menu(table, by_mouse);
        for (const MenuRow *step : {parent, row}) {
            QAction *item = menu ? x_item(menu, *step) : nullptr;
            if (item == nullptr || (step == parent && parent != row && !item->isEnabled()))
                return;
            choose(menu, item, by_mouse);
            if (step == row)
                return;
            QVERIFY(QTest::qWaitFor([item] { return item->menu()->isVisible(); }));
            menu = item->menu();
        }
    }
    static void trigger_by_key(const MenuRow &row, const char *focus)
    {
        const KeyPress press = x_key(row);
        QWidget *up = QApplication::activeModalWidget();
        if (!wblock_is_blocked(widget(focus)))
            widget(focus)->setFocus();
        QTest::keyClick(up ? up : widget(focus), Qt::Key(press.key), press.modifiers);
    }

    static void remember()
    {
        gRows.path = gDir.path;
        gRows.hotlist = gTree.paths.size();
        gRows.first = gTree.paths.empty() ? "" : gTree.paths.front();
        gRows.panel = w_find("hotlist_panel")->isHidden();
        gRows.selected = selected_names();
        gJobs.clear();
    }

    // Another dialog than the row's own.
    static void put_a_dialog_up(const MenuRow &row)
    {
        if (strcmp(row.name, "help_about") == 0)
            fm_new_file(gBase);
        else
            help_about(gBase);
        QVERIFY(wblock_is_blocked(fl_view()));
    }

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void init()
    {
        m_window = std::make_unique<Window>();
        gRows = {};
        gRows.window = m_window.get();
        for (const char *name : {"shown/a.c", "shown/b.c", "shown/thing"})
            m_window->dir.file(name);
        for (const char *name : {"shown/docs", "shown/more"})
            m_window->dir.dir(name);
        for (const char *name : {"ped", "lp", "pterm", "tav"})
            m_window->stand_in(name);
        x_history_clear(backward_history);
        x_history_clear(forward_history);
        m_window->open();
        jobs_catch();
        gSlotHooks.exit = [] { gRows.exits++; };
        QGuiApplication::clipboard()->setMimeData(new QMimeData);
        gRows.count = gDir.count;
        Window::select({});
    }
    void cleanup()
    {
        while (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *dialog = qobject_cast<QDialog *>(window))
                dialog->reject();
        x_settle();
        (void)m_window->nothing_received();
        if (base_is_gone()) {
            delete gBase;
            gBase = nullptr;
        }
        m_window.reset();
    }

    void everyRowHasACaseAndEveryCaseARow()
    {
        QStringList rows;
        for (int table = 0; table < x_bar_tables() + 2; table++)
            for (const MenuRow *row = x_table(table)->rows; row->level != 0; row++)
                if (row->kind != MENU_SEPARATOR)
                    rows.append(QLatin1String(row->name));
        for (const QString &name : rows)
            QVERIFY2(x_case(name.toLatin1()), qPrintable(name));
        for (const RowCase &one : gRowCases)
            QVERIFY2(rows.contains(QLatin1String(one.name)), one.name);
    }

    void everyRow_data()
    {
        QTest::addColumn<int>("table");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("can");
        for (int table = 0; table < x_bar_tables() + 2; table++) {
            const MenuRow *rows = x_table(table)->rows;
            for (int i = 0; rows[i].level != 0; i++) {
                if (rows[i].kind == MENU_SEPARATOR)
                    continue;
                const RowCase *one = x_case(rows[i].name);
                for (const char *way : {"mouse", "letters", "key"}) {
                    const bool context = table >= x_bar_tables();
                    if (strcmp(way, "key") == 0 && (rows[i].key == nullptr || context))
                        continue;
                    if (one && one->can)
                        QTest::addRow("%s by %s", rows[i].name, way)
                            << table << i << QString::fromLatin1(way) << true;
                    QTest::addRow("%s not by %s", rows[i].name, way)
                        << table << i << QString::fromLatin1(way) << false;
                }
            }
        }
    }
    void everyRow()
    {
        QFETCH(int, table);
        QFETCH(int, row);
        QFETCH(QString, way);
        QFETCH(bool, can);
        const MenuRow &tested = x_table(table)->rows[row];
        const RowCase *one = x_case(tested.name);
        QVERIFY(one);
        if (can)
            one->can();
        else if (one->cannot)
            one->cannot();
        else
            put_a_dialog_up(tested);
        remember();
        QVERIFY(!one->acted());
        if (way == QLatin1String("key"))
            trigger_by_key(tested, one->focus);
        else
            trigger_by_menu(table, &tested, way == QLatin1String("mouse"));
        if (can) {
            QTRY_VERIFY(one->acted());
            return;
        }
        x_settle();
        QVERIFY(m_window->nothing_received());
        QVERIFY(!one->acted());
    }

    void everyRunTimeRow_data()
    {
        QTest::addColumn<int>("table");
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("by_mouse");
        QTest::addColumn<bool>("can");
        for (const int table : {EDIT_MENU, x_bar_tables()})
            for (int i = 0; gRunTimeRows[i].level != 0; i++)
                for (const bool by_mouse : {true, false})
                    for (const bool can : {true, false}) {
                        const char *name = gRunTimeRows[i].name;
                        if (table != EDIT_MENU || strncmp(name, "mgen_", 5) == 0)
                            QTest::addRow("%s%s of %s by %s", name, can ? "" : " not",
                                          x_table(table)->name, by_mouse ? "mouse" : "letters")
                                << table << i << by_mouse << can;
                    }
    }
    void everyRunTimeRow()
    {
        QFETCH(int, table);
        QFETCH(int, row);
        QFETCH(bool, by_mouse);
        QFETCH(bool, can);
        const MenuRow &tested = gRunTimeRows[row];
        const RowCase *one = x_case(tested.name);
        QVERIFY(one);
        can ? one->can() : one->cannot();
        remember();
        QVERIFY(!one->acted());
        trigger_by_menu(table, &tested, by_mouse);
        if (can) {
            QTRY_VERIFY(one->acted());
            return;
        }
        x_settle();
        QVERIFY(m_window->nothing_received());
        QVERIFY(!one->acted());
    }

    void everyRunTimeRowOfTheContextMenuIsTested()
    {
        for (void (*state)() : {rows::a_file, rows::a_directory, rows::a_clipboard}) {
            state();
            QMenu menu;
            lcm_setup(&menu);
            for (const QAction *item : menu.actions())
                QVERIFY2(item->isSeparator() || x_case(item->objectName().toLatin1()),
                         qPrintable(item->text()));
        }
    }

    void aDialogKeepsTheContextMenuAway()
    {
        rows::a_file();
        help_about(gBase);
        QVERIFY(!open_menu(x_bar_tables(), true));
    }

    void theKeysOfTheHotlistsContextMenuWorkInItsPanel()
    {
        rows::on_a_hotlist_row();
        tree_view()->setFocus();
        const size_t before = gTree.paths.size();
        QTest::keyClick(tree_view(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(gTree.paths.size(), before + 1); // the directory shown, once
        QCOMPARE(gTree.paths.back(), gDir.path);
        QTest::keyClick(tree_view(), Qt::Key_R, Qt::ControlModifier);
        QCOMPARE(gTree.paths.size(), before);
    }

    void aPlainLetterInTheListIsTypedAndRunsNothing()
    {
        Window::select({"a.c"});
        QTest::keyClick(fl_view(), Qt::Key_V);
        QVERIFY(m_window->nothing_received());
        QCOMPARE(Window::status(), QStringLiteral("/v"));
    }

    void nothingStaysDimmedOnceTheMenuHasClosed_data()
    {
        QTest::addColumn<int>("table");
        for (int i = 0; i < x_bar_tables(); i++)
            QTest::newRow(gMenuBar[i].name) << i;
    }
    void nothingStaysDimmedOnceTheMenuHasClosed()
    {
        QFETCH(int, table);
        auto *menu = w_find<QMenu>(gMenuBar[table].name);
        const auto dimmed = [menu] {
            int count = 0;
            for (const QAction *action : menu->actions())
                count += !action->isSeparator() && !action->isEnabled();
            return count;
        };
        QCOMPARE(open_menu(table, true), menu);
        QCOMPARE(dimmed() > 0, gMenuBar[table].setup != nullptr);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu->isVisible());
        QCOMPARE(dimmed(), 0);
    }

    void pasteAndPrintShareTheirLetterAndTakeTurns()
    {
        rows::a_clipboard();
        rows::a_file();
        QMenu *menu = open_menu(x_bar_tables(), true);
        QVERIFY(menu);
        for (const char *name : {"lcm_print", "lcm_paste", "lcm_print"}) {
            QTest::keyClick(menu, Qt::Key_P);
            QVERIFY(menu->isVisible());
            QCOMPARE(menu->activeAction()->objectName(), QLatin1String(name));
        }
        QVERIFY(m_window->nothing_received() && gJobs.empty());
    }

    // What a field does not use itself is still the window's.
    void inATextFieldItsOwnKeysComeFirst()
    {
        Window::select({"a.c"});
        auto *field = w_find<QComboBox>("tb_curpath")->lineEdit();
        field->setFocus();
        field->setText(QStringLiteral("v"));
        QTest::keyClick(field, Qt::Key_V);
        QCOMPARE(field->text(), QStringLiteral("vv"));
        QTest::keyClick(field, Qt::Key_Backspace);
        QCOMPARE(field->text(), QStringLiteral("v"));
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(field->selectedText(), QStringLiteral("v"));
        QTest::keyClick(field, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("v"));
        QTest::keyClick(field, Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(field->text(), QString());
        QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(field->text(), QStringLiteral("v"));
        QTest::keyClick(field, Qt::Key_Home);
        QTest::keyClick(field, Qt::Key_Delete);
        QCOMPARE(field->text(), QString());
        QVERIFY(m_window->nothing_received() && gJobs.empty() && boxes_standing().isEmpty());
        QCOMPARE(selected_names(), std::string("a.c"));
        QTest::keyClick(field, Qt::Key_F3);
        QTRY_VERIFY(dialog_up("new_dlg"));
    }

    void aKeyThatAContextMenuShowsIsOneOfTheBars_data()
    {
        QTest::addColumn<int>("table");
        QTest::newRow("list") << x_bar_tables();
        QTest::newRow("hotlist") << x_bar_tables() + 1;
    }
    void aKeyThatAContextMenuShowsIsOneOfTheBars()
    {
        QFETCH(int, table);
        QStringList keys;
        for (int i = 0; i < x_bar_tables(); i++)
            for (const MenuRow *row = x_table(i)->rows; row->level != 0; row++)
                keys.append(menu_accelerator_text(row->modifiers, row->key));
        for (const MenuRow *row = x_table(table)->rows; row->level != 0; row++)
            QVERIFY(keys.contains(menu_accelerator_text(row->modifiers, row->key)));
    }
};

} // namespace tav

QTEST_MAIN(tav::MenuRowsTest)
#include "menu_rows_qtest.moc"
