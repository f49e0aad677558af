#include "scripted_prompt.h"
#include "veld_frozen_columns_table.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QtTest>

class VELD_FROZEN_COLUMNS_TABLE_TEST : public QObject
{
    Q_OBJECT

private:
    static void fill(QStandardItemModel& model, int rows, int columns)
    {
        model.clear();
        model.setRowCount(rows);
        model.setColumnCount(columns);
        for (int column = 0; column < columns; ++column)
        {
            model.setHorizontalHeaderItem(column, new QStandardItem(QStringLiteral("field_%1").arg(column)));
            for (int row = 0; row < rows; ++row)
                model.setItem(row, column, new QStandardItem(QStringLiteral("r%1c%2").arg(row).arg(column)));
        }
    }

    // Opens the header menu over a column and picks an entry, as a user would.
    static void choose_from_header_menu(VELD_FROZEN_COLUMNS_TABLE& view, bool frozen_header, int logical,
                                        const QString& entry)
    {
        QHeaderView* header =
            frozen_header ? view.frozen_view()->horizontalHeader() : view.horizontalHeader();
        const QPoint point(header->sectionViewportPosition(logical) + 3, header->height() / 2);
        SCRIPTED_PROMPT prompts;
        prompts.menu_action(entry);
        emit header->customContextMenuRequested(point);
    }

    static QList<int> frozen_visible_columns(const VELD_FROZEN_COLUMNS_TABLE& view)
    {
        QList<int> shown;
        const QHeaderView* header = view.frozen_view()->horizontalHeader();
        for (int visual = 0; visual < header->count(); ++visual)
        {
            if (!header->isSectionHidden(header->logicalIndex(visual)))
                shown << header->logicalIndex(visual);
        }
        return shown;
    }

    // The view on the model, shown at the size given (none: as it comes).
    VELD_FROZEN_COLUMNS_TABLE& shown(int width = 0, int height = 0)
    {
        m_view = std::make_unique<VELD_FROZEN_COLUMNS_TABLE>(&m_model);
        if (width > 0)
            m_view->resize(width, height);
        m_view->show();
        if (!QTest::qWaitForWindowExposed(m_view.get()))
            QTest::qFail("the view was not shown", __FILE__, __LINE__);
        return *m_view;
    }

    QStandardItemModel m_model;
    std::unique_ptr<VELD_FROZEN_COLUMNS_TABLE> m_view;

private slots:
    void init() { fill(m_model, 30, 8); }
    void cleanup() { m_view.reset(); }

    void overlay_is_hidden_while_nothing_is_frozen()
    {
        VELD_FROZEN_COLUMNS_TABLE& view = shown(400, 300);
        QVERIFY(!view.frozen_view()->isVisible());
        QVERIFY(frozen_visible_columns(view).isEmpty());
        QCOMPARE(view.frozen_width(), 0);

        choose_from_header_menu(view, false, 3, "Freeze Column");
        QVERIFY(view.frozen_view()->isVisible());
        choose_from_header_menu(view, true, 3, "Unfreeze Column");
        QVERIFY(!view.frozen_view()->isVisible());
        QCOMPARE(view.frozen_column_count(), 0);
    }

    void freezing_moves_columns_beside_the_frozen_ones()
    {
        VELD_FROZEN_COLUMNS_TABLE& view = shown(400, 300);

        choose_from_header_menu(view, false, 2, "Freeze Column");
        view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum());
        choose_from_header_menu(view, false, 7, "Freeze Column");

