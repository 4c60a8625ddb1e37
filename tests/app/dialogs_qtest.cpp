// What every dialog owes to the one who uses it: it lies over the main window, which is blocked; it
// answers to Escape, Return, Tab and its mnemonics; every control has a name; nothing is cut.
#include "app/about.h"
#include "app/config_dlg.h"
#include "app/quickref.h"
#include "commands/fm_dlg.h"
#include "support/dialogs.h"
#include "support/window.h"

#include <QAccessible>
#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QSet>

using namespace tav;
using tav::test::boxes_answer_next;
using tav::test::dialog_find;
using tav::test::dialog_up;
using tav::test::Window;

namespace {

constexpr char LONG[] =
    "<b>a & very long name<b> with \xE9 that is no text, and more than a dialog can "
    "hold in one line of its own, however wide the screen may be on which it stands, "
    "so that it must be cut somewhere or scrolled.tar.gz";

using Opener = int (*)(QWidget *);

// A dialog and what must be selected before it opens.
struct Row {
    const char *title;
    const char *name;   // of the dialog
    const char *button; // its default one
    bool blocks;        // the main window
    Opener open;
    std::initializer_list<const char *> selected;
};
const Row ROWS[] = {
    {"properties of one", "property_dlg", "pr_done", true, fm_inspect, {LONG}},
    {"properties of many", "property_dlg", "pr_done", true, fm_inspect, {"a", LONG, "folder"}},
    {"select", "pattern_dlg", "pselect", true, em_select_pattern, {}},
    {"unselect", "pattern_dlg", "pselect", true, em_unselect_pattern, {"a"}},
    {"new file", "new_dlg", "new_create", true, fm_new_file, {}},
    {"new folder", "new_dlg", "new_create", true, fm_new_folder, {}},
    {"preferences", "config_dlg", "config_done", true, em_edit_preferences, {}},
    {"about", "about_dlg", "about_done", true, help_about, {}},
    {"quick reference", "quickref", "quickref_done", false, help_quickref, {}},
};

QString x_name(QWidget *widget)
{
    QAccessibleInterface *face = QAccessible::queryAccessibleInterface(widget);
    return face ? face->text(QAccessible::Name) : QString();
}

// Whether Tab leaves it to the one of its group that is set.
bool x_is_left_to_another(QWidget *widget)
{
    const auto *radio = qobject_cast<const QRadioButton *>(widget);
    return radio && !radio->isChecked();
}

// What Tab should come to.
QSet<QWidget *> x_stops(const QDialog *dialog)
{
    QSet<QWidget *> stops;
    for (QWidget *widget : dialog->findChildren<QWidget *>()) {
        if (widget->isVisible() && widget->isEnabled() && !widget->focusProxy() &&
            (widget->focusPolicy() & Qt::TabFocus) && !qobject_cast<QScrollArea *>(widget) &&
            !x_is_left_to_another(widget))
            stops.insert(widget);
    }
    return stops;
}

QString x_text(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return button ? button->text() : QString();
}

// Whether the widget has less room than its text takes. What is made to leave text out does so.
bool x_is_cut(const QWidget *widget)
{
    if (x_text(widget).isEmpty() || widget->inherits("tav::ElidedLabel"))
        return false;
    const QSize wanted = widget->minimumSizeHint();
    return widget->width() < wanted.width() || widget->height() < wanted.height();
}

} // namespace

class DialogsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> m_window;
    QFont m_font;
    const Row *m_row = nullptr;

    static void rows()
    {
        QTest::addColumn<int>("index");
        for (size_t i = 0; i < std::size(ROWS); i++)
            QTest::newRow(ROWS[i].title) << static_cast<int>(i);
    }

    static int row()
    {
        QFETCH(int, index);
        return index;
    }

    // Opens the dialog of the current row.
    QDialog *open()
    {
        m_row = &ROWS[row()];
        Window::select(m_row->selected);
        m_row->open(gBase);
        QDialog *dialog = dialog_up(m_row->name);
        if (!dialog)
            qFatal("%s did not open", m_row->name);
        if (!QTest::qWaitFor([dialog] { return QApplication::activeWindow() == dialog; }))
            qFatal("%s does not get the keyboard", m_row->name);
        return dialog;
    }

