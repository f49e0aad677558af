// Open, filter and sort of a generated table in the table data model and its
// proxy. Usage: table_models_bench [records] [repeats]
//
// The database has a table of 50 factions and a table of units (a million by
// default): a text key, a foreign key to the factions shown by name, an
// integer, a double, a text and a yes/no field. The units file is written
// directly in the engine's format; everything else goes through the engine.
//
// Each step prints its best time over the repeats in milliseconds.

#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "veld_fixed_filter_row.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

namespace
{
const int faction_count = 50;
const char* const words[] = {"swift", "iron", "red", "old", "royal", "grey", "night", "sea", "hill", "gold"};

KOR_FIELD_SCHEMA* field(const QString& name, KOR_FIELD_TYPE type, bool key = false)
{
    auto* schema = new KOR_FIELD_SCHEMA(QUuid::createUuid());
    schema->initialise(key, name, type, key, QVariant(), type == KFT_TEXT ? 255 : -1, false, QString(),
                       QString(), QString(), false, false, false);
    return schema;
}

QString faction_key(int i)
{
    return QStringLiteral("f%1").arg(i, 2, 10, QLatin1Char('0'));
}

bool build_database(const QString& path, int records, QString& error)
{
    error = KOR_XML_QUERY_INTERFACE::create_empty_database(path);
    if (!error.isEmpty())
        return false;
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    error = engine.connect_without_merge(path, false);
    if (!error.isEmpty())
        return false;

    KOR_TABLE_SCHEMA factions(QStringLiteral("factions"));
    factions.add_field_schema(field(QStringLiteral("key"), KFT_TEXT, true));
    factions.add_field_schema(field(QStringLiteral("name"), KFT_TEXT));
    KOR_TABLE_SCHEMA units(QStringLiteral("units"));
    units.add_field_schema(field(QStringLiteral("unit"), KFT_TEXT, true));
    KOR_FIELD_SCHEMA* faction = units.add_field_schema(field(QStringLiteral("faction"), KFT_TEXT));
    faction->add_dependency(QStringLiteral("factions"), QStringLiteral("key"));
    faction->set_metafield_value(KMF_LOOKUP_FIELDS, QStringList{QStringLiteral("name")});
    units.add_field_schema(field(QStringLiteral("cost"), KFT_INTEGER));
    units.add_field_schema(field(QStringLiteral("weight"), KFT_DOUBLE));
    units.add_field_schema(field(QStringLiteral("title"), KFT_TEXT));
    units.add_field_schema(field(QStringLiteral("active"), KFT_YESNO));
    for (const KOR_TABLE_SCHEMA* schema : {&factions, &units})
    {
        error = engine.add_table(*schema, QStringLiteral("bench"), QStringLiteral("bench"));
        if (!error.isEmpty())
            return false;
    }
    if (!engine.begin_transaction(error, true))
        return false;
    const KOR_TABLE_SCHEMA* stored = engine.get_table_schema(QStringLiteral("factions"));
    for (int i = 0; i < faction_count; ++i)
    {
        KOR_RECORD_DATA record(stored, nullptr, QUuid::createUuid());
        record.add_field_data(stored->field_schema_by_name(QStringLiteral("key")), faction_key(i));
        record.add_field_data(stored->field_schema_by_name(QStringLiteral("name")),
                              QString::fromLatin1(words[i % 10]) + QLatin1Char(' ') + QString::number(i));
        error = engine.add_record(QStringLiteral("factions"), &record);
        if (!error.isEmpty())
            return false;
    }
    if (!engine.end_transaction(error))
        return false;
    error = engine.disconnect();
    if (!error.isEmpty())
        return false;

    QFile file(path + QStringLiteral("/units.xml"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
    {
        error = file.errorString();
        return false;
    }
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<table name=\"units\">\n");
    quint32 random = 12345;
    const auto next = [&random] {
        random = random * 1103515245u + 12345u;
        return random >> 8;
    };
    QByteArray chunk;
    for (int i = 0; i < records; ++i)
    {
        const QUuid uuid(uint(i + 1), 0x1234, 0x5678, 1, 2, 3, 4, 5, 6, 7, 8);
        chunk += "  <record uuid=\"" + uuid.toByteArray(QUuid::WithoutBraces) + "\">\n";
        chunk += "    <unit>u" + QByteArray::number(i).rightJustified(7, '0') + "</unit>\n";
        chunk += "    <faction>" + faction_key(int(next() % faction_count)).toLatin1() + "</faction>\n";
        chunk += "    <cost>" + QByteArray::number(int(next() % 100000)) + "</cost>\n";
        chunk += "    <weight>" + QByteArray::number(double(next() % 100000) / 7.0) + "</weight>\n";
        chunk += "    <title>" + QByteArray(words[next() % 10]) + ' ' + words[next() % 10] + "</title>\n";
        chunk += QByteArray("    <active>") + (next() % 2 ? "true" : "false") + "</active>\n";
        chunk += "  </record>\n";
        if (chunk.size() > (1 << 20))
        {
            file.write(chunk);
            chunk.clear();
        }
    }
    file.write(chunk);
    file.write("</table>\n");
    file.close();
    return true;
}

// Heap in use, which unlike the resident size does not hide memory that
// was freed and taken again.
double heap_megabytes()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

long resident_kilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return -1;
}

double best_of(int repeats, const std::function<void()>& prepare, const std::function<void()>& step)
{
    double best = 1e18;
    for (int i = 0; i < repeats; ++i)
    {
        if (prepare)
            prepare();
        QElapsedTimer timer;
        timer.start();
        step();
        best = std::min(best, timer.nsecsElapsed() / 1e6);
    }
    return best;
}

void report(const char* what, double milliseconds, const QString& detail = QString())
{
    std::printf("%-58s %10.1f ms  %s\n", what, milliseconds, qPrintable(detail));
    std::fflush(stdout);
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const int records = argc > 1 ? std::max(1, atoi(argv[1])) : 1000000;
    const int repeats = argc > 2 ? std::max(1, atoi(argv[2])) : 3;

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("db"));
    QString error;
    QElapsedTimer timer;
    timer.start();
    if (!build_database(path, records, error))
    {
        std::fprintf(stderr, "cannot build the database: %s\n", qPrintable(error));
        return 1;
    }
    std::printf("%d records, units.xml %.1f MB, generated in %.1f s; best of %d\n", records,
                QFile(path + QStringLiteral("/units.xml")).size() / 1e6, timer.elapsed() / 1e3, repeats);

    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    error = engine.connect_without_merge(path, false);
    if (!error.isEmpty())
    {
        std::fprintf(stderr, "cannot connect: %s\n", qPrintable(error));
        return 1;
    }
    const double base_heap = heap_megabytes();

