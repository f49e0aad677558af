#include "app_extension_plugin_interface.h"

APP_EXTENSION_PLUGIN_INTERFACE::APP_EXTENSION_PLUGIN_INTERFACE() = default;

APP_EXTENSION_PLUGIN_INTERFACE::~APP_EXTENSION_PLUGIN_INTERFACE() = default;

void APP_EXTENSION_PLUGIN_INTERFACE::on_plugin_widget_to_be_destroyed(QWidget&) {}

void APP_EXTENSION_PLUGIN_INTERFACE::on_plugin_widget_destroyed(const QWidget*) {}
