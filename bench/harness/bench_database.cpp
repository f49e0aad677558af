#include "bench_database.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "sample_layout.h"
#include "sample_project.h"
#include "sample_scale.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace
{
const char* const copy_complete = ".orbin_bench_copy_complete";

bool copy_tree(QString& error, const QString& from, const QString& to)
{
    if (!QDir().mkpath(to))
    {
        error = QStringLiteral("cannot make '%1'").arg(to);
        return false;
    }
    QDirIterator it(from, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    while (it.hasNext())
    {
        it.next();
        const QString target = to + QLatin1Char('/') + it.fileName();
        if (it.fileInfo().isDir() ? !copy_tree(error, it.filePath(), target)
                                  : !QFile::copy(it.filePath(), target))
        {
            if (error.isEmpty())
                error = QStringLiteral("cannot copy '%1'").arg(it.filePath());
            return false;
        }
    }
    return true;
}
} // namespace

QString BENCH_DATABASE::big_table() const
{
    return QString::fromLatin1(SAMPLE_SCALE::big_table_name());
}

bool BENCH_DATABASE::prepare(QString& error, const QString& folder, int scale_tables, int scale_rows)
{
    const QString project = folder + QStringLiteral("/project");
    const SAMPLE_LAYOUT layout = SAMPLE_LAYOUT::of(project);
    m_database = layout.database;
    m_copy = folder + QStringLiteral("/copy/db");
    // The generator writes the project file last: without it the folder is
    // an interrupted attempt.
    if (!QFileInfo::exists(layout.project_file))
    {
        QDir(project).removeRecursively();
        QDir(folder + QStringLiteral("/copy")).removeRecursively();
        SAMPLE_OPTIONS options;
        options.with_depot = false;
        options.scale_tables = scale_tables;
        options.scale_rows = scale_rows;
        std::printf("generating the scale project in %s ...\n", qPrintable(project));
        std::fflush(stdout);
        QElapsedTimer timer;
        timer.start();
        error = SAMPLE_PROJECT::generate(project, options);
        if (!error.isEmpty())
            return false;
        std::printf("generated in %.1f s\n", double(timer.elapsed()) / 1000.0);
    }
    if (!QFileInfo::exists(folder + QStringLiteral("/copy/") + QLatin1String(copy_complete)))
    {
        QDir(folder + QStringLiteral("/copy")).removeRecursively();
        if (!make_copy(error))
            return false;
    }
    return true;
}

bool BENCH_DATABASE::make_copy(QString& error)
{
    std::printf("copying the database to %s ...\n", qPrintable(m_copy));
    std::fflush(stdout);
    if (!copy_tree(error, m_database, m_copy))
        return false;

    // Three tables change a value, one loses its file, one is new: every
    // group of the comparison has members.
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    error = engine.connect_without_merge(m_copy, false);
    if (!error.isEmpty())
        return false;
    QMap<QString, bool> names;
    engine.get_table_names(names);
    int edited = 0;
    QString removed;
    if (!engine.begin_transaction(error, true))
        return false;
    for (auto it = names.constBegin(); it != names.constEnd() && edited < 3; ++it)
    {
        if (it.key() == big_table())
            continue;
        const KOR_TABLE_DATA* table = engine.get_table_data(error, it.key());
        if (!table || table->records().isEmpty())
            continue;
        const KOR_RECORD_DATA* record = table->records().at(0);
        for (const QString& field : table->table_schema()->column_ordering())
        {
            const KOR_FIELD_SCHEMA* schema = table->table_schema()->field_schema_by_name(field);
            if (schema->is_primary_key() || schema->field_type() != KFT_TEXT ||
                !schema->source_table().isEmpty() || !schema->fixed_column_values().isEmpty())
                continue;
            KOR_RECORD_DATA changed(*record);
            changed.get_field_data(field)->set_value(record->get_field_data(field)->value_text() +
                                                     QStringLiteral("_bench"));
            error = engine.edit_record_data(it.key(), record, &changed);
            if (!error.isEmpty())
                return false;
            ++edited;
            break;
        }
    }
    // The last table by name loses its file.
    for (auto it = names.constEnd(); it != names.constBegin() && removed.isEmpty();)
    {
        --it;
        if (it.key() != big_table())
            removed = it.key();
    }
    if (!engine.end_transaction(error))
        return false;
    engine.disconnect();
    if (!removed.isEmpty())
        QFile::remove(m_copy + QLatin1Char('/') + removed + QStringLiteral(".xml"));
    QFile extra(m_copy + QStringLiteral("/bench_only_in_copy.xml"));
    if (!extra.open(QIODevice::WriteOnly) ||
        extra.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<table name=\"bench_only_in_copy\"/>\n") < 0)
    {
        error = QStringLiteral("cannot write '%1'").arg(extra.fileName());
        return false;
    }
    extra.close();
    QFile done(QFileInfo(m_copy).path() + QLatin1Char('/') + QLatin1String(copy_complete));
    if (!done.open(QIODevice::WriteOnly))
    {
        error = QStringLiteral("cannot write '%1'").arg(done.fileName());
        return false;
    }
    return true;
}
