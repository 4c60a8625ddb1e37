// Names made visible, fonts and lengths of the settings, built-in images and texts, combo boxes.
#include "platform/combo.h"
#include "platform/fonts.h"
#include "platform/lengths.h"
#include "platform/res.h"
#include "platform/shown.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFontDatabase>
#include <QLineEdit>
#include <QPainter>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTest>
#include <random>

using namespace tav;

class TextsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void names_are_shown_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("shown");
        QTest::newRow("empty") << QByteArray() << QString();
        QTest::newRow("plain") << QByteArray("a b~.txt") << QStringLiteral("a b~.txt");
        QTest::newRow("utf-8") << QByteArray("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80")
                               << QStringLiteral("\u00E4\u20AC\U0001F600");
        QTest::newRow("latin-1") << QByteArray("caf\xE9") << QStringLiteral("caf\\xE9");
        QTest::newRow("cut sequence") << QByteArray("a\xE2\x82") << QStringLiteral("a\\xE2\\x82");
        QTest::newRow("overlong") << QByteArray("\xC0\xAF") << QStringLiteral("\\xC0\\xAF");
        QTest::newRow("overlong of three")
            << QByteArray("\xE0\x80\xAF") << QStringLiteral("\\xE0\\x80\\xAF");
        QTest::newRow("surrogate")
            << QByteArray("\xED\xA0\x80") << QStringLiteral("\\xED\\xA0\\x80");
        QTest::newRow("past the last")
            << QByteArray("\xF4\x90\x80\x80") << QStringLiteral("\\xF4\\x90\\x80\\x80");
        QTest::newRow("broken off by a letter") << QByteArray("\xE2z") << QStringLiteral("\\xE2z");
        QTest::newRow("newline, tab, escape")
            << QByteArray("a\n\t\x1B") << QStringLiteral("a\u240A\u2409\u241B");
        QTest::newRow("delete") << QByteArray("\x7F") << QStringLiteral("\u2421");
        QTest::newRow("NUL") << QByteArray("a\0b", 3) << QStringLiteral("a\u2400b");
        QTest::newRow("control of the second kind")
            << QByteArray("\xC2\x85") << QStringLiteral("\\u0085");
        QTest::newRow("direction")
            << QByteArray("\xE2\x80\xAEgpj.exe") << QStringLiteral("\\u202Egpj.exe");
        QTest::newRow("isolate") << QByteArray("\xE2\x81\xA6x") << QStringLiteral("\\u2066x");
        QTest::newRow("mark") << QByteArray("\xE2\x80\x8F") << QStringLiteral("\\u200F");
        QTest::newRow("line separator") << QByteArray("\xE2\x80\xA8") << QStringLiteral("\\u2028");
        QTest::newRow("no width") << QByteArray("a\xE2\x80\x8B") << QStringLiteral("a\\u200B");
        QTest::newRow("joiner of an emoji")
            << QByteArray("\xE2\x80\x8D") << QStringLiteral("\u200D");
        QTest::newRow("markup") << QByteArray("<b>&amp;</b>") << QStringLiteral("<b>&amp;</b>");
    }
    void names_are_shown()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, shown);
        QCOMPARE(shown_text(name.toStdString()), shown);
    }

    void labels_double_the_ampersand()
    {
        QCOMPARE(shown_label("a&b&&c"), QStringLiteral("a&&b&&&&c"));
    }

    void what_was_not_edited_keeps_its_bytes_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("after");
        const auto row = [](const char *what, const char *before, const QString &text,
                            const char *after) {
            QTest::newRow(what) << QByteArray(before) << text << QByteArray(after);
        };
        row("plain", "ab.c", QStringLiteral("\u00E4b.c"),
            "\xC3\xA4"
            "b.c");
        row("untouched", "caf\xE9\n", QStringLiteral("caf\\xE9\u240A"), "caf\xE9\n");
        row("behind", "caf\xE9.c", QStringLiteral("caf\\xE9.h"), "caf\xE9.h");
        row("before", "caf\xE9.c", QStringLiteral("the caf\\xE9.c"), "the caf\xE9.c");
        row("on both sides", "caf\xE9.c", QStringLiteral("one caf\\xE9 two"), "one caf\xE9 two");
        row("nothing but the byte is left", "caf\xE9.c", QStringLiteral("\\xE9"), "\xE9");
        row("between two", "\xE9-\xE8", QStringLiteral("\\xE9+\\xE8"), "\xE9+\xE8");
        row("one of two goes", "\xE9\xE8", QStringLiteral("\\xE8"), "\xE8");
        row("the first of three goes",
            "\xE9"
            "a\xE8"
            "b\xE9",
            QStringLiteral("a\\xE8b\\xE9"),
            "a\xE8"
            "b\xE9");
        row("mended", "caf\xE9", QStringLiteral("caf\u00E9"), "caf\xC3\xA9");
        row("all typed anew", "caf\xE9", QStringLiteral("tea"), "tea");
        row("emptied", "caf\xE9", QString(), "");
        row("hidden",
            "a\xE2\x80\x8B"
            "b",
            QStringLiteral("a\\u200Bc"),
            "a\xE2\x80\x8B"
            "c");
        row("what only looks like a byte", "a\\xE9\xE9", QStringLiteral("b\\xE9\\xE9"),
            "b\\xE9\xE9");
        row("an escape broken by hand is text", "caf\xE9", QStringLiteral("caf\\xE"), "caf\\xE");
        row("beyond the BMP", "\xE9\xF0\x9F\x98\x80", QStringLiteral("x\\xE9\U0001F600\U0001F601"),
            "x\xE9\xF0\x9F\x98\x80\xF0\x9F\x98\x81");
    }
    void what_was_not_edited_keeps_its_bytes()
    {
        QFETCH(QByteArray, before);
        QFETCH(QString, text);
        QFETCH(QByteArray, after);
        QCOMPARE(shown_edited(before.toStdString(), text), after.toStdString());
        QCOMPARE(shown_edited(before.toStdString(), shown_text(before.toStdString())),
                 before.toStdString());
    }

    void a_text_that_is_no_name_any_more_comes_back_as_it_is()
    {
        const QString text(100'000, QLatin1Char('x'));
        QCOMPARE(shown_edited("caf\xE9", text), text.toStdString());
    }

    void any_bytes_can_be_shown()
    {
        std::mt19937 random(7);
        for (int round = 0; round < 2000; round++) {
            std::string bytes(random() % 64, '\0');
            for (char &c : bytes)
                c = static_cast<char>(random());
            for (const QChar c : shown_text(bytes))
                QVERIFY(!c.isNull() && c.category() != QChar::Other_Control);
        }
    }

    // Lengths.

    void lengths_come_back_for_every_value_and_every_digit_width()
    {
        for (double width :
             {0.0, 1.0, 3.0, 4.5, 5.0, 5.01, 6.0, 7.0, 7.8, 8.27, 9.0, 11.5, 14.0, 33.3}) {
            for (int value = 0; value <= 65535; value++) {
                const int pixels = lengths_to_pixels_at(value, width);
                if (lengths_from_pixels_at(pixels, width) != value)
                    QFAIL(qPrintable(QStringLiteral("%1 at %2").arg(value).arg(width)));
            }
        }
    }

    void lengths_grow_with_the_digits()
    {
        QCOMPARE(lengths_to_pixels_at(125, 5), 125);
        QCOMPARE(lengths_to_pixels_at(125, 10), 250);
        QCOMPARE(lengths_from_pixels_at(250, 10), 125);
        QCOMPARE(lengths_to_pixels_at(125, 2), 125);
    }

    void absurd_lengths_stay_numbers()
    {
        QCOMPARE(lengths_to_pixels_at(INT_MAX, 50), INT_MAX);
        QCOMPARE(lengths_to_pixels_at(INT_MIN, 50), INT_MIN);
        QCOMPARE(lengths_to_pixels_at(-10, 10), -20);
        QCOMPARE(lengths_from_pixels_at(-20, 10), -10);
        QCOMPARE(lengths_to_pixels_at(7, qQNaN()), 7);
    }

    void lengths_follow_the_text_font()
    {
        const QFont before = QApplication::font();
        QFont large = before;
        large.setPointSizeF(40);
        QApplication::setFont(large);
        QVERIFY(lengths_to_pixels(100) > 200);
        QCOMPARE(lengths_from_pixels(lengths_to_pixels(190)), 190);
        QApplication::setFont(before);
    }

    // Fonts.

    void the_default_name_is_the_desktops_own_font()
    {
        QCOMPARE(fonts_from_name("TextFont08", 255), QApplication::font());
        QCOMPARE(fonts_from_name("", 255), QApplication::font());
        QCOMPARE(fonts_from_name(nullptr, 255), QApplication::font());
        QCOMPARE(fonts_from_name("helv12", 255), QApplication::font());
        QCOMPARE(fonts_from_name("No Such Family,10,-1,5,50,0,0,0,0,0", 255), QApplication::font());
        char name[255];
        fonts_to_name(QApplication::font(), name, sizeof name);
        QCOMPARE(QByteArray(name), QByteArray("TextFont08"));
    }

    void a_chosen_font_comes_back()
    {
        if (QFontDatabase::families().isEmpty())
            QFAIL("no font installed");
        for (const QString &family : QFontDatabase::families()) {
            QFont font(family, 13);
            font.setBold(true);
            font.setItalic(true);
            char name[255];
            fonts_to_name(font, name, sizeof name);
            QCOMPARE(fonts_from_name(name, sizeof name), font);
            QCOMPARE(name[254], '\0');
        }
    }

    void a_name_that_does_not_fit_is_the_default()
    {
        const QFont font(QString(400, QLatin1Char('x')), 13);
        char name[255];
        memset(name, 'z', sizeof name);
        fonts_to_name(font, name, sizeof name);
        QCOMPARE(QByteArray(name), QByteArray("TextFont08"));
        for (size_t i = strlen(name); i < sizeof name; i++)
            QCOMPARE(name[i], '\0');
        char tiny[4] = {'z', 'z', 'z', 'z'};
        fonts_to_name(font, tiny, sizeof tiny);
        QCOMPARE(tiny[3], '\0');
        fonts_to_name(font, tiny, 0);
    }

    void absurd_sizes_are_not_believed_data()
    {
        QTest::addColumn<QString>("rest");
        QTest::newRow("huge") << QStringLiteral(",99999,-1,5,400,0,0,0,0,0");
        QTest::newRow("negative") << QStringLiteral(",-7,-1,5,400,0,0,0,0,0");
        QTest::newRow("not a number") << QStringLiteral(",nan,-1,5,400,0,0,0,0,0");
        QTest::newRow("weight") << QStringLiteral(",10,-1,5,90000,0,0,0,0,0");
        QTest::newRow("pixels") << QStringLiteral(",-1,100000,5,400,0,0,0,0,0");
        QTest::newRow("words") << QStringLiteral(",10,-1,five,400,0,0,0,0,0");
        QTest::newRow("too few") << QStringLiteral(",10,-1");
    }
    void absurd_sizes_are_not_believed()
    {
        QFETCH(QString, rest);
        const QByteArray name = (QFontDatabase::families().first() + rest).toUtf8();
        const QFont font = fonts_from_name(name.constData(), static_cast<size_t>(name.size()));
        QVERIFY(font == QApplication::font() || font.pointSizeF() == 10);
        QVERIFY(font.pointSizeF() <= 96 && font.pixelSize() <= 256);
    }

    void random_bytes_are_survived()
    {
        std::mt19937 random(11);
        for (int round = 0; round < 500; round++) {
            char name[255];
            for (char &c : name)
                c = static_cast<char>(random());
            QCOMPARE(fonts_from_name(name, sizeof name), QApplication::font());
        }
    }

    // Images and texts.

    void the_texts_are_there_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("3") << QByteArray("txt_003") << QByteArray("Create New File");
        QTest::newRow("4") << QByteArray("txt_004") << QByteArray("Create New Folder");
        QTest::newRow("5") << QByteArray("txt_005") << QByteArray("File Name");
        QTest::newRow("6") << QByteArray("txt_006") << QByteArray("Folder Name");
        QTest::newRow("7") << QByteArray("txt_007")
                           << QByteArray("Are you sure you want to delete these %d items?");
        QTest::newRow("8") << QByteArray("txt_008") << QByteArray("Deleting '%s'...");
        QTest::newRow("9") << QByteArray("txt_009") << QByteArray("Abort");
        QTest::newRow("10") << QByteArray("txt_010")
                            << QByteArray("Unable to delete file '%s'.\n%s.");
        QTest::newRow("11") << QByteArray("txt_011") << QByteArray("Done");
        QTest::newRow("12") << QByteArray("txt_012")
                            << QByteArray("Unable to remove folder '%s'.\n%s.");
        QTest::newRow("13") << QByteArray("txt_013") << QByteArray("Include %d selected folders");
        QTest::newRow("14") << QByteArray("txt_014") << QByteArray("Delete process aborted.");
        QTest::newRow("15") << QByteArray("txt_015") << QByteArray("Deletion Progress");
        QTest::newRow("16") << QByteArray("txt_016") << QByteArray("Select Pattern");
        QTest::newRow("17") << QByteArray("txt_017") << QByteArray("Unselect Pattern");
        QTest::newRow("unknown") << QByteArray("txt_999") << QByteArray();
    }
    void the_texts_are_there()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, text);
        QCOMPARE(QByteArray(res_text(name.constData())), text);
    }

    void images_drawn_by_the_build_look_as_those_drawn_when_needed()
    {
        int compared = 0;
        for (const QString &file : QDir(QStringLiteral(":/images")).entryList()) {
            QSvgRenderer renderer(QStringLiteral(":/images/") + file);
            const QString name = file.section(QLatin1Char('.'), 0, 0);
            for (const int side : {12, 15, 16, 18, 20, 24, 30, 32, 36, 48, 50}) {
                QImage drawn(side, side, QImage::Format_ARGB32_Premultiplied);
                drawn.fill(Qt::transparent);
                QPainter painter(&drawn);
                renderer.setAspectRatioMode(Qt::KeepAspectRatio);
                renderer.render(&painter, QRectF(0, 0, side, side));
                const QIcon icon = res_image(name.toLatin1().constData());
                QCOMPARE(icon.pixmap(QSize(side, side), 1.0).toImage(), drawn);
                const QString kept = QStringLiteral(":/drawn/%1-%2").arg(name).arg(side);
                QCOMPARE(QFile::exists(kept), side != 50);
                compared++;
            }
        }
        QVERIFY(compared > 300);
    }

    void images_are_sharp_at_every_size()
    {
        const QIcon icon = res_image("closed_folder");
        QVERIFY(!icon.isNull());
        for (int size : {16, 32, 48, 256})
            QCOMPARE(icon.pixmap(size).size(), QSize(size, size));
        QVERIFY(res_image("no_such_image").isNull());
        QVERIFY(res_image("no_such_image").isNull());
    }

    // Combo boxes.

    void refilling_a_box_keeps_what_is_typed()
    {
        QComboBox box;
        box.setEditable(true);
        box.setEditText(QStringLiteral("typed"));
        QSignalSpy changed(&box, &QComboBox::currentTextChanged);
        const ClBox cl = combo_box(&box);
        const std::string first[] = {"b", "c"}, second[] = {"d"}, front[] = {"a"};
        cl.insert(cl.widget, first, 2, 1);
        cl.insert(cl.widget, second, 1, 0);
        cl.insert(cl.widget, front, 1, 1);
        QCOMPARE(cl.count(cl.widget), 4);
        QStringList items;
        for (int i = 0; i < box.count(); i++)
            items.append(box.itemText(i));
        QCOMPARE(items.join(QLatin1Char(' ')), QStringLiteral("a b c d"));
        QCOMPARE(box.currentText(), QStringLiteral("typed"));
        cl.clear(cl.widget);
        QCOMPARE(cl.count(cl.widget), 0);
        QCOMPARE(box.currentText(), QStringLiteral("typed"));
        QCOMPARE(changed.count(), 0);
    }

    void selecting_shows_the_item_marked_for_replacing()
    {
        QComboBox box;
        box.setEditable(true);
        const ClBox cl = combo_box(&box);
        const std::string texts[] = {"one", "two"};
        cl.insert(cl.widget, texts, 2, 1);
        cl.select(cl.widget, 2);
        QCOMPARE(box.currentText(), QStringLiteral("two"));
        QCOMPARE(box.lineEdit()->selectedText(), QStringLiteral("two"));
    }

    void bytes_that_are_no_utf8_come_back_as_they_were()
    {
        QComboBox box;
        box.setEditable(true);
        const ClBox cl = combo_box(&box);
        const std::string texts[] = {"/tmp/caf\xE9", "plain"};
        cl.insert(cl.widget, texts, 2, 1);
        cl.select(cl.widget, 1);
        QCOMPARE(combo_text(&box), texts[0]);
        box.setEditText(QStringLiteral("/t\u00E4"));
        QCOMPARE(combo_text(&box), std::string("/t\xC3\xA4"));
    }
};

QTEST_MAIN(TextsTest)
#include "texts_qtest.moc"
