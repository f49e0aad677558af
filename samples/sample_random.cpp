#include "sample_random.h"

namespace
{
// splitmix64: small, fast, and its output is fixed by its definition.
quint64 mix(quint64 value)
{
    value += 0x9e3779b97f4a7c15ULL;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
    return value ^ (value >> 31);
}

// FNV-1a over the UTF-16 units: qHash is seeded per process and may not be used.
quint64 name_hash(const QString& name)
{
    quint64 hash = 0xcbf29ce484222325ULL;
    for (const QChar c : name)
    {
        hash ^= c.unicode();
        hash *= 0x100000001b3ULL;
    }
    return hash;
}

const QString& empty_text()
{
    static const QString empty;
    return empty;
}
} // namespace

SAMPLE_RANDOM::SAMPLE_RANDOM(quint64 seed) : m_seed(seed), m_state(mix(seed)) {}

SAMPLE_RANDOM SAMPLE_RANDOM::fork(const QString& name) const
{
    return SAMPLE_RANDOM(mix(m_seed ^ name_hash(name)));
}

quint64 SAMPLE_RANDOM::next()
{
    m_state = mix(m_state);
    return m_state;
}

int SAMPLE_RANDOM::range(int low, int high)
{
    if (high <= low)
        return low;
    const quint64 span = quint64(qint64(high) - qint64(low) + 1);
    return int(qint64(low) + qint64(next() % span));
}

double SAMPLE_RANDOM::real()
{
    return double(next() >> 11) * (1.0 / 9007199254740992.0);
}

double SAMPLE_RANDOM::real(double low, double high)
{
    return low + (high - low) * real();
}

bool SAMPLE_RANDOM::chance(double probability)
{
    return real() < probability;
}

int SAMPLE_RANDOM::index(int count)
{
    return count <= 0 ? 0 : int(next() % quint64(count));
}

const QString& SAMPLE_RANDOM::pick(const QStringList& items)
{
    if (items.isEmpty())
        return empty_text();
    return items.at(index(items.size()));
}

QUuid SAMPLE_RANDOM::uuid()
{
    const quint64 high = next();
    const quint64 low = next();
    // Version 4 and the RFC 4122 variant, as QUuid::createUuid makes them.
    return QUuid(uint(high >> 32), ushort(high >> 16), ushort((high & 0x0fff) | 0x4000),
                 uchar(((low >> 56) & 0x3f) | 0x80), uchar(low >> 48), uchar(low >> 40), uchar(low >> 32),
                 uchar(low >> 24), uchar(low >> 16), uchar(low >> 8), uchar(low));
}

QStringList SAMPLE_RANDOM::sample(QStringList items, int count)
{
    count = qBound(0, count, items.size());
    for (int i = 0; i < count; ++i)
        items.swapItemsAt(i, i + index(items.size() - i));
    return items.mid(0, count);
}
