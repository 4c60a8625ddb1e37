// Preferences. Choices are tables of a widget and a bit, so that opening and applying walk the same
// rows.
#include "app/config_dlg.h"

#include "app/config.h"
#include "platform/fonts.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "platform/wdialog.h"
#include "ui_config_dlg.h"
#include "views/fl.h"

#include <QFontDialog>
#include <QPointer>
#include <QScreen>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace tav {
namespace {

constexpr char FONT_NAME[] =
    "font_name"; // property of a font's label: the kept text, as it goes to the disk

// A radio button and the bit it stands for. In each group the last one is what applies when no
// other is set.
struct Choice {
    QRadioButton *Ui::config_dlg::*button;
    uint32_t bit;
};
using Form = Ui::config_dlg;
constexpr Choice SYMLINKS[] = {{&Form::sym_prompt, CONFIG_SYM_PROMPT},
                               {&Form::sym_symlinks, CONFIG_SYM_SYMLINKS},
                               {&Form::sym_files, CONFIG_SYM_FILES}};
constexpr Choice OVERWRITE[] = {{&Form::overwrite_prompt, 0}, {&Form::overwrite, CONFIG_OVERWRITE}};
constexpr Choice SINGLE[] = {{&Form::rm1_prompt, CONFIG_RM1_PROMPT},
                             {&Form::rm1_prompt_nowr, CONFIG_RM1_PROMPT_NOWR},
                             {&Form::rm1_no_prompt, CONFIG_RM1_NO_PROMPT}};
constexpr Choice MULTIPLE[] = {{&Form::rm_prompt, CONFIG_RM_PROMPT},
                               {&Form::rm_no_prompt, CONFIG_RM_NO_PROMPT}};
constexpr Choice INDIVIDUAL[] = {{&Form::rm_i_prompt, CONFIG_RM_I_PROMPT},
                                 {&Form::rm_i_prompt_nowr, CONFIG_RM_I_PROMPT_NOWR},
                                 {&Form::rm_i_no_prompt, CONFIG_RM_I_NO_PROMPT}};

QPointer<QDialog> sDialog; // null when it is not open
Form sForm;                // valid while the dialog is open

// Tab comes to the button of a group that is set, not to the first: a key pressed there would
// change the setting. Where none is set, it comes to the first.
template <size_t N>
void x_lead_tab(const Choice (&choices)[N])
{
    bool any = false;
    for (const Choice &choice : choices)
        any = any || (sForm.*choice.button)->isChecked();
    for (const Choice &choice : choices) {
        QRadioButton *button = sForm.*choice.button;
        const auto lead = [button](bool on) {
            button->setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus);
        };
        lead(button->isChecked() || (!any && &choice == choices));
        QObject::connect(button, &QRadioButton::toggled, button, lead);
    }
}

template <size_t N>
void x_show_choice(const Choice (&choices)[N])
{
    for (const Choice &choice : choices)
        (sForm.*choice.button)->setChecked(gConfig->flags & choice.bit);
    x_lead_tab(choices);
}

template <size_t N>
void x_apply_choice(const Choice (&choices)[N])
{
    uint32_t chosen = choices[N - 1].bit;
    for (size_t i = N; i-- > 0;) {
        gConfig->flags &= ~choices[i].bit;
        if ((sForm.*choices[i].button)->isChecked())
            chosen = choices[i].bit;
    }
    gConfig->flags |= chosen;
}

// What a person reads for a kept font: its family and size, or the text itself when it describes
// none.
QString x_font_text(const QByteArray &name)
{
    char again[sizeof gConfig->list_font];
    const QFont font = fonts_from_name(name.constData(), static_cast<size_t>(name.size()));
    fonts_to_name(font, again, sizeof again);
    if (name != again || !name.contains(','))
        return shown_text(name.toStdString());
    QString text = font.family() + QLatin1Char(' ');
    text += font.pointSizeF() > 0 ? QString::number(font.pointSizeF())
                                  : QStringLiteral("%1 px").arg(font.pixelSize());
    if (font.bold())
        text += QStringLiteral(" Bold");
    if (font.italic())
        text += QStringLiteral(" Italic");
    return text;
}

void x_show_font(QLabel *label, const QByteArray &name)
{
    label->setProperty(FONT_NAME, name);
    label->setText(x_font_text(name));
    label->setAccessibleName(label->text());
}

template <size_t N>
QByteArray x_kept(const char (&name)[N])
{
    return {name, static_cast<qsizetype>(strnlen(name, N))};
}

void x_font_chosen(QLabel *label, const QFont &font)
{
    char name[sizeof gConfig->list_font];
    fonts_to_name(font, name, sizeof name);
    if (label->property(FONT_NAME).toByteArray() != name)
        x_show_font(label, name);
}

