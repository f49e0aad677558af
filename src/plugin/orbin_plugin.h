#pragma once

#include "app_extension_plugin_interface.h"
#include "database_editor_plugin_interface.h"

#include <memory>

class QWidget;

// ORBIN's face to the host: the one action that opens the editor's window.
// Until the application shell is in, the window only shows the project the
// host gave (or that none is configured), and there is no database to offer.
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

private:
    std::weak_ptr<QWidget> m_main_window;
};
