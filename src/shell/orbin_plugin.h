#pragma once

#include "app_extension_plugin_interface.h"
#include "database_editor_plugin_interface.h"
#include "veld_data.h"

#include <memory>

class QWidget;

// ORBIN's face to the host: the one action that opens the editor's main
// window, and the database the host (and other plugins through it) may ask
// for. It owns the one session for the life of the plugin; every window it
// makes is handed to the host, which owns it from then on.
class ORBIN_PLUGIN : public DATABASE_EDITOR_PLUGIN_INTERFACE, public APP_EXTENSION_PLUGIN_INTERFACE
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "nf.Quill.VeldPlugin" FILE "orbin_plugin.json")
    Q_INTERFACES(DATABASE_EDITOR_PLUGIN_INTERFACE APP_EXTENSION_PLUGIN_INTERFACE)

public:
    ORBIN_PLUGIN();
    ~ORBIN_PLUGIN() override;

    KOR_XML_QUERY_INTERFACE* database_interface() override;
    bool connect_database(bool flag) override;
    bool disconnect_database() override;

    QList<QAction*> create_actions() override;
    void open_window(QString name) override;
    PLUGIN_DESCRIPTION plugin_description() override;
    bool can_close() override;

public slots:
    void open_VELD();
    void orbin_disconnected();
    void orbin_connected();

private:
    void report_failed_connect(const QString& error);

    std::weak_ptr<QWidget> m_main_window;
    VELD_DATA m_session;
};
