#include "quill_icons.h"

namespace QUILL_ICONS
{
QIcon create_icon(const QPixmap& pixmap)
{
    QIcon icon;
    if (pixmap.isNull())
        return icon;
    icon.addPixmap(pixmap);
    for (const int side : {16, 24, 32, 48})
    {
        if (pixmap.width() > side || pixmap.height() > side)
            icon.addPixmap(pixmap.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
    return icon;
}
} // namespace QUILL_ICONS
