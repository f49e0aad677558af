#pragma once

#include "app_extension_plugin_interface.h"
#include "database_editor_plugin_interface.h"

// A plugin for the host's tests. It reports what it saw through dynamic
// properties of its root object, and obeys the property "refuse_close".
class TEST_EXTENSION_PLUGIN : public DATABASE_EDITOR_PLUGIN_INTERFACE, public APP_EXTENSION_PLUGIN_INTERFACE
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.nf.Quill.TestPlugin" FILE "test_extension_plugin.json")
    Q_INTERFACES(DATABASE_EDITOR_PLUGIN_INTERFACE APP_EXTENSION_PLUGIN_INTERFACE)

public:
    TEST_EXTENSION_PLUGIN();

    KOR_XML_QUERY_INTERFACE* database_interface() override { return nullptr; }
    bool connect_database(bool flag) override;
    bool disconnect_database() override;

    QList<QAction*> create_actions() override;
    void open_window(QString name) override;
    PLUGIN_DESCRIPTION plugin_description() override;
    bool can_close() override;
    void on_plugin_widget_to_be_destroyed(QWidget& widget) override;
    void on_plugin_widget_destroyed(const QWidget* widget) override;

private:
    void count(const char* name);
};
