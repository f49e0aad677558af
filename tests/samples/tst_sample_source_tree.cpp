// The game source tree of a sample project has the shapes that code
// generation searches for when it registers, edits and removes a table: each
// search that a later edit makes finds its place in the files as written.
#include "kor_database_schema.h"
#include "kor_field_schema.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "sample_catalogue.h"
#include "sample_field.h"
#include "sample_game_source.h"
#include "sample_project.h"
#include "test_folder.h"
#include "test_helpers.h"
#include "test_rows.h"

#include <QRegExp>
#include <QtTest/QtTest>

using ORBIN_TEST::row;

namespace
{
int count_matches(const QString& text, const QString& pattern, bool minimal = false)
{
    QRegExp expression(pattern);
    expression.setMinimal(minimal);
    int count = 0;
    for (int position = 0; (position = expression.indexIn(text, position)) >= 0;
         position += qMax(1, expression.matchedLength()))
        ++count;
    return count;
}

QString read(const QString& path)
{
    return QString::fromLatin1(ORBIN_TEST::read_file(path));
}
} // namespace

class TST_SAMPLE_SOURCE_TREE : public QObject
{
    Q_OBJECT

private:
    TEST_FOLDER m_folder;
    SAMPLE_LAYOUT m_layout;
    SAMPLE_CATALOGUE m_catalogue = SAMPLE_CATALOGUE::standard();
    KOR_DATABASE_SCHEMA m_schema;

    QString file(const QString& tail) const { return read(m_layout.branch_root + tail); }

    void code_tables_data()
    {
        QTest::addColumn<QString>("table_name");
        for (const SAMPLE_TABLE& table : m_catalogue.tables())
            if (table.has_code())
                QTest::newRow(qPrintable(table.name())) << table.name();
    }

private slots:
    void initTestCase()
    {
        SAMPLE_OPTIONS options;
        options.size = SAMPLE_SIZE::SMALL;
        options.with_depot = false;
        const QString error = SAMPLE_PROJECT::generate(m_folder.file("project"), options, &m_layout);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QString schema_error;
        QVERIFY2(KOR_TABLE_IO::read_database_schema(schema_error, m_layout.database, m_schema, nullptr),
                 qPrintable(schema_error));
    }

    void derived_names_data()
    {
        QTest::addColumn<QString>("table_name");
        QTest::addColumn<QString>("record");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("header");
        row("plural in s", "land_units", "LAND_UNIT_RECORD", "LAND_UNITS_TABLE", "LandUnitsTable.h");
        row("plural in ies", "ancillaries", "ANCILLARY_RECORD", "ANCILLARIES_TABLE", "AncillariesTable.h");
        row("one-letter part", "x_ray_s", "X_RAY__RECORD", "X_RAY_S_TABLE", "XRaySTable.h");
    }
    void derived_names()
    {
        QFETCH(QString, table_name);
        QFETCH(QString, record);
        QFETCH(QString, table);
        QFETCH(QString, header);
        QCOMPARE(SAMPLE_GAME_SOURCE::record_type(table_name), record);
        QCOMPARE(SAMPLE_GAME_SOURCE::table_type(table_name), table);
        QCOMPARE(SAMPLE_GAME_SOURCE::header_name(table_name), header);
    }

