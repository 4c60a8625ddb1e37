// A label for a path or a name of any length: what does not fit is left out in the middle and shown
// whole in the tool tip. text() is the whole text.
#pragma once

#include <QLabel>

namespace tav {

class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
};

} // namespace tav
