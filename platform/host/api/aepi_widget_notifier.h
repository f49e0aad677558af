#pragma once

#include "quill_host_api_export.h"

#include <QtCore/QMetaType>
#include <QtCore/QObject>

#include <memory>

class APP_EXTENSION_PLUGIN_INTERFACE;
class QWidget;

// The channel through which a plugin hands a widget to the host. Emitting the
// signal passes ownership: from then on the host shows the widget and decides
// when it is destroyed (by dropping its shared pointer; the plugin should keep
// no more than a weak reference).
class QUILL_HOST_API AEPI_WIDGET_NOTIFIER : public QObject
{
    Q_OBJECT

public:
    explicit AEPI_WIDGET_NOTIFIER(QObject* parent = nullptr);
    ~AEPI_WIDGET_NOTIFIER() override;

signals:
    void signal_plugin_widget_created(APP_EXTENSION_PLUGIN_INTERFACE& plugin,
                                      std::shared_ptr<QWidget> widget);
};

Q_DECLARE_METATYPE(std::shared_ptr<QWidget>)