    void registrations_have_their_places()
    {
        const QString list = file("/common/CobaltUtility/Redist/CobaltDatabases.h");
        QCOMPARE(count_matches(list, "namespace COBALTUTILITY\n\\{"), 1);
        QCOMPARE(count_matches(list, "#define DATABASE_LIST\\(ELEM\\) \\\\"), 1);
        QCOMPARE(count_matches(file("/common/CobaltUtility/Source/CobaltDatabases.cpp"),
                               "#include \"CobaltDatabases.h\"\n"),
                 1);
        const QString tables = file("/common/ToolDataBuilder/Source/Tables.cpp");
        QCOMPARE(count_matches(tables, "// DLL includes ////////////////////////////////////\n"), 1);
        // A new table's command goes before the one closing brace at a line start.
        QCOMPARE(count_matches(tables, "\n\\}\n"), 1);

        const QString project = file("/common/CobaltUtility/CobaltUtility.vcxproj");
        QCOMPARE(count_matches(project, "(</ItemDefinitionGroup>\n\\s*<ItemGroup>\n)(\\s*<ClCompile)"), 1);
        QCOMPARE(count_matches(project, "(</ClCompile>\n\\s*</ItemGroup>\n\\s*<ItemGroup>\n)"), 1);
        const QString filters = file("/common/CobaltUtility/CobaltUtility.vcxproj.filters");
        QCOMPARE(count_matches(filters, "(</ClCompile>\n)(  </ItemGroup>\n  <ItemGroup>\n    <ClInclude)"),
                 1);
        QCOMPARE(count_matches(filters, "(</ClInclude>\n)(  </ItemGroup>\n  <ItemGroup>\n    <None)"), 1);
        QVERIFY(QFile::exists(m_layout.branch_root + "/common/CobaltUtility/CobaltUtility.vspscc"));

        // The last unity file is the one that takes the next table.
        const QString source = m_layout.branch_root + "/common/CobaltUtility/Source/";
        int last = 1;
        while (QFile::exists(source + QString("UnityCobaltUtility%1.cpp").arg(last + 1)))
            ++last;
        QVERIFY(last >= 2);
        const QString unity = read(source + QString("UnityCobaltUtility%1.cpp").arg(last));
        QRegExp number("MEM_CHK_TMPNAME_(\\d+)");
        QVERIFY(unity.lastIndexOf(number) >= 0);
    }

    void every_table_with_code_is_registered_once_data() { code_tables_data(); }
    void every_table_with_code_is_registered_once()
    {
        QFETCH(QString, table_name);
        const QString T = table_name;
        const QString header = SAMPLE_GAME_SOURCE::header_name(T);
        const QString source = SAMPLE_GAME_SOURCE::source_name(T);
        const QString list = file("/common/CobaltUtility/Redist/CobaltDatabases.h");
        QCOMPARE(list.count("\n\tstruct " + T.toUpper() + "_TABLE;"), 1);
        QCOMPARE(count_matches(list, QString("[\n\\s]*ELEM[^\\(]*\\(\\s*%1_table\\b[^\n]*").arg(T)), 1);
        QCOMPARE(
            count_matches(list, QString("ELEM[^\\(]*\\(\\s*%1_table\\s*[^\\\\]*::DEPENDENCIES\\(").arg(T)),
            1);
        QCOMPARE(
            file("/common/CobaltUtility/Source/CobaltDatabases.cpp").count("\n#include \"" + header + "\""),
            1);
        const QString tables = file("/common/ToolDataBuilder/Source/Tables.cpp");
        QCOMPARE(tables.count("\n#include \"" + header + "\""), 1);
        QCOMPARE(count_matches(tables, "\n\\s*DEFINE_TOOL_COMMAND\\(\\s*add_" + T +
                                           "_table\\s*,[^\n]*\n\\s*\\{[^\\}]*\\}"),
                 1);

        int unity_files = 0;
        const QString unity_block =
            QString(
                "\n*#ifdef NF_MEM_TRACKING\n[^\"]*\"[dD]atabases\\/%1\";\n(?:[^\n]*\n){4}#undef THIS_FILE")
                .arg(source);
        for (int n = 1;
             QFile::exists(m_layout.branch_root +
                           QString("/common/CobaltUtility/Source/UnityCobaltUtility%1.cpp").arg(n));
             ++n)
            unity_files += count_matches(
                file(QString("/common/CobaltUtility/Source/UnityCobaltUtility%1.cpp").arg(n)), unity_block);
        QCOMPARE(unity_files, 1);

        const QString project = file("/common/CobaltUtility/CobaltUtility.vcxproj");
        QCOMPARE(count_matches(
                     project,
                     QString("[\n\\s]*<ClCompile Include=\"Source\\\\databases\\\\%1\">\n"
                             "(?:\\s*<ExcludedFromBuild[^\n]*<\\/ExcludedFromBuild>\n)*\\s*<\\/ClCompile>")
                         .arg(source)),
                 1);
        QCOMPARE(count_matches(project,
                               QString("[\n\\s]*<ClInclude Include=\"Redist\\\\%1\"\\s*\\/>").arg(header)),
                 1);
        const QString filters = file("/common/CobaltUtility/CobaltUtility.vcxproj.filters");
        QCOMPARE(
            count_matches(filters, QString("[\n\\s]*<ClCompile Include=\"Source\\\\databases\\\\%1\"\\s*>"
                                           "(?:[^\n]*\n){2}\\s*<\\/ClCompile>")
                                       .arg(source)),
            1);
        QCOMPARE(count_matches(filters, QString("[\n\\s]*<ClInclude Include=\"Redist\\\\%1\"\\s*>"
                                                "(?:[^\n]*\n){2}\\s*<\\/ClInclude>")
                                            .arg(header)),
                 1);
    }

