#include "orbin_plugin.h"

#include "prompt.h"
#include "quill_icons.h"
#include "veld_main_window.h"
#include "veld_window_registry.h"

#include <QtWidgets/QAction>

ORBIN_PLUGIN::ORBIN_PLUGIN()
{
    VELD_MAIN_WINDOW::load_resources();
    connect(&m_session, SIGNAL(connected()), this, SLOT(orbin_connected()));
    connect(&m_session, SIGNAL(disconnected()), this, SLOT(orbin_disconnected()));
}

ORBIN_PLUGIN::~ORBIN_PLUGIN() = default;

void ORBIN_PLUGIN::report_failed_connect(const QString& error)
{
    // Title and body this way round on purpose: the advice is what the
    // user should read first.
    prompt::critical(
        nullptr, QStringLiteral("Unable to connect to database, getting latest in raw_data/db may fix this"),
        error);
}

KOR_XML_QUERY_INTERFACE* ORBIN_PLUGIN::database_interface()
{
    if (!m_session.is_connected())
    {
        QString error;
        if (!m_session.connect_main(error, m_session.connect_path(), 0))
        {
            report_failed_connect(error);
            return nullptr;
        }
    }
    return m_session.query_interface();
}

bool ORBIN_PLUGIN::connect_database(bool flag)
{
    if (m_session.is_connected())
        return true;
    QString error;
    if (!m_session.connect_main(error, m_session.connect_path(), flag ? 0 : 1))
    {
        report_failed_connect(error);
        return false;
    }
    return true;
}

bool ORBIN_PLUGIN::disconnect_database()
{
    if (!m_session.is_connected())
        return true;
    QString error;
    // The windows hold pointers into the data the engine is about to drop:
    // they close first, and a table editor whose user keeps its edits stops
    // the disconnect.
    if (auto window = std::dynamic_pointer_cast<VELD_MAIN_WINDOW>(m_main_window.lock()))
    {
        if (!window->close_forms_for_disconnect())
            error = QStringLiteral("Close the open windows of ORBIN first");
    }
    if (error.isEmpty() && m_session.disconnect_all(error))
        return true;
    prompt::critical(nullptr, QStringLiteral("Unable to disconnect from database!"), error);
    return false;
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
    std::shared_ptr<QWidget> window(new VELD_MAIN_WINDOW(&m_session, nullptr));
    m_aepi_notifier.signal_plugin_widget_created(*this, window);
    m_main_window = window;
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
    const auto window = std::dynamic_pointer_cast<VELD_MAIN_WINDOW>(m_main_window.lock());
    if (!window)
        return true;
    return window->session()->confirm_closing(
        window.get(), [] { return VELD_WINDOW_REGISTRY::instance().any_unsaved_forms(); });
}

void ORBIN_PLUGIN::orbin_disconnected()
{
    emit database_disconnected();
}

void ORBIN_PLUGIN::orbin_connected()
{
    emit database_connected();
}
