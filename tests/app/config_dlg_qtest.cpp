// The preferences.
#include "app/config_dlg.h"
#include "platform/fonts.h"
#include "support/dialogs.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QFontDialog>
#include <QLineEdit>
#include <QRadioButton>
#include <QSet>

using namespace tav;
using namespace tav::test;

namespace {

constexpr char DIALOG[] = "config_dlg";

bool x_is_set(const char *name) { return dialog_find<QAbstractButton>(DIALOG, name)->isChecked(); }

void x_open(uint32_t flags = CONFIG_DEFAULT_FLAGS)
{
    gConfig->flags = flags | CONFIG_MARKER;
    em_edit_preferences(nullptr);
}

void x_done() { dialog_click(DIALOG, "config_done"); }

void x_type_timeout(const char *text)
{
    auto *field = dialog_find<QLineEdit>(DIALOG, "cto");
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, QString::fromLatin1(text));
}

QFontDialog *x_chooser()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        auto *chooser = qobject_cast<QFontDialog *>(window);
        if (chooser && chooser->isVisible())
            return chooser;
    }
    return nullptr;
}

} // namespace

class ConfigDlgTest : public QObject {
    Q_OBJECT

    std::unique_ptr<OwnDir> dir_;
    std::unique_ptr<MainWindow> main_;

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<OwnDir>();
        main_ = std::make_unique<MainWindow>();
        config_set_defaults(*gConfig);
        dir_->file(".dot");
        dir_->file("a");
        fl_setpath(dir_->path().c_str());
    }
    void cleanup()
    {
        if (QDialog *dialog = dialog_up(DIALOG))
            dialog->reject();
        config_set_defaults(*gConfig);
        main_.reset();
        dir_.reset();
    }

    void it_shows_the_settings()
    {
        gConfig->folders_first = 7;
        gConfig->key_timeout = 1234;
        x_open();
        QCOMPARE(dialog_up(DIALOG)->windowTitle(), QStringLiteral("Preferences"));
        QCOMPARE(dialog_find<QLabel>(DIALOG, "config_heading")->text(),
                 QStringLiteral("FileManager Preferences"));
        QCOMPARE(dialog_find<QLineEdit>(DIALOG, "cto")->text(), QStringLiteral("1234"));
        QCOMPARE(dialog_find<QLabel>(DIALOG, "ctree_font")->text(), QStringLiteral("TextFont08"));
        QCOMPARE(dialog_find<QLabel>(DIALOG, "clist_font")->text(), QStringLiteral("TextFont08"));
        QVERIFY(x_is_set("cdirs"));
        QVERIFY(!x_is_set("cdot"));
        for (const char *name :
             {"rm1_prompt", "rm_prompt", "rm_i_prompt_nowr", "overwrite_prompt", "sym_prompt"})
            QVERIFY2(x_is_set(name), name);
        for (const char *name : {"rm1_prompt_nowr", "rm1_no_prompt", "rm_no_prompt", "rm_i_prompt",
                                 "rm_i_no_prompt", "overwrite", "sym_symlinks", "sym_files"})
            QVERIFY2(!x_is_set(name), name);
        QVERIFY(wblock_is_blocked(gBase));
    }

    void done_with_nothing_touched_keeps_the_flags_data()
    {
        QTest::addColumn<uint>("flags");
        for (uint single : {0x4U, 0x8U, 0x10U})
            for (uint links : {0x20U, 0x40U, 0x80U})
                for (uint multiple : {0x100U, 0x200U})
                    for (uint individual : {0x400U, 0x800U, 0x1000U})
                        for (uint rest : {0U, 1U, 2U, 3U}) {
                            const uint flags = single | links | multiple | individual | rest;
                            QTest::newRow(qPrintable(QString::number(flags, 16))) << flags;
                        }
    }
    void done_with_nothing_touched_keeps_the_flags()
    {
        QFETCH(uint, flags);
        x_open(flags);
        x_done();
        QCOMPARE(gConfig->flags, flags | CONFIG_MARKER);
        QVERIFY(!dialog_up(DIALOG));
    }

    void each_button_sets_its_bit_alone_in_its_group_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<uint>("group");
        QTest::addColumn<uint>("bit");
        const auto row = [](const char *name, uint group, uint bit) {
            QTest::newRow(name) << QByteArray(name) << group << bit;
        };
        row("rm1_prompt", 0x1C, 0x4);
        row("rm1_prompt_nowr", 0x1C, 0x8);
        row("rm1_no_prompt", 0x1C, 0x10);
        row("sym_prompt", 0xE0, 0x20);
        row("sym_symlinks", 0xE0, 0x40);
        row("sym_files", 0xE0, 0x80);
        row("rm_prompt", 0x300, 0x100);
        row("rm_no_prompt", 0x300, 0x200);
        row("rm_i_prompt", 0x1C00, 0x400);
        row("rm_i_prompt_nowr", 0x1C00, 0x800);
        row("rm_i_no_prompt", 0x1C00, 0x1000);
        row("overwrite_prompt", 0x2, 0);
        row("overwrite", 0x2, 0x2);
    }
    void each_button_sets_its_bit_alone_in_its_group()
    {
        QFETCH(QByteArray, name);
        QFETCH(uint, group);
        QFETCH(uint, bit);
        x_open();
        dialog_click(DIALOG, name.constData());
        x_done();
        QCOMPARE(gConfig->flags & group, bit);
        QCOMPARE(gConfig->flags & ~group, (CONFIG_DEFAULT_FLAGS | CONFIG_MARKER) & ~group);
    }

    void keys_choose_within_a_group()
    {
        x_open();
        QTRY_COMPARE(QApplication::activeWindow(), dialog_up(DIALOG));
        auto *set = dialog_find<QRadioButton>(DIALOG, "rm_i_prompt_nowr");
        for (int i = 0; i < 20 && !set->hasFocus(); i++)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(set->hasFocus() && set->isChecked());
        QTest::keyClick(set, Qt::Key_Down);
        QVERIFY(x_is_set("rm_i_no_prompt"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(dialog_find<QPushButton>(DIALOG, "config_done")->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QVERIFY(dialog_find<QRadioButton>(DIALOG, "rm_i_no_prompt")->hasFocus());
        x_done();
        QCOMPARE(gConfig->flags & 0x1C00, 0x1000U);
    }

    void a_group_with_nothing_set_is_reached_and_takes_its_last_choice()
    {
        x_open(0);
        QTRY_COMPARE(QApplication::activeWindow(), dialog_up(DIALOG));
        QSet<QString> seen;
        for (int i = 0; i < 20; i++) {
            seen.insert(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        for (const char *name : {"rm1_prompt", "sym_prompt", "rm_prompt", "rm_i_prompt"})
            QVERIFY2(seen.contains(QLatin1String(name)) && !x_is_set(name), name);
        x_done();
        QCOMPARE(gConfig->flags, (0x10U | 0x80U | 0x200U | 0x1000U) | CONFIG_MARKER);
    }

    void hiding_dot_files_takes_effect_at_once_and_in_the_menus()
    {
        gOptions = ~0x400U;
        x_open();
        dialog_click(DIALOG, "cdot");
        QVERIFY(!(gConfig->flags & 0x1));
        x_done();
        QCOMPARE(gConfig->flags & 0x1, 0x1U);
        QCOMPARE(gOptions, ~(0x400U | 0x4U | 0x100U));
        QVERIFY(fl_find(".dot", FL_EXACT) < 0);
        em_edit_preferences(nullptr);
        dialog_click(DIALOG, "cdot");
        x_done();
        QCOMPARE(gOptions, ~0x400U);
        QVERIFY(fl_find(".dot", FL_EXACT) >= 0);
    }

    void done_switches_folders_first_off_whatever_is_shown()
    {
        gConfig->folders_first = 1;
        x_open();
        QVERIFY(x_is_set("cdirs"));
        x_done();
        QCOMPARE(gConfig->folders_first, 0);
        em_edit_preferences(nullptr);
        dialog_click(DIALOG, "cdirs");
        QVERIFY(x_is_set("cdirs"));
        x_done();
        QCOMPARE(gConfig->folders_first, 0);
    }

    void cancel_changes_nothing()
    {
        gConfig->folders_first = 1;
        x_open();
        const Config before = *gConfig;
        x_type_timeout("7");
        dialog_click(DIALOG, "cdot");
        dialog_click(DIALOG, "sym_files");
        dialog_click(DIALOG, "config_cancel");
        QCOMPARE(memcmp(&before, gConfig, sizeof before), 0);
        em_edit_preferences(nullptr);
        dialog_click(DIALOG, "cdot");
        QTest::keyClick(dialog_up(DIALOG), Qt::Key_Escape);
        QCOMPARE(memcmp(&before, gConfig, sizeof before), 0);
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void timeouts_are_taken_as_they_are_typed_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("value");
        QTest::newRow("number") << QByteArray("2500") << 2500;
        QTest::newRow("none") << QByteArray("") << 0;
        QTest::newRow("abc") << QByteArray("abc") << 0;
        QTest::newRow("zero") << QByteArray("0") << 0;
        QTest::newRow("number and text") << QByteArray("12x") << 12;
        QTest::newRow("negative") << QByteArray("-5") << -5;
        QTest::newRow("huge") << QByteArray("99999999999") << INT_MAX;
        QTest::newRow("hugely negative") << QByteArray("-99999999999999999999") << INT_MIN;
    }
    void timeouts_are_taken_as_they_are_typed()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, value);
        x_open();
        x_type_timeout(text.constData());
        QTest::keyClick(dialog_find<QLineEdit>(DIALOG, "cto"), Qt::Key_Return);
        QCOMPARE(gConfig->key_timeout, value);
        QVERIFY(!dialog_up(DIALOG));
    }

    void a_chosen_font_reaches_record_and_list_with_done()
    {
        x_open();
        dialog_click(DIALOG, "clist_select");
        QVERIFY(x_chooser());
        QCOMPARE(x_chooser()->windowTitle(), QStringLiteral("Select File List Font"));
        QVERIFY(wblock_is_blocked(dialog_up(DIALOG)));
        QFont font(QFontDatabase::families().first(), 17);
        x_chooser()->setCurrentFont(font);
        font = x_chooser()->currentFont();
        x_chooser()->accept();
        QVERIFY(!wblock_is_blocked(dialog_up(DIALOG)));
        const QString shown = dialog_find<QLabel>(DIALOG, "clist_font")->text();
        QVERIFY2(shown.contains(font.family()) && shown.contains(QStringLiteral("17")),
                 qPrintable(shown));
        QCOMPARE(QByteArray(gConfig->list_font), QByteArray("TextFont08"));
        x_done();
        QCOMPARE(fonts_from_name(gConfig->list_font, sizeof gConfig->list_font), font);
        QCOMPARE(main_->list->font().pointSize(), 17);
        QCOMPARE(QByteArray(gConfig->tree_font), QByteArray("TextFont08"));
    }

    void the_chooser_opens_where_its_button_is()
    {
        x_open();
        dialog_up(DIALOG)->move(40, 30);
        const auto *button = dialog_find<QPushButton>(DIALOG, "clist_select");
        const QPoint at = button->mapToGlobal(QPoint(0, 0));
        dialog_click(DIALOG, "clist_select");
        const QRect screen = button->screen()->availableGeometry();
        const QRect frame = x_chooser()->frameGeometry();
        QVERIFY(screen.contains(frame));
        QVERIFY(frame.left() == at.x() || frame.right() >= screen.right() - 5);
        QVERIFY(frame.top() == at.y() || frame.bottom() >= screen.bottom() - 5);
        x_chooser()->reject();
    }

    void the_hotlist_font_goes_to_the_tree()
    {
        x_open();
        dialog_click(DIALOG, "ctree_select");
        QCOMPARE(x_chooser()->windowTitle(), QStringLiteral("Select Tree Font"));
        x_chooser()->setCurrentFont(QFont(QFontDatabase::families().first(), 19));
        x_chooser()->accept();
        x_done();
        QCOMPARE(main_->tree->font().pointSize(), 19);
        QVERIFY(QByteArray(gConfig->tree_font) != QByteArray("TextFont08"));
    }

    void choosing_the_same_font_again_changes_nothing()
    {
        x_open();
        dialog_click(DIALOG, "clist_select");
        x_chooser()->setCurrentFont(QApplication::font());
        x_chooser()->accept();
        QCOMPARE(dialog_find<QLabel>(DIALOG, "clist_font")->text(), QStringLiteral("TextFont08"));
        x_done();
        QCOMPARE(QByteArray(gConfig->list_font), QByteArray("TextFont08"));
    }

    void a_font_whose_text_does_not_fit_loses_its_style_name_only()
    {
        QFont font(QFontDatabase::families().first(), 17);
        font.setStyleName(QString(300, QLatin1Char('x')));
        char name[sizeof gConfig->list_font];
        memset(name, 'y', sizeof name);
        fonts_to_name(font, name, sizeof name);
        QVERIFY(memchr(name, 0, sizeof name));
        const QFont kept = fonts_from_name(name, sizeof name);
        QCOMPARE(kept.family(), font.family());
        QCOMPARE(kept.pointSize(), 17);
        fonts_to_name(font, name, 16); // not even the family
        QCOMPARE(QByteArray(name), QByteArray("TextFont08"));
    }

    void leaving_the_chooser_chooses_nothing()
    {
        x_open();
        dialog_click(DIALOG, "clist_select");
        x_chooser()->setCurrentFont(QFont(QFontDatabase::families().first(), 21));
        x_chooser()->reject();
        QCOMPARE(dialog_find<QLabel>(DIALOG, "clist_font")->text(), QStringLiteral("TextFont08"));
    }

    void font_fields_full_of_rubbish_are_shown_and_kept()
    {
        memset(gConfig->list_font, 0xE9, sizeof gConfig->list_font);
        memset(gConfig->tree_font, '\n', sizeof gConfig->tree_font);
        const Config before = *gConfig;
        x_open();
        QVERIFY(
            dialog_find<QLabel>(DIALOG, "clist_font")->text().startsWith(QStringLiteral("\\xE9")));
        x_done();
        QCOMPARE(memcmp(before.list_font, gConfig->list_font, sizeof before.list_font), 0);
        QCOMPARE(memcmp(before.tree_font, gConfig->tree_font, sizeof before.tree_font), 0);
    }

    void with_a_huge_font_every_button_can_be_reached()
    {
        const QFont before = QApplication::font();
        QFont huge = before;
        huge.setPointSize(40);
        QApplication::setFont(huge);
        x_open();
        QDialog *dialog = dialog_up(DIALOG);
        const QSize screen = dialog->screen()->availableGeometry().size();
        QVERIFY2(dialog->width() <= screen.width() && dialog->height() <= screen.height(),
                 qPrintable(QStringLiteral("%1 x %2").arg(dialog->width()).arg(dialog->height())));
        auto *done = dialog_find<QPushButton>(DIALOG, "config_done");
        QTRY_COMPARE(QApplication::activeWindow(), dialog);
        for (int i = 0; i < 40 && !done->hasFocus(); i++)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(done->hasFocus());
        QTRY_VERIFY(dialog->rect().contains(done->mapTo(dialog, done->rect().center())));
        dialog_click(DIALOG, "rm1_no_prompt");
        x_done();
        QCOMPARE(gConfig->flags & 0x1C, 0x10U);
        QApplication::setFont(before);
    }

    void opening_twice_shows_one_dialog()
    {
        x_open();
        QDialog *first = dialog_up(DIALOG);
        em_edit_preferences(nullptr);
        QCOMPARE(dialog_up(DIALOG), first);
        QCOMPARE(QApplication::topLevelWidgets().count(first), 1);
    }
};

QTEST_MAIN(ConfigDlgTest)
#include "config_dlg_qtest.moc"