    void table_files_have_the_places_field_edits_search_data() { code_tables_data(); }
    void table_files_have_the_places_field_edits_search()
    {
        QFETCH(QString, table_name);
        const QString header =
            file("/common/CobaltUtility/Redist/" + SAMPLE_GAME_SOURCE::header_name(table_name));
        const QString source =
            file("/common/CobaltUtility/Source/databases/" + SAMPLE_GAME_SOURCE::source_name(table_name));
        QVERIFY(!header.isEmpty() && !source.isEmpty());
        const SAMPLE_TABLE* table = m_catalogue.table(table_name);
        const KOR_TABLE_SCHEMA* schema = m_schema.table_schema(table_name);

        QCOMPARE(count_matches(header, "VERSION\\s+=\\s+([0-9]+)") == 1, table->versioned());
        QCOMPARE(count_matches(header, "(struct BUILDER\\s+\\{)"), 1);
        QCOMPARE(
            count_matches(header,
                          "(_RECORD\\(const BUILDER\\s*&[^\\)]*)(\\);([^\\}]*\\bm_[\\w_]+[^\n]*;[^\n]*\n)*)"),
            1);
        QCOMPARE(count_matches(header, "struct\\s*DEPENDENCIES[\\s\n]*\\{"), 1);
        QCOMPARE(count_matches(
                     header,
                     "(String\\s*)&?(\\s*key\\s*\\(\\s*\\)\\s*(?:const)?\\s*\\{[^\\}]*)(;[^\\};]*\\})", true),
                 1);
        QCOMPARE(count_matches(source, "\n\\s*NF_ASSERT\\(tag.valid\\(\\)\\);[\\s\n]*\\}", true), 1);
        QCOMPARE(count_matches(source, "\\:\\:BUILDER\\:\\:BUILDER[^\\{]*\\{"), 1);
        QCOMPARE(count_matches(source, "\\s+new\\s*\\(\\s*p\\s*\\)\\s*[\\w_]+_RECORD\\s*\\(\\s*builder\\s*"),
                 1);
        QCOMPARE(count_matches(source, "\\/\\/ local includes[^\n]*(?:[\n\\s]*\\#include[^\n]*)*"), 1);
        QVERIFY(count_matches(source, "_RECORD\\(\\s*const\\s[^\\)]*\\)") >= 1);
        if (!table->versioned())
            QCOMPARE(count_matches(source,
                                   SAMPLE_GAME_SOURCE::record_type(table_name) +
                                       "::BUILDER::BUILDER\\(UTILITYDLL::VFS_FILE_STREAM_PTR& file\\)\\s*\n"),
                     1);

        for (const KOR_FIELD_SCHEMA* field : schema->field_schemas())
        {
            const QString name = field->field_name();
            const bool localised = table->field(name)->is_localised();
            const bool dependency = !field->source_table().isEmpty() &&
                                    m_catalogue.table(field->source_table())->is_implemented();
            // A field the builder reads has its member and its read; a
            // localised one comes from the string table by key instead.
            QRegExp member(QString("(struct\\s*BUILDER[\\s\n]*\\{(?:[^\\}\\{]*\\{[^\\}]*\\})*[^\\}\\{]*)"
                                   "(\n+\\s+(\\w+)\\s+\\bm_%1\\b;)")
                               .arg(name));
            member.setMinimal(true);
            const bool has_member = member.indexIn(header) >= 0;
            // A date-time field has no type in the game's code: its member
            // line holds "UNSUPPORTED_TYPE!!!!", which no field edit can find.
            QCOMPARE(has_member, !localised && field->field_type() != KFT_DATE_TIME);
            if (has_member)
                QCOMPARE(member.cap(3), SAMPLE_GAME_SOURCE::generated_type(field->field_type()));
            QCOMPARE(count_matches(
                         source, QString("(\n\\s*)(.{3}_TAG_IN)\\(\\*file\\s*,\\s*\\bm_%1\\b\\);").arg(name)),
                     localised ? 0 : 1);
            if (dependency)
                QCOMPARE(count_matches(source,
                                       QString("(\\b[\\w_]+\\b)\\s*=\\s*dependencies.(m_[\\w_]+).record\\s*"
                                               "\\(\\s*builder\\.m_%1\\s*\\)")
                                           .arg(name),
                                       true),
                         1);
            if (localised)
                QCOMPARE(count_matches(source,
                                       QString("(\\b[\\w_]+\\b)\\s*=\\s*loc\\.[^\n]*_%1_\"\\s*\\+\\s*[^\n]*"
                                               "builder\\.(m_)?key\\b")
                                           .arg(name),
                                       true),
                         1);
        }
    }

