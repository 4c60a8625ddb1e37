// Drags of files over the list: what is taken, where it goes, what the pointer and the row show.
#include "commands/clip_offer.h"
#include "commands/dnd.h"
#include "commands/dnd_picture.h"
#include "jobs.h"
#include "views/fl_drag.h"
#include "views/fl_fixture.h"

#include <QDragEnterEvent>

namespace tav {

using test::gJobs;

namespace {

constexpr Qt::DropActions COPY_OR_MOVE = Qt::CopyAction | Qt::MoveAction;

// A drag held over the list. What the source sees of it is in accepted and action.
struct Drag {
    std::unique_ptr<QMimeData> data;
    Qt::DropActions possible = COPY_OR_MOVE;
    Qt::KeyboardModifiers modifiers;
    Qt::MouseButtons buttons = Qt::LeftButton;
    bool accepted = false;
    Qt::DropAction action = Qt::IgnoreAction;

    template <typename Event>
    void send(const FlWindow &window, const QPoint &at)
    {
        Event event(at, possible, data.get(), buttons, modifiers);
        QApplication::sendEvent(window.list->viewport(), &event);
        accepted = event.isAccepted();
        action = event.dropAction();
    }
    void enter(const FlWindow &window, const QPoint &at)
    {
        send<QDragEnterEvent>(window, at);
        if (accepted) // as the toolkit does it
            move(window, at);
    }
    void move(const FlWindow &window, const QPoint &at)
    {
        send<QDragMoveEvent>(window, at);
        show(action == Qt::MoveAction);
    }
    // The source's pointer shows what was answered, and its form of ours tells it.
    void show(bool moving)
    {
        TransfOffer other;
        if (auto *own = qobject_cast<ClipOffer *>(data.get()))
            own->set_moving(moving);
        else if (transf_unpack(data->data(QLatin1String(TRANSF_MIME)).toStdString(), other) == 0)
            data->setData(QLatin1String(TRANSF_MIME),
                          QByteArray::fromStdString(transf_pack(other.list, moving, other.id)));
    }
    void drop(const FlWindow &window, const QPoint &at)
    {
        enter(window, at);
        if (accepted)
            send<QDropEvent>(window, at);
        else
            leave(window);
    }
    static void leave(const FlWindow &window)
    {
        QDragLeaveEvent event;
        QApplication::sendEvent(window.list->viewport(), &event);
    }
};

// What this program's own list gives when it is dragged.
Drag x_own(const std::string &directory, const std::vector<std::string_view> &names)
{
    Drag drag;
    drag.data = std::make_unique<ClipOffer>(
        std::make_shared<const FileListRecord>(transf_make(directory, names)), false,
        transf_new_id());
    return drag;
}

// The same as it arrives from another instance, or from another program.
Drag x_foreign(const char *mime, const std::string &bytes)
{
    Drag drag;
    drag.data = std::make_unique<QMimeData>();
    drag.data->setData(QLatin1String(mime), QByteArray::fromStdString(bytes));
    return drag;
}

Drag x_other_instance(const std::string &directory, const std::vector<std::string_view> &names)
{
    return x_foreign(TRANSF_MIME, transf_pack(transf_make(directory, names), false, TransfId{'1'}));
}

} // namespace

class DndTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    QPoint at(const char *name) { return m_window->at(fl_find(name, FL_EXACT)); }
    QPoint empty() { return m_window->empty(); }
    std::string path(const char *name) { return m_dir->at(name); }
    std::string here() { return path("here"); }
    void drop(Drag &&drag, const QPoint &place) { drag.drop(*m_window, place); }

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
        gFlHooks.drop_is_files = dnd_is_files;
        gFlHooks.drop_accepts = dnd_accepts;
        gFlHooks.drop = dnd_drop;
        test::jobs_catch();
        for (const char *name : {"here", "here/sub", "here/sub/deep", "other", "other/sub"})
            m_dir->dir(name);
        for (const char *name : {"here/file", "other/file", "other/more"})
            m_dir->file(name);
        fl_setpath(here().c_str());
    }
    void cleanup()
    {
        Drag::leave(*m_window); // or the toolkit would go on with a list that is gone
        m_window.reset();
        m_dir.reset();
    }

    void dropped_on_empty_space_moves_here()
    {
        drop(x_own(path("other"), {"file", "more"}), empty());
        QCOMPARE(gJobs, std::vector{"move " + path("other") + ": file more -> " + here()});
    }

    void dropped_with_ctrl_is_copied()
    {
        Drag drag = x_own(path("other"), {"file"});
        drag.modifiers = Qt::ControlModifier;
        drag.drop(*m_window, empty());
        QCOMPARE(gJobs, std::vector{"copy " + path("other") + ": file -> " + here()});
    }

    void dropped_on_a_directory_goes_into_it()
    {
        drop(x_own(path("other"), {"file"}), at("sub"));
        QCOMPARE(gJobs, std::vector{"move " + path("other") + ": file -> " + path("here/sub")});
    }

    void dropped_on_the_parent_row_goes_up()
    {
        drop(x_own(here(), {"file"}), m_window->at(DIR_PARENT));
        QCOMPARE(gJobs, std::vector{"move " + here() + ": file -> " + m_dir->path()});
    }

    void dropped_on_a_file_goes_where_the_list_is()
    {
        drop(x_own(path("other"), {"more"}), at("file"));
        QCOMPARE(gJobs, std::vector{"move " + path("other") + ": more -> " + here()});
    }

    void dropped_from_the_list_on_its_own_empty_space_does_nothing()
    {
        Drag drag = x_own(here(), {"file"});
        drag.drop(*m_window, empty());
        QVERIFY(!drag.accepted);
        drop(x_other_instance(here(), {"file"}), empty());
        QVERIFY(gJobs.empty());
    }

    void files_into_a_directory_of_the_same_list()
    {
        drop(x_own(here(), {"file"}), at("sub"));
        QCOMPARE(gJobs, std::vector{"move " + here() + ": file -> " + path("here/sub")});
    }

    void a_directory_does_not_go_onto_itself()
    {
        Drag drag = x_own(here(), {"file", "sub"});
        drag.enter(*m_window, at("sub"));
        QVERIFY(!drag.accepted);
        QCOMPARE(m_window->list->drop_row(), -1);
        drag.drop(*m_window, at("sub"));
        drop(x_other_instance(here(), {"sub"}), at("sub"));
        QVERIFY(gJobs.empty());
    }

    void a_directory_does_not_go_below_itself()
    {
        fl_setpath(path("here/sub").c_str());
        for (const QPoint &place : {at("deep"), empty()}) {
            Drag drag = x_own(here(), {"sub"});
            drag.drop(*m_window, place);
            QVERIFY(!drag.accepted);
        }
        drop(x_other_instance(m_dir->path(), {"here"}), empty());
        QVERIFY(gJobs.empty());
    }

    void a_link_to_a_directory_does_not_go_onto_itself()
    {
        m_dir->link("here/way", path("other").c_str());
        fl_refresh();
        drop(x_own(here(), {"way"}), at("way"));
        drop(x_other_instance(here(), {"way"}), at("way"));
        QVERIFY(gJobs.empty());
        drop(x_own(here(), {"file"}), at("way"));
        QCOMPARE(gJobs.size(), 1u);
    }

    void a_directory_does_not_go_below_itself_by_a_link()
    {
        m_dir->link("other/way", path("here/sub").c_str());
        fl_setpath(path("other").c_str());
        drop(x_own(here(), {"sub"}), at("way"));
        QVERIFY(gJobs.empty());
    }

    void a_name_that_begins_like_the_destination_is_no_directory_above_it()
    {
        m_dir->dir("here/subway");
        fl_setpath(path("here/subway").c_str());
        drop(x_own(here(), {"sub"}), empty());
        QCOMPARE(gJobs.size(), 1u);
    }

    void refused_where_it_enters_it_may_be_dropped_elsewhere()
    {
        Drag drag = x_own(here(), {"file"});
        drag.enter(*m_window, empty());
        QVERIFY(!drag.accepted);
        drag.move(*m_window, at("sub"));
        QVERIFY(drag.accepted);
        Drag::leave(*m_window);
    }

    void row_under_the_drag_is_marked_when_it_takes_it()
    {
        Drag drag = x_own(path("other"), {"file"});
        const int row = fl_row_of_index(fl_find("sub", FL_EXACT));
        drag.enter(*m_window, at("sub"));
        QVERIFY(drag.accepted);
        QCOMPARE(m_window->list->drop_row(), row);
        drag.move(*m_window, at("file"));
        QVERIFY(drag.accepted); // goes where the list is
        QCOMPARE(m_window->list->drop_row(), -1);
        drag.move(*m_window, m_window->at(DIR_PARENT));
        QCOMPARE(m_window->list->drop_row(), 0);
        Drag::leave(*m_window);
        QCOMPARE(m_window->list->drop_row(), -1);
        drag.drop(*m_window, at("sub"));
        QCOMPARE(m_window->list->drop_row(), -1);
    }

    void marked_row_is_drawn_otherwise()
    {
        const QImage before = m_window->list->viewport()->grab().toImage();
        Drag drag = x_own(path("other"), {"file"});
        drag.enter(*m_window, at("sub"));
        QVERIFY(m_window->list->viewport()->grab().toImage() != before);
        Drag::leave(*m_window);
        QCOMPARE(m_window->list->viewport()->grab().toImage(), before);
    }

    void mark_goes_when_another_entry_comes_to_stand_there()
    {
        Drag drag = x_own(path("other"), {"file"});
        drag.enter(*m_window, at("sub"));
        QVERIFY(m_window->list->drop_row() >= 0);
        m_dir->dir("here/aaa"); // before the others
        m_dir->remove("here/file");
        m_dir->file("here/sua");
        fl_refresh();
        const int marked = fl_row_index(m_window->list->drop_row());
        QVERIFY(marked == DIR_NONE || fl_takes_drop(marked));
    }

    void hovering_opens_nothing()
    {
        Drag drag = x_own(path("other"), {"file"});
        drag.enter(*m_window, at("sub"));
        const auto opened = [this] { return gDir.path != here(); };
        QVERIFY(!QTest::qWaitFor(opened, 3 * QApplication::doubleClickInterval()));
        QCOMPARE(m_window->list->drop_row(), fl_row_of_index(fl_find("sub", FL_EXACT)));
        Drag::leave(*m_window);
    }

    void a_row_that_came_under_the_pointer_since_is_not_dropped_on()
    {
        m_dir->dir("here/sua");
        fl_refresh();
        Drag drag = x_own(path("other"), {"file"});
        drag.enter(*m_window, at("sub"));
        QVERIFY(drag.accepted);
        const QPoint place = at("sub");
        m_dir->remove("here/sua");
        m_dir->dir("here/suc");
        fl_refresh();
        QCOMPARE(at("suc"), place);
        drag.send<QDropEvent>(*m_window, place);
        QVERIFY(!drag.accepted);
        QVERIFY(gJobs.empty());
        drag.drop(*m_window, place);
        QCOMPARE(gJobs, std::vector{"move " + path("other") + ": file -> " + path("here/suc")});
    }

    void list_takes_the_keyboard_and_knows_of_the_drag()
    {
        m_window->field->setFocus();
        Drag words = x_foreign("text/plain", "words");
        words.enter(*m_window, empty());
        QVERIFY(!dnd_active);
        QVERIFY(!m_window->list->hasFocus());
        Drag files = x_own(here(), {"file"});
        files.enter(*m_window, empty()); // even where it may not be dropped
        QVERIFY(dnd_active);
        QVERIFY(m_window->list->hasFocus());
        Drag::leave(*m_window);
        QVERIFY(!dnd_active);
        files.drop(*m_window, at("sub"));
        QVERIFY(!dnd_active);
    }

    void pointer_shows_copy_or_move_data()
    {
        QTest::addColumn<int>("possible");
        QTest::addColumn<bool>("ctrl");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<int>("action");
        const int copy = Qt::CopyAction, move = Qt::MoveAction, link = Qt::LinkAction;
        QTest::newRow("both") << (copy | move) << false << true << move;
        QTest::newRow("both with Ctrl") << (copy | move) << true << true << copy;
        QTest::newRow("only copying") << copy << false << true << copy;
        QTest::newRow("only copying with Ctrl") << copy << true << true << copy;
        QTest::newRow("only moving with Ctrl") << move << true << true << move;
        QTest::newRow("copying or linking") << (copy | link) << false << true << copy;
        QTest::newRow("only linking") << link << false << false << int(Qt::IgnoreAction);
    }
    void pointer_shows_copy_or_move()
    {
        QFETCH(int, possible);
        QFETCH(bool, ctrl);
        QFETCH(bool, taken);
        QFETCH(int, action);
        Drag drag = x_own(path("other"), {"file"});
        drag.possible = Qt::DropActions(possible);
        drag.modifiers = ctrl ? Qt::ControlModifier : Qt::NoModifier;
        drag.enter(*m_window, empty());
        QCOMPARE(drag.accepted, taken);
        if (taken)
            QCOMPARE(int(drag.action), action);
    }

    void source_that_offers_only_copying_is_copied()
    {
        Drag drag = x_foreign("text/uri-list", "file://" + path("other/file") + "\r\n");
        drag.possible = Qt::CopyAction;
        drag.drop(*m_window, empty());
        QCOMPARE(gJobs, std::vector{"copy " + path("other") + ": file -> " + here()});
    }

    void a_key_let_go_after_the_button_changes_nothing_data()
    {
        QTest::addColumn<bool>("ctrl");
        QTest::addColumn<bool>("late");
        QTest::addColumn<std::string>("job");
        QTest::newRow("Ctrl was held") << true << false << std::string("copy ");
        QTest::newRow("Ctrl was not held") << false << false << std::string("move ");
        QTest::newRow("Ctrl was held, the last move comes late")
            << true << true << std::string("copy ");
        QTest::newRow("Ctrl was not held, the last move comes late")
            << false << true << std::string("move ");
    }
    void a_key_let_go_after_the_button_changes_nothing()
    {
        QFETCH(bool, ctrl);
        QFETCH(bool, late);
        QFETCH(std::string, job);
        Drag drag = x_foreign("text/uri-list", "file://" + path("other/file") + "\r\n");
        drag.modifiers = ctrl ? Qt::ControlModifier : Qt::NoModifier;
        drag.enter(*m_window, empty());
        drag.modifiers ^= Qt::ControlModifier;
        drag.buttons = Qt::NoButton;
        if (late)
            drag.move(*m_window, empty());
        QCOMPARE(drag.action, ctrl ? Qt::CopyAction : Qt::MoveAction);
        drag.send<QDropEvent>(*m_window, empty());
        QCOMPARE(gJobs, std::vector{job + path("other") + ": file -> " + here()});
    }

    void another_instances_pointer_counts_not_what_is_held_when_its_drag_arrives_data()
    {
        QTest::addColumn<bool>("moving");
        QTest::addColumn<std::string>("job");
        QTest::newRow("it showed a copy") << false << std::string("copy ");
        QTest::newRow("it showed a move") << true << std::string("move ");
    }
    void another_instances_pointer_counts_not_what_is_held_when_its_drag_arrives()
    {
        QFETCH(bool, moving);
        QFETCH(std::string, job);
        Drag drag = x_other_instance(path("other"), {"file"});
        drag.modifiers = moving ? Qt::ControlModifier : Qt::NoModifier;
        drag.enter(*m_window, empty());
        drag.show(moving);
        drag.send<QDropEvent>(*m_window, empty());
        QCOMPARE(gJobs, std::vector{job + path("other") + ": file -> " + here()});
    }

    void a_move_is_told_to_the_source_as_a_copy()
    {
        Drag drag = x_foreign("text/uri-list", "file://" + path("other/file") + "\r\n");
        drag.drop(*m_window, empty());
        QCOMPARE(gJobs, std::vector{"move " + path("other") + ": file -> " + here()});
        QVERIFY(drag.accepted);
        QCOMPARE(drag.action, Qt::CopyAction);
    }

    void foreign_files_of_several_directories_become_one_job_each()
    {
        const std::string base = "file://" + m_dir->path();
        drop(x_foreign("text/uri-list", base + "/other/file\r\n" + base + "/x/y\r\n" + base +
                                            "/here/file\r\n" + base + "/other/more\r\n"),
             empty());
        QCOMPARE(gJobs, (std::vector{"move " + path("other") + ": file more -> " + here(),
                                     "move " + path("x") + ": y -> " + here()}));
    }

    void one_directory_that_would_go_below_itself_stops_all_of_a_drop()
    {
        const std::string base = "file://" + m_dir->path();
        Drag drag = x_foreign("text/uri-list", base + "/other/file\r\n" + base + "/here\r\n");
        drag.drop(*m_window, empty());
        QVERIFY(!drag.accepted);
        QVERIFY(gJobs.empty());
    }

    void foreign_types_are_refused()
    {
        for (const char *mime : {"text/plain", "text/html", "image/png", "application/x-color"}) {
            Drag drag = x_foreign(mime, "file:///etc/passwd");
            drag.drop(*m_window, empty());
            QVERIFY(!drag.accepted);
        }
        QVERIFY(gJobs.empty());
    }

    void hostile_data_starts_nothing_data()
    {
        QTest::addColumn<QByteArray>("mime");
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray own = TRANSF_MIME, uris = "text/uri-list";
        QTest::newRow("empty") << own << QByteArray();
        QTest::newRow("truncated") << own << QByteArray("TAVL\1\0\0");
        QTest::newRow("4 GB claimed") << own
                                      << QByteArray("TAVL\1\0\0\0files\0mv", 16) +
                                             QByteArray(16, 'i') + QByteArray(8, '\xff');
        QTest::newRow("not a file") << uris << QByteArray("http://host/file\r\n");
        QTest::newRow("relative") << uris << QByteArray("file:file\r\nfile\r\n");
        QTest::newRow("nul") << uris << QByteArray("file:///tmp/a%00b\r\n");
        QTest::newRow("parent") << uris << QByteArray("file:///tmp/..\r\n");
        QTest::newRow("root") << uris << QByteArray("file:///\r\n");
        QTest::newRow("another host") << uris << QByteArray("file://elsewhere.example/a\r\n");
    }
    void hostile_data_starts_nothing()
    {
        QFETCH(QByteArray, mime);
        QFETCH(QByteArray, bytes);
        Drag drag = x_foreign(mime.constData(), bytes.toStdString());
        drag.drop(*m_window, empty());
        QVERIFY(gJobs.empty());
        QVERIFY(!drag.accepted);
    }

    void nothing_is_dropped_where_no_directory_is_shown()
    {
        gDir.has_path = false;
        Drag drag = x_own(path("other"), {"file"});
        drag.drop(*m_window, empty());
        QVERIFY(!drag.accepted);
        QVERIFY(gJobs.empty());
    }

    void list_scrolls_under_a_drag_near_its_edges()
    {
        for (int i = 0; i < 60; i++)
            m_dir->file("here/more" + std::to_string(i));
        fl_refresh();
        Drag drag = x_own(path("other"), {"file"});
        const int height = m_window->list->viewport()->height();
        drag.enter(*m_window, {40, height - 3});
        QTRY_VERIFY(m_window->list->top() > 3 * m_window->list->row_height());
        drag.move(*m_window, {40, 3});
        QTRY_COMPARE(m_window->list->top(), 0);
        drag.move(*m_window, {40, height - 3});
        Drag::leave(*m_window);
        const int top = m_window->list->top();
        QVERIFY(!QTest::qWaitFor([&] { return m_window->list->top() != top; }, 300));
    }

    void what_was_dropped_is_shown_when_asked_for()
    {
        const FileListRecord list = transf_make(path("other"), {"file", "sub"});
        x_drop_complete_cb(list, 0);
        QCOMPARE(fl_test_selected(), std::string());
        x_drop_complete_cb(list, DND_SHOW);
        QCOMPARE(fl_test_name(gDir.current), std::string("file")); // the first one selected
    }

    void picture_shows_the_name_or_the_count()
    {
        const QPixmap one = dnd_picture(transf_make(here(), {"file"}));
        const QPixmap longer = dnd_picture(transf_make(here(), {"file-of-a-longer-name"}));
        const QPixmap folder = dnd_picture(transf_make(here(), {"sub"}));
        QVERIFY(one.width() < longer.width());
        QVERIFY(!folder.isNull());
        const QPixmap two = dnd_picture(transf_make(here(), {"file", "sub"}));
        const QPixmap three = dnd_picture(transf_make(here(), {"file", "sub", "gone"}));
        QVERIFY(two.toImage() != three.toImage());
        const std::string name(255, 'w');
        QVERIFY(dnd_picture(transf_make(here(), {name})).width() < 600);
    }
};

} // namespace tav

QTEST_MAIN(tav::DndTest)
#include "dnd_qtest.moc"
