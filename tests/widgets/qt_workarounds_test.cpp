#include "qt_workarounds.h"

#include <QHeaderView>
#include <QItemSelection>
#include <QStandardItemModel>
#include <QTableView>
#include <QtTest>

class QT_WORKAROUNDS_TEST : public QObject
{
    Q_OBJECT

private:
    static QStringList visual_order(const QHeaderView* header, const QStringList& names)
    {
        QStringList order;
        for (int visual = 0; visual < header->count(); ++visual)
            order << names.value(header->logicalIndex(visual));
        return order;
    }

private slots:
    void selection_indices_visits_each_cell_once_in_reading_order()
    {
        QStandardItemModel model(4, 3);
        QItemSelection selection;
        // Selected bottom first, then a range that overlaps it.
        selection.select(model.index(2, 0), model.index(3, 1));
        selection.select(model.index(0, 1), model.index(2, 2));
        selection.merge(QItemSelection(model.index(2, 1), model.index(2, 1)), QItemSelectionModel::Select);

        const QVector<QModelIndex> cells = QT_WORKAROUNDS::selection_indices(selection);
        QVector<QPair<int, int>> seen;
        for (const QModelIndex& cell : cells)
            seen.append({cell.row(), cell.column()});
        const QVector<QPair<int, int>> expected{{0, 1}, {0, 2}, {1, 1}, {1, 2}, {2, 0},
                                                {2, 1}, {2, 2}, {3, 0}, {3, 1}};
        QCOMPARE(seen, expected);
    }

    void restore_header_by_column_names_data()
    {
        QTest::addColumn<QStringList>("saved");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("reversed") << QStringList{"d", "c", "b", "a"} << QStringList{"d", "c", "b", "a"};
        QTest::newRow("fields added since stay behind in their order")
            << QStringList{"c", "a"} << QStringList{"c", "a", "b", "d"};
        QTest::newRow("fields gone since are skipped")
            << QStringList{"gone", "b", "old", "a"} << QStringList{"b", "a", "c", "d"};
        QTest::newRow("a name twice counts once")
            << QStringList{"b", "b", "a"} << QStringList{"b", "a", "c", "d"};
        QTest::newRow("nothing saved keeps the order") << QStringList{} << QStringList{"a", "b", "c", "d"};
    }

    void restore_header_by_column_names()
    {
        QFETCH(QStringList, saved);
        QFETCH(QStringList, expected);

        const QStringList current{"a", "b", "c", "d"};
        QStandardItemModel model(1, current.size());
        QTableView view;
        view.setModel(&model);
        QT_WORKAROUNDS::restore_header_by_column_names(saved, current, view.horizontalHeader(), nullptr);
        QCOMPARE(visual_order(view.horizontalHeader(), current), expected);
    }

    void restore_header_applies_saved_widths_by_name()
    {
        const QStringList current{"a", "b", "c"};
        QStandardItemModel model(1, current.size());
        QTableView view;
        view.setModel(&model);
        view.horizontalHeader()->moveSection(0, 2); // a layout from before
        QMap<QString, int> widths{{"a", 40}, {"c", 170}, {"gone", 90}, {"b", 0}};
        const int width_of_b = view.horizontalHeader()->sectionSize(1);

        QT_WORKAROUNDS::restore_header_by_column_names({"c", "a", "b"}, current, view.horizontalHeader(),
                                                       &widths);
        QCOMPARE(visual_order(view.horizontalHeader(), current), (QStringList{"c", "a", "b"}));
        QCOMPARE(view.horizontalHeader()->sectionSize(0), 40);
        QCOMPARE(view.horizontalHeader()->sectionSize(2), 170);
        QCOMPARE(view.horizontalHeader()->sectionSize(1), width_of_b);
    }

    void restore_header_beyond_the_model_is_harmless()
    {
        QStandardItemModel model(1, 2);
        QTableView view;
        view.setModel(&model);
        QMap<QString, int> widths{{"c", 50}};
        QT_WORKAROUNDS::restore_header_by_column_names({"c", "b", "a"}, {"a", "b", "c"},
                                                       view.horizontalHeader(), &widths);
        QCOMPARE(view.horizontalHeader()->logicalIndex(0), 1);
        QT_WORKAROUNDS::restore_header_by_column_names({"a"}, {"a"}, nullptr, &widths);
    }
};

QTEST_MAIN(QT_WORKAROUNDS_TEST)
#include "qt_workarounds_test.moc"