    void table_code_follows_the_fields_of_the_table()
    {
        // A table of two keys, two fields referring to one implemented table,
        // an optional reference to another, a localised and an optional text.
        KOR_TABLE_SCHEMA schema("battle_categories");
        for (const SAMPLE_FIELD& field :
             {SAMPLE_FIELD::key("region"), SAMPLE_FIELD::key("turn", KFT_INTEGER),
              SAMPLE_FIELD::text("attacker").required().refers_to("factions"),
              SAMPLE_FIELD::text("defender").required().refers_to("factions"),
              SAMPLE_FIELD::text("culture").refers_to("cultures"),
              SAMPLE_FIELD::text("title").required().localised("battles"), SAMPLE_FIELD::text("notes")})
            schema.add_field_schema(field.make(QUuid::createUuid()));
        const SAMPLE_GAME_SOURCE code(schema, {"factions", "cultures"}, {{"title", "battles"}},
                                      "C:/dev/trunk", "Mon Jan 6 10:00:00 2025", 0);
        const QString header = code.header();
        const QString source = code.source();
        QVERIFY(header.contains("struct COBALTUTILITY_API BATTLE_CATEGORY_RECORD\n"));
        QVERIFY(header.contains(
            "\t\t\tconst String key() const { return m_region + String::format(m_turn); }\n"));
        QCOMPARE(header.count("const FACTIONS_TABLE & m_factions;"), 1);
        QCOMPARE(source.count("#include \"FactionsTable.h\"\n"), 1);
        // Fields are taken in name order, dependencies before localised texts.
        QVERIFY(header.contains("const FACTION_RECORD & m_attacker;\n\t\tconst CULTURE_RECORD * m_culture;\n"
                                "\t\tconst FACTION_RECORD & m_defender;\n\t\tconst UniString & m_title;\n"));
        QVERIFY(!header.contains("m_title;\n\t\t};")); // no builder member for the localised text
        QVERIFY(source.contains("\t\tOPT_TAG_OUT(output, tag, notes);\n"));
        QVERIFY(source.contains("\t\tREQ_TAG_OUT(output, tag, turn, int32);\n"));
        QVERIFY(!source.contains("TAG_OUT(output, tag, title"));
        QVERIFY(source.contains("loc.string_get(\"battle_categories_title_\" + builder.key());"));
        QVERIFY(source.contains(
            "return new(p) BATTLE_CATEGORY_RECORD(builder, *attacker, culture, *defender, *title);"));
        QVERIFY(source.contains("UTILITYLIB::TABLE_LIST & bad_tables)"));
        QCOMPARE(
            code.element_line(),
            QString(
                "\t\tELEM(battle_categories_table ,BATTLE_CATEGORIES_TABLE , (m_vfs , "
                "BATTLE_CATEGORY_RECORD::DEPENDENCIES(factions_table(), cultures_table()) , stringtable() , "
                "m_bad_mods)) \\"));
    }
};

QTEST_MAIN(TST_SAMPLE_SOURCE_TREE)
#include "tst_sample_source_tree.moc"
