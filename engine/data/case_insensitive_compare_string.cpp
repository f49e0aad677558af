#include "case_insensitive_compare_string.h"

int CASE_INSENSITIVE_COMPARE_STRING::compare(const QString& a, const QString& b)
{
    // Field names are almost always ASCII: fold those by hand and leave the
    // rest to Qt's case folding.
    const int length = qMin(a.size(), b.size());
    const QChar* pa = a.constData();
    const QChar* pb = b.constData();
    for (int i = 0; i < length; ++i)
    {
        ushort ca = pa[i].unicode();
        ushort cb = pb[i].unicode();
        if (ca == cb)
            continue;
        if (ca >= 0x80 || cb >= 0x80)
            return QString::compare(a.mid(i), b.mid(i), Qt::CaseInsensitive);
        if (ca >= 'A' && ca <= 'Z')
            ca += 'a' - 'A';
        if (cb >= 'A' && cb <= 'Z')
            cb += 'a' - 'A';
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}
