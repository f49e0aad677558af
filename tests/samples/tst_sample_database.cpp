// The sample database read back through the engine: everything a designer
// relies on holds in both sizes (the small one tests use, the normal one
// people open): every relationship resolves, keys are unique, required
// fields are filled, fixed values are kept, and the bookkeeping tables
// describe the others as the schema editor would have left them.
#include "kor_database_schema.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "progress_callback.h"
#include "sample_catalogue.h"
#include "sample_content.h"
#include "sample_database_writer.h"
#include "sample_form_files.h"
#include "sample_project.h"
#include "sample_project_files.h"
#include "test_folder.h"
#include "test_helpers.h"

#include "progress_report_list.h"

#include <QtTest/QtTest>

namespace
{
struct DATABASE
{
    QString path;
    std::unique_ptr<PROGRESS_REPORT_LIST> reports = std::make_unique<PROGRESS_REPORT_LIST>();
    std::unique_ptr<KOR_XML_QUERY_INTERFACE> engine;
    SAMPLE_CONTENT content;
};

const QString REJECTED = QStringLiteral("text_rejected");
} // namespace

class TST_SAMPLE_DATABASE : public QObject
{
    Q_OBJECT

private:
    TEST_FOLDER m_folder;
    SAMPLE_CATALOGUE m_catalogue = SAMPLE_CATALOGUE::standard();
    QMap<QString, DATABASE*> m_databases;

    DATABASE& database(const QString& size) { return *m_databases.value(size); }
    const KOR_TABLE_DATA* table(const QString& size, const QString& name)
    {
        QString error;
        const KOR_TABLE_DATA* data = database(size).engine->get_table_data(error, name);
        if (!data)
            qWarning("%s", qPrintable(error));
        return data;
    }

    // One row a size and table of the catalogue.
    void tables_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("table_name");
        for (const QString& size : m_databases.keys())
            for (const QString& name : m_catalogue.names())
                QTest::newRow(qPrintable(size + "/" + name)) << size << name;
    }

    void sizes_data()
    {
        QTest::addColumn<QString>("size");
        for (const QString& size : m_databases.keys())
            QTest::newRow(qPrintable(size)) << size;
    }

