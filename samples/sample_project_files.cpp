#include "sample_project_files.h"

#include "kor_field_data.h"
#include "kor_table_io.h"
#include "sample_catalogue.h"
#include "sample_content.h"
#include "sample_layout.h"
#include "sample_random.h"
#include "sample_words.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "kor_query_schema.h"
#include "kor_query_store.h"

namespace
{
QString relative(const SAMPLE_LAYOUT& layout, const QString& path)
{
    return QDir(layout.root).relativeFilePath(path);
}

QByteArray utf16le_with_bom(const QString& text)
{
    QByteArray bytes("\xff\xfe", 2);
    bytes.reserve(2 + text.size() * 2);
    for (const QChar c : text)
    {
        bytes.append(char(c.unicode() & 0xff));
        bytes.append(char(c.unicode() >> 8));
    }
    return bytes;
}

QString csv_value(const QString& value)
{
    if (!value.contains(QLatin1Char(',')) && !value.contains(QLatin1Char('"')))
        return value;
    return QLatin1Char('"') + QString(value).replace(QStringLiteral("\""), QStringLiteral("\"\"")) +
           QLatin1Char('"');
}
} // namespace

QString SAMPLE_PROJECT_FILES::write_file(const QString& path, const QByteArray& bytes)
{
    // A plain write: the project is made in a new folder, and a file half
    // written by a crash goes with the rest of a project that is made again.
    // Syncing each of hundreds of files would cost seconds.
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        return QStringLiteral("%1: cannot be written: %2").arg(path, file.errorString());
    return QString();
}

QString SAMPLE_PROJECT_FILES::write_project_file(const SAMPLE_LAYOUT& layout, quint64 seed)
{
    QString text = QStringLiteral("# The sample project of ORBIN, made by orbin-sample with seed %1.\n"
                                  "# Paths are relative to this file's folder.\n"
                                  "[project]\n")
                       .arg(seed);
    text += "binaries = " + relative(layout, layout.binaries) + "\n";
    text += "design_data = " + relative(layout, layout.design_data) + "\n";
    text += "csv_import = " + relative(layout, layout.csv_import) + "\n";
    text += "connection = " + relative(layout, layout.database) + "\n";
    text += "working_data = " + relative(layout, layout.working_data) + "\n";
    return write_file(layout.project_file, text.toUtf8());
}

QString SAMPLE_PROJECT_FILES::write_tool_places(const SAMPLE_LAYOUT& layout)
{
    // Rule files are the export tool's vocabulary; what they say is its business.
    const QList<QPair<QString, QString>> rules = {
        {"export_all_on.rules.kiln", "# Export every text, whatever its state.\nexport.texts = all\n"},
        {"export_all_off.rules.kiln", "# Export only texts changed since the last export or marked for "
                                      "translation.\nexport.texts = changed\n"},
        {"no_agf_in_perforce.rules.kiln", "# Keep the asset graph out of the depot: it is rebuilt by every "
                                          "export.\nasset_graph.submit = false\n"},
        {"start_pos_db_export.rules.kiln",
         "# Export the start position tables with their campaign.\ntables.include = start_pos_*\n"},
    };
    for (const auto& rule : rules)
    {
        const QString error = write_file(layout.binaries + "/kiln/" + rule.first, rule.second.toUtf8());
        if (!error.isEmpty())
            return error;
    }
    const QString readme = "The studio's tools live in this folder: KILN.release (the asset build tool) and\n"
                           "Slatepad.UnityRelease (the layout tool). The editor writes KILN's configuration\n"
                           "into kiln/ before each run; the rule files there are named by it.\n"
                           "KILN writes kiln.log, kiln_error.log and kiln_plugin_error.log next to the\n"
                           "program that runs it.\n";
    return write_file(layout.binaries + "/README.txt", readme.toUtf8());
}

