#include "sample_game_source.h"

#include "kor_field_schema.h"
#include "kor_table_schema.h"

#include <QRegularExpression>

namespace
{
QString steppe(QString type)
{
    static const QRegularExpression prefix(QStringLiteral("^STEPPE_"));
    return type.replace(prefix, QStringLiteral("STEPPE::"));
}

QString without_member_prefix(QString text)
{
    return text.remove(QStringLiteral(" m_"));
}
} // namespace

SAMPLE_GAME_SOURCE::SAMPLE_GAME_SOURCE(const KOR_TABLE_SCHEMA& schema, const QSet<QString>& implemented,
                                       const QMap<QString, QString>& localised, const QString& root,
                                       const QString& created, int version)
    : m_schema(schema), m_table(schema.get_table_name()), m_localised(localised), m_root(root),
      m_created(created), m_version(version)
{
    for (const KOR_FIELD_SCHEMA* field : schema.field_schemas())
        if (!field->source_table().isEmpty() && implemented.contains(field->source_table()))
            m_dependencies.append(field);
}

QString SAMPLE_GAME_SOURCE::singular(const QString& table)
{
    if (table.endsWith(QLatin1String("ies")))
        return table.left(table.size() - 3) + QLatin1Char('y');
    if (table.endsWith(QLatin1Char('s')))
        return table.left(table.size() - 1);
    return table;
}

QString SAMPLE_GAME_SOURCE::record_type(const QString& table)
{
    return singular(table).toUpper() + QStringLiteral("_RECORD");
}

QString SAMPLE_GAME_SOURCE::table_type(const QString& table)
{
    return table.toUpper() + QStringLiteral("_TABLE");
}

QString SAMPLE_GAME_SOURCE::file_base(const QString& table)
{
    QString base;
    for (const QString& part : table.split(QLatin1Char('_'), Qt::SkipEmptyParts))
        base += part.size() == 1 ? part.toUpper() : part.left(1).toUpper() + part.mid(1);
    return base;
}

QString SAMPLE_GAME_SOURCE::generated_type(int field_type)
{
    switch (field_type)
    {
    case 1:
        return QStringLiteral("bool");
    case 2:
    case 3:
        return QStringLiteral("int32");
    case 4:
    case 5:
    case 6:
        return QStringLiteral("float32");
    case 7:
        return QStringLiteral("String");
    case 8:
        return QStringLiteral("int64");
    case 10:
    case 11:
        return QStringLiteral("card64");
    default:
        return QStringLiteral("UNSUPPORTED_TYPE!!!!");
    }
}

bool SAMPLE_GAME_SOURCE::required_form(const KOR_FIELD_SCHEMA* field) const
{
    return field->is_required() || field->field_type() != KFT_TEXT;
}

QString SAMPLE_GAME_SOURCE::foreign_table_type(const KOR_FIELD_SCHEMA* field) const
{
    return steppe(table_type(field->source_table()));
}

QString SAMPLE_GAME_SOURCE::foreign_record_type(const KOR_FIELD_SCHEMA* field) const
{
    return steppe(record_type(field->source_table()));
}

QStringList SAMPLE_GAME_SOURCE::dependency_tables() const
{
    QStringList tables;
    for (const KOR_FIELD_SCHEMA* field : m_dependencies)
        if (!tables.contains(field->source_table()))
            tables.append(field->source_table());
    return tables;
}

QStringList SAMPLE_GAME_SOURCE::record_members() const
{
    QStringList members;
    for (const KOR_FIELD_SCHEMA* field : m_dependencies)
        members.append(
            QStringLiteral("const %1 %2 m_%3")
                .arg(foreign_record_type(field), field->is_required() ? "&" : "*", field->field_name()));
    for (auto it = m_localised.constBegin(); it != m_localised.constEnd(); ++it)
    {
        const KOR_FIELD_SCHEMA* field = m_schema.field_schema_by_name(it.key());
        members.append(
            QStringLiteral("const UniString %1 m_%2").arg(field->is_required() ? "&" : "*", it.key()));
    }
    return members;
}

