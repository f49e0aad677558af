#pragma once

#include <QList>
#include <QPair>
#include <QString>

class SAMPLE_CATALOGUE;
class SAMPLE_CONTENT;
struct SAMPLE_LAYOUT;

// The files of a sample project around its database: the host's project
// file, the places of the studio's tools and their rule files, what the
// tools exported (design data copies, working data, LOC and tab files),
// campaign folders, CSV files for import, interface layouts, and the
// database's own side files (permissions, patched tables, saved queries).
// Each writer answers an error text, empty on success.
class SAMPLE_PROJECT_FILES
{
public:
    static QString write_project_file(const SAMPLE_LAYOUT& layout, quint64 seed);
    static QString write_tool_places(const SAMPLE_LAYOUT& layout);
    // Permissions, patched tables and saved queries of a database folder.
    static QString write_database_side_files(const QString& database_path);
    static QString write_exports(const SAMPLE_LAYOUT& layout, const SAMPLE_CATALOGUE& catalogue,
                                 const SAMPLE_CONTENT& content);
    static QString write_campaign_folders(const SAMPLE_LAYOUT& layout, const SAMPLE_CONTENT& content);
    static QString write_csv_imports(const SAMPLE_LAYOUT& layout, const SAMPLE_CONTENT& content);
    static QString write_layouts(const SAMPLE_LAYOUT& layout, const SAMPLE_CONTENT& content, quint64 seed);

    // The saved queries of the sample database: name, statement.
    static QList<QPair<QString, QString>> queries();
    // Copies the stand-ins of the studio's tools (KILN.release,
    // Slatepad.UnityRelease) from `tools_folder` into the binaries folder,
    // where the session looks for them; those present are copied.
    static QString install_tools(const SAMPLE_LAYOUT& layout, const QString& tools_folder,
                                 QStringList* installed);

    // Writes a file, making its folder; error text, empty on success.
    static QString write_file(const QString& path, const QByteArray& bytes);
};
