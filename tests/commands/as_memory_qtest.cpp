// The table of associations when memory runs out: a message, and the end of the program.
#include "commands/as.h"
#include "commands/as_dlg.h"
#include "testdir.h"

#include <QTest>
#include <cstdlib>
#include <new>
#include <sys/wait.h>
#include <unistd.h>

using namespace tav;

namespace {

int sLeft = -1; // allocations that still succeed; below 0: all do
int sSay = -1;  // where the message goes

} // namespace

void *operator new(size_t size)
{
    if (sLeft == 0)
        throw std::bad_alloc();
    sLeft -= sLeft > 0 ? 1 : 0;
    if (void *block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void *block) noexcept { std::free(block); }
void operator delete(void *block, size_t) noexcept { std::free(block); }

class AsMemoryTest : public QObject {
    Q_OBJECT

    // What a fatal message says and the status it ends with, when only so many allocations succeed.
    static QByteArray outcome(int allocations, const std::function<void()> &work)
    {
        int ends[2];
        if (pipe(ends) != 0)
            return "no pipe";
        const pid_t child = fork();
        if (child == 0) {
            sSay = ends[1];
            gAsFatal = [](const char *message) {
                const ssize_t written = write(sSay, message, strlen(message));
                _exit(written > 0 ? 1 : 3);
            };
            sLeft = allocations;
            work();
            _exit(0);
        }
        close(ends[1]);
        char bytes[128] = {};
        const ssize_t count = read(ends[0], bytes, sizeof bytes - 1);
        close(ends[0]);
        int status = 0;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status))
            return "killed";
        const std::string text = std::to_string(WEXITSTATUS(status)) + " " + bytes;
        return count < 0 ? QByteArray() : QByteArray::fromStdString(text);
    }

private Q_SLOTS:
    void loadingEndsWithAMessageWhereverMemoryRunsOut()
    {
        TestDir dir;
        const std::string path = dir.at("associate.003");
        dir.text("associate.003", "*.a_rather_long_pattern_for_a_name\tshow a rather long command\n"
                                  "*.y\tanother command that is long enough\tview\tedit\n");
        int allocations = 0;
        for (QByteArray now; now != "0 "; allocations++) {
            now = outcome(allocations, [&] {
                std::string message;
                if (as_read(path.c_str(), message) != 0)
                    as_fatal(message.empty() ? AS_NO_MEMORY : message.c_str());
            });
            QVERIFY2(now == "0 " || now == "1 Unable to allocate memory", now.constData());
        }
        QVERIFY(allocations > 5);
    }

    void soDoesOpeningTheList()
    {
        as_set_defaults();
        QCOMPARE(outcome(2, [] { as_setup(nullptr); }), QByteArray("1 Unable to allocate memory"));
    }
};

QTEST_GUILESS_MAIN(AsMemoryTest)
#include "as_memory_qtest.moc"
