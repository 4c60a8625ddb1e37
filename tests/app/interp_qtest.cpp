// The key interpreter, by keys typed on the list.
#include "app/interp.h"

#include "support/window.h"

using namespace tav;
using tav::test::Window;

namespace {

bool x_is_selected(const char *name)
{
    const int index = Window::index(name);
    return index >= 0 && (gDir.entries[static_cast<size_t>(index)]->flags & DIR_SELECTED);
}

// The selected names, between blanks.
QString x_selected()
{
    QStringList names;
    for (int i = 0; i < gDir.count; i++) {
        if (gDir.entries[static_cast<size_t>(i)]->flags & DIR_SELECTED)
            names += QString::fromUtf8(gDir.entries[static_cast<size_t>(i)]->name);
    }
    return names.join(u' ');
}

int x_key(int key, const QString &text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    return interp_key(event);
}

int x_type(const QString &text)
{
    int answer = 0;
    for (const QChar character : text)
        answer = x_key(0, character);
    return answer;
}

} // namespace

class InterpTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> m_window;

    static QString echo()
    {
        interp_echo();
        return Window::status();
    }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<Window>();
        for (const char *name : {"shown/aa", "shown/abc", "shown/abd", "shown/b c", "shown/zoo",
                                 "shown/\xC3\xA4pfel", "shown/\xC3\xA4rger"})
            m_window->dir.file(name);
        m_window->dir.dir("shown/docs");
        m_window->stand_in("show");
        m_window->open();
        interp_clear();
    }
    void cleanup() { m_window.reset(); }

    void typingSelectsTheFirstMatchAfterEachKey()
    {
        QTest::keyClicks(fl_view(), QStringLiteral("a"));
        QCOMPARE(x_selected(), QStringLiteral("aa"));
        QTest::keyClicks(fl_view(), QStringLiteral("b"));
        QCOMPARE(x_selected(), QStringLiteral("abc"));
        QCOMPARE(Window::status(), QStringLiteral("/ab"));
        QTest::keyClicks(fl_view(), QStringLiteral("d"));
        QCOMPARE(x_selected(), QStringLiteral("abd"));
    }

    void escapeEndsTheModeAndTheSelectionStays()
    {
        QTest::keyClicks(fl_view(), QStringLiteral("ab"));
        QTest::keyClick(fl_view(), Qt::Key_Escape);
        QVERIFY(!interp_active());
        QCOMPARE(x_selected(), QStringLiteral("abc"));
        QCOMPARE(x_key(Qt::Key_Escape), 0);
    }

    void aSlashANameAndReturnOpenTheEntry()
    {
        QTest::keyClicks(fl_view(), QStringLiteral("/do"));
        QTest::keyClick(fl_view(), Qt::Key_Return);
        QCOMPARE(QString::fromStdString(gDir.path),
                 QString::fromStdString(m_window->dir.at("shown/docs")));
        QVERIFY(!interp_active());
    }

    void aQuestionMarkSeesOnlyTheFirstEntryAndOpensNothing()
    {
        // Searching backwards begins at the first entry, so that is all it sees.
        const QString first = QString::fromUtf8(gDir.entries[0]->name);
        QCOMPARE(x_type(QStringLiteral("?") + first.left(1)), 1);
        QCOMPARE(x_selected(), first);
        QCOMPARE(x_type(QStringLiteral("zzz")), 1);
        QCOMPARE(x_selected(), QString());
        QCOMPARE(gDir.current, DIR_NONE);
        QCOMPARE(x_key(Qt::Key_Return), -1);
        QVERIFY(!interp_active());
    }

    void aColonRunsACommandLine()
    {
        QTest::keyClicks(fl_view(), QStringLiteral(":show a \"b c\""));
        QCOMPARE(Window::status(), QStringLiteral(":show a \"b c\""));
        QTest::keyClick(fl_view(), Qt::Key_Return);
        QVERIFY(!interp_active());
        QCOMPARE(m_window->received(), QStringLiteral("a|b c|"));
    }

    void aCommandThatDoesNotExistIsSaid()
    {
        QTest::keyClicks(fl_view(), QStringLiteral(":no-such-thing"));
        QTest::keyClick(fl_view(), Qt::Key_Return);
        QTRY_COMPARE(Window::status(), QStringLiteral("Cannot run 'no-such-thing': not found"));
    }

    void anEmptyCommandLineRunsNothing()
    {
        QTest::keyClicks(fl_view(), QStringLiteral(":"));
        QTest::keyClick(fl_view(), Qt::Key_Return);
        QVERIFY(!interp_active());
        QVERIFY(m_window->nothing_received());
    }

    void returnOnAnEmptySearchRepeatsTheLastOne()
    {
        QTest::keyClicks(fl_view(), QStringLiteral("/do"));
        QTest::keyClick(fl_view(), Qt::Key_Return);
        QTest::keyClick(fl_view(), Qt::Key_Backspace); // up again
        QTRY_COMPARE(QString::fromStdString(gDir.path),
                     QString::fromStdString(m_window->dir.at("shown")));
        Window::select({"zoo"});
        QTest::keyClicks(fl_view(), QStringLiteral("/"));
        QTest::keyClick(fl_view(), Qt::Key_Return);
        QCOMPARE(QString::fromStdString(gDir.path),
                 QString::fromStdString(m_window->dir.at("shown/docs")));
    }

    void aBlankTypedFirstIsSwallowedInAModeAndNotTakenWhenIdle()
    {
        QCOMPARE(x_key(Qt::Key_Space, QStringLiteral(" ")), 0);
        QVERIFY(!interp_active());
        QCOMPARE(x_type(QStringLiteral("/ ")), 1);
        QCOMPARE(echo(), QStringLiteral("/"));
        x_type(QStringLiteral("b c"));
        QCOMPARE(echo(), QStringLiteral("/b c"));
        QVERIFY(x_is_selected("b c"));
    }

    void backspaceTakesACharacterThenTheModeThenGoesUp()
    {
        x_type(QStringLiteral("/\u00E4p"));
        QVERIFY(x_is_selected("\xC3\xA4pfel"));
        QCOMPARE(x_key(Qt::Key_Backspace), 1);
        QCOMPARE(echo(), QStringLiteral("/\u00E4"));
        QCOMPARE(x_key(Qt::Key_Backspace), 1);
        QCOMPARE(echo(), QStringLiteral("/"));
        QCOMPARE(x_key(Qt::Key_Backspace), -1);
        QVERIFY(!interp_active());
        QCOMPARE(x_key(Qt::Key_Backspace), 0);
    }

    void bracesBarsAndTildesAreNotTaken()
    {
        for (const char *text : {"{", "|", "}", "~", "\x7F", "\x1F", ""})
            QCOMPARE(x_key(0, QString::fromLatin1(text)), 0);
        QCOMPARE(x_key(Qt::Key_F5), 0);
        QCOMPARE(x_key(Qt::Key_Down), 0);
        QVERIFY(!interp_active());
        QCOMPARE(x_key(0, QStringLiteral("z")), 1);
    }

    void lettersBeyondAsciiAreTaken()
    {
        QCOMPARE(x_key(0, QStringLiteral("\u00E4")), 1);
        QVERIFY(x_is_selected("\xC3\xA4pfel"));
        QCOMPARE(x_key(0, QStringLiteral("\U0001F600")), 1);
    }

    void keysWithCtrlOrAltAreNotTaken()
    {
        QCOMPARE(x_key(Qt::Key_A, QStringLiteral("a"), Qt::ControlModifier), 0);
        QCOMPARE(x_key(Qt::Key_A, QStringLiteral("a"), Qt::AltModifier), 0);
        QCOMPARE(x_key(Qt::Key_A, QStringLiteral("A"), Qt::ShiftModifier), 1);
    }

    void repeatedKeysAreTaken()
    {
        const QKeyEvent repeat(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"),
                               true);
        QCOMPARE(interp_key(repeat), 1);
        QCOMPARE(interp_key(repeat), 1);
        QCOMPARE(echo(), QStringLiteral("/aa"));
    }

    void textOfAnInputMethodArrives()
    {
        QInputMethodEvent event;
        event.setCommitString(QStringLiteral("\u00E4r"));
        QApplication::sendEvent(fl_view(), &event);
        QVERIFY(x_is_selected("\xC3\xA4rger"));
    }

    void theTextStopsGrowingAtItsCapacity()
    {
        for (int i = 0; i < 2000; i++)
            x_key(0, QStringLiteral("\u00E4"));
        QCOMPARE(echo().size(), 128); // the status line takes 255 bytes
        for (int i = 0; i < 511; i++)
            QCOMPARE(x_key(Qt::Key_Backspace), 1);
        QCOMPARE(x_key(Qt::Key_Backspace), -1);
    }

    void theTimeOutEndsEveryMode()
    {
        gConfig->key_timeout = 50;
        for (const QString &text : {QStringLiteral("ab"), QStringLiteral(":ls"),
                                    QStringLiteral("/x"), QStringLiteral("?y")}) {
            QTest::keyClicks(fl_view(), text);
            QVERIFY(interp_active());
            QTRY_VERIFY(!interp_active());
        }
    }

    void theEchoOfNothingIsEmpty() { QCOMPARE(echo(), QString()); }
};

QTEST_MAIN(InterpTest)
#include "interp_qtest.moc"
