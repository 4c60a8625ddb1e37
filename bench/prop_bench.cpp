// The properties dialog on 100,000 selected entries: how long until it is open, and applying a mode
// to all of them. Offscreen, real files, the dialog's own calls.
#include "app/config.h"
#include "bench.h"
#include "model/dir.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "ui_property_dlg.h"
#include "views/fl.h"
#include "views/fl_view.h"
#include "views/prop.h"
#include "views/prop_apply.h"
#include "views/prop_gather.h"

#include <QApplication>
#include <QVBoxLayout>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

namespace {

constexpr int sLarge = 100000;

void x_close_dialogs()
{
    for (QDialog *dialog : gBase->findChildren<QDialog *>())
        dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

// One pass over the selected entries: what any summary of them has to look at.
void x_pass()
{
    uint64_t sum = 0;
    size_t length = 0;
    for (int i = 0; i < gDir.count; i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        sum += static_cast<uint64_t>(entry.stat.st_size) + entry.stat.st_mode + entry.stat.st_uid;
        length += strlen(entry.name);
    }
    bench_keep(sum);
    bench_keep(length);
}

// The same form with nothing in it.
void x_empty_dialog()
{
    auto *dialog = new QDialog(gBase);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    Ui::property_dlg form;
    form.setupUi(dialog);
    dialog->show();
    QCoreApplication::processEvents();
}

void x_bench_open()
{
    const auto open = [] {
        prop_open(nullptr);
        QCoreApplication::processEvents();
    };
    const auto baseline = [] {
        x_pass();
        x_empty_dialog();
    };
    bench_compare({"prop_open_100000", 2}, {{}, open, x_close_dialogs},
                  {{}, baseline, x_close_dialogs});
}

void x_bench_apply(const std::string &path)
{
    const int directory = open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    static mode_t sBits = 0;
    const auto flip = [] { sBits ^= 011; };
    const std::string names = prop_gather(gDir).names;
    const auto ours = [directory, &names] {
        PropChange change;
        change.touched = 011;
        change.bits = sBits;
        bench_keep(prop_apply_all(directory, names, change).failed);
    };
    const auto bare = [directory] {
        for (int i = 0; i < gDir.count; i++)
            fchmodat(directory, gDir.entries[static_cast<size_t>(i)]->name, 0644 | sBits, 0);
    };
    bench_compare({"prop_apply_mode_100000", 1.5}, {flip, ours, {}}, {flip, bare, {}});
    close(directory);
}

} // namespace

} // namespace tav

int main(int argc, char **argv)
{
    using namespace tav;
    bench_start(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int none = 1;
    QApplication app(none, argv);
    ui_gate_open();
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new FlView(&window));
    gBase = &window;
    gDir.filespec.assign(1, '*');
    fl_setup();
    window.show();
    const std::string &path = bench_directory({sLarge, 0, 0}, BenchPlace::Memory);
    fl_setpath(path.c_str());
    fl_select_all();
    x_bench_open();
    x_bench_apply(path);
    ui_gate_close();
    gBase = nullptr;
    return 0;
}
