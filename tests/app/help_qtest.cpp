// The About box and the quick reference.
#include "app/about.h"
#include "app/interp.h"
#include "app/menu.h"
#include "app/quickref.h"
#include "support/dialogs.h"
#include "views/fl_input.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QSet>

using namespace tav;
using namespace tav::test;

namespace {

QTreeWidget *x_list() { return dialog_find<QTreeWidget>("quickref", "quickref_list"); }

// The rows that are shown, each as "where|command|key".
QStringList x_rows()
{
    QStringList rows;
    for (int i = 0; i < x_list()->topLevelItemCount(); i++) {
        const QTreeWidgetItem *item = x_list()->topLevelItem(i);
        if (!item->isHidden())
            rows.append(item->text(0) + QLatin1Char('|') + item->text(1) + QLatin1Char('|') +
                        item->text(2));
    }
    return rows;
}

} // namespace

class HelpTest : public QObject {
    Q_OBJECT

    std::unique_ptr<MainWindow> main_;

private Q_SLOTS:
    void init() { main_ = std::make_unique<MainWindow>(); }
    void cleanup() { main_.reset(); }

    void the_about_box_shows_the_version_and_done_has_the_keyboard()
    {
        help_about(nullptr);
        QCOMPARE(dialog_find<QLabel>("about_dlg", "about_version")->text(),
                 QStringLiteral("- Version 1.13"));
        QVERIFY(!dialog_find<QLabel>("about_dlg", "about_image")->pixmap().isNull());
        auto *done = dialog_find<QPushButton>("about_dlg", "about_done");
        QTRY_VERIFY(done->hasFocus());
        QVERIFY(wblock_is_blocked(gBase));
        QTest::keyClick(done, Qt::Key_Return);
        QVERIFY(!dialog_up("about_dlg"));
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void escape_closes_the_about_box()
    {
        help_about(nullptr);
        QTest::keyClick(dialog_up("about_dlg"), Qt::Key_Escape);
        QVERIFY(!dialog_up("about_dlg"));
    }

    void every_command_of_the_menus_stands_in_the_quick_reference()
    {
        help_quickref(nullptr);
        const QStringList rows = x_rows();
        int commands = 0;
        for (const MenuTable *table = gMenuBar; table->name; table++) {
            for (const MenuRow *row = table->rows; row->level != 0; row++) {
                if (row->kind != MENU_COMMAND && row->kind != MENU_TOGGLE)
                    continue;
                commands++;
                const QString key = menu_accelerator_text(row->modifiers, row->key);
                const QString name = QString::fromUtf8(row->label).remove(QLatin1Char('&'));
                const bool there = std::any_of(rows.begin(), rows.end(), [&](const QString &text) {
                    return text.endsWith(QLatin1Char('|') + key) &&
                           text.contains(QString(name).remove(QStringLiteral("...")));
                });
                QVERIFY2(there, row->name);
            }
        }
        for (const InterpMode *mode = gInterpModes; mode->text; mode++)
            commands++;
        for (const QString &row : rows)
            commands += row.startsWith(QLatin1String("List|"));
        QCOMPARE(rows.size(), commands);
        QVERIFY(rows.contains(QStringLiteral("File|New > Folder|F4")));
        QVERIFY(rows.contains(QStringLiteral("File|Open In Window|Ctrl-Ret")));
        QVERIFY(!wblock_is_blocked(gBase));
        dialog_click("quickref", "quickref_done");
        QVERIFY(!dialog_up("quickref"));
    }

    void every_key_of_the_list_stands_in_the_quick_reference()
    {
        help_quickref(nullptr);
        const QStringList rows = x_rows();
        QStringList keys;
        for (const QString &row : rows) {
            if (row.startsWith(QLatin1String("List|")))
                keys.append(row.section(QLatin1Char('|'), 2));
        }
        QCOMPARE(keys.size(), QSet<QString>(keys.begin(), keys.end()).size());
        for (const char *modifiers : {"", "Shift-", "Ctrl-", "Ctrl-Shift-"})
            for (const char *key : {"Up", "Down", "PgUp", "PgDn", "Home", "End"})
                QVERIFY2(keys.contains(QString::asprintf("%s%s", modifiers, key)), key);
        for (const char *key : {"Space", "Ctrl-Space", "Left", "Right", "Menu", "Tab"})
            QVERIFY2(keys.contains(QLatin1String(key)), key);
        QVERIFY(
            rows.contains(QStringLiteral("List|Select all on the way one row down|Shift-Down")));
        QVERIFY(rows.contains(QStringLiteral("File|Open|Ret")));
        QVERIFY(rows.contains(QStringLiteral("Go|Up One Level|Bksp")));
        QTest::keyClicks(dialog_find<QLineEdit>("quickref", "quickref_find"),
                         QStringLiteral("shift-down list"));
        QCOMPARE(x_rows().size(), 2); // with Ctrl and without
    }

    void the_list_takes_the_keys_that_stand_there_and_no_others()
    {
        const auto takes = [this](int key, Qt::KeyboardModifiers modifiers) {
            return fl_input_key(*main_->list, QKeyEvent(QEvent::KeyPress, key, modifiers));
        };
        for (const FlMove *move = gFlMoves; move->name; move++)
            for (const FlMoveMode *mode = gFlMoveModes; mode->name; mode++)
                QVERIFY2(takes(move->key, mode->modifiers), move->name);
        for (const FlKey *key = gFlKeys; key->name; key++)
            QCOMPARE(takes(key->key, key->modifiers), key->act != nullptr);
        for (int key : {Qt::Key_Insert, Qt::Key_Delete, Qt::Key_F7, Qt::Key_Clear, Qt::Key_Print})
            QVERIFY(!takes(key, Qt::NoModifier));
    }

    void typing_finds_commands_and_keys()
    {
        help_quickref(nullptr);
        auto *find = dialog_find<QLineEdit>("quickref", "quickref_find");
        QTRY_VERIFY(find->hasFocus());
        QTest::keyClicks(find, QStringLiteral("refr f5"));
        QCOMPARE(x_rows(), QStringList{QStringLiteral("File|Refresh|F5")});
        QTest::keyClicks(find, QStringLiteral("zzz"));
        QVERIFY(x_rows().isEmpty());
        QVERIFY(dialog_find<QLabel>("quickref", "quickref_none")->isVisible());
        find->clear();
        QVERIFY(x_rows().size() > 30);
        QVERIFY(!dialog_find<QLabel>("quickref", "quickref_none")->isVisible());
        QTest::keyClick(find, Qt::Key_Escape);
        QVERIFY(!dialog_up("quickref"));
    }

    void opening_the_quick_reference_again_comes_back_to_it()
    {
        help_quickref(nullptr);
        QDialog *first = dialog_up("quickref");
        help_quickref(nullptr);
        QCOMPARE(dialog_up("quickref"), first);
        first->reject();
    }
};

QTEST_MAIN(HelpTest)
#include "help_qtest.moc"