    // Open: the engine reads the table file on the first request; the model
    // then fills its rows.
    timer.restart();
    if (!engine.get_table_data(error, QStringLiteral("units")))
    {
        std::fprintf(stderr, "cannot read the table: %s\n", qPrintable(error));
        return 1;
    }
    const double engine_heap = heap_megabytes();
    report("open: the engine reads the table file", timer.nsecsElapsed() / 1e6,
           QStringLiteral("+%1 MB heap").arg(engine_heap - base_heap, 0, 'f', 1));
    VELD_TABLE_DATA_VIEW_MODEL model(QStringLiteral("units"), &engine);
    timer.restart();
    if (!model.load(error))
    {
        std::fprintf(stderr, "cannot load: %s\n", qPrintable(error));
        return 1;
    }
    report("open: the model fills its rows", timer.nsecsElapsed() / 1e6,
           QStringLiteral("+%1 MB heap").arg(heap_megabytes() - engine_heap, 0, 'f', 1));
    report("open: reload of the loaded table (model only)",
           best_of(repeats, nullptr, [&] { model.refresh(false); }));

    VELD_TABLE_DATA_VIEW_SORT_MODEL proxy;
    proxy.setDynamicSortFilter(true);
    double heap = heap_megabytes();
    double elapsed = best_of(
        repeats, [&] { proxy.setSourceModel(nullptr); },
        [&] {
            proxy.setSourceModel(&model);
            proxy.rowCount();
        });
    report("proxy: attach and map every row", elapsed,
           QStringLiteral("+%1 MB heap").arg(heap_megabytes() - heap, 0, 'f', 1));

