#pragma once

#include "aepi_widget_notifier.h"
#include "plugin_description.h"
#include "quill_host_api_export.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QtPlugin>

class QAction;
class QWidget;

// The application side of a Quill plugin: what puts it in the host's menus
// and windows. A plugin's root object derives from it (next to QObject) and
// lists it in Q_INTERFACES; the host finds it by its interface id.
class QUILL_HOST_API APP_EXTENSION_PLUGIN_INTERFACE
{
public:
    APP_EXTENSION_PLUGIN_INTERFACE();
    virtual ~APP_EXTENSION_PLUGIN_INTERFACE();

    // The actions the host puts in the plugin's menu. Called once, after
    // loading; the host takes ownership of the actions.
    virtual QList<QAction*> create_actions() = 0;
    // Opens the plugin's window for `name` (plugins may ignore it) and hands it
    // over through m_aepi_notifier.
    virtual void open_window(QString name) = 0;
    virtual PLUGIN_DESCRIPTION plugin_description() = 0;
    // Asked before the host closes one of the plugin's widgets and before the
    // host quits; false keeps them open.
    virtual bool can_close() = 0;
    // Told just before the host drops a widget the plugin handed over, and
    // just after (the pointer then only identifies it). Nothing by default.
    virtual void on_plugin_widget_to_be_destroyed(QWidget& widget);
    virtual void on_plugin_widget_destroyed(const QWidget* widget);

    AEPI_WIDGET_NOTIFIER m_aepi_notifier;

private:
    Q_DISABLE_COPY(APP_EXTENSION_PLUGIN_INTERFACE)
};

#define APP_EXTENSION_PLUGIN_INTERFACE_IID "com.nf.Quill.AppExtensionPluginInterface/1.0"
Q_DECLARE_INTERFACE(APP_EXTENSION_PLUGIN_INTERFACE, APP_EXTENSION_PLUGIN_INTERFACE_IID)
