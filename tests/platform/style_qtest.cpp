// What our style adds to the toolkit's.
#include "platform/style.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QLineEdit>
#include <QMenu>
#include <QPixmap>
#include <QProxyStyle>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QTest>

using namespace tav;

namespace {

// The greatest difference in lightness to the window's colour, over the box of a button that is not
// checked.
int x_contrast(QAbstractButton &button)
{
    button.resize(40, 40);
    const QImage image = button.grab().toImage();
    const int window = button.palette().color(QPalette::Window).lightness();
    int most = 0;
    for (int y = 0; y < image.height(); y++)
        for (int x = 0; x < image.width(); x++)
            most = std::max(most, std::abs(image.pixelColor(x, y).lightness() - window));
    return most;
}

QStringList x_thread_names()
{
    QStringList names;
    for (const QString &thread : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/self/task/%1/comm").arg(thread));
        if (file.open(QIODevice::ReadOnly))
            names.append(QString::fromLatin1(file.readAll()).trimmed());
    }
    return names;
}

} // namespace

class StyleTest : public QObject {
    Q_OBJECT

    QPalette m_light;

private Q_SLOTS:
    void initTestCase()
    {
        style_install();
        m_light = QApplication::palette();
    }
    void cleanup() { QApplication::setPalette(m_light); }

    void a_box_to_check_stands_out_data()
    {
        QTest::addColumn<QColor>("window");
        QTest::addColumn<QColor>("base");
        QTest::newRow("light") << QColor(0xef, 0xef, 0xef) << QColor(Qt::white);
        QTest::newRow("dark") << QColor(0x2b, 0x2d, 0x30) << QColor(0x1f, 0x21, 0x23);
        QTest::newRow("black") << QColor(Qt::black) << QColor(Qt::black);
    }
    void a_box_to_check_stands_out()
    {
        QFETCH(QColor, window);
        QFETCH(QColor, base);
        QPalette palette(window);
        palette.setColor(QPalette::Base, base);
        QApplication::setPalette(palette);
        QCheckBox box;
        QRadioButton radio;
        QVERIFY2(x_contrast(box) > 45, qPrintable(QString::number(x_contrast(box))));
        QVERIFY2(x_contrast(radio) > 45, qPrintable(QString::number(x_contrast(radio))));
    }

