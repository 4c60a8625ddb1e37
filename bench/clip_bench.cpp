// The clipboard with many files: copying a selection until every form of it was asked for, and
// painting a list whose rows are all marked as cut.
#include "bench.h"

#include "commands/clip.h"
#include "commands/clip_offer.h"
#include "commands/em.h"
#include "commands/uri.h"
#include "model/dir.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QApplication>
#include <QClipboard>
#include <QVBoxLayout>

using namespace tav;

namespace {

constexpr int FILES = 100'000;

QClipboard *x_clipboard() { return QGuiApplication::clipboard(); }

void x_build_forms()
{
    const FileListRecord list = fl_pack_transf();
    bench_keep(transf_pack(list, false, transf_new_id()).size());
    bench_keep(uri_make_list(list).size());
    bench_keep(uri_make_gnome(list, false).size());
    bench_keep(uri_make_plain(list).size());
}

void x_copy() { em_copy(nullptr); }

void x_copy_and_ask()
{
    em_copy(nullptr);
    for (const char *mime :
         {TRANSF_MIME, TRANSF_MIME_URIS, TRANSF_MIME_GNOME, TRANSF_MIME_TEXT, TRANSF_MIME_KDE})
        bench_keep(x_clipboard()->mimeData()->data(QLatin1String(mime)).size());
}

void x_bench_copy()
{
    fl_select_all();
    bench_compare({"clip_copy_100000", 2.0, 21}, {{}, x_copy, {}}, {{}, x_build_forms, {}});
    bench_compare({"clip_copy_all_forms_100000", 2.0, 21}, {{}, x_copy_and_ask, {}},
                  {{}, x_build_forms, {}});
}

void x_paint() { fl_view()->viewport()->repaint(); }

// Cutting and uncutting leave the processor's caches in different states, which the first painting
// pays for: so several are measured.
void x_paint_often()
{
    for (int i = 0; i < 20; i++)
        x_paint();
}

void x_cut()
{
    fl_select_all();
    em_cut(nullptr);
}

void x_uncut() { x_clipboard()->setMimeData(new QMimeData); }

// Painting alone, then the rebuilding of the rows before it as well.
void x_bench_marks()
{
    bench_compare({"clip_marks_repaint_100000", 1.2, 41}, {x_cut, x_paint_often, {}},
                  {x_uncut, x_paint_often, {}});
    auto update = [] {
        fl_update();
        x_paint();
    };
    bench_compare({"clip_marks_update_100000", 1.2, 41}, {x_cut, update, {}},
                  {x_uncut, update, {}});
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    bench_start(argc, argv);
    if (!bench_wants("clip_copy_100000") && !bench_wants("clip_copy_all_forms_100000") &&
        !bench_wants("clip_marks_repaint_100000") && !bench_wants("clip_marks_update_100000"))
        return 0;
    ui_gate_open();
    clip_setup();
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new FlView(&window));
    gBase = &window;
    gFlHooks.cut_fetch = file_get_cut_files;
    gFlHooks.cut_any = [] { return file_any_cut(gDir.path); };
    gFlHooks.is_cut = file_is_cut;
    gDir.filespec = "*";
    fl_setup();
    window.resize(900, 700);
    window.show();
    fl_setpath(bench_directory({FILES}, BenchPlace::Memory).c_str());
    x_bench_copy();
    x_bench_marks();
    x_clipboard()->setMimeData(new QMimeData);
    gFlHooks = {};
    gBase = nullptr;
    return 0;
}
