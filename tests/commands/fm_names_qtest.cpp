// Hostile names on their way through the File menu: whatever a file is called, what is started from
// the main window receives exactly that name.
#include "commands/fm.h"

#include "app/config.h"
#include "commands/as.h"
#include "commands/ow_dlg.h"
#include "hostile_names.h"
#include "support/window.h"

#include <QDialog>
#include <QLineEdit>
#include <algorithm>
#include <cstring>

using namespace tav;
using tav::test::Window;

namespace {

// The names that a file can have, and a few ordinary ones among them.
std::vector<std::string> x_file_names()
{
    std::vector<std::string> names = hostile_names();
    std::erase_if(names, [](const std::string &name) { return name.find('/') != name.npos; });
    for (const char *plain : {"a.c", "my file.c"})
        names.emplace_back(plain);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

QString x_shown(const std::string &bytes)
{
    return QString::fromLatin1(QByteArray::fromStdString(bytes).toPercentEncoding());
}

// As an argument of its own a name that begins with "-" must not look like an option.
std::string x_argument(const std::string &name)
{
    return name.starts_with('-') ? "./" + name : name;
}

void x_select_one(const std::string &name)
{
    fl_unselect_all(nullptr);
    for (int i = 0; i < gDir.count; i++) {
        if (name == gDir.entries[static_cast<size_t>(i)]->name) {
            fl_select_index(i);
            fl_goto_index(i);
        }
    }
}

} // namespace

class FmNamesTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> m_window;

    // The arguments that the last stand-in was given, as bytes.
    std::string received()
    {
        if (!QTest::qWaitFor([this] { return m_window->dir.exists("out"); }, 20'000))
            return "nothing was started";
        std::string bytes = m_window->dir.read("out");
        m_window->dir.remove("out");
        return bytes;
    }

    // The arguments, each with a NUL behind it.
    void expect(const std::vector<std::string> &arguments, const std::string &name)
    {
        std::string wanted;
        for (const std::string &argument : arguments)
            (wanted += argument) += '\0';
        const std::string got = received();
        QVERIFY2(got == wanted,
                 qPrintable(x_shown(name) + QStringLiteral(" gave ") + x_shown(got)));
        QVERIFY(!m_window->dir.exists("shown/PWNED"));
    }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<Window>();
        for (const std::string &name : x_file_names())
            m_window->dir.file("shown/" + name);
        for (const char *name : {"lp", "show", "tav"})
            m_window->stand_in(name);
        m_window->open();
        QCOMPARE(static_cast<size_t>(gDir.count), x_file_names().size());
    }
    void cleanup() { m_window.reset(); }

    void oneFileIsPrinted()
    {
        std::strcpy(gConfig->print_command, ""); // as built in
        for (const std::string &name : x_file_names()) {
            x_select_one(name);
            fm_print(gBase);
            expect({"-dtext", x_argument(name)}, name);
        }
    }

    void allFilesArePrintedAtOnce_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<bool>("option"); // the command passes -dtext
        QTest::newRow("as built in") << QByteArray("lp -dtext @") << true;
        QTest::newRow("without a placeholder") << QByteArray("lp -dtext") << true;
        QTest::newRow("a program alone") << QByteArray("lp") << false;
        QTest::newRow("single quotes") << QByteArray("lp -dtext '@'") << true;
        QTest::newRow("double quotes") << QByteArray("lp -dtext \"@\"") << true;
    }
    void allFilesArePrintedAtOnce()
    {
        QFETCH(QByteArray, command);
        QFETCH(bool, option);
        std::strcpy(gConfig->print_command, command.constData());
        fl_select_all();
        std::vector<std::string> arguments;
        if (option)
            arguments.emplace_back("-dtext");
        for (int i = 0; i < gDir.count; i++)
            arguments.push_back(x_argument(gDir.entries[static_cast<size_t>(i)]->name));
        fm_print(gBase);
        expect(arguments, "all names");
        QTRY_COMPARE(Window::status(), QStringLiteral("%1 items printed").arg(gDir.count));
    }

    void ordinaryFilesArePrintedAtOnce()
    {
        std::strcpy(gConfig->print_command, "");
        Window::select({"a.c", "my file.c"});
        fm_print(gBase);
        expect({"-dtext", "a.c", "my file.c"}, "ordinary names");
    }

    void openWithGivesTheNameToItsCommand_data()
    {
        QTest::addColumn<QString>("command");
        for (const char *command : {"show", "show '@'"})
            QTest::newRow(command) << QString::fromLatin1(command);
    }
    void openWithGivesTheNameToItsCommand()
    {
        QFETCH(QString, command);
        for (const std::string &name : x_file_names()) {
            x_select_one(name);
            fm_open_with(gBase);
            auto *dialog = gBase->findChild<QDialog *>(QStringLiteral("open_with"));
            QVERIFY(dialog != nullptr);
            dialog->findChild<QLineEdit *>(QStringLiteral("ow_command"))->setText(command);
            fm_open_with_cb(dialog);
            expect({x_argument(name)}, name);
            QTRY_VERIFY(gBase->findChild<QDialog *>(QStringLiteral("open_with")) == nullptr);
        }
    }

    void theAssociationsCommandsAndTheEditorReceiveTheName()
    {
        apat.clear();
        _add_pat("*", "show open @", "show view '@'", "show edit \"@\"");
        _add_pat(".*", "show open @", "show view '@'", "show edit \"@\"");
        for (const std::string &name : x_file_names()) {
            x_select_one(name);
            fm_view(gBase);
            expect({"view", x_argument(name)}, name);
            fm_edit(gBase);
            expect({"edit", x_argument(name)}, name);
        }
        apat.clear();
        std::strcpy(gConfig->edit_command, "show settings @");
        for (const std::string &name : x_file_names()) {
            x_select_one(name);
            fm_edit(gBase);
            expect({"settings", x_argument(name)}, name);
        }
    }

    void aDirectoryIsOpenedInAWindowOfItsOwn()
    {
        for (const std::string &name : x_file_names()) {
            m_window->dir.remove("shown/" + name);
            m_window->dir.dir("shown/" + name);
        }
        fl_refresh();
        for (const std::string &name : x_file_names()) {
            x_select_one(name);
            fm_open_another(gBase);
            expect({m_window->dir.at("shown/" + name)}, name);
        }
    }
};

QTEST_MAIN(FmNamesTest)
#include "fm_names_qtest.moc"
