#pragma once

#include "quill_host_api_export.h"

#include <QtGui/QIcon>
#include <QtGui/QPixmap>

namespace QUILL_ICONS
{
// An icon of the host's look from one picture: the picture itself plus
// smoothly scaled copies for the small sizes menus and title bars ask for.
// A null picture gives a null icon.
QUILL_HOST_API QIcon create_icon(const QPixmap& pixmap);
} // namespace QUILL_ICONS
