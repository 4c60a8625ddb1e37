// Destination menus when memory runs out: nothing half-made stays, the user is told, and the
// program goes on.
#include "commands/dtm.h"
#include "platform/ui_gate.h"
#include "platform/worker.h"
#include "support/boxes.h"
#include "testdir.h"
#include "views/fl_fixture.h"

#include <cstdlib>
#include <new>
#include <utility>

using namespace tav;

namespace {

thread_local size_t sRefused = 0; // a block of this size is refused once on this thread ...
thread_local int sGranted = 0;    // ... after so many of them
thread_local bool sNext = false;  // the next block is

bool x_is_refused(size_t size)
{
    const bool counted = size == sRefused && sGranted-- == 0;
    if (counted)
        sRefused = 0;
    return std::exchange(sNext, false) || counted;
}

int x_chosen(const char *) { return 0; }

// The worker has no memory for the names.
DIR *x_opendir(const char *path)
{
    DIR *dir = opendir(path);
    sNext = true;
    return dir;
}

} // namespace

void *operator new(size_t size)
{
    if (x_is_refused(size))
        throw std::bad_alloc();
    if (void *block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void *block) noexcept { std::free(block); }
void operator delete(void *block, size_t) noexcept { std::free(block); }

class DtmMemoryTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    // So long that nothing else has blocks of the size of its path.
    static std::string name(int i) { return std::to_string(i) + std::string(200, 'x'); }
    void refuse_path(int granted)
    {
        sRefused = m_dir->at(name(0)).size() + 1;
        sGranted = granted;
    }
    DirMenuItem *open(QMenu &menu)
    {
        DirMenuItem *item = dtm_add_item(&menu, m_dir->path(), "label", 0, x_chosen);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        return item;
    }
    QMessageBox *box()
    {
        QList<QMessageBox *> boxes = test::boxes_standing();
        return boxes.isEmpty() ? nullptr : boxes.first();
    }

private Q_SLOTS:
    void initTestCase() { ui_gate_open(); }
    void init()
    {
        m_window = std::make_unique<FlWindow>();
        m_dir = std::make_unique<TestDir>();
        for (int i = 0; i < 3; i++)
            m_dir->dir(name(i));
    }
    void cleanup()
    {
        sRefused = 0;
        gDtmOpendir = opendir;
        if (box())
            box()->close();
        QTRY_COMPARE(worker_count(), 0);
        m_dir.reset();
        m_window.reset();
    }

    void no_item_without_room_for_it()
    {
        QMenu menu;
        const std::string path = m_dir->at(name(0));
        refuse_path(0);
        QVERIFY(!dtm_add_item(&menu, path, "x", 0, x_chosen));
        QVERIFY(menu.actions().isEmpty());
    }

    void no_room_for_a_subdirectory_is_told_and_leaves_those_before_it()
    {
        QMenu menu;
        refuse_path(2); // of the first one: made, and kept by the item
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("Add Item"));
        QCOMPARE(test::boxes_text(box()), QStringLiteral("Can't add item '%1' into the menu")
                                              .arg(QString::fromStdString(name(1))));
        QCOMPARE(item->items.size(), 1);
    }

    void no_room_for_the_first_one_leaves_an_empty_menu_that_takes_keys()
    {
        QMenu menu;
        refuse_path(0);
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(box());
        QVERIFY(item->items.isEmpty() && item->submenu);
        for (int key : {int(Qt::Key_Down), int(Qt::Key_End), int(Qt::Key_X)})
            QTest::keyClick(item->submenu, Qt::Key(key));
    }

    void no_room_for_the_names_is_told_and_tried_again_at_the_next_opening()
    {
        QMenu menu;
        gDtmOpendir = x_opendir;
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("Memory Allocation"));
        QCOMPARE(test::boxes_text(box()), QStringLiteral("Not enough memory!"));
        gDtmOpendir = opendir;
        box()->close();
        menu.close();
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->items.size(), 3);
    }
};

QTEST_MAIN(DtmMemoryTest)
#include "dtm_memory_qtest.moc"