// The desktop's chooser, where the button is. The dialog waits for it without a loop of its own.
void x_choose_font(QLabel *label, const QPushButton *button, const char *title)
{
    const QByteArray name = label->property(FONT_NAME).toByteArray();
    auto *chooser = new QFontDialog(sDialog);
    chooser->setWindowTitle(QString::fromUtf8(title));
    chooser->setCurrentFont(fonts_from_name(name.constData(), static_cast<size_t>(name.size())));
    QObject::connect(chooser, &QFontDialog::fontSelected, label,
                     [label](const QFont &font) { x_font_chosen(label, font); });
    wdialog_open(chooser, sDialog, {});
    const QRect screen = button->screen()->availableGeometry();
    const QSize size = chooser->frameGeometry().size();
    const QPoint at = button->mapToGlobal(QPoint(0, 0));
    chooser->move(std::max(screen.left(), std::min(at.x(), screen.right() - size.width())),
                  std::max(screen.top(), std::min(at.y(), screen.bottom() - size.height())));
}

void config_tree_font() { x_choose_font(sForm.ctree_font, sForm.ctree_select, "Select Tree Font"); }

void config_list_font()
{
    x_choose_font(sForm.clist_font, sForm.clist_select, "Select File List Font");
}

void config_setup()
{
    sForm.cto->setText(QString::number(gConfig->key_timeout));
    x_show_font(sForm.ctree_font, x_kept(gConfig->tree_font));
    x_show_font(sForm.clist_font, x_kept(gConfig->list_font));
    sForm.cdirs->setChecked(gConfig->folders_first != 0);
    sForm.cdot->setChecked(gConfig->flags & CONFIG_HIDE_DOT);
    sForm.overwrite_prompt->setChecked(!(gConfig->flags & CONFIG_OVERWRITE));
    sForm.overwrite->setChecked(gConfig->flags & CONFIG_OVERWRITE);
    x_show_choice(SYMLINKS);
    x_show_choice(SINGLE);
    x_show_choice(MULTIPLE);
    x_show_choice(INDIVIDUAL);
    x_lead_tab(OVERWRITE);
}

// The leading decimal number of a text, 0 without one; what no int holds becomes the nearest that
// does.
int x_number(const QByteArray &text)
{
    const long long value = strtoll(text.constData(), nullptr, 10);
    return static_cast<int>(std::max<long long>(INT_MIN, std::min<long long>(value, INT_MAX)));
}

// Keeps a chosen font and gives it to the widget that shows it.
template <size_t N>
void x_apply_font(const QLabel *label, char (&kept)[N], const char *widget)
{
    const QByteArray name = label->property(FONT_NAME).toByteArray();
    if (name == x_kept(kept))
        return;
    memset(kept, 0, N);
    memcpy(kept, name.constData(), std::min(static_cast<size_t>(name.size()), N - 1));
    if (QWidget *shown = w_find(widget))
        shown->setFont(fonts_from_name(kept, N));
}

void x_apply_dot()
{
    constexpr uint32_t DOT_OPTIONS = OPTION_MENU_DOT | OPTION_DOT_COMPANION;
    const bool hide = sForm.cdot->isChecked();
    gConfig->flags = hide ? gConfig->flags | CONFIG_HIDE_DOT : gConfig->flags & ~CONFIG_HIDE_DOT;
    gOptions = hide ? gOptions & ~DOT_OPTIONS : gOptions | DOT_OPTIONS;
}

void config_apply()
{
    // "Folders First" is switched off by Done, whatever its button shows; it has never been
    // otherwise, and the order of the list depends on it.
    gConfig->folders_first = 0;
    x_apply_dot();
    const bool overwrite = sForm.overwrite->isChecked();
    gConfig->flags =
        overwrite ? gConfig->flags | CONFIG_OVERWRITE : gConfig->flags & ~CONFIG_OVERWRITE;
    x_apply_choice(SYMLINKS);
    x_apply_choice(SINGLE);
    x_apply_choice(MULTIPLE);
    x_apply_choice(INDIVIDUAL);
    gConfig->key_timeout = x_number(sForm.cto->text().toUtf8());
    x_apply_font(sForm.ctree_font, gConfig->tree_font, "tree");
    x_apply_font(sForm.clist_font, gConfig->list_font, "filelist");
    wdialog_done(sDialog);
    fl_refresh();
}

} // namespace

int em_edit_preferences(QWidget *)
{
    if (wdialog_focus(sDialog))
        return W_CONTINUE;
    auto *dialog = new QDialog(gBase);
    sDialog = dialog;
    sForm.setupUi(dialog);
    config_setup();
    sForm.cto->setMaximumWidth(12 * dialog->fontMetrics().averageCharWidth());
    QFont heading = sForm.config_heading->font();
    heading.setBold(true);
    sForm.config_heading->setFont(heading);
    QObject::connect(sForm.ctree_select, &QPushButton::clicked, dialog, [] { config_tree_font(); });
    QObject::connect(sForm.clist_select, &QPushButton::clicked, dialog, [] { config_list_font(); });
    QObject::connect(sForm.config_done, &QPushButton::clicked, dialog, [] { config_apply(); });
    QObject::connect(sForm.config_cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    sForm.cto->setFocus();
    sForm.cto->selectAll();
    wdialog_open(dialog, gBase, {});
    return W_CONTINUE;
}

} // namespace tav
