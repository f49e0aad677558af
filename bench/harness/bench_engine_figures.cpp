// Figures of the engine: load, memory, connect, apply.

#include "bench_figures.h"
#include "bench_measure.h"
#include "bench_report.h"

#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <pugixml.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <memory>

namespace
{
QString megabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e6, 'f', 0) + QStringLiteral(" MB");
}

QByteArray read_all(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// What pugixml alone does with the same file: read it and parse it in place.
bool pugixml_parse(const QString& path)
{
    QByteArray bytes = read_all(path);
    pugi::xml_document document;
    return bool(document.load_buffer_inplace(bytes.data(), size_t(bytes.size()), pugi::parse_default,
                                             pugi::encoding_utf8));
}

// Copies a file beside itself and syncs the copy to disk.
bool copy_and_sync(const QString& from, const QString& to)
{
    const int in = ::open(QFile::encodeName(from).constData(), O_RDONLY);
    const int out = ::open(QFile::encodeName(to).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    bool ok = in >= 0 && out >= 0;
    std::vector<char> buffer(size_t(1) << 20);
    while (ok)
    {
        const ssize_t got = ::read(in, buffer.data(), buffer.size());
        if (got <= 0)
        {
            ok = got == 0;
            break;
        }
        ok = ::write(out, buffer.data(), size_t(got)) == got;
    }
    ok = ok && ::fsync(out) == 0;
    if (in >= 0)
        ::close(in);
    if (out >= 0)
        ::close(out);
    return ok;
}
} // namespace

namespace BENCH_FIGURES
{
void load_and_memory(const CONTEXT& context)
{
    BENCH_REPORT& report = *context.report;
    const QString file = KOR_TABLE_IO::table_file_path(context.database, context.big_table);
    const qint64 size = QFileInfo(file).size();
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    QString error = engine.connect_without_merge(context.database, false);
    if (!error.isEmpty())
    {
        report.note(QStringLiteral("load: cannot connect: ") + error);
        return;
    }
    // Read once so that both sides find the file in the page cache.
    read_all(file);

    BENCH_FIGURE figure;
    figure.name = QStringLiteral("load %1 (%2)").arg(context.big_table, megabytes(size));
    figure.ours = BENCH_MEASURE::best_of(
        context.repeats, [&] { engine.get_table_data(error, context.big_table); },
        [&] { engine.clear_table_data(context.big_table); });
    figure.baseline_name = QStringLiteral("pugixml parse");
    figure.baseline = BENCH_MEASURE::best_of(context.repeats, [&] { pugixml_parse(file); });
    figure.target_ratio = 1.5;
    figure.note = QStringLiteral("read, parse, records, key and uuid index, foreign key check");
    report.add(figure);

    const KOR_TABLE_SCHEMA* schema = engine.get_table_schema(context.big_table);
    BENCH_FIGURE reader;
    reader.name = QStringLiteral("  of it the table reader alone");
    // The table read last is freed before the next read, outside the time.
    std::unique_ptr<KOR_TABLE_DATA> read;
    reader.ours = BENCH_MEASURE::best_of(
        context.repeats, [&] { KOR_TABLE_IO::read_table_file(error, file, *schema, *read); },
        [&] {
            read.reset();
            read = std::make_unique<KOR_TABLE_DATA>(schema);
        });
    read.reset();
    reader.baseline_name = figure.baseline_name;
    reader.baseline = figure.baseline;
    report.add(reader);

    // Memory: what loading adds to the heap, freshly, against the file size.
    engine.clear_table_data(context.big_table);
    BENCH_MEASURE::trim_heap();
    const double heap_before = BENCH_MEASURE::heap_bytes();
    const double resident_before = BENCH_MEASURE::resident_bytes();
    const KOR_TABLE_DATA* table = engine.get_table_data(error, context.big_table);
    const double heap = BENCH_MEASURE::heap_bytes() - heap_before;
    const double resident = BENCH_MEASURE::resident_bytes() - resident_before;
    // Resident memory counts everything: the heap and the blocks the engine
    // maps for its records, which malloc's figures leave out.
    BENCH_FIGURE memory;
    memory.name = QStringLiteral("memory of the loaded table (resident)");
    memory.unit = QStringLiteral("MB");
    memory.ours = resident / 1e6;
    memory.baseline_name = QStringLiteral("XML size");
    memory.baseline = double(size) / 1e6;
    memory.target_ratio = 2.5;
    memory.note = QStringLiteral("%1 records; of it malloc's heap %2 MB")
                      .arg(table ? table->record_count() : 0)
                      .arg(heap / 1e6, 0, 'f', 0);
    report.add(memory);
}

void connect(const CONTEXT& context)
{
    BENCH_REPORT& report = *context.report;
    QString error;
    int tables = 0;
    BENCH_FIGURE figure;
    figure.name = QStringLiteral("connect (schemas only)");
    figure.ours = BENCH_MEASURE::best_of(context.repeats, [&] {
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        error = engine.connect_without_merge(context.database, false);
        QMap<QString, bool> names;
        engine.get_table_names(names);
        tables = names.size();
    });
    if (!error.isEmpty())
    {
        report.note(QStringLiteral("connect: ") + error);
        return;
    }
    const QString folder = context.database + QLatin1Char('/') + KOR_TABLE_IO::schema_folder_name();
    const QStringList files = QDir(folder).entryList(QStringList(QStringLiteral("*.xml")), QDir::Files);
    figure.baseline_name = QStringLiteral("read + pugixml parse of schemas");
    figure.baseline = BENCH_MEASURE::best_of(context.repeats, [&] {
        for (const QString& name : files)
            pugixml_parse(folder + QLatin1Char('/') + name);
    });
    figure.note = QStringLiteral("%1 tables").arg(tables);
    report.add(figure);
}

void apply(const CONTEXT& context)
{
    BENCH_REPORT& report = *context.report;
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    QString error = engine.connect_without_merge(context.copy, false);
    const KOR_TABLE_DATA* table = error.isEmpty() ? engine.get_table_data(error, context.big_table) : nullptr;
    if (!table || table->records().isEmpty())
    {
        report.note(QStringLiteral("apply: cannot load the table: ") + error);
        return;
    }
    const QString field = QStringLiteral("kills");
    const KOR_RECORD_DATA* record = table->records().at(table->record_count() / 2);
    bool failed = false;
    BENCH_FIGURE figure;
    figure.name = QStringLiteral("one-cell apply on %1").arg(context.big_table);
    figure.ours = BENCH_MEASURE::best_of(context.repeats, [&] {
        KOR_RECORD_DATA changed(*record);
        KOR_FIELD_DATA* cell = changed.get_field_data(field);
        if (!cell)
        {
            failed = true;
            return;
        }
        // Always a new value: an edit that changes nothing writes nothing.
        cell->set_value(cell->value().toInt() == 1000 ? 1001 : 1000);
        if (failed || !engine.begin_transaction(error, true))
        {
            failed = true;
            return;
        }
        error = engine.edit_record_data(context.big_table, record, &changed);
        failed = !error.isEmpty() || !engine.end_transaction(error);
    });
    if (failed)
    {
        report.note(QStringLiteral("apply failed: ") + error);
        return;
    }
    const QString file = KOR_TABLE_IO::table_file_path(context.copy, context.big_table);
    const QString target = file + QStringLiteral(".bench-copy");
    figure.baseline_name = QStringLiteral("copy file + fsync");
    figure.baseline = BENCH_MEASURE::best_of(
        context.repeats, [&] { failed = !copy_and_sync(file, target) || failed; },
        [&] { QFile::remove(target); });
    QFile::remove(target);
    figure.target_ratio = 3;
    figure.note = QStringLiteral("write, sync, journal, rename");
    report.add(figure);
}
} // namespace BENCH_FIGURES
