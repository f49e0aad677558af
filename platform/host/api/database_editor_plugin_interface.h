#pragma once

#include "quill_host_api_export.h"

#include <QtCore/QObject>
#include <QtCore/QtPlugin>

// The database engine's interface; the host only passes pointers to it along.
class KOR_XML_QUERY_INTERFACE;

// The database side of a Quill plugin: how the host (and other plugins
// through it) reach the database a plugin edits, and hear when it connects
// and disconnects. A plugin's root object derives from it first.
class QUILL_HOST_API DATABASE_EDITOR_PLUGIN_INTERFACE : public QObject
{
    Q_OBJECT

public:
    explicit DATABASE_EDITOR_PLUGIN_INTERFACE(QObject* parent = nullptr);
    ~DATABASE_EDITOR_PLUGIN_INTERFACE() override;

    // The plugin's connected database, connecting first when needed; null
    // when that fails.
    virtual KOR_XML_QUERY_INTERFACE* database_interface() = 0;
    virtual bool connect_database(bool flag) = 0;
    virtual bool disconnect_database() = 0;

signals:
    // Emitted by the plugin at each change of its connection.
    void database_connected();
    void database_disconnected();
};

#define DATABASE_EDITOR_PLUGIN_INTERFACE_IID "com.nf.Quill.DatabaseEditorPluginInterface/1.0"
Q_DECLARE_INTERFACE(DATABASE_EDITOR_PLUGIN_INTERFACE, DATABASE_EDITOR_PLUGIN_INTERFACE_IID)
