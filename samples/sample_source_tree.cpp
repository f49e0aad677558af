#include "sample_source_tree.h"

#include "kor_database_schema.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"
#include "sample_catalogue.h"
#include "sample_game_source.h"
#include "sample_project_files.h"
#include "sample_random.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace
{
const QString SOURCE = QStringLiteral("/common/CobaltUtility/Source/");
const QString REDIST = QStringLiteral("/common/CobaltUtility/Redist/");

// Source files are Latin-1 text with line feeds, as the generator writes them.
bool write_text(QString& error, const QString& path, const QString& text)
{
    error = SAMPLE_PROJECT_FILES::write_file(path, text.toLatin1());
    return error.isEmpty();
}

QString banner(const QString& path, const QString& created)
{
    return QStringLiteral("//--------------------------------------------------\n") + "// File:    " + path +
           "\n" + "// Created: " + created + "\n" + "//\n// Description: $\n//\n" +
           "// Copyright Northfold Games. All rights reserved.\n" +
           "//--------------------------------------------------\n\n";
}

QString unity_block(int number, const QString& file)
{
    return QStringLiteral(
               "\n\n#ifdef NF_MEM_TRACKING\nstatic char MEM_CHK_TMPNAME_%1[] = \"%2\";\n#define THIS_FILE "
               "MEM_CHK_TMPNAME_%1\n#endif // NF_MEM_TRACKING\n#pragma message(\"... %2\")\n#include "
               "\"%2\"\n#undef THIS_FILE")
        .arg(number)
        .arg(file);
}

const char* const CONFIGURATIONS[][2] = {
    {"Debug|Win32", "false"},       {"IntelCompiler|Win32", "true"},
    {"UnityDebug|Win32", "true"},   {"UnityReleaseFinal|Win32", "true"},
    {"UnityRelease|Win32", "true"}, {"zIntelUnityRelease|Win32", "true"},
    {"UnityDebug|x64", "true"},     {"Debug|x64", "false"},
    {"IntelCompiler|x64", "true"},  {"UnityReleaseFinal|x64", "true"},
    {"UnityRelease|x64", "true"},   {"zIntelUnityRelease|x64", "true"},
    {"Fernlight|Win32", "true"},    {"Fernlight|x64", "true"},
};

QString project_compile_entry(const QString& source_name)
{
    QString text = "  <ClCompile Include=\"Source\\databases\\" + source_name + "\">\n";
    for (const auto& configuration : CONFIGURATIONS)
        text +=
            QStringLiteral("\t\t<ExcludedFromBuild Condition=\"'$(Configuration)|$(Platform)'=='%1'\">%2</"
                           "ExcludedFromBuild>\n")
                .arg(configuration[0], configuration[1]);
    return text + "\t</ClCompile>\n";
}

QString project_file(const QStringList& tables)
{
    QString text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                   "<Project DefaultTargets=\"Build\" ToolsVersion=\"15.0\" "
                   "xmlns=\"http://schemas.microsoft.com/developer/msbuild/2003\">\n"
                   "  <ItemGroup Label=\"ProjectConfigurations\">\n";
    for (const auto& configuration : CONFIGURATIONS)
    {
        const QString name = configuration[0];
        text += "    <ProjectConfiguration Include=\"" + name + "\">\n      <Configuration>" +
                name.section('|', 0, 0) + "</Configuration>\n      <Platform>" + name.section('|', 1) +
                "</Platform>\n    </ProjectConfiguration>\n";
    }
    text += "  </ItemGroup>\n"
            "  <PropertyGroup Label=\"Globals\">\n"
            "    <ProjectGuid>{5D1C0E4A-7F3B-4B8E-9C2D-1A6F0B3E8D71}</ProjectGuid>\n"
            "    <RootNamespace>CobaltUtility</RootNamespace>\n"
            "    <SccProjectName>SAK</SccProjectName>\n"
            "    <SccLocalPath>SAK</SccLocalPath>\n"
            "    <SccProvider>SAK</SccProvider>\n"
            "  </PropertyGroup>\n"
            "  <ItemDefinitionGroup Condition=\"'$(Configuration)|$(Platform)'=='Debug|x64'\">\n"
            "    <ClCompile>\n"
            "      <PreprocessorDefinitions>COBALTUTILITY_EXPORTS;NF_MEM_TRACKING;%(PreprocessorDefinitions)"
            "</PreprocessorDefinitions>\n"
            "      <PrecompiledHeader>Use</PrecompiledHeader>\n"
            "      <PrecompiledHeaderFile>std_pch.h</PrecompiledHeaderFile>\n"
            "    </ClCompile>\n"
            "  </ItemDefinitionGroup>\n"
            "  <ItemDefinitionGroup Condition=\"'$(Configuration)|$(Platform)'=='UnityRelease|x64'\">\n"
            "    <ClCompile>\n"
            "      "
            "<PreprocessorDefinitions>COBALTUTILITY_EXPORTS;%(PreprocessorDefinitions)</"
            "PreprocessorDefinitions>\n"
            "    </ClCompile>\n"
            "  </ItemDefinitionGroup>\n"
            "  <ItemGroup>\n";
    for (const QString& table : tables)
        text += project_compile_entry(SAMPLE_GAME_SOURCE::source_name(table));
    text += "    <ClCompile Include=\"Source\\CobaltDatabases.cpp\" />\n"
            "    <ClCompile Include=\"Source\\Localisation.cpp\" />\n"
            "    <ClCompile Include=\"Source\\UnityCobaltUtility1.cpp\" />\n"
            "    <ClCompile Include=\"Source\\UnityCobaltUtility2.cpp\" />\n"
            "    <ClCompile Include=\"Source\\UnityCobaltUtility3.cpp\" />\n"
            "    <ClCompile Include=\"Source\\std_pch.cpp\">\n"
            "      <PrecompiledHeader>Create</PrecompiledHeader>\n"
            "    </ClCompile>\n"
            "  </ItemGroup>\n"
            "  <ItemGroup>\n";
    for (const QString& table : tables)
        text += "    <ClInclude Include=\"Redist\\" + SAMPLE_GAME_SOURCE::header_name(table) + "\" />\n";
    text += "    <ClInclude Include=\"Redist\\CobaltDatabases.h\" />\n"
            "    <ClInclude Include=\"Redist\\Localisation.h\" />\n"
            "    <ClInclude Include=\"Source\\std_pch.h\" />\n"
            "  </ItemGroup>\n"
            "  <ItemGroup>\n"
            "    <None Include=\"CobaltUtility.vspscc\" />\n"
            "  </ItemGroup>\n"
            "  <Import Project=\"$(VCTargetsPath)\\Microsoft.Cpp.targets\" />\n"
            "</Project>\n";
    return text;
}

QString filters_file(const QStringList& tables)
{
    QString text =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<Project ToolsVersion=\"4.0\" xmlns=\"http://schemas.microsoft.com/developer/msbuild/2003\">\n"
        "  <ItemGroup>\n"
        "    <Filter Include=\"Source\">\n"
        "      <UniqueIdentifier>{8A3C1F52-2E44-4F0B-A7A9-3E1F6B7C9D10}</UniqueIdentifier>\n"
        "    </Filter>\n"
        "    <Filter Include=\"Source\\Tables\">\n"
        "      <UniqueIdentifier>{0F6E2B19-93C4-4A7D-8E25-6C1D0A4B7E32}</UniqueIdentifier>\n"
        "    </Filter>\n"
        "    <Filter Include=\"Redist\">\n"
        "      <UniqueIdentifier>{C47B9E03-5D18-4F62-B0A1-9E7F3C2D6A54}</UniqueIdentifier>\n"
        "    </Filter>\n"
        "    <Filter Include=\"Redist\\Tables\">\n"
        "      <UniqueIdentifier>{3B8D5A71-0C29-4E96-A4F3-7D2E1B9C0F65}</UniqueIdentifier>\n"
        "    </Filter>\n"
        "  </ItemGroup>\n"
        "  <ItemGroup>\n";
    for (const QString& table : tables)
        text += "    <ClCompile Include=\"Source\\databases\\" + SAMPLE_GAME_SOURCE::source_name(table) +
                "\" >\n      <Filter>Source\\Tables</Filter>\n    </ClCompile>\n";
    text += "    <ClCompile Include=\"Source\\CobaltDatabases.cpp\">\n      <Filter>Source</Filter>\n    "
            "</ClCompile>\n"
            "  </ItemGroup>\n"
            "  <ItemGroup>\n";
    for (const QString& table : tables)
        text += "    <ClInclude Include=\"Redist\\" + SAMPLE_GAME_SOURCE::header_name(table) +
                "\">\n      <Filter>Redist\\Tables</Filter>\n    </ClInclude>\n";
    text += "    <ClInclude Include=\"Redist\\CobaltDatabases.h\">\n      <Filter>Redist</Filter>\n    "
            "</ClInclude>\n"
            "  </ItemGroup>\n"
            "  <ItemGroup>\n"
            "    <None Include=\"CobaltUtility.vspscc\" />\n"
            "  </ItemGroup>\n"
            "</Project>\n";
    return text;
}
} // namespace

