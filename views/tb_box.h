// An editable combo box for a toolbar: only final picks count, what is typed is not completed or
// inserted by the box itself, Escape gives up.
#pragma once

#include <QComboBox>
#include <QLineEdit>

namespace tav {

class TbEdit : public QLineEdit {
    Q_OBJECT
public:
    using QLineEdit::QLineEdit;

Q_SIGNALS:
    void typed();     // a key put something at the end of the text
    void abandoned(); // Escape

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};

class TbBox : public QComboBox {
    Q_OBJECT
public:
    explicit TbBox(QWidget *parent = nullptr);
    TbEdit *edit() const { return edit_; }
    void set_greedy(); // takes whatever room its bar can have
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool is_typing() const; // a person changed the text and is still in it

Q_SIGNALS:
    void entered();    // Return in the text, or a final pick from the list
    void recoloured(); // the desktop's colours changed

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QSize usual_size() const;

    TbEdit *edit_;
    bool greedy_ = false;
};

} // namespace tav
