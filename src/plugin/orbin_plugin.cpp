#include "orbin_plugin.h"

#include "project_paths.h"
#include "quill_icons.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>

ORBIN_PLUGIN::ORBIN_PLUGIN() = default;

ORBIN_PLUGIN::~ORBIN_PLUGIN() = default;

KOR_XML_QUERY_INTERFACE* ORBIN_PLUGIN::database_interface()
{
    return nullptr;
}

bool ORBIN_PLUGIN::connect_database(bool)
{
    return false;
}

bool ORBIN_PLUGIN::disconnect_database()
{
    return true;
}

QList<QAction*> ORBIN_PLUGIN::create_actions()
{
    auto* action = new QAction(QStringLiteral("ORBIN - Database Visual Editor"), nullptr);
    connect(action, SIGNAL(triggered()), this, SLOT(open_VELD()));
    return {action};
}

void ORBIN_PLUGIN::open_VELD()
{
    open_window(QString());
}

void ORBIN_PLUGIN::open_window(QString)
{
    auto* window = new QMainWindow(nullptr);
    window->setWindowTitle(QStringLiteral("ORBIN - Database Visual Editor"));
    window->resize(1088, 763);
    const LIBRARY_PROXY::PROJECT_PATHS paths;
    QString text;
    if (!paths.is_configured())
    {
        text = QStringLiteral("No project is configured.");
    }
    else
    {
        text =
            QStringLiteral("Project paths:\n\nBinaries: %1\nDesign data: %2\nCSV import: %3\nConnection: %4")
                .arg(paths.binaries_path, paths.design_data_path, paths.csv_import_path,
                     paths.connection_path);
        for (int index = 0; index < paths.all_working_data_count(); ++index)
            text += QStringLiteral("\nWorking data: %1").arg(paths.get_working_data_path(index));
    }
    auto* label = new QLabel(text, window);
    label->setObjectName(QStringLiteral("project_paths_label"));
    label->setAlignment(Qt::AlignCenter);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    window->setCentralWidget(label);

    std::shared_ptr<QWidget> shared(window);
    m_aepi_notifier.signal_plugin_widget_created(*this, shared);
    m_main_window = shared;
}

PLUGIN_DESCRIPTION ORBIN_PLUGIN::plugin_description()
{
    PLUGIN_DESCRIPTION description;
    description.name = QStringLiteral("ORBIN");
    description.icon = QUILL_ICONS::create_icon(QPixmap(QStringLiteral(":/icons/main")));
    description.enabled = true;
    return description;
}

bool ORBIN_PLUGIN::can_close()
{
    return true;
}