        QCOMPARE(view.frozen_column_count(), 2);
        QCOMPARE(view.horizontalHeader()->visualIndex(2), 0);
        QCOMPARE(view.horizontalHeader()->visualIndex(7), 1);
        QCOMPARE(view.frozen_view()->horizontalHeader()->visualIndex(7), 1);
        QCOMPARE(frozen_visible_columns(view), (QList<int>{2, 7}));
        QCOMPARE(view.frozen_width(), view.columnWidth(2) + view.columnWidth(7));
        QCOMPARE(view.frozen_view()->width(), view.frozen_width());
        QCOMPARE(view.frozen_view()->x(), view.verticalHeader()->width() + view.frameWidth());
    }

    void unfreezing_returns_the_column_near_its_place()
    {
        VELD_FROZEN_COLUMNS_TABLE& view = shown(400, 300);
        choose_from_header_menu(view, false, 2, "Freeze Column");
        choose_from_header_menu(view, false, 5, "Freeze Column");
        choose_from_header_menu(view, true, 2, "Unfreeze Column");

        QCOMPARE(view.frozen_column_count(), 1);
        QCOMPARE(frozen_visible_columns(view), (QList<int>{5}));
        QList<int> order;
        for (int visual = 0; visual < view.horizontalHeader()->count(); ++visual)
            order << view.horizontalHeader()->logicalIndex(visual);
        QCOMPARE(order, (QList<int>{5, 0, 1, 2, 3, 4, 6, 7}));
    }

    void moving_left_scrolls_the_cell_out_from_under_the_overlay()
    {
        VELD_FROZEN_COLUMNS_TABLE view(&m_model);
        for (int column = 0; column < 8; ++column)
            view.setColumnWidth(column, 120);
        view.resize(450, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        choose_from_header_menu(view, false, 0, "Freeze Column");
        QCOMPARE(view.frozen_width(), 120);

        // Scroll so that column 3 starts inside the frozen area, then step left
        // onto it from column 4.
        view.horizontalScrollBar()->setValue(view.columnViewportPosition(3) +
                                             view.horizontalScrollBar()->value() - 60);
        QVERIFY(view.visualRect(m_model.index(5, 3)).left() < view.frozen_width());
        view.setCurrentIndex(m_model.index(5, 4));
        view.setFocus();
        QTest::keyClick(&view, Qt::Key_Left);
        QCOMPARE(view.currentIndex().column(), 3);
        QCOMPARE(view.visualRect(view.currentIndex()).left(), view.frozen_width());
    }

    void both_views_scroll_together_and_share_the_selection()
    {
        VELD_FROZEN_COLUMNS_TABLE& view = shown(400, 200);
        choose_from_header_menu(view, false, 1, "Freeze Column");

        view.verticalScrollBar()->setValue(70);
        QCOMPARE(view.frozen_view()->verticalScrollBar()->value(), 70);
        view.frozen_view()->verticalScrollBar()->setValue(20);
        QCOMPARE(view.verticalScrollBar()->value(), 20);
        QCOMPARE(view.frozen_view()->selectionModel(), view.selectionModel());

        view.verticalHeader()->resizeSection(4, 55);
        QCOMPARE(view.frozen_view()->rowHeight(4), 55);
        view.horizontalHeader()->resizeSection(1, 140);
        QCOMPARE(view.frozen_view()->columnWidth(1), 140);
        QCOMPARE(view.frozen_width(), 140);
    }

    // The overlay lays out its rows later than the view; its shorter range
    // must not pull a scroll to the new last row back up.
    void scrolling_to_a_row_just_added_reaches_it_data()
    {
        QTest::addColumn<bool>("frozen");
        QTest::newRow("nothing frozen") << false;
        QTest::newRow("a column frozen") << true;
    }
    void scrolling_to_a_row_just_added_reaches_it()
    {
        QFETCH(bool, frozen);
        VELD_FROZEN_COLUMNS_TABLE& view = shown(400, 200);
        if (frozen)
            choose_from_header_menu(view, false, 1, "Freeze Column");
        view.scrollToBottom();

        m_model.appendRow(new QStandardItem(QStringLiteral("added")));
        view.scrollToBottom();
        QCOMPARE(view.verticalScrollBar()->value(), view.verticalScrollBar()->maximum());
        QApplication::processEvents();
        const QRect last = view.visualRect(m_model.index(m_model.rowCount() - 1, 0));
        QVERIFY(view.viewport()->rect().contains(last));
        QCOMPARE(view.frozen_view()->verticalScrollBar()->value(), view.verticalScrollBar()->value());
    }

    void sorting_from_the_overlay_sorts_the_shared_model()
    {
        VELD_FROZEN_COLUMNS_TABLE view(&m_model);
        view.setSortingEnabled(true);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        choose_from_header_menu(view, false, 1, "Freeze Column");
        view.frozen_view()->sortByColumn(1, Qt::DescendingOrder);
        QCOMPARE(m_model.index(0, 1).data().toString(), QString("r9c1"));
        QCOMPARE(view.horizontalHeader()->sortIndicatorSection(), 1);
        QCOMPARE(view.horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    }

    void edit_description_names_the_column_the_menu_was_opened_on_data()
    {
        QTest::addColumn<bool>("frozen_header");
        QTest::addColumn<int>("column");
        QTest::newRow("frozen column while scrolled") << true << 6;
        QTest::newRow("unfrozen column") << false << 3;
    }

    void edit_description_names_the_column_the_menu_was_opened_on()
    {
        QFETCH(bool, frozen_header);
        QFETCH(int, column);
        VELD_FROZEN_COLUMNS_TABLE& view = shown(350, 300);
        choose_from_header_menu(view, false, 6, "Freeze Column");
        view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum());

        QSignalSpy descriptions(&view, &VELD_FROZEN_COLUMNS_TABLE::update_description_for_field);
        choose_from_header_menu(view, frozen_header, column, "Edit Description");
        QCOMPARE(descriptions.count(), 1);
        QCOMPARE(descriptions.first().first().toInt(), column);
    }

    void the_overlay_follows_a_widening_row_header()
    {
        VELD_FROZEN_COLUMNS_TABLE& view = shown(500, 300);
        choose_from_header_menu(view, false, 2, "Freeze Column");
        const int narrow = view.verticalHeader()->width();
        m_model.setVerticalHeaderItem(29, new QStandardItem("29 new and much longer"));
        QTRY_VERIFY(view.verticalHeader()->width() > narrow);
        QTRY_COMPARE(view.frozen_view()->x(), view.verticalHeader()->width() + view.frameWidth());
    }

    void a_model_reset_keeps_the_overlay_to_the_frozen_columns()
    {
        VELD_FROZEN_COLUMNS_TABLE& view = shown();
        choose_from_header_menu(view, false, 4, "Freeze Column");
        fill(m_model, 10, 8); // clear() resets the model
        QTRY_COMPARE(frozen_visible_columns(view), (QList<int>{4}));
    }
};

QTEST_MAIN(VELD_FROZEN_COLUMNS_TABLE_TEST)
#include "veld_frozen_columns_table_test.moc"
