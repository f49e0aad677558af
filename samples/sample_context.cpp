#include "sample_context.h"

#include "sample_words.h"

#include <QDateTime>

SAMPLE_CONTEXT::SAMPLE_CONTEXT(const SAMPLE_CATALOGUE& catalogue, const QMap<QString, SAMPLE_ROWS>& done,
                               const SAMPLE_RANDOM& random, SAMPLE_SIZE size)
    : m_catalogue(catalogue), m_done(done), m_random(random), m_size(size)
{
}

int SAMPLE_CONTEXT::count(int normal) const
{
    if (m_size == SAMPLE_SIZE::NORMAL)
        return normal;
    return qMin(normal, qMax(4, (normal + 9) / 10));
}

const SAMPLE_ROWS& SAMPLE_CONTEXT::rows(const QString& table) const
{
    static const SAMPLE_ROWS none;
    const auto it = m_done.constFind(table);
    return it == m_done.constEnd() ? none : it.value();
}

const SAMPLE_WORDS& SAMPLE_CONTEXT::words() const
{
    return SAMPLE_WORDS::instance();
}

qint64 SAMPLE_CONTEXT::past_msecs(int days)
{
    // Whole seconds: the engine writes milliseconds, but nobody edits a
    // table at an odd millisecond in a sample.
    const qint64 seconds_back = qint64(m_random.range(0, qMax(0, days) * 24 * 3600));
    return today_msecs() - seconds_back * 1000;
}

QString SAMPLE_CONTEXT::team_member()
{
    return m_random.pick(team());
}

QString SAMPLE_CONTEXT::unique(QSet<QString>& taken, const QString& candidate)
{
    QString name = candidate;
    for (int n = 2; taken.contains(name); ++n)
        name = candidate + QLatin1Char('_') + QString::number(n);
    taken.insert(name);
    return name;
}

qint64 SAMPLE_CONTEXT::today_msecs()
{
    return QDateTime(QDate(2025, 3, 14), QTime(9, 30), Qt::UTC).toMSecsSinceEpoch();
}

QStringList SAMPLE_CONTEXT::team()
{
    return {QStringLiteral("mokafor"),    QStringLiteral("tbrandt"), QStringLiteral("ivarga"),
            QStringLiteral("hlindqvist"), QStringLiteral("praman"),  QStringLiteral("kmori"),
            QStringLiteral("lpetrov"),    QStringLiteral("ohart")};
}
