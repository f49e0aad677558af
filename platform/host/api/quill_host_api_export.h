#pragma once

#include <QtCore/qglobal.h>

// Symbols of the host's shared library, seen by the host and by its plugins.
#if defined(QUILL_HOST_API_BUILDING)
#define QUILL_HOST_API Q_DECL_EXPORT
#else
#define QUILL_HOST_API Q_DECL_IMPORT
#endif
