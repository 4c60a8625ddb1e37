// Menus from tables: items, accelerators, dimming, function rows.
#include "app/menu.h"

#include "platform/w.h"
#include "views/menu_item.h"

#include <QLineEdit>
#include <QMainWindow>
#include <QTest>

namespace tav {
namespace {

int sNew = 0, sOther = 0, sPlain = 0;
int x_new(QWidget *) { return ++sNew, W_CONTINUE; }
int x_other(QWidget *) { return ++sOther, W_CONTINUE; }
int x_plain(QWidget *) { return ++sPlain, W_CONTINUE; }

int sAdded = 2;
void x_populate(QMenu *menu, QAction *before)
{
    for (int i = 0; i < sAdded; ++i) {
        auto *action = new QAction(QStringLiteral("added %1").arg(i), menu);
        menu->insertAction(before, action);
    }
}

int x_setup(QMenu *menu)
{
    menu_item_enable(menu, "it_new", false);
    return W_CONTINUE;
}

constexpr MenuRow sRows[] = {
    menu_submenu(1, "it_sub", "&Sub"),
    menu_command(2, "it_inner", "&Inner", x_other, MENU_SHIFT, "Ret"),
    menu_line(2),
    menu_toggle(2, "it_toggle", "T&oggle", x_plain),
    menu_command(1, "it_new", "&New", x_new, MENU_CTRL, "N"),
    menu_line(1),
    menu_function(1, "it_function", x_populate),
    menu_command(1, "it_plain", "&Plain", x_plain, 0, "V"),
    menu_command(1, "it_again", "&Again", x_other, MENU_CTRL, "N"),
    MENU_END,
};
constexpr MenuTable sTables[] = {{"test_menu", "&Test", sRows, x_setup},
                                 {nullptr, nullptr, nullptr, nullptr}};

QStringList x_texts(const QMenu *menu)
{
    QStringList texts;
    for (const QAction *action : menu->actions())
        if (action->isVisible())
            texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return texts;
}

} // namespace

class MenuTest : public QObject {
    Q_OBJECT

    QMainWindow *m_window = nullptr;
    QLineEdit *m_field = nullptr;
    QMenu *menu() { return m_window->findChild<QMenu *>(QStringLiteral("test_menu")); }

private Q_SLOTS:
    void init()
    {
        sNew = sOther = sPlain = 0;
        m_window = new QMainWindow;
        m_field = new QLineEdit;
        auto *pane = new QWidget;
        m_field->setParent(pane);
        pane->setFocusPolicy(Qt::StrongFocus);
        m_window->setCentralWidget(pane);
        menu_build_bar(m_window->menuBar(), sTables, m_window);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        pane->setFocus();
    }
    void cleanup() { delete m_window; }

    void acceleratorTexts_data()
    {
        QTest::addColumn<unsigned>("modifiers");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QString>("text");
        QTest::newRow("Ctrl") << MENU_CTRL << QByteArray("N") << QStringLiteral("Ctrl-N");
        QTest::newRow("Alt") << MENU_ALT << QByteArray("X") << QStringLiteral("Alt-X");
        QTest::newRow("Shift") << MENU_SHIFT << QByteArray("Ret") << QStringLiteral("Shift-Ret");
        QTest::newRow("arrow") << MENU_ALT << QByteArray("<-") << QStringLiteral("Alt-<-");
        QTest::newRow("alone") << 0u << QByteArray("F5") << QStringLiteral("F5");
    }
    void acceleratorTexts()
    {
        QFETCH(unsigned, modifiers);
        QFETCH(QByteArray, key);
        QTEST(menu_accelerator_text(modifiers, key.constData()), "text");
    }

    void rowsStandInOrderAndInTheirLevels()
    {
        Q_EMIT menu()->aboutToShow();
        QCOMPARE(
            x_texts(menu()),
            QStringList({QStringLiteral("&Sub"), QStringLiteral("&New\tCtrl-N"),
                         QStringLiteral("-"), QStringLiteral("added 0"), QStringLiteral("added 1"),
                         QStringLiteral("&Plain\tV"), QStringLiteral("&Again\tCtrl-N")}));
        auto *sub = m_window->findChild<QMenu *>(QStringLiteral("it_sub_menu"));
        QCOMPARE(x_texts(sub), QStringList({QStringLiteral("&Inner\tShift-Ret"),
                                            QStringLiteral("-"), QStringLiteral("T&oggle")}));
        QVERIFY(m_window->findChild<QAction *>(QStringLiteral("it_toggle"))->isCheckable());
    }

    void aFunctionRowIsFilledAnewWheneverTheMenuOpens()
    {
        Q_EMIT menu()->aboutToShow();
        const auto before = menu()->actions().size();
        sAdded = 1;
        Q_EMIT menu()->aboutToShow();
        sAdded = 2;
        QCOMPARE(menu()->actions().size(), before - 1);
    }

    void aDimmedItemKeepsItsKey()
    {
        Q_EMIT menu()->aboutToShow();
        QVERIFY(!m_window->findChild<QAction *>(QStringLiteral("it_new"))->isEnabled());
        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(sNew, 1);
    }

    void aKeyBelongsToTheFirstRowThatNamesIt()
    {
        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(sNew, 1);
        QCOMPARE(sOther, 0);
    }

    void bothReturnKeysWork()
    {
        QTest::keyClick(m_window, Qt::Key_Return, Qt::ShiftModifier);
        QTest::keyClick(m_window, Qt::Key_Enter, Qt::ShiftModifier);
        QCOMPARE(sOther, 2);
    }

    void aHeldKeyCallsItsHandlerOnce()
    {
        QTest::keyPress(m_window, Qt::Key_N, Qt::ControlModifier);
        for (int i = 0; i < 3; ++i)
            QTest::simulateEvent(m_window, true, Qt::Key_N, Qt::ControlModifier, QString(), true);
        QTest::keyRelease(m_window, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(sNew, 1);
        QTest::keyClick(m_window, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(sNew, 2);
    }

    void aTextFieldKeepsPlainCharacters()
    {
        m_field->setFocus();
        QTest::keyClick(m_field, Qt::Key_V);
        QCOMPARE(sPlain, 0);
        QCOMPARE(m_field->text(), QStringLiteral("v"));
        m_field->clearFocus();
        m_window->centralWidget()->setFocus();
        QTest::keyClick(m_window->centralWidget(), Qt::Key_V);
        QCOMPARE(sPlain, 1);
    }

    void choosingAnItemRunsItsHandler()
    {
        m_window->findChild<QAction *>(QStringLiteral("it_plain"))->trigger();
        QCOMPARE(sPlain, 1);
    }

    void aContextMenuOnlyShowsItsKeys()
    {
        QWidget other;
        const MenuRow rows[] = {menu_command(1, "c_x", "X", x_plain, MENU_CTRL, "D"), MENU_END};
        QMenu *context = menu_create({"c_menu", "", rows, nullptr}, &other, false);
        QCOMPARE(x_texts(context), QStringList({QStringLiteral("X\tCtrl-D")}));
        QVERIFY(other.findChildren<QObject *>(QStringLiteral("key_c_x")).isEmpty());
    }
};

} // namespace tav

QTEST_MAIN(tav::MenuTest)
#include "menu_qtest.moc"