private Q_SLOTS:
    void init()
    {
        m_font = QApplication::font();
        m_window = std::make_unique<Window>();
        m_window->dir.dir("shown/folder");
        for (const char *name : {"a", "b", LONG})
            m_window->dir.text(std::string("shown/") + name, "text");
        m_window->open();
    }
    void cleanup()
    {
        if (m_row) {
            if (QDialog *dialog = dialog_up(m_row->name))
                dialog->reject();
        }
        m_window.reset();
        QApplication::setFont(m_font);
    }

    void the_main_window_is_blocked_and_says_so_data() { rows(); }
    void the_main_window_is_blocked_and_says_so()
    {
        QDialog *dialog = open();
        FlView *list = fl_view();
        QCOMPARE(wblock_is_blocked(gBase), m_row->blocks);
        QTRY_COMPARE(list->cursor().shape(), m_row->blocks ? Qt::WaitCursor : Qt::ArrowCursor);
        const int current = gDir.current;
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_End);
        QCOMPARE(gDir.current == current, m_row->blocks);
        dialog->reject();
        QVERIFY(!wblock_is_blocked(gBase));
        QCOMPARE(list->cursor().shape(), Qt::ArrowCursor);
        QTest::keyClick(list, Qt::Key_Home);
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(gDir.current, 0);
    }

    void it_lies_centred_over_the_main_window_data() { rows(); }
    void it_lies_centred_over_the_main_window()
    {
        const QDialog *dialog = open();
        const QPoint place = wcenter_place(gBase->frameGeometry(), dialog->frameGeometry().size(),
                                           dialog->screen()->availableGeometry());
        QVERIFY((dialog->pos() - place).manhattanLength() <= 2);
    }

    void escape_closes_it_data() { rows(); }
    void escape_closes_it()
    {
        open();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(!dialog_up(m_row->name));
        QVERIFY(!wblock_is_blocked(gBase));
        QTRY_VERIFY(fl_view()->hasFocus());
    }

    void return_presses_the_default_button_data() { rows(); }
    void return_presses_the_default_button()
    {
        open();
        auto *button = dialog_find<QPushButton>(m_row->name, m_row->button);
        QVERIFY(button->isDefault());
        int pressed = 0;
        QObject::disconnect(button, &QPushButton::clicked, nullptr, nullptr);
        QObject::connect(button, &QPushButton::clicked, this, [&pressed] { pressed++; });
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(pressed, 1);
    }

    void tab_comes_to_every_control_and_back_data() { rows(); }
    void tab_comes_to_every_control_and_back()
    {
        const QDialog *dialog = open();
        const QSet<QWidget *> stops = x_stops(dialog);
        QWidget *first = QApplication::focusWidget();
        QSet<QWidget *> seen;
        for (int i = 0; i < 100 && (i == 0 || QApplication::focusWidget() != first); i++) {
            seen.insert(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(QApplication::focusWidget(), first);
        for (const QWidget *stop : stops)
            QVERIFY2(seen.contains(const_cast<QWidget *>(stop)), qPrintable(stop->objectName()));
    }

    void every_control_has_a_name_data() { rows(); }
    void every_control_has_a_name()
    {
        for (QWidget *stop : x_stops(open()))
            QVERIFY2(!x_name(stop).isEmpty(), qPrintable(stop->objectName()));
    }

    void no_mnemonic_stands_for_two_controls_data() { rows(); }
    void no_mnemonic_stands_for_two_controls()
    {
        QSet<QKeySequence> seen;
        for (const QWidget *widget : open()->findChildren<QWidget *>()) {
            const auto *label = qobject_cast<const QLabel *>(widget);
            const QKeySequence key = QKeySequence::mnemonic(x_text(widget));
            if (key.isEmpty() || (label && !label->buddy()) || !widget->isVisible())
                continue;
            QVERIFY2(!seen.contains(key), qPrintable(x_text(widget)));
            seen.insert(key);
        }
    }

    void nothing_is_cut_with_any_font_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("points");
        for (size_t i = 0; i < std::size(ROWS); i++)
            for (int points : {0, 7, 18, 40})
                QTest::addRow("%s, %d points", ROWS[i].title, points)
                    << static_cast<int>(i) << points;
    }
    void nothing_is_cut_with_any_font()
    {
        QFETCH(int, points);
        QFont font = m_font;
        if (points > 0)
            font.setPointSize(points);
        QApplication::setFont(font);
        const QDialog *dialog = open();
        for (const QWidget *widget : dialog->findChildren<QWidget *>()) {
            if (widget->isVisible())
                QVERIFY2(!x_is_cut(widget), qPrintable(widget->objectName()));
        }
        const QSize screen = dialog->screen()->availableGeometry().size();
        QVERIFY(dialog->width() <= screen.width() && dialog->height() <= screen.height());
    }

    void a_name_is_shown_as_plain_text_data() { rows(); }
    void a_name_is_shown_as_plain_text()
    {
        for (const QLabel *label : open()->findChildren<QLabel *>()) {
            if (label->text().contains(QLatin1Char('<')))
                QCOMPARE(label->textFormat(), Qt::PlainText);
        }
    }

    void a_refresh_below_does_not_take_the_keyboard_data() { rows(); }
    void a_refresh_below_does_not_take_the_keyboard()
    {
        const QDialog *dialog = open();
        const QWidget *focus = QApplication::focusWidget();
        fl_refresh();
        QCOMPARE(QApplication::activeWindow(), static_cast<const QWidget *>(dialog));
        QCOMPARE(QApplication::focusWidget(), focus);
    }

    void a_type_that_takes_its_time_fills_in_when_it_comes()
    {
        m_window->dir.fifo("go");
        m_window->script("file",
                         "read go <\"" + m_window->dir.at("go") + "\"; echo \"$2: Slow text\"");
        Window::select({"a"});
        fm_inspect(nullptr);
        const auto *type = dialog_find<QLabel>("property_dlg", "pr_filetype");
        QCOMPARE(type->text(),
                 QStringLiteral("File")); // the dialog is open, the classifier is not done
        int go = -1;
        QTRY_VERIFY((go = ::open(m_window->dir.at("go").c_str(), O_WRONLY | O_NONBLOCK)) >= 0);
        QCOMPARE(type->text(), QStringLiteral("File"));
        QCOMPARE(write(go, "\n", 1), ssize_t(1));
        close(go);
        QTRY_COMPARE(type->text(), QStringLiteral("Slow text"));
        dialog_up("property_dlg")->reject();
    }

    void without_a_classifier_the_mode_tells_the_type()
    {
        m_window->script("file", "exit 1");
        Window::select({"folder"});
        fm_inspect(nullptr);
        QTRY_COMPARE(dialog_find<QLabel>("property_dlg", "pr_filetype")->text(),
                     QStringLiteral("Directory"));
        dialog_up("property_dlg")->reject();
    }
};

QTEST_MAIN(DialogsTest)
#include "dialogs_qtest.moc"
