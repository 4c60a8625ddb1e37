// The tables of the program's menus, row by row, and what their rows become.
#include "app/menu.h"
#include "commands/lcm.h"

#include <QMenu>
#include <QTest>

namespace tav {

namespace {

// "fm_new_file F&ile F3"; ". " before a row of a submenu, "submenu", "toggle" or "function" behind.
QString x_line(const MenuRow &row)
{
    if (row.kind == MENU_SEPARATOR)
        return row.level == 2 ? QStringLiteral(". -") : QStringLiteral("-");
    QStringList words{QLatin1String(row.name)};
    if (*row.label)
        words.append(QLatin1String(row.label));
    if (row.key)
        words.append(menu_accelerator_text(row.modifiers, row.key));
    for (const auto &[kind, word] :
         {std::pair{MENU_SUBMENU, "submenu"}, std::pair{MENU_TOGGLE, "toggle"},
          std::pair{MENU_FUNCTION, "function"}})
        if (row.kind == kind)
            words.append(QLatin1String(word));
    return (row.level == 2 ? QStringLiteral(". ") : QString()) + words.join(QLatin1Char(' '));
}

QStringList x_lines(const MenuRow *rows)
{
    QStringList lines;
    for (; rows->level != 0; rows++)
        lines.append(x_line(*rows));
    return lines;
}

const char *sFile = R"(fm_new &New submenu
. fm_new_file F&ile F3
. fm_new_folder &Folder F4
. fm_new_window &Window Ctrl-N
-
fm_open &Open Ret
fm_open_another Open In Win&dow Ctrl-Ret
fm_view &View V
fm_edit &Edit Ctrl-E
fm_open_with Open &With... Shift-Ret
-
fm_open_pterm Open &Terminal Ctrl-T
-
fm_refresh &Refresh F5
-
fm_print &Print Ctrl-P
fm_print_directory Print Dire&ctory
-
fm_inspect &Inspect... F9
-
fm_exit E&xit Alt-X)";

const char *sEdit = R"(em_cut Cu&t Ctrl-X
em_copy C&opy Ctrl-C
em_paste &Paste Ctrl-V
em_delete &Delete Del
em_rename &Rename F2
-
em_populate function
-
em_select &Select submenu
. em_select_all &All Ctrl-A
. em_select_pattern &Pattern Ctrl-S
em_unselect &Unselect submenu
. em_unselect_all &All Ctrl-U
. em_unselect_pattern &Pattern
em_invert &Invert Selection Ctrl-I
-
em_preferences &Preferences... F10
em_associations &Associations... F11)";

const char *sView = R"(vm_toolbar Toolbars submenu
. vm_nav_tb &Navigation toggle
. vm_clip_tb &Clipboard toggle
. vm_misc_tb &Misc toggle
. vm_hotlist_tb &Hotlist toggle
. vm_path_tb &Path toggle
. vm_filter_tb &Filter toggle
. -
. vm_text_and_images Text &and Images
. vm_text_only &Text Only
. vm_images_only &Images Only
vm_icon &Icon Pane toggle
vm_hotlist &Hotlist Pane toggle
vm_status &Status Pane toggle)";

const char *sGo = R"(gm_back Back Alt-<-
gm_forward Forward Alt-->
gm_up Up One Level Bksp
gm_home Home F6)";

const char *sHotlist = R"(hm_add &Add Current Directory Ctrl-D
hm_delete &Remove Current Directory Ctrl-R
hm_populate function)";

const char *sHelp = R"(help_quickref &Quick Reference F1
help_about &About)";

const char *sListContext = R"(lcm_new &New submenu
. lcm_new_folder F&older
. lcm_new_file F&ile)";

const char *sHotlistContext = R"(hcm_add Add Ctrl-D
hcm_delete Remove Ctrl-R
-
hcm_sort Sort)";

} // namespace

class MenuTablesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTableReadsAsItShould_data()
    {
        QTest::addColumn<const MenuRow *>("rows");
        QTest::addColumn<QString>("lines");
        const char *bar[] = {sFile, sEdit, sView, sGo, sHotlist, sHelp};
        for (int i = 0; gMenuBar[i].name; i++)
            QTest::newRow(gMenuBar[i].name) << gMenuBar[i].rows << QString::fromLatin1(bar[i]);
        QTest::newRow("list_cmenu") << gListMenu.rows << QString::fromLatin1(sListContext);
        QTest::newRow("hotlist_cmenu") << gHotlistMenu.rows << QString::fromLatin1(sHotlistContext);
    }
    void everyTableReadsAsItShould()
    {
        QFETCH(const MenuRow *, rows);
        QFETCH(QString, lines);
        QCOMPARE(x_lines(rows), lines.split(QLatin1Char('\n')));
    }

    void theBarHasSixMenus()
    {
        QStringList titles;
        for (const MenuTable *table = gMenuBar; table->name; table++)
            titles.append(QString::fromLatin1(table->title).remove(QLatin1Char('&')));
        QCOMPARE(titles.join(QLatin1Char(' ')), QStringLiteral("File Edit View Go Hotlist Help"));
    }

    void linesAreMarkedAsLinesAndNothingElseIs()
    {
        for (const MenuTable *table = gMenuBar; table->name; table++)
            for (const MenuRow *row = table->rows; row->level != 0; row++)
                QCOMPARE(row->style, row->kind == MENU_SEPARATOR ? MENU_LINE : 0u);
    }

    void setUpsOfTheHotlistAddNothing()
    {
        QMenu menu;
        QCOMPARE(hcm_setup(&menu), 0);
        QCOMPARE(tcm_setup(&menu), 0);
        QVERIFY(menu.actions().isEmpty());
    }
};

} // namespace tav

QTEST_MAIN(tav::MenuTablesTest)
#include "menu_tables_qtest.moc"
