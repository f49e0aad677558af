// Figures of the table editor's model and proxy on the table of a million
// records: open, filter, sort.

#include "bench_figures.h"
#include "bench_measure.h"
#include "bench_report.h"

#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "veld_fixed_filter_row.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

namespace
{
double elapsed_ms(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}
} // namespace

namespace BENCH_FIGURES
{
void model(const CONTEXT& context)
{
    BENCH_REPORT& report = *context.report;
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    QString error = engine.connect_without_merge(context.database, false);
    const KOR_TABLE_SCHEMA* schema = error.isEmpty() ? engine.get_table_schema(context.big_table) : nullptr;
    if (!schema)
    {
        report.note(QStringLiteral("model: cannot connect: ") + error);
        return;
    }
    const int key = schema->column_ordering().indexOf(QStringLiteral("key"));
    const int faction = schema->column_ordering().indexOf(QStringLiteral("faction"));
    const int turn = schema->column_ordering().indexOf(QStringLiteral("turn"));
    const int kills = schema->column_ordering().indexOf(QStringLiteral("kills"));
    if (key < 0 || faction < 0 || turn < 0 || kills < 0)
    {
        report.note(QStringLiteral("model: the table lacks the fields the figures use"));
        return;
    }

    // Open as the editor opens a table: the engine reads it, the model fills
    // its rows, the proxy maps them and sorts once by the key.
    std::unique_ptr<VELD_TABLE_DATA_VIEW_MODEL> model;
    std::unique_ptr<VELD_TABLE_DATA_VIEW_SORT_MODEL> proxy;
    double engine_part = 0;
    double model_part = 0;
    BENCH_FIGURE open;
    open.name = QStringLiteral("open %1 in model and proxy").arg(context.big_table);
    open.target_bound = 3000;
    bool failed = false;
    double best = 1e18;
    for (int i = 0; i < context.repeats; ++i)
    {
        proxy.reset();
        model.reset();
        engine.clear_table_data(context.big_table);
        QElapsedTimer timer;
        timer.start();
        const bool loaded = engine.get_table_data(error, context.big_table) != nullptr;
        const double engine_ms = elapsed_ms(timer);
        model = std::make_unique<VELD_TABLE_DATA_VIEW_MODEL>(context.big_table, &engine);
        failed = !loaded || !model->load(error);
        const double model_ms = elapsed_ms(timer) - engine_ms;
        proxy = std::make_unique<VELD_TABLE_DATA_VIEW_SORT_MODEL>();
        proxy->setSourceModel(model.get());
        proxy->sort(key, Qt::AscendingOrder);
        proxy->rowCount();
        const double total = elapsed_ms(timer);
        if (total < best)
        {
            best = total;
            engine_part = engine_ms;
            model_part = model_ms;
        }
    }
    if (failed)
    {
        report.note(QStringLiteral("model: cannot open: ") + error);
        return;
    }
    open.ours = best;
    open.note = QStringLiteral("engine %1 ms, model %2 ms, proxy and sort %3 ms")
                    .arg(engine_part, 0, 'f', 0)
                    .arg(model_part, 0, 'f', 0)
                    .arg(best - engine_part - model_part, 0, 'f', 0);
    report.add(open);

    // Filter: key has "7" AND (faction shows "vesh" OR turn starts with 1).
    std::vector<VELD_FIXED_FILTER_ROW> rows{{key, QStringLiteral("7")}, {faction, QStringLiteral("vesh")},
                                            {turn, QStringLiteral("^1")}};
    rows[1].left = 1;
    rows[1].joins_or = true;
    rows[2].right = 1;
    proxy->set_filter_rows([&rows] { return VELD_FIXED_FILTER_ROW::pointers(rows); });
    proxy->build_filter_tree();
    int shown = 0;
    BENCH_FIGURE filter;
    filter.name = QStringLiteral("filter: three rows with brackets");
    filter.ours = BENCH_MEASURE::best_of(context.repeats, [&] {
        proxy->invalidate();
        shown = proxy->rowCount();
    });
    filter.target_bound = 300;
    filter.note = QStringLiteral("%1 of %2 rows shown").arg(shown).arg(model->rowCount());
    report.add(filter);

    rows.clear();
    proxy->build_filter_tree();
    proxy->invalidate();
    proxy->rowCount();
    BENCH_FIGURE sort;
    sort.name = QStringLiteral("sort: integer column, all rows");
    sort.ours = BENCH_MEASURE::best_of(
        context.repeats, [&] { proxy->sort(kills, Qt::AscendingOrder); },
        [&] { proxy->sort(key, Qt::AscendingOrder); });
    report.add(sort);
    BENCH_FIGURE text_sort;
    text_sort.name = QStringLiteral("sort: foreign key by shown name");
    text_sort.ours = BENCH_MEASURE::best_of(
        context.repeats, [&] { proxy->sort(faction, Qt::AscendingOrder); },
        [&] { proxy->sort(key, Qt::AscendingOrder); });
    report.add(text_sort);
}
} // namespace BENCH_FIGURES
