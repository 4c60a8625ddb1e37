// The toolbars' combo box.
#include "views/tb_box.h"

#include <QCompleter>
#include <QKeyEvent>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace tav {

namespace {

constexpr int USUAL_LETTERS = 13;  // that a box has room for
constexpr int GREEDY_WIDTH = 4000; // more than any row of bars has to give

} // namespace

bool TbEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // These end the typing here, whatever the menus use them for.
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void TbEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT abandoned();
        return;
    }
    const QString before = text();
    const bool command = event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    const bool prints = !command && !event->text().isEmpty() && event->text().at(0).isPrint();
    QLineEdit::keyPressEvent(event);
    if (prints && text() != before && cursorPosition() == text().size())
        Q_EMIT typed();
}

TbBox::TbBox(QWidget *parent) : QComboBox(parent), edit_(new TbEdit(this))
{
    edit_->setCompleter(new QCompleter(edit_)); // else the box makes one of its entries, at a cost
    setLineEdit(edit_);
    delete edit_->completer();
    setInsertPolicy(NoInsert);
    setMaxVisibleItems(20);
    // Leaving the text would pick an entry that reads the same.
    disconnect(edit_, &QLineEdit::editingFinished, this, nullptr);
    connect(edit_, &QLineEdit::returnPressed, this, &TbBox::entered);
    connect(this, &QComboBox::activated, this, [this] { Q_EMIT entered(); });
}

bool TbBox::is_typing() const { return edit_->hasFocus() && edit_->isModified(); }

void TbBox::set_greedy()
{
    greedy_ = true;
    updateGeometry();
}

QSize TbBox::sizeHint() const
{
    const QSize size = usual_size();
    return greedy_ ? QSize(GREEDY_WIDTH, size.height()) : size;
}

// Below this a bar leaves the box out instead of making it narrower.
QSize TbBox::minimumSizeHint() const { return usual_size(); }

// Whatever texts it holds. (The box's own way makes the list that it opens, at each start.)
QSize TbBox::usual_size() const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QFontMetrics metrics = fontMetrics();
    const QSize inside(USUAL_LETTERS * metrics.horizontalAdvance(QLatin1Char('X')),
                       metrics.height() + 2);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, inside, this);
}

void TbBox::changeEvent(QEvent *event)
{
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        Q_EMIT recoloured();
}

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