QString SAMPLE_GAME_SOURCE::banner(const QString& path) const
{
    return QStringLiteral("//--------------------------------------------------\n") + "// File:    " + path +
           "\n" + "// Created: " + m_created + "\n" + "//\n// Description: $\n//\n" +
           "// Copyright Northfold Games. All rights reserved.\n" +
           "//--------------------------------------------------\n\n";
}

QString SAMPLE_GAME_SOURCE::key_line() const
{
    QString line = QStringLiteral("\t\t\tconst String key() const { return ");
    const QList<QString>& keys = m_schema.primary_key_fields();
    if (keys.size() == 1 && m_schema.field_schema_by_name(keys.first())->field_type() == KFT_TEXT)
        line.insert(15, QLatin1Char('&'));
    QStringList parts;
    for (const QString& key : keys)
    {
        if (m_schema.field_schema_by_name(key)->field_type() == KFT_TEXT)
            parts.append(QStringLiteral("m_") + key);
        else
            parts.append(QStringLiteral("String::format(m_") + key + QLatin1Char(')'));
    }
    return line + parts.join(QStringLiteral(" + ")) + QStringLiteral("; }\n\n");
}

QString SAMPLE_GAME_SOURCE::header() const
{
    const QString R = record_type(m_table);
    const QString B = table_type(m_table);
    const QString G = m_table.toUpper() + QStringLiteral("_TABLE_H");
    const bool versioned = m_version >= 0;

    QStringList steppe_types, cobalt_types;
    for (const KOR_FIELD_SCHEMA* field : m_dependencies)
        for (const QString& type : {foreign_table_type(field), foreign_record_type(field)})
        {
            QStringList& list = type.startsWith(QLatin1String("STEPPE::")) ? steppe_types : cobalt_types;
            const QString declaration = QStringLiteral("struct %1;\n").arg(QString(type).remove("STEPPE::"));
            if (!list.contains(declaration))
                list.append(declaration);
        }

    QString text = banner(m_root + QStringLiteral("/common/CobaltUtility/Redist/") + header_name(m_table));
    text += "#ifndef " + G + "\n#define " + G + "\n\n";
    text += "#pragma once\n\n#ifdef SHOW_HEADERS\n#pragma message(\" < \"__FILE__)\n#endif\n\n"
            "// includes ////////////////////////////////////////\n\n";
    text += "#include \"UtilDatabase.h\"\n\n// defines /////////////////////////////////////////\n\n";
    text += "// forward declarations ////////////////////////////\n\n";
    text += "namespace UTILITYDLL\n{\n\tclass XML_ELEMENT;\n\tstruct VFS_FILE_STREAM_PTR;\n}\n\n";
    if (!steppe_types.isEmpty())
        text += "namespace STEPPE\n{\n\t" + steppe_types.join("\t") + ";\n}\n\n";
    text += "namespace COBALTUTILITY\n{\n\t// forward declarations ////////////////////////////\n\n";
    text += "\t\t" + cobalt_types.join("\t\t") + "\n";
    text += "\n\t// type declarations (enum struct class) /////////\n\n";
    text += "\t// public (\"extern\") data declarations /////////////\n\n";
    text += "\t// public function declarations ////////////////////\n\n";
    text += "\tstruct COBALTUTILITY_API " + R + "\n";
    text += "\t{\n\t\tstruct BUILDER\n\t\t{\n";
    if (versioned)
        text += QStringLiteral("\t\t\tenum { VERSION = %1 };\n\n").arg(m_version);
    text += "\t\t\tCOBALTUTILITY_API static void\tparse(const UTILITYDLL::XML_ELEMENT& , FileOut&);\n";
    if (versioned)
    {
        text += "\t\t\tstatic BUILDER*\t\t\t\t\trecord_from_stream(void* , UTILITYDLL::VFS_FILE_STREAM_PTR&, "
                "card32);\n\n";
        text += "\t\t\tBUILDER(UTILITYDLL::VFS_FILE_STREAM_PTR&, card32);\n\n";
    }
    else
    {
        text += "\t\t\tstatic BUILDER*\t\t\t\t\trecord_from_stream(void* , "
                "UTILITYDLL::VFS_FILE_STREAM_PTR&);\n\n";
        text += "\t\t\tBUILDER(UTILITYDLL::VFS_FILE_STREAM_PTR&);\n\n";
    }
    text += key_line();
    for (const KOR_FIELD_SCHEMA* field : m_schema.field_schemas())
        if (!m_localised.contains(field->field_name()))
            text += "\t\t\t" + generated_type(field->field_type()) + "\tm_" + field->field_name() + ";\n";
    text += "\t\t};\n\n\t\ttypedef DATABASE_TABLE<BUILDER , NF_STD::FRAME_ALLOCATOR<BUILDER*>, "
            "NF_STD::FRAME_ALLOCATOR<BUILDER>, NF_STD::FRAME_ALLOCATOR<PACK_FILE*>, NFFrameAllocator> "
            "DATABASE_BUILDER_TABLE;\n\n";
    text += "\t\tstruct BUILDER_TABLE : public "
            "DATABASE_BUILDER_TABLE\n\t\t{\n\t\t\tBUILDER_TABLE(UTILITYDLL::VFS&);\n"
            "\t\t};\n\n";
    text += "\t\tstruct DEPENDENCIES\n\t\t{\n\t\t\t// TODO: Add any dependencies if any exist\n";
    QStringList dependency_members;
    for (const KOR_FIELD_SCHEMA* field : m_dependencies)
    {
        const QString member =
            QStringLiteral("const %1 & m_%2").arg(foreign_table_type(field), field->source_table());
        if (!dependency_members.contains(member))
            dependency_members.append(member);
    }
    QStringList stripped;
    for (const QString& member : qAsConst(dependency_members))
        stripped.append(without_member_prefix(member));
    text += "\n\t\t\tDEPENDENCIES(" + stripped.join(", ") + ");\n\n";
    if (!dependency_members.isEmpty())
        text += "\t\t\t" + dependency_members.join(";\n\t\t\t") + ";\n";
    text += "\t\t};\n\n";
    text += "\t\tstatic " + R +
            "*\t\t\t\trecord_from_file_object(void* , const BUILDER& , const DEPENDENCIES& , const "
            "UTILITYDLL::STRING_TABLE& , UTILITYLIB::TABLE_LIST &);\n";
    const QStringList members = record_members();
    text += "\t\t\t\t" + R + "(const BUILDER&" + (members.isEmpty() ? "" : ",");
    stripped.clear();
    for (const QString& member : members)
        stripped.append(without_member_prefix(member));
    text += stripped.join(", ") + ");\n";
    if (!members.isEmpty())
        text += "\t\t" + members.join(";\n\t\t") + ";\n";
    for (const KOR_FIELD_SCHEMA* field : m_schema.field_schemas())
        if (!m_localised.contains(field->field_name()) && !m_dependencies.contains(field))
            text += "\t\t" + generated_type(field->field_type()) + "\tm_" + field->field_name() + ";\n";
    text += "\t};\n\n\tstruct " + B + " : public DATABASE_TABLE<" + R + ">\n";
    text += "\t{\n\tpublic:\n\t\t" + B + "(const " + R + "::BUILDER_TABLE& , const " + R +
            "::DEPENDENCIES& , const UTILITYDLL::STRING_TABLE& , BAD_MOD_LIST_TYPE &);\n\t};\n\n";
    text += "} // namespace COBALTUTILITY\n\n// eof /////////////////////////////////////////////\n\n";
    text += "#ifdef SHOW_HEADERS\n#pragma message(\" > \"__FILE__)\n#endif // SHOW_HEADERS\n\n#endif // " + G;
    return text;
}

