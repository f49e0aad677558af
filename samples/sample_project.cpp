#include "sample_project.h"

#include "sample_catalogue.h"
#include "sample_content.h"
#include "sample_database_writer.h"
#include "sample_depot.h"
#include "sample_form_files.h"
#include "sample_project_files.h"
#include "sample_scale.h"
#include "sample_source_tree.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>

namespace
{
QString folder_is_free(const QString& folder)
{
    const QDir dir(folder);
    if (dir.exists() && !dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty())
        return QStringLiteral("'%1' is not empty: a sample project is only made in an empty or new folder")
            .arg(folder);
    if (!QDir().mkpath(folder))
        return QStringLiteral("'%1' cannot be made").arg(folder);
    return QString();
}

qint64 day(int year, int month, int day_of_month, int hour)
{
    return QDateTime(QDate(year, month, day_of_month), QTime(hour, 0), Qt::UTC).toMSecsSinceEpoch();
}

// The designers' balance pass, the last change of the depot: some units
// cost and recover differently. It gives the history a change of data to
// compare and merge against.
void balance_pass(const SAMPLE_CONTENT& content, SAMPLE_ROWS& main_units, SAMPLE_ROWS& land_units,
                  quint64 seed)
{
    SAMPLE_RANDOM random = SAMPLE_RANDOM(seed).fork(QStringLiteral("balance_pass"));
    main_units = content.rows("main_units");
    land_units = content.rows("land_units");
    const qint64 when = day(2025, 3, 10, 15);
    for (SAMPLE_ROW& row : main_units)
    {
        if (!random.chance(0.2))
            continue;
        const int cost = row.value("cost").toInt();
        row.set("cost", cost + 10 * random.range(-6, 8));
        row.set("last_balance_pass", QDateTime::fromMSecsSinceEpoch(when, Qt::UTC));
        row.modified_msecs = when;
    }
    for (SAMPLE_ROW& row : land_units)
    {
        if (!random.chance(0.1))
            continue;
        row.set("morale", row.value("morale").toInt() + random.range(2, 8));
        row.modified_msecs = when;
    }
}
} // namespace

QString SAMPLE_PROJECT::generate_small(const QString& folder, SAMPLE_LAYOUT* layout)
{
    SAMPLE_OPTIONS options;
    options.size = SAMPLE_SIZE::SMALL;
    return generate(folder, options, layout);
}

QString SAMPLE_PROJECT::generate_database(const QString& database_path, quint64 seed, SAMPLE_SIZE size)
{
    const SAMPLE_CATALOGUE catalogue = SAMPLE_CATALOGUE::standard();
    SAMPLE_CONTENT content;
    QString error;
    if (!content.generate(error, catalogue, seed, size))
        return error;
    error = SAMPLE_DATABASE_WRITER::write(database_path, catalogue, content, seed);
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_database_side_files(database_path);
    if (error.isEmpty())
        error = SAMPLE_FORM_FILES::write(database_path);
    return error;
}