QString SAMPLE_PROJECT_FILES::write_database_side_files(const QString& database_path)
{
    const QString permissions =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<permissions>\n"
        "  <!-- Languages are added by the localisation team only. -->\n"
        "  <table name=\"languages\" restricted=\"true\" add=\"false\" edit=\"true\" remove=\"false\">\n"
        "    <user name=\"ivarga\" add=\"true\" remove=\"true\"/>\n"
        "  </table>\n"
        "  <!-- The steppe library owns this table; it is shown, not edited. -->\n"
        "  <table name=\"steppe_horde_types\" restricted=\"true\" add=\"false\" edit=\"false\" "
        "remove=\"false\"/>\n"
        "</permissions>\n";
    QString error =
        write_file(QDir(database_path).filePath(KOR_TABLE_IO::permissions_file_name()), permissions.toUtf8());
    if (!error.isEmpty())
        return error;
    error = write_file(QDir(database_path).filePath("Veld_patched_tables.txt"),
                       "# Tables the export tool patches for older saved games.\nland_units\nmain_units\n");
    if (!error.isEmpty())
        return error;
    QList<KOR_QUERY_SCHEMA*> owned;
    QList<const KOR_QUERY_SCHEMA*> queries;
    for (const auto& query : SAMPLE_PROJECT_FILES::queries())
    {
        owned.append(new KOR_QUERY_SCHEMA(query.first, query.second));
        queries.append(owned.last());
    }
    error = KOR_QUERY_STORE::save(database_path, queries);
    qDeleteAll(owned);
    return error;
}

QList<QPair<QString, QString>> SAMPLE_PROJECT_FILES::queries()
{
    return {
        {"Land units with five men per ship", "SELECT [main_units.unit], [main_units.land_unit] FROM "
                                              "[main_units] WHERE [main_units.min_men_per_ship] = 5"},
        {"Units by faction",
         "SELECT [units_to_factions.unit], [factions.screen_name] FROM [units_to_factions] "
         "JOIN [factions] ON [units_to_factions.faction] = [factions.key]"},
        {"Expensive cavalry",
         "SELECT [main_units.unit], [main_units.cost] FROM [main_units] JOIN [land_units] ON "
         "[main_units.land_unit] = [land_units.key] WHERE [land_units.category] = 'cavalry' AND "
         "[main_units.cost] > 900"},
        {"Playable factions of the main campaign",
         "SELECT [start_pos_factions.faction], [start_pos_factions.treasury] FROM [start_pos_factions] WHERE "
         "[start_pos_factions.campaign] = 'main_aurel' AND [start_pos_factions.playable] = TRUE"},
        {"Texts waiting for translation",
         "SELECT [translated_texts.key], [translated_texts.language] FROM [translated_texts] WHERE "
         "[translated_texts.requires_translation] = TRUE"},
        {"Traits with an opposite", "SELECT [a.key], [b.key] FROM [traits] AS a JOIN [traits] AS b ON "
                                    "[a.opposite_trait] = [b.key]"},
    };
}

