// Images where the toolkit lacks its plugin for them.
#include "platform/res.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QPixmap>
#include <QTest>

using namespace tav;

class ResTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void an_image_of_an_unusual_size_is_made_from_a_drawn_one()
    {
        QCoreApplication::setLibraryPaths({}); // before the first plugin for images is sought
        QVERIFY(!QImageReader::supportedImageFormats().contains("svg"));
        const QImage large = res_image("closed_folder").pixmap(QSize(200, 200), 1.0).toImage();
        const QImage drawn = res_image("closed_folder").pixmap(QSize(48, 48), 1.0).toImage();
        QCOMPARE(large.size(), QSize(200, 200));
        const QImage back =
            large.scaled(drawn.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        int alike = 0;
        for (int y = 0; y < 48; y++)
            for (int x = 0; x < 48; x++)
                alike += std::abs(qAlpha(back.pixel(x, y)) - qAlpha(drawn.pixel(x, y))) < 40;
        QVERIFY(alike > 48 * 48 * 9 / 10);
        QVERIFY(qAlpha(drawn.pixel(24, 24)) > 200); // it is not empty
    }
};

QTEST_MAIN(ResTest)
#include "res_qtest.moc"
