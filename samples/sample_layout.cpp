#include "sample_layout.h"

#include <QDir>

SAMPLE_LAYOUT SAMPLE_LAYOUT::of(const QString& folder)
{
    SAMPLE_LAYOUT layout;
    layout.root = QDir::cleanPath(QDir(folder).absolutePath());
    layout.project_file = layout.root + QStringLiteral("/quill-project.ini");
    layout.depot = layout.root + QStringLiteral("/depot.git");
    layout.workspace = layout.root + QStringLiteral("/workspace");
    layout.branch_root = layout.workspace + QStringLiteral("/trunk");
    layout.game = layout.branch_root + QStringLiteral("/game");
    layout.binaries = layout.game + QStringLiteral("/binaries");
    layout.raw_data = layout.game + QStringLiteral("/raw_data");
    layout.database = layout.raw_data + QStringLiteral("/db");
    layout.design_data = layout.raw_data + QStringLiteral("/CobaltDesignData");
    layout.csv_import = layout.raw_data + QStringLiteral("/csv_import");
    layout.localisation = layout.raw_data + QStringLiteral("/localisation");
    layout.working_data = layout.game + QStringLiteral("/working_data");
    layout.text = layout.game + QStringLiteral("/Text");
    return layout;
}