QString SAMPLE_PROJECT::generate(const QString& folder, const SAMPLE_OPTIONS& options,
                                 SAMPLE_LAYOUT* layout_out, QStringList* notes)
{
    QElapsedTimer clock;
    clock.start();
    auto lap = [&](const char* phase) {
        if (notes && options.timings)
            notes->append(QStringLiteral("%1: %2 ms").arg(QLatin1String(phase)).arg(clock.restart()));
    };
    QString error = folder_is_free(folder);
    if (!error.isEmpty())
        return error;
    if (options.with_depot && !SAMPLE_DEPOT::available(error))
        return error;
    const SAMPLE_LAYOUT layout = SAMPLE_LAYOUT::of(folder);
    if (layout_out)
        *layout_out = layout;

    SAMPLE_CATALOGUE catalogue = SAMPLE_CATALOGUE::standard();
    if (options.scale_tables > 0 || options.scale_rows > 0)
        SAMPLE_SCALE::add_tables(catalogue, options.scale_tables, options.scale_rows);
    QStringList faults;
    if (!catalogue.check(faults))
        return faults.join(QLatin1Char('\n'));
    SAMPLE_CONTENT content;
    if (!content.generate(error, catalogue, options.seed, options.size))
        return error;
    lap("content generated");

    SAMPLE_DEPOT depot(layout.depot, layout.workspace);
    if (options.with_depot)
        error = depot.create();
    else
        QDir().mkpath(layout.workspace);
    if (!error.isEmpty())
        return error;
    lap("depot made");
    auto submit = [&](const QString& login, const QString& description, qint64 when,
                      const QStringList& paths) {
        return options.with_depot ? depot.submit(login, description, when, paths) : QString();
    };
    auto in_workspace = [&](const QString& path) { return QDir(layout.workspace).relativeFilePath(path); };

    // Change 1: the code and the tools' folder, as programmers set them up.
    const bool many_tables = catalogue.tables().size() > 200;
    error = SAMPLE_DATABASE_WRITER::write(layout.database, catalogue, content, options.seed,
                                          many_tables ? SAMPLE_DATABASE_WRITER::BULK
                                                      : SAMPLE_DATABASE_WRITER::THROUGH_OPERATIONS);
    lap("database written");
    if (error.isEmpty())
        error = SAMPLE_SOURCE_TREE::write(layout.branch_root, layout.database, catalogue, options.seed);
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_tool_places(layout);
    lap("source tree written");
    if (error.isEmpty())
        error = submit("kmori", "Game source tree, and the tools' folder with KILN's rule files",
                       day(2024, 9, 2, 10),
                       {in_workspace(layout.branch_root + "/common"), in_workspace(layout.binaries)});
    lap("change 1 submitted");

    // Change 2: the database and what its first export left.
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_database_side_files(layout.database);
    if (error.isEmpty())
        error = SAMPLE_FORM_FILES::write(layout.database);
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_exports(layout, catalogue, content);
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_campaign_folders(layout, content);
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_csv_imports(layout, content);
    lap("exports written");
    if (error.isEmpty())
        error = submit("ivarga", "Design database: first import, with its exports and localisation",
                       day(2024, 10, 1, 9), {});
    lap("change 2 submitted");

    // Change 3: interface layouts, which the table export dialog exports by change.
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_layouts(layout, content, options.seed);
    if (error.isEmpty())
        error = submit("kmori", "Layout pass on the army panel, diplomacy and research screens",
                       day(2025, 1, 21, 14), {});

    // Change 4: a balance pass on units.
    if (error.isEmpty())
    {
        SAMPLE_ROWS main_units, land_units;
        balance_pass(content, main_units, land_units, options.seed);
        error = SAMPLE_DATABASE_WRITER::rewrite_tables(
            layout.database, {{"main_units", &main_units}, {"land_units", &land_units}});
    }
    if (error.isEmpty())
        error = submit("tbrandt", "Balance pass: unit costs and morale after the March playtest",
                       day(2025, 3, 10, 16), {});
    lap("changes 3 and 4 submitted");

    if (error.isEmpty() && options.with_depot)
        error = depot.publish();
    lap("depot published");
    if (error.isEmpty())
        error = SAMPLE_PROJECT_FILES::write_project_file(layout, options.seed);
    if (error.isEmpty() && !options.tools_folder.isEmpty())
    {
        QStringList installed;
        error = SAMPLE_PROJECT_FILES::install_tools(layout, options.tools_folder, &installed);
        // Built on this machine, they stay out of the depot.
        if (error.isEmpty() && options.with_depot && !installed.isEmpty())
        {
            QStringList patterns;
            for (const QString& name : qAsConst(installed))
                patterns.append("/" + in_workspace(layout.binaries + "/" + name));
            error = depot.exclude(patterns);
        }
        if (notes)
            for (const QString& name : qAsConst(installed))
                notes->append(QStringLiteral("installed %1 in %2").arg(name, layout.binaries));
    }
    if (error.isEmpty() && notes)
    {
        QString note = QStringLiteral("%1 tables, %2 records")
                           .arg(catalogue.tables().size())
                           .arg(content.record_count());
        if (options.scale_rows > 0)
            note +=
                QStringLiteral(", and %1 in %2").arg(options.scale_rows).arg(SAMPLE_SCALE::big_table_name());
        notes->append(note);
    }
    return error;
}
