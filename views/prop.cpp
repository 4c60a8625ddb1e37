// The properties dialog. It keeps copies of what it was opened for; the listing is looked at only
// while it opens. Owner and group can be edited by who may change them, the privileged user.
#include "views/prop.h"

#include "platform/shown.h"
#include "platform/w.h"
#include "platform/wdialog.h"
#include "ui_property_dlg.h"
#include "views/fl.h"
#include "views/prop_apply.h"
#include "views/prop_gather.h"

#include <QPointer>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace tav {

PropHooks gPropHooks;

namespace {

constexpr size_t TEXT_LIMIT = 1024; // bytes of an owner or group text that count
constexpr size_t DATE_SIZE = 32;    // bytes of a date, its terminator included
constexpr size_t DATE_ROOM = 128;   // bytes that the date of any year takes

using Form = Ui::property_dlg;

// A permission toggle and its bit.
struct Toggle {
    QCheckBox *Form::*button;
    mode_t bit;
};
constexpr Toggle TOGGLES[] = {
    {&Form::pr_uread, 0400},      {&Form::pr_uwrite, 0200},     {&Form::pr_uexec, 0100},
    {&Form::pr_gread, 040},       {&Form::pr_gwrite, 020},      {&Form::pr_gexec, 010},
    {&Form::pr_oread, 04},        {&Form::pr_owrite, 02},       {&Form::pr_oexec, 01},
    {&Form::pr_setuserid, 04000}, {&Form::pr_setgroupid, 02000}};

struct Properties {
    QPointer<QDialog> dialog; // null when it is not open
    Form form;                // valid while it is open
    PropSummary summary;      // what it was opened for
    std::string directory;    // where that is
    mode_t before = 0;        // bits that the toggles showed at first
    mode_t touched = 0;       // bits whose toggles were used
};
Properties sProp;

void x_show_row(QLabel *title, QLabel *label, bool on)
{
    title->setVisible(on);
    label->setVisible(on);
}

void x_show_mode(mode_t mode)
{
    sProp.before = mode & PROP_BITS;
    for (const Toggle &toggle : TOGGLES)
        (sProp.form.*toggle.button)->setChecked(mode & toggle.bit);
}

mode_t _get_mode()
{
    mode_t mode = 0;
    for (const Toggle &toggle : TOGGLES)
        mode |= (sProp.form.*toggle.button)->isChecked() ? toggle.bit : 0;
    return mode;
}

void x_setup_permission_fields()
{
    char name[DIR_NAME_SIZE] = "";
    const bool may_edit = gPropSystem.may_give_away();
    if (sProp.summary.uid >= 0) {
        dir_get_username(static_cast<uid_t>(sProp.summary.uid), name);
        sProp.form.pr_owner->setText(shown_text(name));
    }
    if (sProp.summary.gid >= 0) {
        dir_get_groupname(static_cast<gid_t>(sProp.summary.gid), name);
        sProp.form.pr_group->setText(shown_text(name));
    }
    wdialog_read_only(sProp.form.pr_owner, !may_edit);
    wdialog_read_only(sProp.form.pr_group, !may_edit);
}

const char *x_kind(mode_t mode)
{
    if (S_ISDIR(mode))
        return "Directory";
    return S_ISREG(mode) ? "File" : S_ISLNK(mode) ? "Symbolic Link" : "Special File";
}

// The description comes when it comes; a dialog that is gone by then, or another one, does not get
// it.
void x_ask_filetype(const DirEntry &entry)
{
    sProp.form.pr_filetype->setText(QString::fromLatin1(x_kind(entry.stat.st_mode)));
    if (!gPropHooks.filetype)
        return;
    const QPointer<QLabel> label = sProp.form.pr_filetype;
    gPropHooks.filetype(fl_get_fullpath(sProp.summary.one), entry.stat.st_mode,
                        [label](const std::string &description) {
                            const size_t end = description.find_last_not_of(" \n");
                            if (label)
                                label->setText(shown_text(description.substr(0, end + 1)));
                        });
}

// Empty for a time that no calendar has.
QString x_date(time_t when)
{
    char text[DATE_ROOM] = "";
    struct tm local = {};
    if (!localtime_r(&when, &local) || !strftime(text, sizeof text, "%A %B %d, %Y", &local))
        return {};
    text[DATE_SIZE - 1] = '\0';
    return QString::fromLatin1(text);
}

void x_prop_setup_one(const DirEntry &entry)
{
    Form &form = sProp.form;
    form.pr_name->setText(shown_text(entry.name));
    form.pr_comment->hide();
    form.pr_note->hide();
    x_ask_filetype(entry);
    form.pr_size->setText(
        QString::fromStdString(prop_size(static_cast<uint64_t>(entry.stat.st_size))));
    form.pr_modified->setText(x_date(entry.stat.st_mtime));
    const bool link = (entry.flags & DIR_LINK) && entry.link && entry.link[0];
    if (link)
        form.pr_symbolic->setText(shown_text(entry.link));
    x_show_row(form.pr_symbolic_title, form.pr_symbolic, link);
    x_show_mode(entry.stat.st_mode);
    form.pr_name->setFocus();
    const auto length = static_cast<int>(form.pr_name->text().size());
    form.pr_name->setSelection(length, -length); // all of it, its beginning in sight
}

void x_prop_setup_multi()
{
    Form &form = sProp.form;
    form.pr_name->setText(shown_text(sProp.summary.joined));
    form.pr_name->setCursorPosition(0);
    wdialog_read_only(form.pr_name, true);
    form.pr_comment->setText(QString::fromStdString(prop_comment(sProp.summary)));
    x_show_row(form.pr_filetype_title, form.pr_filetype, false);
    x_show_row(form.pr_modified_title, form.pr_modified, false);
    x_show_row(form.pr_symbolic_title, form.pr_symbolic, false);
    form.pr_size->setText(QString::fromStdString(prop_total(sProp.summary.size)));
    x_show_row(form.pr_size_title, form.pr_size, sProp.summary.size > 0);
    x_show_mode(sProp.summary.common);
    form.pr_uread->setFocus();
}

// The bytes of a text field that was edited, empty for one that was not: what is only shown (a cut
// user name) is not written back.
std::string x_edited(const QLineEdit *field)
{
    if (!field->isModified())
        return {};
    return field->text().toStdString().substr(0, TEXT_LIMIT);
}

PropChange x_change()
{
    PropChange change;
    const bool one = sProp.summary.one >= 0;
    if (one && sProp.form.pr_name->isModified())
        change.name = shown_edited(sProp.summary.first, sProp.form.pr_name->text());
    change.owner = x_edited(sProp.form.pr_owner);
    change.group = x_edited(sProp.form.pr_group);
    change.bits = _get_mode();
    if (one)
        change.touched = change.bits == sProp.before ? 0 : PROP_BITS;
    else
        change.touched = sProp.touched;
    return change;
}

// Shows the first messages one by one and counts the rest.
void x_report(const PropReport &report)
{
    for (const std::string &message : report.messages)
        wreport(sProp.dialog, "Error", "%s", message.c_str());
    const int more = report.failed - static_cast<int>(report.messages.size());
    if (more > 0)
        wreport(sProp.dialog, "Error", "%d more items could not be changed", more);
}

// Applies the change to the one entry; its name, which may be a new one.
std::string x_prop_done_one(int directory, PropChange &change)
{
    std::string name = sProp.summary.first, message;
    if (prop_apply(directory, name, change, message) != 0)
        wreport(sProp.dialog, "Error", "%s", message.c_str());
    return name;
}

// Applies the change; the name on which the cursor goes then.
std::string x_prop_apply()
{
    PropChange change = x_change();
    std::string cursor = sProp.summary.first;
    const int directory = open(sProp.directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (sProp.summary.one >= 0)
        cursor = x_prop_done_one(directory, change);
    else
        x_report(prop_apply_all(directory, sProp.summary.names, change));
    if (directory >= 0)
        close(directory);
    return cursor;
}

void prop_done()
{
    const std::string cursor = x_prop_apply();
    if (!sProp.dialog)
        return; // the program ended while a message stood
    wdialog_done(sProp.dialog);
    fl_refresh();
    fl_goto(cursor.c_str(), 0, FL_EXACT);
}

void x_connect(QDialog *dialog)
{
    for (const Toggle &toggle : TOGGLES) {
        const mode_t bit = toggle.bit;
        QObject::connect(sProp.form.*toggle.button, &QCheckBox::clicked, dialog,
                         [bit] { sProp.touched |= bit; });
    }
    QObject::connect(sProp.form.pr_done, &QPushButton::clicked, dialog, [] { prop_done(); });
    QObject::connect(sProp.form.pr_cancel, &QPushButton::clicked, dialog, &QDialog::reject);
}

void prop_setup(QDialog *dialog)
{
    sProp.form.setupUi(dialog);
    sProp.touched = 0;
    sProp.directory = gDir.path;
    sProp.form.pr_name->setMinimumWidth(36 * dialog->fontMetrics().averageCharWidth());
    sProp.form.pr_location->setText(shown_text(gDir.path));
    if (sProp.summary.one >= 0)
        x_prop_setup_one(*gDir.entries[static_cast<size_t>(sProp.summary.one)]);
    else
        x_prop_setup_multi();
    x_setup_permission_fields();
    x_connect(dialog);
}

} // namespace

int prop_open(QWidget *)
{
    if (wdialog_focus(sProp.dialog))
        return W_CONTINUE;
    sProp.summary = prop_gather(gDir);
    if (sProp.summary.count == 0)
        return W_CONTINUE;
    auto *dialog = new QDialog(gBase);
    sProp.dialog = dialog;
    prop_setup(dialog);
    wdialog_open(dialog, gBase, [] { sProp.summary = {}; });
    return W_CONTINUE;
}

} // namespace tav
