// What the tests of the dialogs share: a directory of their own, a main window with a file list
// that shows it, and ways to the widgets of the dialog that is up.
#pragma once

#include "app/config.h"
#include "model/dir.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "support/boxes.h"
#include "views/fl.h"
#include "views/fl_sort.h"
#include "views/fl_view.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::test {

// A directory that goes away with its contents.
class OwnDir {
public:
    explicit OwnDir(const std::string &place = "/tmp")
    {
        path_ = place + "/tav-test-XXXXXX";
        if (!mkdtemp(path_.data()))
            qFatal("cannot make %s", path_.c_str());
        chmod(path_.c_str(), 0755); // for tests that become an ordinary user
    }
    ~OwnDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    OwnDir(const OwnDir &) = delete;
    OwnDir &operator=(const OwnDir &) = delete;

    [[nodiscard]] std::string at(const std::string &name) const { return path_ + "/" + name; }
    [[nodiscard]] const std::string &path() const { return path_; }

    void file(const std::string &name, size_t size = 0, mode_t mode = 0644) const
    {
        const int file = open(at(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (file < 0 || ftruncate(file, static_cast<off_t>(size)) != 0 || fchmod(file, mode) != 0)
            qFatal("cannot make %s", name.c_str());
        close(file);
    }
    void folder(const std::string &name, mode_t mode = 0755) const
    {
        if (mkdir(at(name).c_str(), 0700) != 0 || chmod(at(name).c_str(), mode) != 0)
            qFatal("cannot make %s", name.c_str());
    }
    [[nodiscard]] mode_t mode(const std::string &name) const
    {
        struct stat info = {};
        return lstat(at(name).c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
    }
    [[nodiscard]] gid_t group(const std::string &name) const
    {
        struct stat info = {};
        return lstat(at(name).c_str(), &info) == 0 ? info.st_gid : 0;
    }
    [[nodiscard]] bool has(const std::string &name) const
    {
        struct stat info;
        return lstat(at(name).c_str(), &info) == 0;
    }

private:
    std::string path_;
};

// The main window as small as the dialogs need it.
struct MainWindow {
    QWidget window;
    FlView *list;
    QTreeWidget *tree;

    MainWindow()
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(list = new FlView(&window));
        layout->addWidget(tree = new QTreeWidget(&window));
        tree->setObjectName(QStringLiteral("tree"));
        for (const char *name : {"status1", "status2"}) {
            auto *label = new QLabel(&window);
            label->setObjectName(QString::fromLatin1(name));
            layout->addWidget(label);
        }
        gBase = &window;
        gDir.filespec.assign(1, '*');
        ui_gate_open();
        fl_setup();
        fl_sort_reset();
        window.resize(700, 420);
        window.show();
        (void)QTest::qWaitForWindowActive(&window);
        list->setFocus();
    }
    ~MainWindow()
    {
        ui_gate_close();
        gBase = nullptr;
        dir_release(gDir);
        gDir.path.clear();
        gDir.has_path = false;
        gDir.current = DIR_PARENT;
        gDir.nselected = gDir.nseldirs = gDir.count = 0;
    }
    MainWindow(const MainWindow &) = delete;
    MainWindow &operator=(const MainWindow &) = delete;
};

inline std::string entry_name(int index)
{
    return index >= 0 && index < gDir.count ? gDir.entries[static_cast<size_t>(index)]->name : "";
}

// The names of the selected entries, joined by blanks.
inline std::string selected_names()
{
    std::string names;
    for (int i = 0; i < gDir.count; i++) {
        if (gDir.entries[static_cast<size_t>(i)]->flags & DIR_SELECTED)
            names.append(names.empty() ? "" : " ").append(entry_name(i));
    }
    return names;
}

// Selects the entries of these names, nothing else.
inline void select_names(std::initializer_list<const char *> names)
{
    fl_unselect_all(nullptr);
    for (const char *name : names)
        fl_select(name, FL_EXACT);
}

// The dialog of that name that is up, null when none is.
inline QDialog *dialog_up(const char *name)
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<QDialog *>(window);
        if (dialog && dialog->isVisible() && dialog->objectName() == QLatin1String(name))
            return dialog;
    }
    return nullptr;
}

template <typename T>
T *dialog_find(const char *dialog, const char *name)
{
    QDialog *up = dialog_up(dialog);
    T *found = up ? up->findChild<T *>(QString::fromLatin1(name)) : nullptr;
    if (!found)
        qFatal("no %s in %s", name, dialog);
    return found;
}

inline void dialog_click(const char *dialog, const char *name)
{
    auto *button = dialog_find<QAbstractButton>(dialog, name);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(5, button->height() / 2));
}

} // namespace tav::test
