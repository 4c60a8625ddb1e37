// The histories' view of a combo box. The items keep their bytes beside the text that shows them,
// so that a name that is no UTF-8 comes back as it was. Refilling leaves alone what stands in the
// text field.
#include "platform/combo.h"

#include "platform/shown.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>

namespace tav {
namespace {

// Keeps the text field and its selection while the list behind it changes.
class TextKeeper {
public:
    explicit TextKeeper(QComboBox *box)
        : box_(box), blocker_(box), text_(box->currentText()),
          cursor_(box->lineEdit() ? box->lineEdit()->cursorPosition() : 0)
    {}
    ~TextKeeper()
    {
        QLineEdit *edit = box_->lineEdit();
        if (!edit)
            return;
        const QSignalBlocker quiet(edit);
        box_->setCurrentIndex(-1);
        edit->setText(text_);
        edit->setCursorPosition(cursor_);
    }
    TextKeeper(const TextKeeper &) = delete;
    TextKeeper &operator=(const TextKeeper &) = delete;

private:
    QComboBox *box_;
    QSignalBlocker blocker_;
    QString text_;
    int cursor_;
};

QComboBox *x_box(void *widget) { return static_cast<QComboBox *>(widget); }

void x_clear(void *widget)
{
    const TextKeeper keeper(x_box(widget));
    x_box(widget)->clear();
}

void x_insert(void *widget, const std::string *texts, int count, int position)
{
    QComboBox *box = x_box(widget);
    const TextKeeper keeper(box);
    int at = position <= 0 ? box->count() : position - 1;
    for (int i = 0; i < count; i++)
        box->insertItem(at++, shown_text(texts[i]), QByteArray::fromStdString(texts[i]));
}

int x_count(void *widget) { return x_box(widget)->count(); }

void x_select(void *widget, int position)
{
    QComboBox *box = x_box(widget);
    const QSignalBlocker quiet(box);
    box->setCurrentIndex(position - 1);
    if (box->lineEdit())
        box->lineEdit()->selectAll();
}

} // namespace

ClBox combo_box(QComboBox *box) { return {box, x_clear, x_insert, x_count, x_select}; }

std::string combo_text(const QComboBox *box)
{
    const QString text = box->currentText();
    const int found = box->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (found >= 0 && box->itemData(found).isValid())
        return box->itemData(found).toByteArray().toStdString();
    return text.toStdString();
}

} // namespace tav
