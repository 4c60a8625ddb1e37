// The main window: set-up, metrics, leaving, signals, text fields.
#include "app/base.h"

#include "app/ac.h"
#include "app/cl.h"
#include "app/init.h"
#include "app/kb.h"
#include "app/start.h"
#include "fileops/slot.h"
#include "platform/lengths.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "support/boxes.h"
#include "views/fl.h"
#include "views/fl_view.h"
#include "views/tree.h"
#include "views/vm.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <csignal>
#include <cstring>
#include <fstream>
#include <functional>
#include <sys/inotify.h>
#include <testdir.h>
#include <unistd.h>

namespace tav {

class BaseTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDir> m_dir;
    std::string m_config;

    // Starts as main does, in a home of its own.
    void start(const Options &options = {})
    {
        const std::string directory = m_dir->path() + "/shown";
        const char *words[] = {"tav", directory.c_str()};
        tav::init(2, words);
        base_create(options);
        QVERIFY(QTest::qWaitForWindowExposed(gBase));
    }
    void finish()
    {
        if (gBase != nullptr)
            base_leave();
        delete gBase;
        gBase = nullptr;
    }
    void restart()
    {
        finish();
        start();
    }
    Config saved() const
    {
        Config record{};
        std::ifstream file(m_config + "/config.003", std::ios::binary);
        file.read(reinterpret_cast<char *>(&record), sizeof record);
        return record;
    }
    void write(const Config &record) const
    {
        std::ofstream file(m_config + "/config.003", std::ios::binary);
        file.write(reinterpret_cast<const char *>(&record), sizeof record);
    }
    static Config x_defaults()
    {
        Config record{};
        config_set_defaults(record);
        record.flags |= CONFIG_MARKER;
        return record;
    }
    // The names of what happens in a directory while something runs, in their order.
    static QString watched(const std::string &directory, uint32_t what,
                           const std::function<void()> &run)
    {
        const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        inotify_add_watch(watch, directory.c_str(), what);
        run();
        alignas(inotify_event) char events[4096];
        const ssize_t size = read(watch, events, sizeof events);
        ::close(watch);
        QStringList names;
        for (ssize_t at = 0; at < size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(events + at);
            if (event->len > 0) // none for the directory itself
                names << QString::fromLatin1(event->name);
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
        return names.join(QLatin1Char(' '));
    }

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_dir->dir("shown");
        m_dir->file("shown/a.txt");
        m_dir->dir(".ph");
        setenv("HOME", m_dir->path().c_str(), 1);
        m_config = m_dir->path() + "/.ph/tav";
    }
    void cleanup()
    {
        finish();
        QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
        QApplication::exec(); // or the exit asked for by leaving would end the next box's loop
        dir_release(gDir);
        gDir.path.clear();
        gDir.has_path = false;
    }

    void aStartDirectoryThatIsLostMeanwhileIsToldInTheEmptyWindow_data()
    {
        QTest::addColumn<bool>("file");
        QTest::addColumn<QString>("said");
        QTest::newRow("vanished") << false << QStringLiteral("Directory '%1', not found");
        QTest::newRow("replaced by a file") << true << QStringLiteral("Path '%1' not found");
    }
    void aStartDirectoryThatIsLostMeanwhileIsToldInTheEmptyWindow()
    {
        QFETCH(bool, file);
        QFETCH(QString, said);
        const std::string directory = m_dir->at("shown");
        const char *words[] = {"tav", directory.c_str()};
        tav::init(2, words);
        QCOMPARE(std::rename(directory.c_str(), m_dir->at("away").c_str()), 0);
        if (file)
            m_dir->file("shown");
        const auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        base_create({});
        QVERIFY(seen->came);
        QCOMPARE(seen->title, QStringLiteral("Error"));
        QCOMPARE(seen->text, said.arg(QString::fromStdString(directory)));
        QVERIFY(gBase->isVisible());
        QCOMPARE(gDir.count, 0);
        QCOMPARE(gBase->focusWidget(), w_find("filelist"));
        for (const char *button : {"tb_back", "tb_forward", "tb_copy", "tb_delete", "tb_add"})
            QVERIFY2(!w_find(button)->isEnabled(), button);
        const std::vector<std::string> hotlist = gTree.paths;
        tree_add_cb(nullptr);
        QVERIFY(gTree.paths == hotlist);
        fl_refresh();
        QCOMPARE(gBase->windowTitle(), QStringLiteral("TAV"));
    }