QString SAMPLE_PROJECT_FILES::write_exports(const SAMPLE_LAYOUT& layout, const SAMPLE_CATALOGUE& catalogue,
                                            const SAMPLE_CONTENT& content)
{
    QString error;
    for (const SAMPLE_TABLE& table : catalogue.tables())
    {
        if (!table.is_implemented())
            continue;
        // The export copies the table file as it was exported, and writes
        // the game's binary of it.
        QFile source(KOR_TABLE_IO::table_file_path(layout.database, table.name()));
        if (!source.open(QIODevice::ReadOnly))
            return QStringLiteral("%1: cannot be read: %2").arg(source.fileName(), source.errorString());
        const QByteArray bytes = source.readAll();
        error = write_file(layout.design_data + "/" + table.name() + ".xml", bytes);
        if (!error.isEmpty())
            return error;
        QByteArray binary;
        QDataStream stream(&binary, QIODevice::WriteOnly);
        stream.setByteOrder(QDataStream::LittleEndian);
        stream.writeRawData("KILNTBL1", 8);
        stream << quint32(content.rows(table.name()).size());
        const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Md5);
        stream.writeRawData(digest.constData(), digest.size());
        error = write_file(layout.working_data + "/db/" + table.name() + "_tables/data", binary);
        if (!error.isEmpty())
            return error;
        const QStringList localised = table.localised_fields();
        if (localised.isEmpty())
            continue;
        const SAMPLE_ROWS& rows = content.rows(table.name());
        QString texts;
        for (const SAMPLE_ROW& row : rows)
            for (const QString& field : localised)
                texts += table.name() + "_" + field + "_" + rows.key_of(row) + QChar(0) + row.text(field) +
                         QChar(0);
        error =
            write_file(layout.working_data + "/text/db/" + table.name() + ".loc", utf16le_with_bom(texts));
        if (!error.isEmpty())
            return error;
    }

    // Localisation tab files, one a spreadsheet: key, word count, text.
    QMap<QString, QMap<QString, QString>> sheets;
    QMap<QString, QString> sheet_names;
    for (const SAMPLE_ROW& entry : content.rows("TExc_LocalisableFields"))
    {
        if (!entry.value("ready_for_export").toBool())
            continue;
        const QString table = entry.text("table_name");
        const QString field = entry.text("field");
        const QString sheet = entry.text("spreadsheet");
        sheet_names.insert(sheet.toLower(), sheet);
        const SAMPLE_ROWS& rows = content.rows(table);
        for (const SAMPLE_ROW& row : rows)
            sheets[sheet.toLower()].insert(table + "_" + field + "_" + rows.key_of(row), row.text(field));
    }
    for (auto sheet = sheets.constBegin(); sheet != sheets.constEnd(); ++sheet)
    {
        QString text;
        for (auto it = sheet->constBegin(); it != sheet->constEnd(); ++it)
            text += it.key() + "\t" + QString::number(it.value().split(QLatin1Char(' ')).size()) + "\t" +
                    it.value() + "\r\n";
        error = write_file(layout.text + "/LOCALISATION_TAB_" + sheet_names.value(sheet.key()) + ".txt",
                           utf16le_with_bom(text));
        if (!error.isEmpty())
            return error;
    }

    // The LOC files of each language, as the last LOC export left them.
    QMap<QString, QString> loc_texts;
    for (const SAMPLE_ROW& row : content.rows("translated_texts"))
    {
        const QString language = row.text("language");
        const QString key = row.text("key");
        loc_texts[language] +=
            key.left(key.size() - language.size()) + "\t" + row.text("translated_text") + "\n";
    }
    for (auto it = loc_texts.constBegin(); it != loc_texts.constEnd(); ++it)
    {
        error = write_file(layout.localisation + "/" + it.key() + "/localisation.txt", it.value().toUtf8());
        if (error.isEmpty())
            error = write_file(layout.localisation + "/" + it.key() + "/localisation.loc",
                               utf16le_with_bom(it.value()));
        if (!error.isEmpty())
            return error;
    }
    return QString();
}

QString SAMPLE_PROJECT_FILES::write_campaign_folders(const SAMPLE_LAYOUT& layout,
                                                     const SAMPLE_CONTENT& content)
{
    for (const SAMPLE_ROW& campaign : content.rows("campaigns"))
    {
        const QString key = campaign.text("campaign_name");
        QString settings = "name = " + campaign.text("onscreen_name") + "\n" +
                           "start_year = " + campaign.text("start_year") + "\n" +
                           "turns_per_year = " + campaign.text("turns_per_year") + "\n" +
                           "map = " + campaign.text("map_name") + "\n" + "factions =";
        QStringList regions;
        for (const SAMPLE_ROW& faction : content.rows("start_pos_factions"))
            if (faction.text("campaign") == key)
                settings += " " + faction.text("faction");
        for (const SAMPLE_ROW& region : content.rows("start_pos_regions"))
            if (region.text("campaign") == key)
                regions.append(region.text("region"));
        QString error = write_file(layout.design_data + "/campaigns/" + key + "/campaign_settings.txt",
                                   (settings + "\n").toUtf8());
        if (error.isEmpty())
            error = write_file(layout.design_data + "/campaign_maps/" + campaign.text("map_name") +
                                   "/regions.txt",
                               (regions.join("\n") + "\n").toUtf8());
        if (!error.isEmpty())
            return error;
    }
    return QString();
}

