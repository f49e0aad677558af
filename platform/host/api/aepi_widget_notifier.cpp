#include "aepi_widget_notifier.h"

AEPI_WIDGET_NOTIFIER::AEPI_WIDGET_NOTIFIER(QObject* parent) : QObject(parent) {}

AEPI_WIDGET_NOTIFIER::~AEPI_WIDGET_NOTIFIER() = default;
