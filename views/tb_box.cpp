// The toolbars' combo box.
#include "views/tb_box.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace tav {

void TbEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT abandoned();
        return;
    }
    const QString before = text();
    const bool prints = !event->text().isEmpty() && event->text().at(0).isPrint();
    QLineEdit::keyPressEvent(event);
    if (prints && text() != before && cursorPosition() == text().size())
        Q_EMIT typed();
}

TbBox::TbBox(QWidget *parent) : QComboBox(parent), edit_(new TbEdit(this))
{
    setEditable(true);
    setLineEdit(edit_);
    setCompleter(nullptr);
    setInsertPolicy(NoInsert);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(8);
    setMaxVisibleItems(20);
    connect(edit_, &QLineEdit::returnPressed, this, &TbBox::entered);
    connect(this, &QComboBox::activated, this, [this] { Q_EMIT entered(); });
}

bool TbBox::is_typing() const { return edit_->hasFocus() && edit_->isModified(); }

void TbBox::keyPressEvent(QKeyEvent *event)
{
    // Up and Down would pick the next entry at once; they open the list, where a pick is final.
    if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up || event->key() == Qt::Key_F4) {
        showPopup();
        return;
    }
    QComboBox::keyPressEvent(event);
}

void TbBox::wheelEvent(QWheelEvent *event)
{
    event->ignore(); // passing over it picks nothing
}

} // namespace tav