private slots:
    void initTestCase()
    {
        const QList<QPair<QString, SAMPLE_SIZE>> sizes = {{"small", SAMPLE_SIZE::SMALL},
                                                          {"normal", SAMPLE_SIZE::NORMAL}};
        for (const auto& size : sizes)
        {
            auto* db = new DATABASE;
            m_databases.insert(size.first, db);
            db->path = m_folder.file(size.first + "/db");
            const QString error = SAMPLE_PROJECT::generate_database(db->path, 3, size.second);
            QVERIFY2(error.isEmpty(), qPrintable(error));
            QString content_error;
            QVERIFY2(db->content.generate(content_error, m_catalogue, 3, size.second),
                     qPrintable(content_error));
            db->engine =
                std::make_unique<KOR_XML_QUERY_INTERFACE>(db->reports.get(), QString(), false, false);
            const QString connect_error = db->engine->connect_without_merge(db->path, false);
            QVERIFY2(connect_error.isEmpty(), qPrintable(connect_error));
        }
    }

    void cleanupTestCase()
    {
        for (DATABASE* db : qAsConst(m_databases))
        {
            if (db->engine)
                db->engine->disconnect();
            delete db;
        }
    }

    void the_fast_path_for_many_tables_writes_the_same_files()
    {
        // Benchmarks' databases skip add_table; what they hold must not differ.
        SAMPLE_CONTENT content;
        QString error;
        QVERIFY(content.generate(error, m_catalogue, 5, SAMPLE_SIZE::SMALL));
        TEST_FOLDER folder;
        QMap<QString, QByteArray> written[2];
        const SAMPLE_DATABASE_WRITER::SCHEMAS ways[] = {SAMPLE_DATABASE_WRITER::THROUGH_OPERATIONS,
                                                        SAMPLE_DATABASE_WRITER::BULK};
        for (int way = 0; way < 2; ++way)
        {
            const QString path = folder.file(QString::number(way));
            QCOMPARE(SAMPLE_DATABASE_WRITER::write(path, m_catalogue, content, 5, ways[way]), QString());
            QDirIterator it(path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            while (it.hasNext())
            {
                const QString file = it.next();
                written[way].insert(QDir(path).relativeFilePath(file), ORBIN_TEST::read_file(file));
            }
        }
        QCOMPARE(written[0].size(), 2 * m_catalogue.tables().size() + 1);
        QCOMPARE(written[1].keys(), written[0].keys());
        for (auto file = written[0].cbegin(); file != written[0].cend(); ++file)
            QVERIFY2(file.value() == written[1].value(file.key()), qPrintable(file.key()));
    }

    void every_table_reads_without_a_complaint_data() { sizes_data(); }
    void every_table_reads_without_a_complaint()
    {
        // The engine checks the references of a table as it reads it, and
        // reports those that name no record.
        QFETCH(QString, size);
        QMap<QString, bool> names;
        database(size).engine->get_table_names(names);
        QStringList expected = m_catalogue.names();
        expected.sort();
        QCOMPARE(QStringList(names.keys()), expected);
        for (const QString& name : names.keys())
            QVERIFY2(table(size, name), qPrintable(name));
        QVERIFY2(database(size).reports->texts(PROGRESS_CALLBACK::SEVERITY_WARNING).isEmpty(),
                 qPrintable(database(size).reports->texts(PROGRESS_CALLBACK::SEVERITY_WARNING)));
        QVERIFY(!QFile::exists(database(size).path + "/update_commands.txt"));
    }

    void holds_every_generated_row_under_a_unique_key_data() { tables_data(); }
    void holds_every_generated_row_under_a_unique_key()
    {
        QFETCH(QString, size);
        QFETCH(QString, table_name);
        const KOR_TABLE_DATA* data = table(size, table_name);
        QVERIFY(data);
        const SAMPLE_ROWS& rows = database(size).content.rows(table_name);
        QVERIFY2(data->record_count() > 0, "every table has rows");
        QCOMPARE(data->record_count(), rows.size());
        QSet<QString> keys;
        for (const SAMPLE_ROW& row : rows)
        {
            const QString key = rows.key_of(row);
            QVERIFY2(!keys.contains(key), qPrintable("twice: " + key));
            keys.insert(key);
            const KOR_RECORD_DATA* record = data->record_by_key(key);
            QVERIFY2(record, qPrintable("missing: " + key));
            QCOMPARE(record->uuid(), row.uuid);
            QCOMPARE(record->modification_msecs(), row.modified_msecs);
        }
    }

    void relationships_resolve_data() { tables_data(); }
    void relationships_resolve()
    {
        QFETCH(QString, size);
        QFETCH(QString, table_name);
        const KOR_TABLE_DATA* data = table(size, table_name);
        QVERIFY(data);
        const KOR_TABLE_SCHEMA* schema = data->table_schema();
        for (const QString& field_name : schema->column_ordering())
        {
            const KOR_FIELD_SCHEMA* field = schema->field_schema_by_name(field_name);
            if (!field->dependency())
                continue;
            const KOR_TABLE_DATA* foreign = table(size, field->source_table());
            QVERIFY(foreign);
            QString target = field->dependency()->second;
            if (target.isEmpty())
                target = foreign->table_schema()->primary_key_fields().value(0);
            QVERIFY2(foreign->table_schema()->field_schema_by_name(target), qPrintable(target));
            for (const QString& lookup : field->lookup_fields())
                QVERIFY2(foreign->table_schema()->field_schema_by_name(lookup), qPrintable(lookup));
        }
    }

    void required_and_fixed_values_hold_data() { tables_data(); }
    void required_and_fixed_values_hold()
    {
        QFETCH(QString, size);
        QFETCH(QString, table_name);
        const KOR_TABLE_DATA* data = table(size, table_name);
        QVERIFY(data);
        const KOR_TABLE_SCHEMA* schema = data->table_schema();
        for (const KOR_RECORD_DATA* record : data->records())
        {
            QCOMPARE(record->field_count(), schema->field_count());
            for (const KOR_FIELD_SCHEMA* field : schema->field_schemas())
            {
                const KOR_FIELD_DATA* value = record->get_field_data(field->field_name());
                const QString text = value->value_text();
                if (field->is_required())
                    QVERIFY2(!text.isEmpty(),
                             qPrintable(QString("%1.%2 of '%3' is empty")
                                            .arg(table_name, field->field_name(), record->key())));
                if (!field->fixed_column_values().isEmpty() && !text.isEmpty())
                    QVERIFY2(field->fixed_column_values().contains(text),
                             qPrintable(QString("%1.%2: '%3' is no fixed value")
                                            .arg(table_name, field->field_name(), text)));
                if (field->field_type() == KFT_TEXT && field->max_length() >= 0)
                    QVERIFY2(text.size() <= field->max_length(), qPrintable(field->field_name()));
            }
        }
    }

    // The sample is there to exercise every kind of field the editor handles.
    void schemas_use_every_kind_of_field()
    {
        const KOR_DATABASE_SCHEMA* schema = database("small").engine->get_database_schema();
        QSet<int> types;
        bool composite_key = false, self_reference = false;
        for (const KOR_TABLE_SCHEMA* table_schema : schema->table_schemas())
        {
            composite_key = composite_key || table_schema->primary_key_fields().size() > 1;
            for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
            {
                types.insert(field->field_type());
                self_reference = self_reference || field->source_table() == table_schema->get_table_name();
            }
        }
        QCOMPARE(types.size(), 11);
        QVERIFY(composite_key && self_reference);
    }

    void localised_texts_stand_in_every_approval_state_data() { sizes_data(); }
    void localised_texts_stand_in_every_approval_state()
    {
        // The text approval window has one mode a state, and one for texts
        // rejected before they were ever approved.
        QFETCH(QString, size);
        QMap<QString, int> states;
        const KOR_DATABASE_SCHEMA* schema = database(size).engine->get_database_schema();
        for (const KOR_TABLE_SCHEMA* table_schema : schema->table_schemas())
        {
            const KOR_TABLE_DATA* data = table(size, table_schema->get_table_name());
            for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
            {
                if (!field->is_localised())
                    continue;
                for (const KOR_RECORD_DATA* record : data->records())
                {
                    const KOR_FIELD_DATA* value = record->get_field_data(field->field_name());
                    if (value->value_text().isEmpty())
                        continue;
                    QVERIFY2(value->has_approval_data(),
                             qPrintable(table_schema->get_table_name() + "." + field->field_name() + " of " +
                                        record->key()));
                    QVERIFY(!value->last_edit_user().isEmpty());
                    const bool rejected = value->value_text().contains(REJECTED);
                    const int state = value->approval_state();
                    ++states[rejected ? "rejected" : QString::number(state)];
                    if (rejected)
                    {
                        QCOMPARE(state, 1);
                        QVERIFY(value->last_approved_text().isEmpty());
                    }
                    else if (state == 1)
                    {
                        QCOMPARE(value->last_approved_text(), value->value_text());
                    }
                }
            }
        }
        for (const char* state : {"0", "1", "2", "rejected"})
            QVERIFY2(states.value(state) > 0, qPrintable("no text in state " + QString(state)));
        QVERIFY(states.value("1") > states.value("0"));
    }

    void bookkeeping_describes_the_other_tables_data() { sizes_data(); }
    void bookkeeping_describes_the_other_tables()
    {
        QFETCH(QString, size);
        const KOR_DATABASE_SCHEMA* schema = database(size).engine->get_database_schema();
        QSet<QString> localised_fields;
        for (const KOR_TABLE_SCHEMA* table_schema : schema->table_schemas())
            for (const KOR_FIELD_SCHEMA* field : table_schema->field_schemas())
                if (field->is_localised())
                    localised_fields.insert(table_schema->get_table_name() + "." + field->field_name());

        QSet<QString> listed;
        for (const KOR_RECORD_DATA* record : table(size, "TExc_LocalisableFields")->records())
        {
            const QString name = record->get_field_data("table_name")->value_text() + "." +
                                 record->get_field_data("field")->value_text();
            QVERIFY2(!listed.contains(name), qPrintable(name));
            listed.insert(name);
            const KOR_FIELD_SCHEMA* field =
                schema->table_schema(name.section('.', 0, 0))->field_schema_by_name(name.section('.', 1));
            QCOMPARE(record->get_field_data("spreadsheet")->value_text(), field->spreadsheet());
        }
        QCOMPARE(listed, localised_fields);

        const KOR_TABLE_DATA* implemented = table(size, "TExc_ImplementedTables");
        QCOMPARE(implemented->record_count(), schema->table_count());
        for (const QString& name : schema->table_schemas().keys())
        {
            const KOR_RECORD_DATA* record = implemented->record_by_key(name);
            QVERIFY2(record, qPrintable(name));
            const SAMPLE_TABLE* described = m_catalogue.table(name);
            QCOMPARE(record->get_field_data("destination_pack")->value_text(), described->destination_pack());
            QCOMPARE(record->get_field_data("Implemented")->m_value.toBool(), described->is_implemented());
            QCOMPARE(record->get_field_data("Implementer")->value_text().isEmpty(), !described->has_code());
        }
    }

    void translations_name_a_text_and_a_language_data() { sizes_data(); }
    void translations_name_a_text_and_a_language()
    {
        QFETCH(QString, size);
        QSet<QString> languages;
        for (const KOR_RECORD_DATA* record : table(size, "languages")->records())
            languages.insert(record->key());
        QVERIFY(languages.contains("all") && languages.contains("en"));

        // Keys of the localised texts, as text approval builds them.
        QMap<QString, const KOR_FIELD_DATA*> texts;
        for (const KOR_RECORD_DATA* entry : table(size, "TExc_LocalisableFields")->records())
        {
            const QString name = entry->get_field_data("table_name")->value_text();
            const QString field = entry->get_field_data("field")->value_text();
            for (const KOR_RECORD_DATA* record : table(size, name)->records())
                texts.insert(name + "_" + field + "_" + record->key(), record->get_field_data(field));
        }
        const KOR_TABLE_DATA* translated = table(size, "translated_texts");
        QVERIFY(translated->record_count() > 10);
        QSet<QString> seen_languages;
        for (const KOR_RECORD_DATA* record : translated->records())
        {
            const QString language = record->get_field_data("language")->value_text();
            QVERIFY(languages.contains(language));
            QVERIFY(language != "en" && language != "all");
            seen_languages.insert(language);
            QVERIFY(record->key().endsWith(language));
            const QString label = record->key().left(record->key().size() - language.size());
            const KOR_FIELD_DATA* text = texts.value(label);
            QVERIFY2(text, qPrintable("translation of no text: " + record->key()));
            // Translators work from the last approved English.
            QCOMPARE(record->get_field_data("last_english_text")->value_text(), text->last_approved_text());
            QCOMPARE(record->get_field_data("requires_translation")->m_value.toBool(),
                     text->value_text() != text->last_approved_text());
        }
        QVERIFY(seen_languages.size() >= 2);
    }

    void start_positions_hang_off_campaigns()
    {
        // A start position is found by walking from a campaign to the
        // tables below it whose names begin with "start_pos".
        KOR_XML_QUERY_INTERFACE& engine = *database("small").engine;
        QSet<QString> reached;
        QStringList pending = {"campaigns"};
        while (!pending.isEmpty())
        {
            QSet<QString> dependents;
            engine.add_dependent_tables_to_set(dependents, pending.takeFirst());
            for (const QString& name : dependents)
                if (name.startsWith("start_pos") && !reached.contains(name))
                {
                    reached.insert(name);
                    pending.append(name);
                }
        }
        for (const char* name : {"start_pos_factions", "start_pos_characters", "start_pos_character_traits",
                                 "start_pos_regions", "start_pos_region_buildings", "start_pos_armies",
                                 "start_pos_army_units", "start_pos_diplomacy"})
        {
            QVERIFY2(reached.contains(name), name);
            QVERIFY(table("small", name)->record_count() > 0);
        }
        QVERIFY(table("small", "campaigns")->record_by_key("main_aurel"));
    }

    void voice_lines_point_at_voiced_texts_data() { sizes_data(); }
    void voice_lines_point_at_voiced_texts()
    {
        QFETCH(QString, size);
        QSet<QString> voiced;
        for (const KOR_RECORD_DATA* entry : table(size, "TExc_LocalisableFields")->records())
            if (entry->get_field_data("for_vo")->m_value.toBool())
                voiced.insert(entry->get_field_data("table_name")->value_text() + ":" +
                              entry->get_field_data("field")->value_text());
        QVERIFY(voiced.size() >= 2);
        const KOR_TABLE_DATA* lines = table(size, "vo_texts");
        QVERIFY(lines->record_count() > 0);
        for (const KOR_RECORD_DATA* line : lines->records())
        {
            const QString table_field = line->get_field_data("table_field")->value_text();
            QVERIFY2(voiced.contains(table_field), qPrintable(table_field));
            QVERIFY(table(size, table_field.section(':', 0, 0))
                        ->record_by_key(line->get_field_data("foreign_key")->value_text()));
            QVERIFY(!QUuid(line->key()).isNull());
        }
        for (const KOR_RECORD_DATA* subtitle : table(size, "subtitle_timings")->records())
            QVERIFY(subtitle->get_field_data("start")->m_value.toFloat() <
                    subtitle->get_field_data("end")->m_value.toFloat());
    }

    void saved_queries_load()
    {
        if (!QFile::exists(database("small").path + "/Veld_queries.xml"))
            QSKIP("this build has no query store to write saved queries with");
        KOR_XML_QUERY_INTERFACE& engine = *database("small").engine;
        const auto queries = SAMPLE_PROJECT_FILES::queries();
        QCOMPARE(engine.get_query_schemas().size(), queries.size());
        for (const auto& query : queries)
            QVERIFY2(engine.get_query_schema(query.first), qPrintable(query.first));
        QVERIFY2(database("small").reports->texts(PROGRESS_CALLBACK::SEVERITY_WARNING).isEmpty(),
                 "every saved query reads");
    }

    void forms_name_tables_and_fields_that_exist()
    {
        const QString path = database("small").path;
        QFile list(path + "/Veld_form_descriptions.xml");
        QVERIFY(list.open(QIODevice::ReadOnly));
        QStringList listed;
        QXmlStreamReader reader(&list);
        while (!reader.atEnd())
            if (reader.readNext() == QXmlStreamReader::StartElement &&
                reader.name() == QLatin1String("form_name"))
                listed.append(reader.readElementText());
        QVERIFY(!reader.hasError());
        QCOMPARE(listed, SAMPLE_FORM_FILES::form_names());

        const KOR_DATABASE_SCHEMA* schema = database("small").engine->get_database_schema();
        const QSet<QString> field_elements = {"text_edit_field", "static_text_field", "memo_edit_field",
                                              "check_box_field", "combo_box_field",   "filter_field"};
        for (const QString& name : qAsConst(listed))
        {
            QFile file(path + "/VeldFORMDESCR_" + name + ".xml");
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
            QXmlStreamReader form(&file);
            QMap<QString, QString> node_tables; // node name -> table
            QString table_name, node_name, parent_name;
            int nodes = 0, base_nodes = 0;
            while (!form.atEnd())
            {
                form.readNext();
                if (form.isEndElement() && form.name() == QLatin1String("subform_table"))
                    node_tables.insert(node_name.isEmpty() ? table_name : node_name, table_name);
                if (!form.isStartElement())
                    continue;
                const QString element = form.name().toString();
                if (element == "subform_table")
                {
                    ++nodes;
                    table_name.clear();
                    node_name.clear();
                }
                else if (element == "base_node")
                    ++base_nodes;
                else if (element == "subform_name")
                    node_name = form.readElementText();
                else if (element == "table_name")
                {
                    table_name = form.readElementText();
                    QVERIFY2(schema->table_schema(table_name), qPrintable(name + ": " + table_name));
                }
                else if (element == "parent_table")
                {
                    parent_name = form.readElementText();
                    QVERIFY2(node_tables.contains(parent_name), qPrintable(name + ": " + parent_name));
                }
                else if (element == "parent_field")
                {
                    const QString field = form.readElementText();
                    QVERIFY2(
                        schema->table_schema(node_tables.value(parent_name))->field_schema_by_name(field),
                        qPrintable(name + ": " + parent_name + "." + field));
                }
                else if (field_elements.contains(element) || element == "edit_grid_column" ||
                         element == "memo_grid_column")
                {
                    const QString field = element.endsWith("grid_column")
                                              ? form.attributes().value("name").toString()
                                              : form.readElementText();
                    QVERIFY2(schema->table_schema(table_name)->field_schema_by_name(field),
                             qPrintable(name + ": " + table_name + "." + field));
                }
            }
            QVERIFY2(!form.hasError(), qPrintable(form.errorString()));
            QVERIFY(nodes >= 2);
            QCOMPARE(base_nodes, 1);
        }
    }
};

QTEST_MAIN(TST_SAMPLE_DATABASE)
#include "tst_sample_database.moc"
