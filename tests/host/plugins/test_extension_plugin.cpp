#include "test_extension_plugin.h"

#include "project_paths.h"
#include "quill_host_options.h"
#include "quill_icons.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QLabel>

TEST_EXTENSION_PLUGIN::TEST_EXTENSION_PLUGIN()
{
    // What the host had set up when the plugin was built.
    setProperty("binaries_at_load", LIBRARY_PROXY::PROJECT_PATHS().binaries_path);
    setProperty("full_at_load", QUILL_HOST_OPTIONS::full_configuration());
}

void TEST_EXTENSION_PLUGIN::count(const char* name)
{
    setProperty(name, property(name).toInt() + 1);
}

bool TEST_EXTENSION_PLUGIN::connect_database(bool)
{
    emit database_connected();
    return true;
}

bool TEST_EXTENSION_PLUGIN::disconnect_database()
{
    emit database_disconnected();
    return true;
}

QList<QAction*> TEST_EXTENSION_PLUGIN::create_actions()
{
    auto* open = new QAction(QStringLiteral("Open Test Window"), nullptr);
    connect(open, &QAction::triggered, this, [this] { open_window(QString()); });
    auto* connect_action = new QAction(QStringLiteral("Connect Test Database"), nullptr);
    connect(connect_action, &QAction::triggered, this, [this] { connect_database(false); });
    return {open, connect_action};
}

void TEST_EXTENSION_PLUGIN::open_window(QString)
{
    auto* label = new QLabel(QStringLiteral("A test window"));
    label->setWindowTitle(QStringLiteral("Test Window"));
    // The host must override this: it owns the widget through the pointer.
    label->setAttribute(Qt::WA_DeleteOnClose, true);
    m_aepi_notifier.signal_plugin_widget_created(*this, std::shared_ptr<QWidget>(label));
}

PLUGIN_DESCRIPTION TEST_EXTENSION_PLUGIN::plugin_description()
{
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::darkGreen);
    PLUGIN_DESCRIPTION description;
    description.name = QStringLiteral("Test Plugin");
    description.icon = QUILL_ICONS::create_icon(pixmap);
    description.categories = QStringList{QStringLiteral("testing")};
    return description;
}

bool TEST_EXTENSION_PLUGIN::can_close()
{
    count("can_close_calls");
    return !property("refuse_close").toBool();
}

void TEST_EXTENSION_PLUGIN::on_plugin_widget_to_be_destroyed(QWidget&)
{
    count("to_be_destroyed_calls");
}

void TEST_EXTENSION_PLUGIN::on_plugin_widget_destroyed(const QWidget*)
{
    count("destroyed_calls");
}