QString SAMPLE_GAME_SOURCE::source() const
{
    const QString R = record_type(m_table);
    const QString B = table_type(m_table);
    const bool versioned = m_version >= 0;
    QString text =
        banner(m_root + QStringLiteral("/common/CobaltUtility/Source/databases/") + source_name(m_table));
    text += "#include \"std_pch.h\"\n\n#ifdef NF_MEM_TRACKING\n#ifndef THIS_FILE\nstatic char THIS_FILE[] = "
            "__FILE__;\n#endif // THIS_FILE\n";
    text += "#define nf_new CUSTOM_NEW\n#else\n#define nf_new new\n#endif // NF_MEM_TRACKING\n\n#include "
            "\"UtilMemory.h\"\n\n";
    text += "// OS includes /////////////////////////////////////\n\n";
    text += "// standard/runtime library includes ///////////////\n\n";
    text += "// DLL includes ////////////////////////////////////\n\n";
    text += "// local includes //////////////////////////////////\n";
    text += "#include \"" + header_name(m_table) + "\"\n\n";
    text += "#include \"CobaltDatabases.h\"\n";
    text += "#include \"Localisation.h\"\n";
    QStringList parameters, initialisers;
    bool steppe_included = false;
    for (const QString& foreign : dependency_tables())
    {
        const QString type = steppe(table_type(foreign));
        if (type.contains(QLatin1String("STEPPE::")))
        {
            if (!steppe_included)
                text += "#include \"SteppeDB.h\"\n";
            steppe_included = true;
        }
        else
        {
            text += "#include \"" + header_name(foreign) + "\"\n";
        }
        parameters.append(QStringLiteral("const %1 & %2").arg(type, foreign));
        initialisers.append(QStringLiteral("m_%1(%1)").arg(foreign));
    }
    text += "// inline definition includes (*.inl) //////////////\n\n// defines "
            "/////////////////////////////////////////\n\n";
    text += "// using declarations //////////////////////////////\n\n// private (\"static\") definitions "
            "//////////////////\n\n";
    text += "namespace\n{\n\t// data ////////////////////////////////////////////\n\n\t// code "
            "////////////////////////////////////////////\n\n}\n\n";
    text += "// public definitions //////////////////////////////\n\nnamespace COBALTUTILITY\n{\n\t// data "
            "////////////////////////////////////////////\n\n";
    text += "\tvoid " + R + "::BUILDER::parse(const UTILITYDLL::XML_ELEMENT& tag , FileOut& output)\n";
    text += "\t{\n\t\tNF_ASSERT(tag.valid());\n\t\t// TODO: Add in code to output the rest of the fields "
            "from the XML "
            "file\n";
    for (const KOR_FIELD_SCHEMA* field : m_schema.field_schemas())
    {
        if (m_localised.contains(field->field_name()))
            continue;
        if (required_form(field))
            text += "\t\tREQ_TAG_OUT(output, tag, " + field->field_name() + ", " +
                    generated_type(field->field_type()) + ");\n";
        else
            text += "\t\tOPT_TAG_OUT(output, tag, " + field->field_name() + ");\n";
    }
    text +=
        "\n\t\tNF_ASSERT(tag.valid());\n\t\n\t}\n\n\t" + R + "::BUILDER_TABLE::BUILDER_TABLE(VFS& vfs) :\n";
    text += "\tDATABASE_BUILDER_TABLE(vfs , L\"" + m_table + "_tables\" , " + R +
            "::BUILDER::record_from_stream)\n\t{\n\t}\n\n";
    if (versioned)
    {
        text += "\t" + R + "::BUILDER* " + R +
                "::BUILDER::record_from_stream(void* p , UTILITYDLL::VFS_FILE_STREAM_PTR& file, card32 "
                "table_version)\n";
        text += "\t{\n\t\treturn new(p) " + R + "::BUILDER(file, table_version);\n\t}\n\n";
        text += "\t" + R +
                "::BUILDER::BUILDER(UTILITYDLL::VFS_FILE_STREAM_PTR& file, card32 table_version)\n\t{\n";
        text += "\t\ttable_version;\n";
    }
    else
    {
        text += "\t" + R + "::BUILDER* " + R +
                "::BUILDER::record_from_stream(void* p , UTILITYDLL::VFS_FILE_STREAM_PTR& file)\n";
        text += "\t{\n\t\treturn new(p) " + R + "::BUILDER(file);\n\t}\n\n";
        text += "\t" + R + "::BUILDER::BUILDER(UTILITYDLL::VFS_FILE_STREAM_PTR& file)\n\t{\n";
    }
    for (const KOR_FIELD_SCHEMA* field : m_schema.field_schemas())
    {
        if (m_localised.contains(field->field_name()))
            continue;
        text += QStringLiteral("\t\t%1_TAG_IN(*file , m_").arg(required_form(field) ? "REQ" : "OPT") +
                field->field_name() + ");\n";
    }
    text += "\t}\n\n\t" + R + "::DEPENDENCIES::DEPENDENCIES(";
    text += parameters.join(", ") + ")" + (parameters.isEmpty() ? "" : "\n\t\t:\n");
    if (!initialisers.isEmpty())
        text += "\t\t" + initialisers.join(",\n\t\t");
    text += "\n\t{}\n";
    text += "\n\t" + R + "* " + R + "::record_from_file_object(void* p , const " + R +
            "::BUILDER& builder , const " + R +
            "::DEPENDENCIES& dependencies , const UTILITYDLL::STRING_TABLE& loc , UTILITYLIB::TABLE_LIST & " +
            (m_dependencies.isEmpty() ? "/*bad_tables*/" : "bad_tables") + ")\n";
    text +=
        "\t{\n\t\t// Do verification\n\t\t// For the sake of the modding system dependencies should be "
        "evaluated "
        "here and passed in to the constructor of your record\n\t\t// If the dependencies don't evaluated "
        "correctly (i.e. validation fails) then return a 'null' here\n";
    text += "\t\tloc; dependencies;\n\n";
    QString arguments;
    QStringList record_parameters = {QStringLiteral("builder")};
    for (const KOR_FIELD_SCHEMA* field : m_dependencies)
    {
        const QString f = field->field_name();
        const QString record = foreign_record_type(field);
        const QString foreign = field->source_table();
        if (field->is_required())
        {
            text += QStringLiteral("\n\t\tconst %1* %2 = dependencies.m_%3.record(builder.m_%2);\n")
                        .arg(record, f, foreign);
            text += QStringLiteral("\t\tif(!%1)\n\t\t{\n\t\t\tNF_ERROR1(L\"%2 table bad entry "
                                   "%s\\n\",builder.m_%1.get_temporary_chars());\n")
                        .arg(f, foreign_table_type(field));
            text += "\t\t\tif (!COBALT_DATABASES::s_skip_dependency_loading_failures)\n\t\t\t{\n";
            text += QStringLiteral("\t\t\t\tbad_tables.push_back(&dependencies.m_%1);\n\t\t\t\treturn "
                                   "0;\n\t\t\t}\n\t\t}\n")
                        .arg(foreign);
        }
        else
        {
            text += QStringLiteral("\n\t\tconst %1* %2 = nullptr;\n").arg(record, f);
            text += QStringLiteral("\t\tif(!builder.m_%1.empty())\n\t\t{").arg(f);
            text += QStringLiteral("\n\t\t\t%1 = dependencies.m_%2.record(builder.m_%1);\n").arg(f, foreign);
            text += QStringLiteral("\t\t\tif(!%1)\n\t\t\t{\n\t\t\t\tNF_ERROR1(L\"%2 table bad entry "
                                   "%s\\n\",builder.m_%1.get_temporary_chars());\n")
                        .arg(f, foreign_table_type(field));
            text += "\t\t\t\tif (!COBALT_DATABASES::s_skip_dependency_loading_failures)\n\t\t\t\t{\n";
            text += QStringLiteral("\t\t\t\t\tbad_tables.push_back(&dependencies.m_%1);\n\t\t\t\t\treturn "
                                   "0;\n\t\t\t\t}\n\t\t\t}\n\t\t}\n")
                        .arg(foreign);
        }
        arguments += ", " + QString(field->is_required() ? "*" : "") + f;
        record_parameters.append(
            QStringLiteral("const %1 %2 %3").arg(record, field->is_required() ? "&" : "*", f));
    }
    for (auto it = m_localised.constBegin(); it != m_localised.constEnd(); ++it)
    {
        const KOR_FIELD_SCHEMA* field = m_schema.field_schema_by_name(it.key());
        const QString f = it.key();
        if (field->is_required())
        {
            text +=
                QStringLiteral("\n\t\tconst UniString * %1 = loc.string_get(\"%2_%1_\" + builder.key());\n")
                    .arg(f, m_table);
            text += QStringLiteral("\t\tif(!%1)\n\t\t{\n\t\t\tNF_ERROR1(L\"Localisation bad entry "
                                   "%2_%1_%s\\n\",builder.key().get_temporary_chars());\n")
                        .arg(f, m_table);
            text += "\t\t\treturn 0;\n\t\t}\n";
        }
        else
        {
            text += QStringLiteral("\n\t\tconst UniString * %1 = loc.possibly_null_string_get(\"%2_%1_\" + "
                                   "builder.key());\n")
                        .arg(f, m_table);
        }
        arguments += ", " + QString(field->is_required() ? "*" : "") + f;
        record_parameters.append(
            QStringLiteral("const UniString %1 %2").arg(field->is_required() ? "&" : "*", f));
    }
    text += "\t\treturn new(p) " + R + "(builder" + arguments + ");\n\t}\n\n";
    text += "\t" + R + "::" + R + "(const " + R + "::BUILDER& " + record_parameters.join(", ") + ")\n";
    text += QString("\t\t") + (m_schema.field_count() > 0 ? ":" : "") + "\n";
    QStringList record_initialisers;
    for (const KOR_FIELD_SCHEMA* field : m_schema.field_schemas())
    {
        const QString f = field->field_name();
        if (m_localised.contains(f) || m_dependencies.contains(field))
            record_initialisers.append(QStringLiteral("m_%1(%1)").arg(f));
        else
            record_initialisers.append("m_" + f + "(builder.m_" + f + ")");
    }
    text += "\t\t" + record_initialisers.join(",\n\t\t");
    text += "\n\t{\n\t}\n\n\t" + B + "::" + B + "(const " + R + "::BUILDER_TABLE& builder_table , const " +
            R +
            "::DEPENDENCIES& dependencies , const UTILITYDLL::STRING_TABLE& loc , BAD_MOD_LIST_TYPE & "
            "bad_packs)\n";
    text += "\t\t: DATABASE_TABLE<" + R + ">(L\"" + m_table + "_tables\" , BUILD_OBJECT<" + B + " , " + R +
            ">(builder_table , dependencies , loc) , bad_packs)\n\t{\n\t}\n} // namespace "
            "COBALTUTILITY\n\n// eof "
            "/////////////////////////////////////////////";
    return text;
}