QString SAMPLE_SOURCE_TREE::write(const QString& branch_root, const QString& database_path,
                                  const SAMPLE_CATALOGUE& catalogue, quint64 seed)
{
    KOR_DATABASE_SCHEMA schema;
    QString error;
    if (!KOR_TABLE_IO::read_database_schema(error, database_path, schema, nullptr))
        return error;
    QStringList order;
    if (!catalogue.creation_order(order, error))
        return error;
    QSet<QString> implemented;
    QStringList code_tables;
    for (const QString& name : qAsConst(order))
    {
        const SAMPLE_TABLE* table = catalogue.table(name);
        if (table->is_implemented())
            implemented.insert(name);
        if (table->has_code())
            code_tables.append(name);
    }

    const SAMPLE_RANDOM root(seed);
    const QString original = original_root();
    QString element_lines, struct_lines, cobalt_includes, tool_includes;
    QStringList tool_commands;
    QStringList sorted = code_tables;
    std::sort(sorted.begin(), sorted.end());
    for (const QString& name : qAsConst(code_tables))
    {
        const SAMPLE_TABLE* table = catalogue.table(name);
        const KOR_TABLE_SCHEMA* table_schema = schema.table_schema(name);
        if (!table_schema)
            return QStringLiteral("The database has no table '%1'").arg(name);
        SAMPLE_RANDOM random = root.fork(name + QStringLiteral("/code"));
        QMap<QString, QString> localised;
        for (const SAMPLE_FIELD& field : table->fields())
            if (field.is_localised())
                localised.insert(field.name, field.spreadsheet);
        // Local time, as the generator wrote it: no zone in the text, and
        // nothing that depends on the zone of the machine making the sample.
        const QDateTime created = QDateTime(QDate(2019, 5, 6).addDays(random.range(0, 5 * 365)),
                                            QTime(9, 0).addSecs(random.range(0, 8 * 3600)), Qt::LocalTime);
        const int version = table->versioned() ? random.range(0, 3) : -1;
        const SAMPLE_GAME_SOURCE source(*table_schema, implemented, localised, original, created.toString(),
                                        version);
        if (!write_text(error, branch_root + REDIST + SAMPLE_GAME_SOURCE::header_name(name),
                        source.header()) ||
            !write_text(error, branch_root + SOURCE + "databases/" + SAMPLE_GAME_SOURCE::source_name(name),
                        source.source()))
            return error;
        element_lines += source.element_line() + "\n";
        struct_lines += "\tstruct " + SAMPLE_GAME_SOURCE::table_type(name) + ";\n";
        cobalt_includes += "#include \"" + SAMPLE_GAME_SOURCE::header_name(name) + "\"\n";
    }
    for (const QString& name : qAsConst(sorted))
    {
        SAMPLE_GAME_SOURCE source(*schema.table_schema(name), implemented, {}, original, QString(),
                                  catalogue.table(name)->versioned() ? 0 : -1);
        tool_commands.append(source.tool_command());
        tool_includes += "\n#include \"" + SAMPLE_GAME_SOURCE::header_name(name) + "\"";
    }

    const QString created = QStringLiteral("Mon Jan 14 09:12:40 2019");
    QString text = banner(original + REDIST + "CobaltDatabases.h", created);
    text += "#ifndef COBALT_DATABASES_H\n#define COBALT_DATABASES_H\n\n#pragma once\n\n"
            "#include \"UtilDatabase.h\"\n#include \"SteppeDB.h\"\n\n";
    text += "namespace COBALTUTILITY\n{\n" + struct_lines;
    text += "\n\tstruct COBALTUTILITY_API COBALT_DATABASES\n\t{\n"
            "\t\tstatic bool s_skip_dependency_loading_failures;\n\n"
            "\t\tCOBALT_DATABASES(UTILITYDLL::VFS& vfs, BAD_MOD_LIST_TYPE& bad_mods);\n\n"
            "\t\tconst UTILITYDLL::STRING_TABLE& stringtable() const;\n\n";
    text += "#define DATABASE_LIST(ELEM) \\\n" + element_lines + "\n";
    text += "\t\tDATABASE_LIST(DECLARE_DATABASE_MEMBER)\n\n"
            "\tprivate:\n\t\tUTILITYDLL::VFS& m_vfs;\n\t\tBAD_MOD_LIST_TYPE& m_bad_mods;\n\t};\n"
            "} // namespace COBALTUTILITY\n\n#endif // COBALT_DATABASES_H\n";
    if (!write_text(error, branch_root + REDIST + "CobaltDatabases.h", text))
        return error;

    text = banner(original + SOURCE + "CobaltDatabases.cpp", created);
    text += "#include \"std_pch.h\"\n\n// local includes //////////////////////////////////\n"
            "#include \"CobaltDatabases.h\"\n" +
            cobalt_includes;
    text += "\nnamespace COBALTUTILITY\n{\n"
            "\tbool COBALT_DATABASES::s_skip_dependency_loading_failures = false;\n\n"
            "\tCOBALT_DATABASES::COBALT_DATABASES(UTILITYDLL::VFS& vfs, BAD_MOD_LIST_TYPE& bad_mods)\n"
            "\t\t: m_vfs(vfs), m_bad_mods(bad_mods)\n\t{\n\t\tDATABASE_LIST(CONSTRUCT_DATABASE_MEMBER)\n\t}\n"
            "} // namespace COBALTUTILITY\n";
    if (!write_text(error, branch_root + SOURCE + "CobaltDatabases.cpp", text))
        return error;

    // Every table command sits in the one namespace block, whose closing
    // brace is the only one at the start of a line.
    text = banner(original + "/common/ToolDataBuilder/Source/Tables.cpp", created);
    text += "#include \"std_pch.h\"\n\n// OS includes /////////////////////////////////////\n\n"
            "// DLL includes ////////////////////////////////////\n" +
            tool_includes + "\n#include \"CobaltDatabases.h\"\n\n";
    text += "// local includes //////////////////////////////////\n#include \"ToolCommands.h\"\n\n"
            "namespace TOOLDATABUILDER\n{\n" +
            tool_commands.join("\n\n") + "\n}\n";
    if (!write_text(error, branch_root + "/common/ToolDataBuilder/Source/Tables.cpp", text))
        return error;

    // Three unity files share the sources; numbering runs on across them.
    int number = 0;
    const int per_file = (code_tables.size() + 2) / 3;
    for (int file = 1; file <= 3; ++file)
    {
        text = banner(original + SOURCE + QStringLiteral("UnityCobaltUtility%1.cpp").arg(file), created);
        text += "#include \"std_pch.h\"";
        if (file == 1)
            text += unity_block(++number, "Localisation.cpp");
        for (const QString& name : code_tables.mid((file - 1) * per_file, per_file))
            text += unity_block(++number, "databases/" + SAMPLE_GAME_SOURCE::source_name(name));
        if (!write_text(error, branch_root + SOURCE + QStringLiteral("UnityCobaltUtility%1.cpp").arg(file),
                        text + "\n"))
            return error;
    }

    QStringList project_order = code_tables;
    std::reverse(project_order.begin(), project_order.end());
    if (!write_text(error, branch_root + "/common/CobaltUtility/CobaltUtility.vcxproj",
                    project_file(project_order)) ||
        !write_text(error, branch_root + "/common/CobaltUtility/CobaltUtility.vcxproj.filters",
                    filters_file(project_order)) ||
        !write_text(error, branch_root + "/common/CobaltUtility/CobaltUtility.vspscc",
                    "\"\"\n{\n\"FILE_VERSION\" = \"9237\"\n\"ENLISTMENT_CHOICE\" = \"NEVER\"\n"
                    "\"PROJECT_FILE_RELATIVE_PATH\" = \"\"\n\"NUMBER_OF_EXCLUDED_FILES\" = \"0\"\n"
                    "\"ORIGINAL_PROJECT_FILE_PATH\" = \"\"\n\"NUMBER_OF_NESTED_PROJECTS\" = \"0\"\n"
                    "\"SOURCE_CONTROL_SETTINGS_PROVIDER\" = \"PROVIDER\"\n}\n"))
        return error;

    // Small companions the sources name, so that the tree reads as a whole.
    if (!write_text(error, branch_root + SOURCE + "std_pch.cpp",
                    banner(original + SOURCE + "std_pch.cpp", created) + "#include \"std_pch.h\"\n") ||
        !write_text(error, branch_root + SOURCE + "std_pch.h",
                    banner(original + SOURCE + "std_pch.h", created) +
                        "#pragma once\n\n#include \"UtilDatabase.h\"\n#include \"UtilMemory.h\"\n") ||
        !write_text(error, branch_root + SOURCE + "Localisation.cpp",
                    banner(original + SOURCE + "Localisation.cpp", created) +
                        "#include \"std_pch.h\"\n#include \"Localisation.h\"\n") ||
        !write_text(error, branch_root + REDIST + "Localisation.h",
                    banner(original + REDIST + "Localisation.h", created) +
                        "#pragma once\n\nnamespace COBALTUTILITY\n{\n\tstruct UniString;\n}\n"))
        return error;

    // The steppe library keeps its tables in one header of its own.
    text = banner("C:/dev/trunk/common/SteppeDB/Redist/SteppeDB.h", created) +
           "#pragma once\n\n#include \"UtilDatabase.h\"\n\nnamespace STEPPE\n{\n";
    for (const SAMPLE_TABLE& table : catalogue.tables())
        if (table.name().startsWith(QLatin1String("steppe_")))
            text += "\tstruct " + SAMPLE_GAME_SOURCE::record_type(table.name()).mid(7) + ";\n\tstruct " +
                    SAMPLE_GAME_SOURCE::table_type(table.name()).mid(7) + ";\n";
    text += "} // namespace STEPPE\n";
    if (!write_text(error, branch_root + "/common/SteppeDB/Redist/SteppeDB.h", text))
        return error;
    return QString();
}