QString SAMPLE_PROJECT_FILES::write_csv_imports(const SAMPLE_LAYOUT& layout, const SAMPLE_CONTENT& content)
{
    // Updates of rows that exist, and a few new rows, as a designer's
    // spreadsheet gives them; one description holds a comma and quotes.
    const SAMPLE_ROWS& units = content.rows("land_units");
    const QStringList columns = {"key",    "onscreen_name", "short_description", "category", "men",
                                 "morale", "speed",         "melee_attack",      "armour"};
    QString text = columns.join(",") + "\n";
    for (int i = 0; i < qMin(6, units.size()); ++i)
    {
        const SAMPLE_ROW& row = units[i * qMax(1, units.size() / 6)];
        QStringList values;
        for (const QString& column : columns)
        {
            QString value = row.text(column);
            if (column == "morale")
                value = QString::number(row.value(column).toInt() + 5);
            if (value.startsWith("text_rejected: "))
                value = value.mid(15);
            values.append(csv_value(value));
        }
        text += values.join(",") + "\n";
    }
    text += "aur_marsh_wardens,Aurelian Marsh Wardens," +
            csv_value("Light foot from the delta, at home in reeds, mud and \"impassable\" ground.") +
            ",infantry,120,45,4.3,22,20\n";
    text += "norl_berserkers,Norlund Berserkers,Warriors who fight without armour or "
            "fear.,infantry,80,70,4.6,48,5\n";
    QString error = write_file(layout.csv_import + "/land_units.csv", text.toUtf8());
    if (!error.isEmpty())
        return error;

    text = "key,onscreen_name,max_level,is_negative\n";
    for (const SAMPLE_ROW& row : content.rows("traits"))
        text += row.text("key") + "," + csv_value(row.text("onscreen_name").remove("text_rejected: ")) + "," +
                QString::number(qMin(4, row.value("max_level").toInt() + 1)) + "," + row.text("is_negative") +
                "\n";
    return write_file(layout.csv_import + "/traits.csv", text.toUtf8());
}

QString SAMPLE_PROJECT_FILES::write_layouts(const SAMPLE_LAYOUT& layout, const SAMPLE_CONTENT& content,
                                            quint64 seed)
{
    SAMPLE_RANDOM random = SAMPLE_RANDOM(seed).fork(QStringLiteral("layouts"));
    const SAMPLE_ROWS& links = content.rows("slatepad_component_addresses_to_texts");
    for (const SAMPLE_ROW& row : content.rows("slatepad_text_layouts"))
    {
        const QString key = row.text("layout");
        const QString location = row.text("layout_location");
        const QString id = random.uuid().toString(QUuid::WithoutBraces).toUpper();
        QString text = "-- Slatepad layout " + key +
                       "\nlayout = {\n\t[\"id\"] = \"root\",\n\t[\"export\"] = {\n"
                       "\t\t[\"id\"] = \"" +
                       id +
                       "\",\n\t\t[\"target\"] = \"working_data\",\n\t},\n"
                       "\t[\"children\"] = {\n";
        QStringList images;
        for (const SAMPLE_ROW& link : links)
        {
            if (link.text("component_layout") != key)
                continue;
            const QString address = link.text("component_address");
            text += "\t\t{\n\t\t\t[\"id\"] = \"" + random.uuid().toString(QUuid::WithoutBraces) + "\",\n" +
                    "\t\t\t[\"address\"] = \"" + address + "\",\n" + "\t\t\t[\"text\"] = \"" +
                    link.text("component_label") + "\",\n\t\t},\n";
            images.append("ui/skins/default/" + SAMPLE_WORDS::slug(address.section('>', -1)) + ".png");
        }
        text += "\t},\n}\n";
        images.removeDuplicates();
        QString error = write_file(layout.raw_data + "/" + location, text.toUtf8());
        if (error.isEmpty())
            error =
                write_file(layout.raw_data + "/" + location + ".images", (images.join("\n") + "\n").toUtf8());
        if (error.isEmpty())
        {
            QByteArray binary("SLPB\x02\x00\x00\x00", 8);
            binary += QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1);
            error = write_file(layout.working_data + "/" + QFileInfo(location).path() + "/" + id + ".layout",
                               binary);
        }
        if (!error.isEmpty())
            return error;
    }
    return QString();
}

QString SAMPLE_PROJECT_FILES::install_tools(const SAMPLE_LAYOUT& layout, const QString& tools_folder,
                                            QStringList* installed)
{
    for (const QString& name : {QStringLiteral("KILN.release"), QStringLiteral("Slatepad.UnityRelease")})
    {
        const QString source = QDir(tools_folder).filePath(name);
        if (!QFileInfo(source).isFile())
            continue;
        const QString target = layout.binaries + "/" + name;
        QFile::remove(target);
        if (!QFile::copy(source, target))
            return QStringLiteral("%1 cannot be copied to %2").arg(source, target);
        QFile::setPermissions(target, QFile::permissions(source) | QFile::ExeOwner);
        if (installed)
            installed->append(name);
    }
    return QString();
}
