// tav: a graphical file manager. Entry and exit; see docs/architecture.md for the way through the
// code.
#include "app/base.h"
#include "app/init.h"
#include "app/options.h"
#include "app/start.h"
#include "platform/fonts.h"
#include "platform/res.h"
#include "platform/scheme.h"
#include "platform/style.h"
#include "platform/ui_gate.h"

#include <QApplication>
#include <QLocale>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

using namespace tav;

namespace {

constexpr const char *sVersion = "tav 1.13";

// Milliseconds until the window gets its icon, which is drawn in many sizes: the first frame is
// there by then.
constexpr int sIconAfter = 100;

// Without a display the toolkit would say much and dump core; its first sentence serves the user
// better.
void x_fatal_message(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    static bool sTold = false;
    if (!sTold)
        std::fprintf(stderr, "tav: %s\n", qUtf8Printable(text.section(QLatin1Char('\n'), 0, 0)));
    sTold = true;
    if (type == QtFatalMsg)
        _exit(EXIT_FAILURE);
}

// The locale decides characters, nothing else.
void x_set_locale()
{
    const std::string characters = std::setlocale(LC_CTYPE, nullptr);
    std::setlocale(LC_ALL, "C");
    std::setlocale(LC_CTYPE, characters.c_str());
    QLocale::setDefault(QLocale::c());
}

// Answers what needs no window: true when the program is done.
bool x_answer(const Options &options, const char *program)
{
    if (options.help)
        std::fputs(options_usage(program).c_str(), stdout);
    else if (options.version)
        std::puts(sVersion);
    if (!options.error.empty())
        std::fprintf(stderr, "%s: %s\n", program, options.error.c_str());
    return options.help || options.version;
}

// The display asked for, or none: where both kinds of display are there, the toolkit would take the
// session's own.
void x_connect_display(const Options &options)
{
    const OptionsDisplay display = options_display(options.server);
    if (display.variable != nullptr) {
        setenv(display.variable, display.value.c_str(), 1);
        setenv("QT_QPA_PLATFORM", display.platform, 0);
    } else if (!options.server.empty()) {
        std::fprintf(stderr, "tav: no such display: %s\n", options.server.c_str());
    }
}

} // namespace

int main(int argc, char **argv)
{
    const Options options = options_parse(argc, argv);
    if (x_answer(options, argc > 0 ? basename(argv[0]) : "tav"))
        return EXIT_SUCCESS;
    x_connect_display(options);
    fonts_read_early();

    // The toolkit takes words out of the line it is given; the start directory is sought in ours.
    std::vector<char *> toolkit_words(argv, argv + argc + 1);
    int toolkit_count = argc;
    const QtMessageHandler previous = qInstallMessageHandler(x_fatal_message);
    QApplication application(toolkit_count, toolkit_words.data());
    qInstallMessageHandler(previous);
    style_install();
    QApplication::setApplicationName(QStringLiteral("tav"));
    QGuiApplication::setDesktopFileName(QStringLiteral("tav"));
    QApplication::setQuitOnLastWindowClosed(false);
    x_set_locale();
    start_append_path(QCoreApplication::applicationFilePath().toLocal8Bit().toStdString());
    ui_gate_open();
    scheme_follow_desktop();

    init(argc, argv);
    fonts_wait();
    base_create(options);
    QTimer::singleShot(sIconAfter, qApp, [] { QApplication::setWindowIcon(res_image("tav")); });
    if (!base_is_gone()) // a signal may have ended it below a box that stood before the loop
        QApplication::exec();
    ui_gate_close();
    return EXIT_SUCCESS;
}