    // As the View menu shows what cannot be switched there.
    void a_dimmed_box_tells_whether_it_is_checked_data() { a_box_to_check_stands_out_data(); }
    void a_dimmed_box_tells_whether_it_is_checked()
    {
        QFETCH(QColor, window);
        QFETCH(QColor, base);
        QPalette palette(window);
        palette.setColor(QPalette::Base, base);
        for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText})
            palette.setColor(QPalette::Disabled, role, QColor(0x70, 0x70, 0x70));
        QApplication::setPalette(palette);
        QMenu menu;
        QAction *item = menu.addAction(QStringLiteral("one"));
        item->setCheckable(true);
        item->setEnabled(false);
        const QImage without = menu.grab().toImage();
        item->setChecked(true);
        const QImage with = menu.grab().toImage();
        QCOMPARE(with.size(), without.size());
        int most = 0;
        for (int y = 0; y < with.height(); y++)
            for (int x = 0; x < with.width(); x++)
                most = std::max(most, std::abs(with.pixelColor(x, y).lightness() -
                                               without.pixelColor(x, y).lightness()));
        QVERIFY2(most > 45, qPrintable(QString::number(most)));
    }

    void a_menu_and_its_lines_stand_out_on_any_window_data() { a_box_to_check_stands_out_data(); }
    void a_menu_and_its_lines_stand_out_on_any_window()
    {
        QFETCH(QColor, window);
        QFETCH(QColor, base);
        QPalette palette(window);
        palette.setColor(QPalette::Base, base);
        QApplication::setPalette(palette);
        QMenu menu;
        menu.addAction(QStringLiteral("one"));
        const QAction *line = menu.addSeparator();
        menu.addAction(QStringLiteral("two"));
        menu.resize(menu.sizeHint());
        const QImage image = menu.grab().toImage();
        const int ground = base.lightness(), middle = image.width() / 2;
        const int across = menu.actionGeometry(const_cast<QAction *>(line)).center().y();
        QVERIFY(std::abs(image.pixelColor(middle, 0).lightness() - ground) > 40);
        QVERIFY(std::abs(image.pixelColor(0, across).lightness() - ground) > 40);
        QVERIFY(std::abs(image.pixelColor(middle, across).lightness() - ground) > 25);
    }

    void a_text_field_stands_out_on_any_window_data() { a_box_to_check_stands_out_data(); }
    void a_text_field_stands_out_on_any_window()
    {
        QFETCH(QColor, window);
        QFETCH(QColor, base);
        QPalette palette(window);
        palette.setColor(QPalette::Base, base);
        QApplication::setPalette(palette);
        QLineEdit field;
        QComboBox box;
        box.setEditable(true);
        for (QWidget *widget : {static_cast<QWidget *>(&field), static_cast<QWidget *>(&box)}) {
            widget->resize(100, 24);
            const QImage image = widget->grab().toImage();
            for (const QPoint &edge :
                 {QPoint(0, 12), QPoint(99, 12), QPoint(50, 0), QPoint(50, 23)})
                QVERIFY(std::abs(image.pixelColor(edge).lightness() - window.lightness()) > 40);
        }
        QStyleOptionComboBox option;
        option.initFrom(&box);
        option.editable = true;
        const QRect arrow = box.style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                        QStyle::SC_ComboBoxArrow, &box);
        const QImage image = box.grab().toImage();
        QVERIFY(std::abs(image.pixelColor(arrow.center()).lightness() - base.lightness()) > 80);
    }

    void a_text_field_with_the_keyboard_shows_it()
    {
        QWidget window;
        QLineEdit field(&window), other(&window);
        QComboBox box(&window);
        box.setEditable(true);
        int y = 0;
        for (QWidget *widget : {static_cast<QWidget *>(&field), static_cast<QWidget *>(&other),
                                static_cast<QWidget *>(&box)})
            widget->setGeometry(0, y++ * 40, 100, 24);
        window.show();
        window.activateWindow();
        const QColor lit = window.palette().color(QPalette::Highlight);
        for (QWidget *widget : {static_cast<QWidget *>(&field), static_cast<QWidget *>(&box)}) {
            other.setFocus();
            QVERIFY(widget->grab().toImage().pixelColor(0, 12) != lit);
            widget->setFocus();
            QTRY_VERIFY(widget->hasFocus());
            QCOMPARE(widget->grab().toImage().pixelColor(0, 12), lit);
        }
    }

    // Where a fill or a line is handed to threads, they are there afterwards.
    void nothing_of_a_window_is_drawn_by_threads()
    {
        QFrame frame;
        frame.setFrameShape(QFrame::StyledPanel);
        QScrollBar bar(Qt::Vertical);
        QLineEdit field;
        bar.setRange(0, 10);
        for (QWidget *widget : {static_cast<QWidget *>(&frame), static_cast<QWidget *>(&bar),
                                static_cast<QWidget *>(&field)}) {
            widget->resize(600, 800);
            QVERIFY(!widget->grab().isNull());
        }
        QCOMPARE(x_thread_names().count(QStringLiteral("Thread (pooled)")), 0);
    }

    void the_style_that_is_asked_for_stays_below()
    {
        const auto *ours = qobject_cast<QProxyStyle *>(QApplication::style());
        QVERIFY(ours && ours->baseStyle()->inherits("QFusionStyle"));
    }

    // By its mouse alone, as a person uses it.
    void a_scroll_bar_is_dragged_and_paged_data()
    {
        QTest::addColumn<Qt::Orientation>("orientation");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::newRow("upright") << Qt::Vertical << Qt::LeftToRight;
        QTest::newRow("flat") << Qt::Horizontal << Qt::LeftToRight;
        QTest::newRow("flat, from the right") << Qt::Horizontal << Qt::RightToLeft;
    }
    void a_scroll_bar_is_dragged_and_paged()
    {
        QFETCH(Qt::Orientation, orientation);
        QFETCH(Qt::LayoutDirection, direction);
        const bool upright = orientation == Qt::Vertical;
        QScrollBar bar(orientation);
        bar.setLayoutDirection(direction);
        bar.setRange(0, 900);
        bar.setPageStep(100); // the slider takes a tenth
        bar.resize(upright ? QSize(14, 400) : QSize(400, 14));
        bar.show();
        // A point that many pixels from the bar's beginning.
        const auto at = [&](int along) {
            const int x = direction == Qt::RightToLeft ? 399 - along : along;
            return upright ? QPoint(7, along) : QPoint(x, 7);
        };
        QTest::mouseClick(&bar, Qt::LeftButton, {}, at(200));
        QCOMPARE(bar.value(), 100); // a page on
        QTest::mouseClick(&bar, Qt::LeftButton, {}, at(2));
        QCOMPARE(bar.value(), 0); // a page back
        QTest::mousePress(&bar, Qt::LeftButton, {}, at(20));
        QTest::mouseMove(&bar, at(200));
        QCOMPARE(bar.value(), 450);
        QTest::mouseMove(&bar, at(399));
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, at(399));
        QCOMPARE(bar.value(), 900);
        QTest::mouseClick(&bar, Qt::LeftButton, {}, at(395)); // on the slider
        QCOMPARE(bar.value(), 900);
    }

    void the_slider_of_a_million_rows_can_be_taken()
    {
        QScrollBar bar(Qt::Vertical);
        bar.setRange(0, 22'000'000);
        bar.setPageStep(500);
        bar.resize(14, 400);
        bar.show();
        QTest::mousePress(&bar, Qt::LeftButton, {}, {7, 10});
        QTest::mouseMove(&bar, {7, 399});
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, {7, 399});
        QCOMPARE(bar.value(), 22'000'000);
    }

    void what_cannot_be_scrolled_has_no_slider()
    {
        QScrollBar bar(Qt::Vertical);
        bar.resize(14, 400);
        bar.setRange(0, 0);
        const QColor ground = bar.grab().toImage().pixelColor(7, 200);
        QCOMPARE(ground, bar.palette().color(QPalette::Window));
        bar.setRange(0, 100);
        QVERIFY(bar.grab().toImage().pixelColor(7, 2) != ground);
    }

    void a_bar_that_is_too_short_has_an_image_for_the_rest()
    {
        const QIcon icon =
            QApplication::style()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton);
        QVERIFY(!icon.pixmap(16, 16).isNull());
    }
};

QTEST_MAIN(StyleTest)
#include "style_qtest.moc"
