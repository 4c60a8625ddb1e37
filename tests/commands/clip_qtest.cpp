// Cut, copy and paste, the marks of cut files, taking names out of a cut.
#include "commands/clip.h"
#include "commands/clip_offer.h"
#include "commands/em.h"
#include "jobs.h"
#include "views/fl_fixture.h"
#include "views/fl_row.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

namespace tav {

using test::gJobs;

namespace {

QClipboard *x_clipboard() { return QGuiApplication::clipboard(); }

QByteArray x_form(const char *mime) { return x_clipboard()->mimeData()->data(QLatin1String(mime)); }

// An offer as another program makes it.
void x_foreign(std::initializer_list<std::pair<const char *, QByteArray>> forms)
{
    auto *data = new QMimeData;
    for (const auto &[mime, bytes] : forms)
        data->setData(QLatin1String(mime), bytes);
    x_clipboard()->setMimeData(data);
}

// An offer as another instance of this program makes it.
void x_other_instance(const FileListRecord &list, bool cut, const TransfId &id)
{
    x_foreign({{TRANSF_MIME, QByteArray::fromStdString(transf_pack(list, cut, id))}});
}

std::string x_job(const char *verb, const std::string &from, const char *names,
                  const std::string &to)
{
    return std::string(verb) + " " + from + ": " + names + " -> " + to;
}

} // namespace

class ClipTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    void show(const std::string &path) { fl_setpath(path.c_str()); }
    bool cut_image(const char *name)
    {
        return fl_row_image(fl_find(name, FL_EXACT)) == FL_IMAGE_CUT;
    }
    std::string from() { return m_dir->at("from"); }
    std::string to() { return m_dir->at("to"); }

private Q_SLOTS:
    void initTestCase()
    {
        ui_gate_open();
        clip_setup();
    }
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
        gFlHooks.cut_fetch = file_get_cut_files;
        gFlHooks.cut_any = [] { return file_any_cut(gDir.path); };
        gFlHooks.is_cut = file_is_cut;
        clip_set_notify(em_marks_changed);
        test::jobs_catch();
        for (const char *name : {"from/a", "from/b", "from/c"}) {
            m_dir->dir("from");
            m_dir->file(name);
        }
        m_dir->dir("to");
        x_clipboard()->setMimeData(new QMimeData);
        show(from());
    }
    void cleanup()
    {
        clip_set_notify(nullptr);
        m_window.reset();
        m_dir.reset();
    }

    void nothing_selected_copies_nothing()
    {
        em_copy(nullptr);
        em_cut(nullptr);
        QVERIFY(!em_check_clipboard_for_type("files"));
        em_paste(nullptr);
        QVERIFY(gJobs.empty());
    }

    void a_cut_without_selection_does_not_make_the_next_copy_a_cut()
    {
        em_cut(nullptr);
        fl_select("a", FL_EXACT);
        em_copy(nullptr);
        QVERIFY(!clip_files()->cut);
    }

    void copy_then_paste_elsewhere_copies()
    {
        fl_select("a", FL_EXACT);
        fl_select("c", FL_EXACT);
        em_copy(nullptr);
        QCOMPARE(fl_test_selected(), std::string("a c")); // a copy leaves the selection
        QVERIFY(em_check_clipboard_for_type("files"));
        QVERIFY(!em_check_clipboard_for_type("text"));
        show(to());
        em_paste(nullptr);
        QCOMPARE(gJobs, std::vector{x_job("copy", from(), "a c", to())});
    }

    void cut_then_paste_elsewhere_moves()
    {
        fl_select("b", FL_EXACT);
        em_cut(nullptr);
        QCOMPARE(fl_test_selected(), std::string());
        QVERIFY(cut_image("b"));
        QVERIFY(!cut_image("a"));
        show(to());
        em_paste(nullptr);
        QCOMPARE(gJobs, std::vector{x_job("move", from(), "b", to())});
    }

    void paste_into_the_directory_of_the_files_starts_no_job()
    {
        fl_select("a", FL_EXACT);
        em_copy(nullptr);
        em_paste(nullptr);
        QVERIFY(gJobs.empty());
    }

    void cut_two_then_copy_another_takes_the_marks_away()
    {
        fl_select("a", FL_EXACT);
        fl_select("b", FL_EXACT);
        em_cut(nullptr);
        QVERIFY(cut_image("a") && cut_image("b"));
        fl_select("c", FL_EXACT);
        em_copy(nullptr);
        QVERIFY(!cut_image("a") && !cut_image("b") && !cut_image("c"));
    }

    void forms_for_other_programs_are_all_there()
    {
        m_dir->file("from/x y\xff");
        fl_refresh();
        fl_select("x y\xff", FL_EXACT);
        em_cut(nullptr);
        const QByteArray uri = "file://" + QByteArray::fromStdString(from()) + "/x%20y%FF";
        QCOMPARE(x_form("text/uri-list"), uri + "\r\n");
        QCOMPARE(x_form("x-special/gnome-copied-files"), "cut\n" + uri);
        QCOMPARE(x_form("application/x-kde-cutselection"), QByteArray("1"));
        QCOMPARE(x_form("text/plain"), QByteArray::fromStdString(from()) + "/x y\xff");
        QVERIFY(x_clipboard()->mimeData()->hasUrls());
        QCOMPARE(x_clipboard()->mimeData()->urls().size(), 1);
        fl_select("a", FL_EXACT);
        em_copy(nullptr);
        QCOMPARE(x_form("application/x-kde-cutselection"), QByteArray("0"));
        QVERIFY(x_form("x-special/gnome-copied-files").startsWith("copy\n"));
    }

    void another_instances_cut_is_marked_and_moved()
    {
        x_other_instance(transf_make(from(), {"a"}), true, TransfId{'1'});
        QVERIFY(cut_image("a")); // at once, without a refresh
        show(to());
        em_paste(nullptr);
        QCOMPARE(gJobs, std::vector{x_job("move", from(), "a", to())});
    }

    void marks_go_when_another_program_takes_the_clipboard()
    {
        fl_select("a", FL_EXACT);
        em_cut(nullptr);
        x_foreign({{"text/plain", "words"}});
        QVERIFY(!cut_image("a"));
        QVERIFY(!em_check_clipboard_for_type("files"));
        em_paste(nullptr);
        QVERIFY(gJobs.empty());
    }

    void uri_list_without_a_mark_is_copied()
    {
        const QByteArray base = "file://" + QByteArray::fromStdString(from());
        x_foreign({{"text/uri-list", base + "/a\r\n" + base + "/b\r\n"}});
        show(to());
        em_paste(nullptr);
        QCOMPARE(gJobs, std::vector{x_job("copy", from(), "a b", to())});
    }

    void files_of_several_directories_become_one_job_each()
    {
        const QByteArray base = "file://" + QByteArray::fromStdString(m_dir->path());
        x_foreign(
            {{"x-special/gnome-copied-files", "cut\n" + base + "/from/a\n" + base + "/other/x\n" +
                                                  base + "/from/b\n" + base + "/to/here"}});
        show(to());
        em_paste(nullptr);
        QCOMPARE(gJobs, (std::vector{x_job("move", from(), "a b", to()),
                                     x_job("move", m_dir->at("other"), "x", to())}));
    }

    void hostile_forms_are_no_files()
    {
        for (const QByteArray &bytes : {QByteArray("TAVL"), QByteArray(1000, '\xff'),
                                        QByteArray("TAVL\1\0\0\0files\0mv", 16)}) {
            x_foreign({{TRANSF_MIME, bytes}});
            QVERIFY(!clip_files());
        }
        x_foreign({{"text/uri-list", "http://x/y\r\nfile:relative\r\n\r\nfile:///a/%00\r\n"}});
        QVERIFY(!clip_files());
    }

    void uncut_takes_names_out_one_by_one_gathered()
    {
        x_other_instance(transf_make(from(), {"a", "b", "c"}), true, TransfId{'2'});
        QSignalSpy changes(x_clipboard(), &QClipboard::dataChanged);
        QCOMPARE(file_uncut(from().c_str(), "a"), 1);
        QCOMPARE(file_uncut(from().c_str(), "b"), 1);
        QCOMPARE(file_uncut(from().c_str(), "b"), 0);
        QCOMPARE(file_uncut("/elsewhere", "c"), 0);
        QVERIFY(changes.isEmpty());
        QTRY_COMPARE(changes.size(), 1);
        TransfOffer rest;
        QCOMPARE(transf_unpack(x_form(TRANSF_MIME).toStdString(), rest), 0);
        QVERIFY(rest.cut);
        QCOMPARE(rest.id, (TransfId{'2'})); // still that offer
        QCOMPARE(rest.list.count, 1);
        QVERIFY(!cut_image("a") && cut_image("c"));
    }

    void the_last_name_empties_the_clipboard()
    {
        x_other_instance(transf_make(from(), {"a"}), true, TransfId{'3'});
        QCOMPARE(file_uncut(from().c_str(), "a"), 1);
        QVERIFY(!em_check_clipboard_for_type("files"));
        QTRY_VERIFY(x_clipboard()->mimeData()->formats().isEmpty());
    }

    void another_programs_cut_is_left_whole_until_nothing_is_left_of_it()
    {
        const QByteArray base = "file://" + QByteArray::fromStdString(from());
        const QByteArray form = "cut\n" + base + "/a\n" + base + "/b";
        x_foreign({{"x-special/gnome-copied-files", form}});
        QSignalSpy changes(x_clipboard(), &QClipboard::dataChanged);
        QCOMPARE(file_uncut(from().c_str(), "a"), 1);
        QVERIFY(!changes.wait(2 * CLIP_GATHER_MS)); // longer than it gathers
        QVERIFY(changes.isEmpty());
        QCOMPARE(x_form("x-special/gnome-copied-files"), form);
        QCOMPARE(file_uncut(from().c_str(), "b"), 1);
        QTRY_COMPARE(changes.size(), 1);
        QVERIFY(x_clipboard()->mimeData()->formats().isEmpty());
    }

    void uncutting_does_not_touch_a_clipboard_that_holds_something_else()
    {
        x_other_instance(transf_make(from(), {"a", "b"}), true, TransfId{'4'});
        QCOMPARE(file_uncut(from().c_str(), "a"), 1);
        x_foreign({{"text/plain", "words"}});
        QSignalSpy changes(x_clipboard(), &QClipboard::dataChanged);
        QCOMPARE(file_uncut(from().c_str(), "b"), 0);
        QVERIFY(!changes.wait(2 * CLIP_GATHER_MS)); // longer than it gathers
        QCOMPARE(x_form("text/plain"), QByteArray("words"));
    }

    void names_taken_out_stay_out_when_the_same_cut_comes_back()
    {
        x_other_instance(transf_make(from(), {"a", "b", "c"}), true, TransfId{'5'});
        QCOMPARE(file_uncut(from().c_str(), "a"), 1);
        x_other_instance(transf_make(from(), {"a", "b"}), true, TransfId{'5'}); // c went elsewhere
        QVERIFY(!cut_image("a") && cut_image("b") && !cut_image("c"));
        auto names = [] {
            TransfOffer rest;
            const int taken = transf_unpack(x_form(TRANSF_MIME).toStdString(), rest);
            return taken == 0 ? int(rest.list.count) : -1;
        };
        QTRY_COMPARE(names(), 1); // and the clipboard learns of it
        x_other_instance(transf_make(from(), {"a", "b"}), true, TransfId{'6'});
        QVERIFY(cut_image("a")); // another cut is another matter
    }

    void removing_a_directory_takes_out_what_was_cut_in_it()
    {
        x_other_instance(transf_make(from(), {"a", "b"}), true, TransfId{'7'});
        QCOMPARE(file_uncut(m_dir->path().c_str(), "to"), 0);
        QCOMPARE(file_uncut(m_dir->path().c_str(), "from"), 1);
        QTRY_VERIFY(x_clipboard()->mimeData()->formats().isEmpty());
    }

    void window_that_was_told_nothing_looks_when_it_gets_the_focus()
    {
        {
            const QSignalBlocker deaf(x_clipboard());
            x_other_instance(transf_make(from(), {"a"}), true, TransfId{'8'});
        }
        QVERIFY(!cut_image("a"));
        Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive);
        QVERIFY(cut_image("a"));
    }

    void a_form_that_is_not_ours_after_all_leaves_room_for_the_next()
    {
        const QByteArray base = "file://" + QByteArray::fromStdString(from());
        x_foreign({{TRANSF_MIME, QByteArray("TAVL\2\0\0\0", 8)},
                   {"text/uri-list", base + "/a\r\n"},
                   {"application/x-kde-cutselection", "1"}});
        QVERIFY(clip_files() && clip_files()->cut);
        QVERIFY(cut_image("a"));
    }

    void offer_owns_its_names()
    {
        fl_select("a", FL_EXACT);
        em_copy(nullptr);
        m_dir->file("from/0first");
        fl_refresh();
        show(to());
        em_paste(nullptr);
        QCOMPARE(gJobs, std::vector{x_job("copy", from(), "a", to())});
    }
};

} // namespace tav

QTEST_MAIN(tav::ClipTest)
#include "clip_qtest.moc"