QString SAMPLE_GAME_SOURCE::element_line() const
{
    QStringList dependencies;
    for (const QString& foreign : dependency_tables())
        dependencies.append(foreign + QStringLiteral("_table"));
    return "\t\tELEM(" + m_table + "_table ," + m_table.toUpper() + "_TABLE , (m_vfs , " +
           record_type(m_table) + "::DEPENDENCIES(" + dependencies.join("(), ") +
           (dependencies.isEmpty() ? "" : "()") + ") , stringtable() , m_bad_mods)) \\";
}

QString SAMPLE_GAME_SOURCE::tool_command() const
{
    const QString R = record_type(m_table);
    QString text =
        "\tDEFINE_TOOL_COMMAND(add_" + m_table + "_table, \"tool_script\", \"add_" + m_table +
        "_table <source_file> [destination_file_name]>\", \"Transform the file (qualified relative to "
        "the data root) with the given name as a " +
        m_table + " table and add it to the index.\", is)\n";
    text += "\t{\n";
    text += "\t\tadd_Access_table(is, TABLE_DESCRIPTOR(\"" + m_table + "\", DATABASE_TABLE<" + R +
            ">::parse, " + R + "::BUILDER::parse" +
            (m_version >= 0 ? ", " + R + "::BUILDER::VERSION" : QString()) + "));\n";
    text += "\t}";
    return text;
}
