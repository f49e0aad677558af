#include "kor_record_data.h"
#include "table_model_test_database.h"
#include "veld_fixed_filter_row.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QtTest>

namespace
{
enum UNITS_COLUMN
{
    UNIT = 0,
    FACTION = 1,
    COST = 2,
    NOTES = 10
};

} // namespace

class VELD_TABLE_DATA_VIEW_SORT_MODEL_TEST : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_db = std::make_unique<TABLE_MODEL_TEST_DATABASE>();
        QVERIFY2(m_db->ok(), qPrintable(m_db->error()));
        m_model = std::make_unique<VELD_TABLE_DATA_VIEW_MODEL>(QStringLiteral("units"), &m_db->engine());
        QString error;
        QVERIFY2(m_model->load(error), qPrintable(error));
        m_proxy = std::make_unique<VELD_TABLE_DATA_VIEW_SORT_MODEL>();
        m_proxy->setSourceModel(m_model.get());
        m_proxy->setDynamicSortFilter(true);
        m_rows.clear();
        m_proxy->set_filter_rows([this] { return VELD_FIXED_FILTER_ROW::pointers(m_rows); });
    }

    void cleanup()
    {
        m_proxy.reset();
        m_model.reset();
        m_db.reset();
    }

    void stays_consistent_while_sorting_filtering_and_editing()
    {
        QAbstractItemModelTester tester(m_proxy.get(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_proxy->sort(COST, Qt::AscendingOrder);
        m_rows.emplace_back(UNIT, QStringLiteral("a"), Qt::CaseSensitive);
        m_proxy->build_filter_tree();
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "archers"}));
        const int added = m_model->add_record();
        QVERIFY(m_model->setData(m_model->index(added, UNIT), QStringLiteral("triarii")));
        QVERIFY(m_proxy->setData(m_proxy->index(0, COST), QStringLiteral("50")));
        m_model->remove_record(0);
        m_proxy->sort(UNIT, Qt::DescendingOrder);
        QVERIFY(m_model->refresh(false));
        QCOMPARE(m_proxy->rowCount(), 2);
    }

    void pending_rows_stay_last_in_both_directions_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("order");
        QTest::addColumn<QStringList>("keys");

        // Records hastati (10), velites (20); new rows "zz" then "aa" (no cost);
        // archers marked for deletion. The test sorts the other way too.
        QTest::newRow("text") << int(UNIT) << int(Qt::AscendingOrder)
                              << QStringList{"hastati", "velites", "zz", "aa", "archers"};
        QTest::newRow("numbers") << int(COST) << int(Qt::DescendingOrder)
                                 << QStringList{"velites", "hastati", "zz", "aa", "archers"};
    }

    void pending_rows_stay_last_in_both_directions()
    {
        QFETCH(int, column);
        QFETCH(int, order);
        QFETCH(QStringList, keys);

        m_model->remove_record(0);
        QVERIFY(m_model->is_deleted_row(0));
        for (const QString& key : {QStringLiteral("zz"), QStringLiteral("aa")})
            QVERIFY(m_model->setData(m_model->index(m_model->add_record(), UNIT), key));
        m_proxy->sort(column, Qt::SortOrder(order));
        QCOMPARE(keys_in_proxy_order(), keys);
        // Sorting again the other way keeps them at the bottom too.
        m_proxy->sort(column, order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder);
        QCOMPARE(keys_in_proxy_order().mid(2), (QStringList{"zz", "aa", "archers"}));
    }

    void numbers_sort_as_numbers_data()
    {
        QTest::addColumn<int>("sort_on_display_text");
        QTest::newRow("display text") << 1;
        QTest::newRow("underlying values") << 0;
    }

    void numbers_sort_as_numbers()
    {
        QFETCH(int, sort_on_display_text);
        m_proxy->set_sort_on_display_text(sort_on_display_text);
        // 100 sorts after 20, which a text comparison would not do.
        QVERIFY(m_model->setData(m_model->index(0, COST), QStringLiteral("100")));
        m_proxy->sort(COST, Qt::AscendingOrder);
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "velites", "archers"}));
    }

    void foreign_keys_sort_by_shown_or_underlying_text()
    {
        // Rome is renamed "Alpha": its units now show a name before "Carthage".
        VELD_TABLE_DATA_VIEW_MODEL factions(QStringLiteral("factions"), &m_db->engine());
        QString error;
        QVERIFY(factions.load(error));
        QVERIFY(factions.setData(factions.index(factions.row_of_key(QStringLiteral("rome")), 1),
                                 QStringLiteral("Alpha")));
        QVERIFY(factions.apply_changes());
        QVERIFY(m_model->refresh(true));

        m_proxy->sort(FACTION, Qt::AscendingOrder);
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "velites", "archers"}));
        m_proxy->set_sort_on_display_text(0);
        m_proxy->invalidate();
        m_proxy->sort(FACTION, Qt::AscendingOrder);
        QCOMPARE(keys_in_proxy_order(), (QStringList{"archers", "hastati", "velites"}));
    }

    void filter_tests_shown_or_underlying_text_data()
    {
        QTest::addColumn<int>("on_display_text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QStringList>("keys");

        // Names shown are Carthage and Rome; values carthage and rome.
        QTest::newRow("display text") << 1 << "^C" << QStringList{"archers"};
        QTest::newRow("underlying value") << 0 << "^C" << QStringList{};
        QTest::newRow("underlying value, lower case") << 0 << "^c" << QStringList{"archers"};
    }

    void filter_tests_shown_or_underlying_text()
    {
        QFETCH(int, on_display_text);
        QFETCH(QString, pattern);
        QFETCH(QStringList, keys);

        m_rows.emplace_back(FACTION, pattern, Qt::CaseSensitive);
        m_proxy->set_filter_on_display_text(on_display_text);
        QCOMPARE(m_proxy->build_filter_tree(), QString());
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), keys);
    }

    void pending_rows_are_never_filtered_out()
    {
        m_rows.emplace_back(UNIT, QStringLiteral("^hast"), Qt::CaseSensitive);
        m_proxy->build_filter_tree();
        m_proxy->invalidate();
        m_proxy->sort(UNIT, Qt::AscendingOrder);
        QCOMPARE(keys_in_proxy_order(), QStringList{"hastati"});
        m_model->remove_record(0);
        const int added = m_model->add_record();
        QVERIFY(m_model->setData(m_model->index(added, UNIT), QStringLiteral("triarii")));
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "triarii", "archers"}));
    }

    void date_filter_data()
    {
        QTest::addColumn<bool>("show_old_records");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QStringList>("keys");

        // archers 2019-06-01, hastati without a time, velites 2021-06-01.
        QTest::newRow("all times, old shown") << true << "2000-01-01"
                                              << "2030-01-01" << QStringList{"archers", "hastati", "velites"};
        QTest::newRow("all times, old hidden") << false << "2000-01-01"
                                               << "2030-01-01" << QStringList{"archers", "velites"};
        QTest::newRow("before 2020, old shown") << true << "2000-01-01"
                                                << "2020-01-01" << QStringList{"archers", "hastati"};
        QTest::newRow("after 2020, old hidden") << false << "2020-01-01"
                                                << "2030-01-01" << QStringList{"velites"};
        QTest::newRow("bounds are inclusive") << false << "2019-06-01"
                                              << "2019-06-01" << QStringList{"archers"};
    }

    void date_filter()
    {
        QFETCH(bool, show_old_records);
        QFETCH(QString, after);
        QFETCH(QString, before);
        QFETCH(QStringList, keys);

        QVERIFY(m_db->set_modification_times(QStringLiteral("units"),
                                             {"2019-06-01T00:00:00.000Z", "", "2021-06-01T00:00:00.000Z"}));
        QVERIFY(m_model->refresh(false));
        const auto msecs = [](const QString& day) {
            return QDateTime(QDate::fromString(day, Qt::ISODate), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
        };
        m_proxy->set_modified_after(msecs(after));
        m_proxy->set_modified_before(msecs(before));
        m_proxy->set_show_old_records(show_old_records);
        m_proxy->sort(UNIT, Qt::AscendingOrder);
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order().size(), 3); // off until enabled
        m_proxy->set_date_filter_on(true);
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), keys);
    }

    void record_set_forced_rows_and_pass_all()
    {
        m_proxy->sort(UNIT, Qt::AscendingOrder);
        m_proxy->set_record_set({m_model->record_uuid(1)});
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order().size(), 3); // off until enabled
        m_proxy->set_record_set_filter_on(true);
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), QStringList{"hastati"});

        m_proxy->add_forced_row(2);
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "velites"}));
        m_proxy->clear_forced_rows();
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order(), QStringList{"hastati"});

        m_proxy->set_pass_all(true);
        m_proxy->invalidate();
        QCOMPARE(keys_in_proxy_order().size(), 3);
    }

    void write_to_the_sort_key_lands_on_its_record()
    {
        m_proxy->sort(COST, Qt::AscendingOrder);
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "velites", "archers"}));
        const QUuid hastati = m_model->record_uuid(1);

        // hastati's cost goes from first to last place as it is written.
        QVERIFY(m_proxy->setData(m_proxy->index(0, COST), QStringLiteral("99")));
        QCOMPARE(keys_in_proxy_order(), (QStringList{"velites", "archers", "hastati"}));
        const int hastati_row = m_model->row_of_uuid(hastati);
        QCOMPARE(m_model->data(m_model->index(hastati_row, COST), Qt::EditRole), QVariant(99));
        QCOMPARE(m_model->data(m_model->index(m_model->row_of_key("velites"), COST), Qt::EditRole),
                 QVariant(20));

        // A second write at the same place reaches the record now shown there.
        QVERIFY(m_proxy->setData(m_proxy->index(0, NOTES), QStringLiteral("moved up")));
        QCOMPARE(
            m_model->data(m_model->index(m_model->row_of_key("velites"), NOTES), Qt::EditRole).toString(),
            QStringLiteral("moved up"));
        QCOMPARE(m_model->data(m_model->index(hastati_row, NOTES), Qt::EditRole).toString(), QString());

        // Writes resolved to records before a batch stay on their records however
        // the rows move meanwhile.
        QList<QPersistentModelIndex> targets;
        for (int row = 0; row < m_proxy->rowCount(); ++row)
            targets.append(QPersistentModelIndex(m_proxy->mapToSource(m_proxy->index(row, COST))));
        int value = 300;
        for (const QPersistentModelIndex& target : targets)
            QVERIFY(m_model->setData(target, QString::number(value--)));
        QCOMPARE(keys_in_proxy_order(), (QStringList{"hastati", "archers", "velites"}));
        QCOMPARE(m_model->data(m_model->index(m_model->row_of_key("velites"), COST), Qt::EditRole),
                 QVariant(300));
    }

private:
    QStringList keys_in_proxy_order() const
    {
        QStringList keys;
        for (int row = 0; row < m_proxy->rowCount(); ++row)
            keys.append(m_model->record_key(m_proxy->mapToSource(m_proxy->index(row, 0)).row()));
        return keys;
    }

    std::unique_ptr<TABLE_MODEL_TEST_DATABASE> m_db;
    std::unique_ptr<VELD_TABLE_DATA_VIEW_MODEL> m_model;
    std::unique_ptr<VELD_TABLE_DATA_VIEW_SORT_MODEL> m_proxy;
    // Patterns are case-sensitive here.
    std::vector<VELD_FIXED_FILTER_ROW> m_rows;
};

QTEST_MAIN(VELD_TABLE_DATA_VIEW_SORT_MODEL_TEST)
#include "veld_table_data_view_sort_model_test.moc"
