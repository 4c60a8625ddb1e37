// What our style adds to the toolkit's.
#include "platform/style.h"

#include <QApplication>
#include <QCheckBox>
#include <QPixmap>
#include <QProxyStyle>
#include <QRadioButton>
#include <QStyle>
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

    void the_style_that_is_asked_for_stays_below()
    {
        const auto *ours = qobject_cast<QProxyStyle *>(QApplication::style());
        QVERIFY(ours && ours->baseStyle()->inherits("QFusionStyle"));
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
