#include "combo_box_filter_delegate.h"
#include "filter_combo_box.h"
#include "value_exists_combo_box_validator.h"

#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QStandardItemModel>
#include <QtTest>

class VALUE_EXISTS_COMBO_BOX_TEST : public QObject
{
    Q_OBJECT

private:
    static void fill(FILTER_COMBO_BOX& box, const QStringList& items)
    {
        box.setEditable(true);
        box.addItems(items);
    }

    struct PAINTED
    {
        QColor background;
        bool black_text = false;
        bool grey_text = false;
    };

    // Paints one popup row into an image; tells its background and which text
    // colour appears (the text is drawn unblended at full pen colour in its
    // middle strokes).
    static PAINTED paint_row(FILTER_COMBO_BOX& box, int row)
    {
        COMBO_BOX_FILTER_DELEGATE delegate(&box);
        QImage image(200, 24, QImage::Format_RGB32);
        image.fill(Qt::magenta);
        QStyleOptionViewItem option;
        option.rect = QRect(0, 0, 200, 24);
        {
            QPainter painter(&image);
            delegate.paint(&painter, option, box.model()->index(row, 0));
        }
        PAINTED painted;
        painted.background = image.pixelColor(190, 2);
        for (int y = 0; y < image.height(); ++y)
        {
            for (int x = 0; x < 150; ++x)
            {
                const QColor pixel = image.pixelColor(x, y);
                painted.black_text |= pixel == QColor(Qt::black);
                painted.grey_text |= pixel == QColor(Qt::lightGray);
            }
        }
        return painted;
    }

private slots:
    void validate_data()
    {
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("corrected");

        const QStringList voices{"Narrator", "Knight", "Night Watch"};
        QTest::newRow("equal") << voices << "Knight" << int(QValidator::Acceptable) << "Knight";
        QTest::newRow("equal ignoring case takes the item's spelling")
            << voices << "nArRaToR" << int(QValidator::Acceptable) << "Narrator";
        QTest::newRow("part of an item") << voices << "nigh" << int(QValidator::Intermediate) << "nigh";
        QTest::newRow("part of nothing") << voices << "Dragon" << int(QValidator::Invalid) << "Dragon";
        QTest::newRow("no items") << QStringList{} << "" << int(QValidator::Invalid) << "";
    }

    void validate()
    {
        QFETCH(QStringList, items);
        QFETCH(QString, input);
        QFETCH(int, state);
        QFETCH(QString, corrected);

        FILTER_COMBO_BOX box;
        fill(box, items);
        VALUE_EXISTS_COMBO_BOX_VALIDATOR validator(&box);
        int position = input.size();
        QCOMPARE(int(validator.validate(input, position)), state);
        QCOMPARE(input, corrected);
    }

    void fixup_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("answer");

        // Walked from the last item back: the first item containing the
        // input wins, unless an equal one is met on the way.
        QTest::newRow("first item containing") << "ight"
                                               << "Knight";
        QTest::newRow("equal item beats earlier containing ones") << "night watch"
                                                                  << "Night Watch";
        QTest::newRow("nothing contains it: the first item") << "Dragon"
                                                             << "Narrator";
    }

    void fixup()
    {
        QFETCH(QString, input);
        QFETCH(QString, answer);

        FILTER_COMBO_BOX box;
        fill(box, {"Narrator", "Knight", "Night", "Night Watch"});
        VALUE_EXISTS_COMBO_BOX_VALIDATOR validator(&box);
        const QString typed = input;
        validator.fixup(input);
        QCOMPARE(input, answer);
        QCOMPARE(box.filter_text(), typed);
    }

    void fixup_waits_while_the_box_has_focus()
    {
        FILTER_COMBO_BOX box;
        fill(box, {"Narrator", "Knight"});
        VALUE_EXISTS_COMBO_BOX_VALIDATOR validator(&box);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        box.activateWindow();
        box.lineEdit()->setFocus();
        QTRY_VERIFY(box.lineEdit()->hasFocus());
        QString input = "kni";
        validator.fixup(input);
        QCOMPARE(input, QString("kni"));
        QVERIFY(box.filter_text().isEmpty());
    }

    void typing_clears_the_filter_and_highlighting_is_remembered()
    {
        FILTER_COMBO_BOX box;
        fill(box, {"Narrator", "Knight"});
        box.set_filter_text("kn");
        QTest::keyClick(&box, Qt::Key_A);
        QVERIFY(box.filter_text().isEmpty());
        emit box.highlighted(1);
        QCOMPARE(box.highlighted_item(), 1);
    }

    void popup_rows_show_what_matches()
    {
        FILTER_COMBO_BOX box;
        fill(box, {"Narrator", "Knight", ""});
        box.set_filter_text("KNI");
        box.set_highlighted_item(0);

        const PAINTED highlighted = paint_row(box, 0);
        QCOMPARE(highlighted.background, QColor(85, 170, 255));
        QVERIFY(highlighted.grey_text && !highlighted.black_text); // "Narrator" lacks "kni"

        const PAINTED matching = paint_row(box, 1);
        QCOMPARE(matching.background, QColor(Qt::white));
        QVERIFY(matching.black_text);

        // An empty item is not drawn at all.
        QCOMPARE(paint_row(box, 2).background, QColor(Qt::magenta));

        // Without a filter text the current text is the filter.
        box.set_filter_text(QString());
        box.setCurrentIndex(0);
        QVERIFY(paint_row(box, 0).black_text);
        QVERIFY(paint_row(box, 1).grey_text);
    }
};

QTEST_MAIN(VALUE_EXISTS_COMBO_BOX_TEST)
#include "value_exists_combo_box_test.moc"