    void theWindowOpensTheStartDirectoryWithTheListFocused()
    {
        start();
        QCOMPARE(QString::fromStdString(gDir.path),
                 QString::fromStdString(m_dir->path() + "/shown"));
        QCOMPARE(gDir.count, 1);
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(fl_view()));
        QCOMPARE(w_find("fh_filename")->property("sort_image").toString(),
                 QStringLiteral("image_sort_up"));
    }

    void startingReadsTheFilesInTheirOrder()
    {
        m_dir->dir(".ph/tav");
        write(x_defaults());
        for (const char *name : {"goto.001", "fspec.001", "with.001", "copy.001", "pattern.001",
                                 "associate.003", "hotlist.001"})
            m_dir->text(std::string(".ph/tav/") + name, "");
        QCOMPARE(watched(m_config, IN_OPEN, [this] { start(); }),
                 QStringLiteral("config.003 goto.001 fspec.001 with.001 copy.001 pattern.001 "
                                "associate.003 hotlist.001"));
    }

    void aFirstStartShowsTheStarAndALaterOneFiltersByTheLatest()
    {
        start();
        QCOMPARE(w_find<QComboBox>("tb_filespec")->currentText(), QStringLiteral("*"));
        QCOMPARE(gDir.count, 1);
        finish();
        m_dir->file("shown/b.c");
        m_dir->text(".ph/tav/fspec.001", "*.c\n*\n");
        m_dir->text(".ph/tav/goto.001", "/usr\n/etc\n");
        start();
        QCOMPARE(w_find<QComboBox>("tb_filespec")->currentText(), QStringLiteral("*.c"));
        QCOMPARE(w_find<QComboBox>("tb_filespec")->currentIndex(), 0);
        QCOMPARE(gDir.count, 1);
        QCOMPARE(gDir.entries[0]->name, std::string_view("b.c"));
        const auto *path = w_find<QComboBox>("tb_curpath");
        QCOMPARE(path->count(), 2);
        QCOMPARE(path->itemText(0), QStringLiteral("/usr"));
        QCOMPARE(path->currentText().toStdString(), gDir.path);
    }

    void theListIsLinkedOnceToItsKeysAndNothingIsBound()
    {
        gLinks.clear();
        gSections.clear();
        start();
        QCOMPARE(std::distance(gLinks.begin(), gLinks.end()), 1);
        QCOMPARE(gLinks.front().widget, static_cast<QWidget *>(fl_view()));
        QCOMPARE(gLinks.front().section->name, std::string("filelist"));
        QVERIFY(gLinks.front().section->mods.empty());
        QVERIFY(gActions.empty());
    }

    void theDefaultSizeFollowsTheTextFont()
    {
        start();
        const QSize screen = gBase->screen()->availableSize();
        const int frame = 2 * gBase->style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
        const int width = lengths_to_pixels(600);
        QCOMPARE(gBase->width(), width > screen.width() ? screen.width() - frame : width);
        QCOMPARE(gBase->height(), lengths_to_pixels(410));
        QCOMPARE(w_find("hotlist_panel")->width(), lengths_to_pixels(190));
        QCOMPARE(fl_get_column_width(1), lengths_to_pixels(125));
        QCOMPARE(fl_get_column_width(6), lengths_to_pixels(75));
    }

    void aResizedWindowOpensAtThatSizeAgain()
    {
        start();
        gBase->resize(700, 500);
        const int column = lengths_to_pixels(63);
        fl_set_column_width(2, column);
        w_find<QSplitter>("workspace")->setSizes({210, 480});
        const int panel = w_find("hotlist_panel")->width();
        restart();
        QCOMPARE(gBase->size(), QSize(700, 500));
        QCOMPARE(fl_get_column_width(2), column);
        QCOMPARE(w_find("hotlist_panel")->width(), panel);
    }

    void aMaximisedWindowSavesItsNormalSize()
    {
        start();
        gBase->resize(700, 500);
        gBase->showMaximized();
        QTRY_VERIFY(gBase->width() != 700);
        finish();
        QCOMPARE(lengths_to_pixels(saved().window_width), 700);
        QCOMPARE(lengths_to_pixels(saved().window_height), 500);
    }

    void savingAndLoadingAgainChangesNothing()
    {
        start();
        finish();
        const Config first = saved();
        restart();
        finish();
        const Config second = saved();
        QCOMPARE(std::memcmp(&first, &second, sizeof first), 0);
        QCOMPARE(first.window_width, 600);
        QCOMPARE(first.column_width[0], 125);
        QCOMPARE(first.flags, 0xFF000924u);
    }

    void withTheHotlistByteClearThePanelIsHiddenAndKeepsItsWidth()
    {
        m_dir->dir(".ph/tav");
        Config record = x_defaults();
        record.hotlist_shown = 0;
        record.hotlist_width = 177;
        write(record);
        start();
        QVERIFY(w_find("hotlist_panel")->isHidden());
        QVERIFY(!w_find<QToolButton>("tb_hotlist")->isChecked());
        finish();
        QCOMPARE(saved().hotlist_width, 177);
        QCOMPARE(int(saved().hotlist_shown), 0);
    }

    void aPanelWiderThanTheListOpensAtThatWidthAgain()
    {
        start();
        w_find<QSplitter>("workspace")->setSizes({4000, 0});
        const int panel = w_find("hotlist_panel")->width();
        QVERIFY(panel > gBase->width() / 2);
        restart();
        QCOMPARE(w_find("hotlist_panel")->width(), panel);
        finish();
        QCOMPARE(lengths_to_pixels(saved().hotlist_width), panel);
    }

    // Else every maximised start would leave it wider than the one before.
    void aWindowMadeWiderGivesItsWidthToTheList()
    {
        start();
        const int panel = w_find("hotlist_panel")->width();
        gBase->resize(gBase->width() + 300, gBase->height());
        QTRY_COMPARE(w_find("workspace")->width(), gBase->width());
        QCOMPARE(w_find("hotlist_panel")->width(), panel);
        gBase->showMaximized();
        QTRY_VERIFY(gBase->isMaximized());
        finish();
        QCOMPARE(saved().hotlist_width, 190);
    }

    void aPanelHiddenMeanwhileKeepsTheWidthThatItHad()
    {
        start();
        const int wanted = lengths_to_pixels(130);
        w_find<QSplitter>("workspace")->setSizes({wanted, gBase->width() - wanted});
        const int panel = w_find("hotlist_panel")->width();
        QVERIFY(panel != lengths_to_pixels(190));
        vm_hotlist_toggle(nullptr);
        restart();
        QVERIFY(w_find("hotlist_panel")->isHidden());
        vm_hotlist_toggle(nullptr);
        QTRY_COMPARE(w_find("hotlist_panel")->width(), panel);
    }

    void thePanelsHaveTheirSmallestSizes()
    {
        start();
        QCOMPARE(w_find("hotlist_panel")->minimumSize(),
                 QSize(lengths_to_pixels(96), lengths_to_pixels(100)));
        QCOMPARE(w_find("filelist_panel")->minimumSize(),
                 QSize(lengths_to_pixels(120), lengths_to_pixels(100)));
        QCOMPARE(w_find<QSplitter>("workspace")->indexOf(w_find("hotlist_panel")), 0);
        QCOMPARE(w_find<QSplitter>("workspace")->indexOf(w_find("filelist_panel")), 1);
    }

    void numbersThatMakeNoSenseAreClampedOnUseAndKeptOnTheDisk()
    {
        m_dir->dir(".ph/tav");
        Config record = x_defaults();
        record.window_width = 0x7FFFFFFF;
        record.window_height = 0;
        record.hotlist_width = -1;
        record.column_width[0] = -5;
        record.column_width[1] = 0x40000000;
        std::memset(record.list_font, 0xEE, sizeof record.list_font);
        record.key_timeout = -7;
        write(record);
        start();
        QVERIFY(gBase->width() >= 100 &&
                gBase->width() <= gBase->screen()->availableSize().width());
        QVERIFY(gBase->height() >= 100);
        QVERIFY(fl_get_column_width(1) > 0);
        finish();
        QCOMPARE(std::memcmp(&record, &static_cast<const Config &>(saved()), sizeof record), 0);
    }

    void aWindowTooLargeForTheScreenLeavesRoomForItsFrame()
    {
        m_dir->dir(".ph/tav");
        Config record = x_defaults();
        record.window_width = record.window_height = 5000;
        write(record);
        start();
        const QSize screen = gBase->screen()->availableSize();
        const int title = gBase->style()->pixelMetric(QStyle::PM_TitleBarHeight);
        QVERIFY(title > 0);
        QVERIFY(gBase->height() <= screen.height() - title);
        QVERIFY(gBase->height() > screen.height() / 2);
        QVERIFY(gBase->width() < screen.width());
        finish();
        QCOMPARE(saved().window_width, 5000);
        QCOMPARE(saved().window_height, 5000);
    }

    void theLowSixteenBitsOfTheMetricsCount()
    {
        m_dir->dir(".ph/tav");
        Config record = x_defaults();
        record.window_width = 0x10000 | 400;
        write(record);
        start();
        QCOMPARE(gBase->width(), lengths_to_pixels(400));
    }

    void withSaveOnExitClearTheRecordIsNotWritten()
    {
        m_dir->dir(".ph/tav");
        Config record = x_defaults();
        record.save_on_exit = 0;
        write(record);
        start();
        gBase->resize(700, 500);
        finish();
        QCOMPARE(saved().window_width, 600);
        QVERIFY(std::ifstream(m_config + "/fspec.001").good());
    }

    void optionsWinOverTheSavedSize()
    {
        Options options;
        options.width = 640;
        options.height = 333;
        start(options);
        QCOMPARE(gBase->size(), QSize(640, 333));
    }

    void aPositionIsTakenAsItIsGiven()
    {
        Options options;
        options.has_x = options.has_y = true;
        options.x = 33;
        options.y = 44;
        start(options);
        QCOMPARE(gBase->pos(), QPoint(33, 44));
    }

    void aWindowStateIsTakenAsItIsGiven()
    {
        Options options;
        options.state = 'm';
        start(options);
        QVERIFY(gBase->isMaximized());
    }

    void closingTheFrameSavesOnceAndEndsTheProgram()
    {
        start();
        int ended = 0;
        QTimer::singleShot(0, gBase, [] { gBase->close(); });
        ended = QApplication::exec();
        QCOMPARE(ended, 0);
        QVERIFY(base_is_gone());
        QVERIFY(base_window_closed);
        for (const ClHistory *history : {gPathList, gSpecList, gWithList, gCopyList, gPatternList})
            QVERIFY(history == nullptr);
        QVERIFY(std::ifstream(m_config + "/config.003").good());
        std::remove((m_config + "/config.003").c_str());
        base_leave();
        QVERIFY(!std::ifstream(m_config + "/config.003").good());
    }

    void leavingWritesTheFilesInTheirOrder()
    {
        start();
        QCOMPARE(watched(m_config, IN_MOVED_TO, [this] { finish(); }),
                 QStringLiteral("config.003 goto.001 fspec.001 pattern.001 hotlist.001"));
    }

    void altXEndsTheProgram()
    {
        start();
        QTimer::singleShot(0, gBase, [] { QTest::keyClick(gBase, Qt::Key_X, Qt::AltModifier); });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(base_is_gone());
    }

    void withoutASettingsDirectoryNothingIsWrittenAndTheWindowIsGoneAllTheSame()
    {
        setenv("HOME", (m_dir->path() + "/nowhere").c_str(), 1);
        start();
        QTimer::singleShot(0, gBase, [] { gBase->close(); });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!base_window_closed);
        QVERIFY(base_is_gone());
        m_dir->file("shown/late.txt");
        signal_refresh();
        QCOMPARE(gDir.count, 1);
    }

    void aRefreshSignalReadsTheDirectoryAgain()
    {
        start();
        m_dir->file("shown/late.txt");
        std::raise(SIGWINCH);
        QTRY_COMPARE(gDir.count, 2);
    }

    void aRefreshSignalLeavesTheKeyboardToTheWindowInUse()
    {
        start();
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        m_dir->file("shown/late.txt");
        std::raise(SIGWINCH);
        QTRY_COMPARE(gDir.count, 2);
        QCoreApplication::processEvents();
        QCOMPARE(QApplication::activeWindow(), &other);
    }

    void aRefreshSignalLeavesATextFieldToWhoeverTypesInIt_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("path") << QStringLiteral("tb_curpath");
        QTest::newRow("filter") << QStringLiteral("tb_filespec");
    }
    void aRefreshSignalLeavesATextFieldToWhoeverTypesInIt()
    {
        QFETCH(QString, field);
        start();
        auto *box = gBase->findChild<QComboBox *>(field);
        box->setFocus();
        box->lineEdit()->selectAll();
        QTest::keyClicks(box->lineEdit(), QStringLiteral("/half"));
        m_dir->file("shown/late.txt");
        std::raise(SIGWINCH);
        QTRY_COMPARE(gDir.count, 2);
        QVERIFY(box->lineEdit()->hasFocus());
        QVERIFY(box->currentText().startsWith(QStringLiteral("/half")));
        fl_refresh();
        QCOMPARE(gBase->focusWidget(), static_cast<QWidget *>(fl_view()));
    }

    void aRefreshSignalAfterTheWindowHasClosedDoesNothing()
    {
        start();
        base_leave();
        m_dir->file("shown/late.txt");
        signal_refresh();
        QCOMPARE(gDir.count, 1);
    }

    void aTerminatingSignalSavesAndEndsWithStatusZero_data()
    {
        QTest::addColumn<int>("signal");
        for (int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2})
            QTest::newRow(strsignal(signal)) << signal;
    }
    void aTerminatingSignalSavesAndEndsWithStatusZero()
    {
        QFETCH(int, signal);
        start();
        QTimer::singleShot(0, gBase, [signal] { std::raise(signal); });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(std::ifstream(m_config + "/config.003").good());
    }
};

} // namespace tav

QTEST_MAIN(tav::BaseTest)
#include "base_qtest.moc"