    // Sorting, each time from another order and with the keys of the
    // column made again.
    const auto unsorted = [&] { proxy.sort(5); };
    heap = heap_megabytes();
    elapsed = best_of(repeats, unsorted, [&] { proxy.sort(2, Qt::AscendingOrder); });
    report("sort: integer column, ascending", elapsed,
           QStringLiteral("+%1 MB heap kept for the keys").arg(heap_megabytes() - heap, 0, 'f', 1));
    report("sort: integer column, descending",
           best_of(repeats, unsorted, [&] { proxy.sort(2, Qt::DescendingOrder); }));
    report("sort: double column, ascending",
           best_of(repeats, unsorted, [&] { proxy.sort(3, Qt::AscendingOrder); }));
    report("sort: text key, descending",
           best_of(repeats, unsorted, [&] { proxy.sort(0, Qt::DescendingOrder); }));
    report("sort: text column (many equal), ascending",
           best_of(repeats, unsorted, [&] { proxy.sort(4, Qt::AscendingOrder); }));
    report("sort: foreign key by shown name, ascending",
           best_of(repeats, unsorted, [&] { proxy.sort(1, Qt::AscendingOrder); }));
    proxy.set_sort_on_display_text(0);
    report("sort: foreign key by value, ascending",
           best_of(repeats, unsorted, [&] { proxy.sort(1, Qt::AscendingOrder); }));
    proxy.set_sort_on_display_text(1);
    proxy.sort(2, Qt::AscendingOrder);

    // Filter: unit has "7" AND (faction shows "gold" OR cost starts with 1).
    std::vector<VELD_FIXED_FILTER_ROW> rows{{0, QStringLiteral("7")}, {1, QStringLiteral("gold")},
                                            {2, QStringLiteral("^1")}};
    rows[1].left = 1;
    rows[1].joins_or = true;
    rows[2].right = 1;
    proxy.set_filter_rows([&rows] { return VELD_FIXED_FILTER_ROW::pointers(rows); });
    const QString warning = proxy.build_filter_tree();
    if (!warning.isEmpty())
        std::fprintf(stderr, "unexpected warning: %s\n", qPrintable(warning));
    int shown = 0;
    const auto filter = [&] {
        proxy.invalidate();
        shown = proxy.rowCount();
    };
    elapsed = best_of(repeats, nullptr, filter);
    report("filter: three rows with brackets, display text", elapsed,
           QStringLiteral("%1 rows shown").arg(shown));
    proxy.set_filter_on_display_text(0);
    rows[1].set_pattern(QStringLiteral("^f1"));
    elapsed = best_of(repeats, nullptr, filter);
    report("filter: three rows with brackets, underlying values", elapsed,
           QStringLiteral("%1 rows shown").arg(shown));
    rows.clear();
    proxy.build_filter_tree();
    elapsed = best_of(1, nullptr, filter);
    report("filter: none again (every row sorted again)", elapsed,
           QStringLiteral("%1 rows shown").arg(shown));

    // Edits while sorted on the edited column; the first builds the key set.
    int value = 0;
    const int row = model.rowCount() / 2;
    report("edit: first edit of a key (builds the set of keys)", best_of(1, nullptr, [&] {
               model.setData(model.index(row, 0), QStringLiteral("edited%1").arg(value++));
           }));
    proxy.sort(2, Qt::AscendingOrder);
    report("edit: cost of a record, proxy sorted on cost", best_of(repeats, nullptr, [&] {
               model.setData(model.index(row, 2), QString::number(50000 + value++));
           }));
    report("edit: add a record, proxy sorted", best_of(repeats, nullptr, [&] { model.add_record(); }));
    report("model: reload keeping edits, proxy sorts again", best_of(1, nullptr, [&] {
               model.refresh(true);
               proxy.rowCount();
           }));
    std::printf("heap in use at the end: %.0f MB, resident: %ld MB\n", heap_megabytes(),
                resident_kilobytes() / 1024);
    return 0;
}
