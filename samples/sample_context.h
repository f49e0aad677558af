#pragma once

#include "sample_random.h"
#include "sample_rows.h"

#include <QMap>
#include <QSet>
#include <QString>

class SAMPLE_CATALOGUE;
class SAMPLE_WORDS;

// How much a project holds: SMALL for tests (every table, a handful of rows
// each, generated in well under a second), NORMAL for people (a few
// thousand records).
enum class SAMPLE_SIZE
{
    SMALL,
    NORMAL
};

// What a table's generator may use: its random stream, the rows of the
// tables generated before it, the size asked for, and the words of the
// sample world.
class SAMPLE_CONTEXT
{
public:
    SAMPLE_CONTEXT(const SAMPLE_CATALOGUE& catalogue, const QMap<QString, SAMPLE_ROWS>& done,
                   const SAMPLE_RANDOM& random, SAMPLE_SIZE size);

    SAMPLE_RANDOM& random() { return m_random; }
    bool small() const { return m_size == SAMPLE_SIZE::SMALL; }
    // A count for the size asked for: `normal` itself, or a small share of it
    // that still leaves four rows (enough for every approval state).
    int count(int normal) const;
    // The rows of a table generated earlier. A generator that names a later
    // or unknown table gets no rows, and the catalogue's check reports it.
    const SAMPLE_ROWS& rows(const QString& table) const;
    const SAMPLE_CATALOGUE& catalogue() const { return m_catalogue; }
    const SAMPLE_WORDS& words() const;

    // A moment of the project's history, milliseconds since the epoch (UTC):
    // within the given number of days before the sample's fixed "today".
    qint64 past_msecs(int days);
    // A member of the team, by login name.
    QString team_member();
    // `candidate`, or candidate + "_2", "_3"... when taken; the answer is taken.
    static QString unique(QSet<QString>& taken, const QString& candidate);

    // The fixed "today" of the sample world.
    static qint64 today_msecs();
    static QStringList team();

private:
    const SAMPLE_CATALOGUE& m_catalogue;
    const QMap<QString, SAMPLE_ROWS>& m_done;
    SAMPLE_RANDOM m_random;
    SAMPLE_SIZE m_size;
};
